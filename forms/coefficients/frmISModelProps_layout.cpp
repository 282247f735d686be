// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QAction>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QVBoxLayout>

#include "forms/coefficients/frmISModelProps.h"

/// \file
/// The coefficient editor's controls: made, laid out, connected.
namespace kestrel {

namespace {

/// A control by its name, which is what tests find it by.
template <typename Control>
Control* named(const char* name, Control* control) {
    control->setObjectName(name);
    return control;
}

}  // namespace

frmISModelProps::frmISModelProps(CoefficientStore store, QWidget* parent) : QDialog(parent), m_store(std::move(store)) {
    setObjectName("frmISModelProps");
    setWindowFlags(Qt::Window);
    build_controls();
    build_buttons();
    build_row_menu();
    build_layout();
    connect_controls();
}

void frmISModelProps::build_controls() {
    cboLCType = named("cboLCType", new QComboBox);
    cboLCType->setAccessibleName("Coefficient set");
    cboLCType->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cboLCType->setMinimumContentsLength(20);
    grdLCDef = named("grdLCDef", new CoefficientGrid);
    grdLCDef->setAccessibleName("Land-cover classes of the coefficient set");
    txtActiveCell = named("txtActiveCell", new QLineEdit(grdLCDef->viewport()));
    txtActiveCell->setAccessibleName("Cell being edited");
    txtActiveCell->setFrame(false);
    txtActiveCell->setTextMargins(1, 0, 1, 0);  // its text stands where the cell's does
    QPalette colours = txtActiveCell->palette();
    colours.setColor(QPalette::Base, CoefficientGrid::current_cell_colour());
    colours.setColor(QPalette::Text, Qt::black);
    txtActiveCell->setPalette(colours);
    txtActiveCell->setDragEnabled(false);
    txtActiveCell->setAcceptDrops(false);
    txtActiveCell->hide();
}

void frmISModelProps::build_buttons() {
    const auto button = [](const char* name, const char* caption) {
        auto* made = named(name, new QPushButton(caption));
        made->setAutoDefault(false);  // Enter belongs to the grid
        return made;
    };
    cmdNew = button("cmdNew", "&New...");
    CmdImport = button("CmdImport", "&Import...");
    CmdExport = button("CmdExport", "&Export...");
    CmdMerge = button("CmdMerge", "&Merge...");
    cmdApply = button("cmdApply", "&Apply");
    cmdQuit = button("cmdQuit", "&Quit");
    cmdHelp = button("cmdHelp", "&Help");
    cmdNew->setToolTip("Begin a new coefficient set");
    CmdImport->setToolTip("Make a new coefficient set from a text file");
    CmdExport->setToolTip("Write this coefficient set to a text file");
    CmdMerge->setToolTip("Add the coefficient sets of another store");
    cmdApply->setToolTip("Save the changes");
}

void frmISModelProps::build_row_menu() {
    MnuFGridRows = named("MnuFGridRows", new QMenu(this));
    MnuFGridAddRow = named("MnuFGridAddRow", MnuFGridRows->addAction("&Add row"));
    MnuFGridInsRow = named("MnuFGridInsRow", MnuFGridRows->addAction("&Insert row"));
    MnuFGridDelRow = named("MnuFGridDelRow", MnuFGridRows->addAction("&Delete row"));
}

void frmISModelProps::build_layout() {
    auto* caption = new QLabel("Coefficient &set:");
    caption->setBuddy(cboLCType);
    auto* sets = new QHBoxLayout;
    sets->addWidget(caption);
    sets->addWidget(cboLCType, 1);
    auto* left = new QVBoxLayout;
    left->addLayout(sets);
    left->addWidget(grdLCDef, 1);
    auto* right = new QVBoxLayout;
    for (QPushButton* button : {cmdNew, CmdImport, CmdExport, CmdMerge}) {
        right->addWidget(button);
    }
    right->addStretch(1);
    for (QPushButton* button : {cmdApply, cmdQuit, cmdHelp}) {
        right->addWidget(button);
    }
    auto* all = new QHBoxLayout(this);
    all->addLayout(left, 1);
    all->addLayout(right);

    QWidget* previous = cboLCType;
    const std::initializer_list<QWidget*> order = {grdLCDef, txtActiveCell, cmdNew,  CmdImport, CmdExport,
                                                   CmdMerge, cmdApply,      cmdQuit, cmdHelp};
    for (QWidget* control : order) {
        setTabOrder(previous, control);
        previous = control;
    }
}

void frmISModelProps::connect_controls() {
    connect(cmdApply, &QPushButton::clicked, this, &frmISModelProps::cmdApply_click);
    connect(cmdQuit, &QPushButton::clicked, this, &frmISModelProps::cmdQuit_Click);
    connect(cmdNew, &QPushButton::clicked, this, &frmISModelProps::cmdNew_Click);
    connect(CmdImport, &QPushButton::clicked, this, &frmISModelProps::cmdImport_Click);
    connect(CmdExport, &QPushButton::clicked, this, &frmISModelProps::cmdExport_Click);
    connect(CmdMerge, &QPushButton::clicked, this, &frmISModelProps::cmdMerge_Click);
    connect(cmdHelp, &QPushButton::clicked, this, &frmISModelProps::cmdHelp_Click);
    connect(cboLCType, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &frmISModelProps::cboLCType_Click);
    connect(MnuFGridAddRow, &QAction::triggered, this, &frmISModelProps::MnuFGridAddRow_Click);
    connect(MnuFGridInsRow, &QAction::triggered, this, &frmISModelProps::MnuFGridInsRow_Click);
    connect(MnuFGridDelRow, &QAction::triggered, this, &frmISModelProps::MnuFGridDelRow_Click);
    connect(grdLCDef, &CoefficientGrid::currentCellChanged, this, &frmISModelProps::grdLCDef_CurrentCellChanged);
    connect(txtActiveCell, &QLineEdit::textEdited, this, &frmISModelProps::txtActiveCell_Change);
    for (QScrollBar* bar : {grdLCDef->horizontalScrollBar(), grdLCDef->verticalScrollBar()}) {
        connect(bar, &QScrollBar::valueChanged, this, &frmISModelProps::grdLCDef_Scroll);
    }
    for (QHeaderView* header : {grdLCDef->horizontalHeader(), grdLCDef->verticalHeader()}) {
        // Queued, because the columns behind a stretched one have not moved yet when this is told.
        connect(header, &QHeaderView::sectionResized, this, &frmISModelProps::grdLCDef_Scroll, Qt::QueuedConnection);
        header->viewport()->installEventFilter(this);
    }
    grdLCDef->installEventFilter(this);
    grdLCDef->viewport()->installEventFilter(this);
    txtActiveCell->installEventFilter(this);
}

}  // namespace kestrel

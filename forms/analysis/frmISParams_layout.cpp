// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QButtonGroup>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <array>

#include "forms/analysis/frmISParams.h"
#include "forms/analysis/name_list.h"
#include "forms/analysis/named_control.h"

/// \file
/// The parameter form's controls: made, laid out, connected.
namespace kestrel {

namespace {

constexpr int kNameCharacters = 30;

/// A caption in front of the control that its mnemonic leads to.
void add_field(QGridLayout& grid, int row, const char* caption, QWidget* control, QWidget* beside = nullptr) {
    auto* label = new QLabel(caption);
    label->setBuddy(control);
    grid.addWidget(label, row, 0);
    grid.addWidget(control, row, 1, 1, beside != nullptr ? 1 : 2);
    if (beside != nullptr) {
        grid.addWidget(beside, row, 2);
    }
}

QPushButton* button(const char* name, const char* caption, const char* tip) {
    auto* made = named(name, new QPushButton(caption));
    made->setToolTip(tip);
    return made;
}

}  // namespace

frmISParams::frmISParams(std::string extension_folder, QWidget* parent)
    : QDialog(parent), m_extension_folder(std::move(extension_folder)), m_contents(new QWidget) {
    setObjectName("frmISParams");
    setWindowTitle("Kestrel");
    setWindowFlags(Qt::Window);
    build_controls();
    build_options();
    build_buttons();
    build_layout();
    order_tabs();
    connect_controls();
}

void frmISParams::build_controls() {
    const auto list = [](const char* name, const char* when_empty, const char* tip) {
        auto* made = new NameList(name, kNameCharacters, when_empty);
        made->setToolTip(tip);
        return made;
    };
    cboLCTheme = list("cboLCTheme", "(choose a layer)", "The raster layer whose cells are land-cover classes");
    cboLCUnits = list("cboLCUnits", "(choose a unit)",
                      "The unit in which the land-cover grid measures: acres come of feet, hectares of meters");
    cboAnalysisTheme = list("cboAnalysisTheme", "(choose a layer)",
                            "The polygon layer to analyze: its selected features, or all of them");
    cboAnalysisUnit = list("cboAnalysisUnit", "(choose a field)", "The field whose values group the polygons");
    cboLCType = list("cboLCType", "(choose a set)", "The impervious percentage of every land-cover class");
    txtOutputTheme = named("txtOutputTheme", new QLineEdit);
    txtOutputTheme->setToolTip("The shapefile to write; one of this name is replaced without asking");
    txtThemeName = named("txtThemeName", new QLineEdit);
    txtThemeName->setToolTip("The name of the new layer in the map");
    fraDSMain = new ScenarioRows;
}

void frmISParams::build_options() {
    fraPopDensity = named("fraPopDensity", new QGroupBox("Coefficients"));
    m_options = new QButtonGroup(this);
    auto* row = new QHBoxLayout(fraPopDensity);
    row->addWidget(new QLabel("Which Coefficient?"));
    // In the order of CoefficientOption, whose positions are the ids of the buttons.
    const std::array captions{"Hi&gh", "&Medium", "Lo&w", "Calc&ulate"};
    const std::array tips{"Take the coefficient for high population density everywhere",
                          "Take the coefficient for medium population density everywhere",
                          "Take the coefficient for low population density everywhere",
                          "Choose the coefficient place by place, by a layer of population density"};
    for (std::size_t i = 0; i < captions.size(); ++i) {
        auto* option = named(element_name("optPopDensity", i), new QRadioButton(captions[i]));
        option->setToolTip(tips[i]);
        m_options->addButton(option, static_cast<int>(i));
        row->addSpacing(row->spacing());
        row->addWidget(option);
        optPopDensity.push_back(option);
    }
    row->addStretch(1);
}

void frmISParams::build_buttons() {
    cmdOutputBrowse = button("cmdOutputBrowse", "&Browse...", "Choose where the shapefile goes");
    cmdISRun = button("cmdISRun", "&Run", "Start the analysis");
    cmdISQuit = button("cmdISQuit", "&Quit", "Close this window");
    cmdISHelp = button("cmdISHelp", "&Help", "Show the help");
}

/// All captions stand in one column, above and below the frames.
void frmISParams::build_layout() {
    auto* contents = new QGridLayout(m_contents);
    contents->setContentsMargins(0, 0, 0, 0);
    contents->setColumnStretch(1, 1);
    add_field(*contents, 0, "&Land Cover Grid", cboLCTheme);
    add_field(*contents, 1, "Land Cover Grid Un&its", cboLCUnits);
    add_field(*contents, 2, "&Analysis Layer", cboAnalysisTheme);
    add_field(*contents, 3, "Analysis &Field", cboAnalysisUnit);
    add_field(*contents, 4, "&Coefficient Set", cboLCType);
    contents->addWidget(fraPopDensity, 5, 0, 1, -1);
    contents->addWidget(fraDSMain, 6, 0, 1, -1);
    contents->setRowStretch(6, 1);
    add_field(*contents, 7, "&Output Shapefile", txtOutputTheme, cmdOutputBrowse);
    add_field(*contents, 8, "Layer &Name", txtThemeName);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (QPushButton* made : {cmdISRun, cmdISQuit, cmdISHelp}) {
        buttons->addWidget(made);
    }
    contents->addLayout(buttons, 9, 0, 1, -1);
    auto* all = new QVBoxLayout(this);
    all->addWidget(m_contents);
    cmdISRun->setDefault(true);
}

void frmISParams::order_tabs() {
    QWidget* previous = cboLCTheme;
    std::vector<QWidget*> order = {cboLCUnits, cboAnalysisTheme, cboAnalysisUnit, cboLCType};
    order.insert(order.end(), optPopDensity.begin(), optPopDensity.end());
    for (const char* name : {"chkDSApply(0)", "cboDSTheme(0)", "cboDSToClass(0)"}) {
        order.push_back(fraDSMain->findChild<QWidget*>(name));
    }
    order.insert(order.end(), {&fraDSMain->add_button(), &fraDSMain->delete_button(), txtOutputTheme, cmdOutputBrowse,
                               txtThemeName, cmdISRun, cmdISQuit, cmdISHelp});
    for (QWidget* control : order) {
        setTabOrder(previous, control);
        previous = control;
    }
}

void frmISParams::connect_controls() {
    const auto chosen = QOverload<int>::of(&QComboBox::currentIndexChanged);
    connect(cboAnalysisTheme, chosen, this, &frmISParams::cboAnalysisTheme_Click);
    connect(cboLCType, chosen, this, &frmISParams::cboLCType_Click);
    // A click is what a released mouse button, the space bar and the arrow keys make.
    connect(m_options, &QButtonGroup::idClicked, this, &frmISParams::optPopDensity_MouseUp);
    connect(txtOutputTheme, &QLineEdit::textChanged, this, &frmISParams::txtOutputTheme_Change);
    connect(cmdOutputBrowse, &QPushButton::clicked, this, &frmISParams::cmdOutputBrowse_Click);
    connect(&fraDSMain->add_button(), &QPushButton::clicked, this, &frmISParams::cmdDSAdd_Click);
    connect(&fraDSMain->delete_button(), &QPushButton::clicked, this, &frmISParams::cmdDSDelete_Click);
    connect(cmdISRun, &QPushButton::clicked, this, &frmISParams::cmdISRun_Click);
    connect(cmdISQuit, &QPushButton::clicked, this, &frmISParams::cmdISQuit_Click);
    connect(cmdISHelp, &QPushButton::clicked, this, &frmISParams::cmdISHelp_Click);
    txtOutputTheme->installEventFilter(this);
}

}  // namespace kestrel

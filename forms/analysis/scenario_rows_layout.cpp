// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>

#include "forms/analysis/name_list.h"
#include "forms/analysis/named_control.h"
#include "forms/analysis/scenario_rows.h"

/// \file
/// The scenario area's controls: made, laid out, loaded and unloaded.
namespace kestrel {

namespace {

/// Columns of the grid of rows.
enum Column : int { kApply, kNumber, kLabel1, kTheme, kLabel2, kToClass };
constexpr int kVisibleRows = 4;
constexpr int kThemeCharacters = 18;
constexpr int kListSpacing = 6;
/// So that the columns stay where they are when a tenth row comes.
constexpr const char* kWidestNumber = "88. ";

QComboBox* row_list(const char* name, std::size_t row, const char* placeholder, const char* tip) {
    auto* list = new NameList(element_name(name, row), kThemeCharacters, placeholder);
    list->setToolTip(tip);
    return list;
}

}  // namespace

ScenarioRows::ScenarioRows(QWidget* parent)
    : QGroupBox("Land Cover Change Scenarios", parent),
      fraDSContainer(named("fraDSContainer", new QFrame(this))),
      fraDSItems(named("fraDSItems", new QFrame(fraDSContainer))),
      VScroll1(named("VScroll1", new QScrollBar(Qt::Vertical))),
      cmdDSAdd(named("cmdDSAdd", new QPushButton("A&dd..."))),
      cmdDSDelete(named("cmdDSDelete", new QPushButton("D&elete..."))),
      m_heading(new QLabel("Apply")),
      m_hint(new QLabel("No scenarios: the land cover counts as it is.", fraDSContainer)),
      m_grid(new QGridLayout(fraDSItems)) {
    setObjectName("fraDSMain");
    build_frames();
    load_row();
    show_row(0, false);
    build_layout();
    cmdDSDelete->setEnabled(false);
    connect(VScroll1, &QScrollBar::valueChanged, this, &ScenarioRows::VScroll1_Change);
    fraDSContainer->installEventFilter(this);
    fraDSItems->installEventFilter(this);
}

void ScenarioRows::build_frames() {
    m_hint->setAlignment(Qt::AlignCenter);
    m_hint->setEnabled(false);
    m_hint->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setVerticalSpacing(0);
    m_grid->setColumnStretch(kTheme, 1);
    m_grid->setColumnStretch(kToClass, 1);
    VScroll1->setFocusPolicy(Qt::NoFocus);  // the rows follow the focus by themselves
    VScroll1->setAccessibleName("Scroll the scenarios");
    cmdDSAdd->setToolTip("Add a scenario: a layer inside whose polygons the land cover counts as another class");
    cmdDSDelete->setToolTip("Delete one of the scenarios, by its number");
}

void ScenarioRows::build_layout() {
    auto* rows = new QGridLayout;
    rows->setSpacing(kListSpacing);
    rows->addWidget(m_heading, 0, 0);
    rows->addWidget(fraDSContainer, 1, 0);
    rows->addWidget(VScroll1, 1, 1);
    rows->setRowStretch(1, 1);
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(cmdDSAdd);
    buttons->addWidget(cmdDSDelete);
    buttons->addStretch(1);
    auto* all = new QHBoxLayout(this);
    all->addLayout(rows, 1);
    all->addLayout(buttons);
    fraDSContainer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    fit_rows();
}

void ScenarioRows::load_row() {
    const std::size_t row = chkDSApply.size();
    const int at = static_cast<int>(row);
    chkDSApply.push_back(named(element_name("chkDSApply", row), new QCheckBox));
    lblDSNum.push_back(named(element_name("lblDSNum", row), new QLabel(QString("%1.").arg(at + 1))));
    lblDSLabel1.push_back(named(element_name("lblDSLabel1", row), new QLabel("Change land cover classes within")));
    cboDSTheme.push_back(row_list("cboDSTheme", row, "(choose a layer)", "The layer whose polygons change"));
    lblDSLabel2.push_back(named(element_name("lblDSLabel2", row), new QLabel("layer to")));
    cboDSToClass.push_back(row_list("cboDSToClass", row, "(choose a class)", "The class that they change to"));

    lblDSNum[row]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    chkDSApply[row]->setChecked(true);
    chkDSApply[row]->setToolTip("Whether the run takes this scenario into account");
    chkDSApply[row]->setAccessibleName(QString("Apply scenario %1").arg(at + 1));
    cboDSTheme[row]->setAccessibleName(QString("Scenario %1: layer").arg(at + 1));
    cboDSToClass[row]->setAccessibleName(QString("Scenario %1: changes to class").arg(at + 1));
    const QWidgetList controls = controls_of(row);
    for (int column = 0; column < controls.size(); ++column) {
        const bool centred = column == kApply;
        m_grid->addWidget(controls[column], at, column, centred ? Qt::AlignHCenter : Qt::Alignment());
        controls[column]->installEventFilter(this);
    }
    m_grid->setRowMinimumHeight(at, m_pitch);
    show_row(at, row > 0);
}

void ScenarioRows::unload_row() {
    const std::size_t row = chkDSApply.size() - 1;
    m_grid->setRowMinimumHeight(static_cast<int>(row), 0);
    qDeleteAll(controls_of(row));
    chkDSApply.pop_back();
    lblDSNum.pop_back();
    lblDSLabel1.pop_back();
    cboDSTheme.pop_back();
    lblDSLabel2.pop_back();
    cboDSToClass.pop_back();
}

void ScenarioRows::show_row(int row, bool visible) {
    for (QWidget* control : controls_of(static_cast<std::size_t>(row))) {
        control->setVisible(visible);
    }
    fraDSItems->setVisible(visible || row > 0);
}

QWidgetList ScenarioRows::controls_of(std::size_t row) const {
    return {chkDSApply[row], lblDSNum[row], lblDSLabel1[row], cboDSTheme[row], lblDSLabel2[row], cboDSToClass[row]};
}

/// Of a row none of whose texts is cut; hidden controls count.
int ScenarioRows::row_width() const {
    int width = 0;
    for (int column = 0; column < m_grid->columnCount(); ++column) {
        int widest = m_grid->columnMinimumWidth(column);
        for (std::size_t row = 0; row < chkDSApply.size(); ++row) {
            widest = std::max(widest, controls_of(row)[column]->sizeHint().width());
        }
        width += widest;
    }
    return width + (m_grid->columnCount() - 1) * m_grid->horizontalSpacing();
}

void ScenarioRows::fit_rows() {
    for (std::size_t row = 0; row < chkDSApply.size(); ++row) {
        for (QWidget* control : controls_of(row)) {
            control->ensurePolished();  // hidden ones would wait until they are shown
        }
    }
    const auto widen = [this](Column column, int width) {
        // Setting what is set already would ask for the layout again, without end.
        if (m_grid->columnMinimumWidth(column) != width) {
            m_grid->setColumnMinimumWidth(column, width);
        }
    };
    widen(kApply, m_heading->sizeHint().width());
    widen(kNumber, lblDSNum[0]->fontMetrics().horizontalAdvance(kWidestNumber));
    m_pitch = std::max(cboDSTheme[0]->sizeHint().height(), chkDSApply[0]->sizeHint().height()) + kListSpacing;
    for (int row = 0; row < static_cast<int>(chkDSApply.size()); ++row) {
        if (m_grid->rowMinimumHeight(row) != m_pitch) {
            m_grid->setRowMinimumHeight(row, m_pitch);
        }
    }
    fraDSContainer->setMinimumSize(row_width(), kVisibleRows * m_pitch);
    SetDSVScroll();
}

}  // namespace kestrel

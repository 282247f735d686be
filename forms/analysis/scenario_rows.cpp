// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/analysis/scenario_rows.h"

#include <QCoreApplication>
#include <QEvent>
#include <QSignalBlocker>
#include <algorithm>

#include "base/conversions.h"
#include "forms/analysis/form_texts.h"
#include "forms/analysis/parameter_controls.h"
#include "parameters/basISModelUtil.h"
#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel {

namespace {
constexpr const char* kModule = "basISModelUtil";
}

std::vector<ScenarioState> ScenarioRows::states() const {
    std::vector<ScenarioState> states;
    for (std::size_t row = 0; row < static_cast<std::size_t>(count()); ++row) {
        states.push_back({chkDSApply[row]->isChecked(), cboDSTheme[row]->currentIndex() >= 0,
                          cboDSToClass[row]->currentIndex() >= 0});
    }
    return states;
}

std::vector<ScenarioChoice> ScenarioRows::choices() const {
    std::vector<ScenarioChoice> choices;
    for (std::size_t row = 0; row < static_cast<std::size_t>(count()); ++row) {
        if (chkDSApply[row]->isChecked()) {
            const QComboBox& classes = *cboDSToClass[row];
            choices.push_back({static_cast<std::int32_t>(row) + 1, cboDSTheme[row]->currentText().toStdString(),
                               classes.currentText().toStdString(),
                               classes.currentIndex() < 0 ? "" : base::text_of(classes.currentData().toInt())});
        }
    }
    return choices;
}

void ScenarioRows::show_next_row() {
    const int row = count();
    if (row > 0) {
        load_row();
        basISModelUtil::copy_items(themes(0), themes(row));
        basISModelUtil::copy_items(classes(0), classes(row));
        const auto added = static_cast<std::size_t>(row);
        setTabOrder(cboDSToClass[added - 1], chkDSApply[added]);
        setTabOrder(chkDSApply[added], cboDSTheme[added]);
        setTabOrder(cboDSTheme[added], cboDSToClass[added]);
    }
    themes(row).setCurrentIndex(-1);
    classes(row).setCurrentIndex(-1);
    chkDSApply[static_cast<std::size_t>(row)]->setChecked(true);
    show_row(row, true);
    ++m_highest;
    SetDSVScroll();
    VScroll1->setValue(VScroll1->maximum());
    cmdDSDelete->setEnabled(true);
}

void ScenarioRows::take_row_out(int row) {
    for (auto to = static_cast<std::size_t>(row); to < static_cast<std::size_t>(m_highest); ++to) {
        chkDSApply[to]->setChecked(chkDSApply[to + 1]->isChecked());
        cboDSTheme[to]->setCurrentIndex(cboDSTheme[to + 1]->currentIndex());
        cboDSToClass[to]->setCurrentIndex(cboDSToClass[to + 1]->currentIndex());
    }
    if (m_highest > 0) {
        unload_row();
    } else {
        show_row(0, false);
    }
    --m_highest;
    SetDSVScroll();
    cmdDSDelete->setEnabled(m_highest >= 0);
}

void ScenarioRows::clear() {
    while (m_highest >= 0) {
        take_row_out(m_highest);
    }
    cmdDSDelete->setEnabled(false);
}

int ScenarioRows::GetDSItemsFrameHeight() const {
    return count() * m_pitch;
}

void ScenarioRows::SetDSVScroll() {
    const int height = GetDSItemsFrameHeight();
    const int overflow = std::max(0, height - fraDSContainer->height());
    VScroll1->setRange(0, overflow);
    VScroll1->setPageStep(fraDSContainer->height());
    VScroll1->setSingleStep(m_pitch);
    VScroll1->setEnabled(overflow > 0);
    fraDSItems->setGeometry(0, -VScroll1->value(), fraDSContainer->width(), height);
    m_hint->setVisible(count() == 0);
    m_hint->setGeometry(fraDSContainer->rect());
}

void ScenarioRows::VScroll1_Change(int value) try { fraDSItems->move(0, -value); } catch (...) {
    report_current({"VScroll1_Change", "ISParams"});
}

/// Brings a control that has got the focus into the clipping frame.
void ScenarioRows::scroll_to(const QWidget& control) {
    const int top = control.geometry().top();
    const int bottom = control.geometry().bottom() + 1;
    if (top < VScroll1->value()) {
        VScroll1->setValue(top);
    } else if (bottom > VScroll1->value() + fraDSContainer->height()) {
        VScroll1->setValue(bottom - fraDSContainer->height());
    }
}

bool ScenarioRows::event(QEvent* event) {
    const bool done = QGroupBox::event(event);
    if (event->type() == QEvent::Polish || event->type() == QEvent::LayoutRequest) {
        fit_rows();
    }
    return done;
}

bool ScenarioRows::eventFilter(QObject* watched, QEvent* event) {
    if (watched == fraDSContainer && event->type() == QEvent::Resize) {
        SetDSVScroll();
    } else if (watched == fraDSItems && event->type() == QEvent::LayoutRequest) {
        fit_rows();
    } else if (event->type() == QEvent::FocusIn && watched->parent() == fraDSItems) {
        scroll_to(*static_cast<QWidget*>(watched));
    } else if (event->type() == QEvent::Wheel && watched->parent() != this) {
        // The wheel moves the rows: what is chosen in a list that happens to lie below it must not change.
        QCoreApplication::sendEvent(VScroll1, event);
        return true;
    }
    return QGroupBox::eventFilter(watched, event);
}

namespace basISModelUtil {

std::vector<std::string> AddDS(ScenarioRows& rows, QComboBox& cboLCType, const clsISModelProperties& store,
                               const contracts::Map& map) try {
    if (cboLCType.currentIndex() < 0) {
        reporting::current_interaction().message_box(form_texts::no_set_for_scenarios());
        cboLCType.setFocus();
        return {};
    }
    std::vector<std::string> left_out;
    if (rows.count() == 0) {
        left_out = CheckLayers(rows.themes(0), LayerKind::FeatureLayer, map);
        LoadDSToClassCombo(rows.classes(0), store, cboLCType.currentText().toStdString());
    }
    rows.show_next_row();
    return left_out;
} catch (...) {
    return reported<std::vector<std::string>>({"AddDS", kModule});
}

void RemoveDS(ScenarioRows& rows) try {
    if (rows.count() == 0) {
        return;
    }
    const std::string typed = reporting::current_interaction().input_box(form_texts::scenario_to_delete());
    if (typed.empty()) {
        return;
    }
    if (const auto number = scenario_number(typed, rows.count())) {
        rows.take_row_out(*number - 1);
    } else {
        reporting::current_interaction().message_box(form_texts::no_such_scenario());
    }
} catch (...) {
    report_current({"RemoveDS", kModule});
}

}  // namespace basISModelUtil

}  // namespace kestrel

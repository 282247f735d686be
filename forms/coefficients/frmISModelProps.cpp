// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/coefficients/frmISModelProps.h"

#include "coefficients/basISModelPropsUtil.h"
#include "coefficients/basUtil.h"
#include "coefficients/store_texts.h"
#include "forms/coefficients/combo_boxes.h"
#include "forms/coefficients/editor_texts.h"
#include "forms/coefficients/frmAddLCType.h"
#include "reporting/error_report.h"

namespace kestrel {

using reporting::Answer;
using reporting::current_interaction;

namespace {
constexpr const char* kModule = "ISModelProps";
}

void frmISModelProps::setVisible(bool visible) {
    const bool opening = visible && !isVisible();
    if (!opening || Form_Load()) {
        QDialog::setVisible(visible);
    }
}

bool frmISModelProps::Form_Load() try {
    m_props = {};
    mark_saved();
    if (!basUtil::GetISModelProperties(m_props, m_store.path)) {
        current_interaction().message_box(store_texts::load_failed(m_store));
        return false;
    }
    hide_overlay();
    m_position = -1;
    basUtil::LoadLCTypeCombobox(*cboLCType, m_props);
    basISModelPropsUtil::SetLCGridHeaders(*grdLCDef);
    cboLCType->setCurrentIndex(cboLCType->count() > 0 ? 0 : -1);
    show_title();
    grdLCDef->setFocus();
    return true;
} catch (...) {
    return reported<bool>({"Form_Load", kModule});
}

void frmISModelProps::cmdQuit_Click() try {
    if (m_changed) {
        const Answer answer = current_interaction().message_box(editor_texts::save_before_quit());
        if (answer == Answer::cancel || (answer == Answer::yes && !save())) {
            return;
        }
    }
    // Whatever was not saved is given up: the store is loaded anew when the window opens again.
    mark_saved();
    QDialog::reject();
} catch (...) {
    report_current({"cmdQuit_Click", kModule});
}

void frmISModelProps::Form_QueryUnload() try {
    if (!may_proceed(editor_texts::save_before_end())) {
        mark_saved();
    }
} catch (...) {
    report_current({"Form_QueryUnload", kModule});
}

void frmISModelProps::cmdApply_click() try { save(); } catch (...) {
    report_current({"cmdApply_click", kModule});
}

void frmISModelProps::cmdNew_Click() try {
    if (!may_proceed(editor_texts::save_before_new())) {
        return;
    }
    const int sets = cboLCType->count();
    frmAddLCType(m_props, *cboLCType, *grdLCDef, this).exec();
    if (cboLCType->count() > sets) {
        // The new set reaches the store with the next Apply only.
        cboLCType->setFocus();
        enable_apply(true);
    }
} catch (...) {
    report_current({"cmdNew_Click", kModule});
}

void frmISModelProps::cmdImport_Click() try {
    if (!may_proceed(editor_texts::save_before_import())) {
        return;
    }
    if (const auto path = current_interaction().file_dialog(editor_texts::import_file())) {
        basISModelPropsUtil::ImportCoeffsFromFile(m_props, *path, m_store,
                                                  [this](const std::string& name) { add_to_list(name); });
    }
} catch (...) {
    report_current({"cmdImport_Click", kModule});
}

void frmISModelProps::cmdExport_Click() try {
    if (!may_proceed(editor_texts::save_before_export())) {
        return;
    }
    if (const auto path = current_interaction().file_dialog(editor_texts::export_file())) {
        basISModelPropsUtil::ExportCoeffsToFile(m_props, cboLCType->currentText().toStdString(), *path);
    }
} catch (...) {
    report_current({"cmdExport_Click", kModule});
}

void frmISModelProps::cmdMerge_Click() try {
    if (!may_proceed(editor_texts::save_before_merge())) {
        return;
    }
    if (const auto path = current_interaction().file_dialog(editor_texts::merge_file())) {
        basISModelPropsUtil::MergeCoeffsFromFile(m_props, *path, m_store,
                                                 [this](const std::string& name) { add_to_list(name); });
    }
} catch (...) {
    report_current({"cmdMerge_Click", kModule});
}

void frmISModelProps::cmdHelp_Click() try { current_interaction().show_help(); } catch (...) {
    report_current({"cmdHelp_Click", kModule});
}

void frmISModelProps::cboLCType_Click(int position) try {
    // Also what keeps putting the selection back from asking again.
    if (position == m_position || position < 0) {
        return;
    }
    const QString left = cboLCType->itemText(m_position);
    if (may_proceed(editor_texts::save_before_other_set(left.toStdString()))) {
        show_set(position);
    } else {
        cboLCType->setCurrentIndex(m_position);
    }
} catch (...) {
    report_current({"cboLCType_Click", kModule});
}

void frmISModelProps::show_set(int position) {
    hide_overlay();
    basISModelPropsUtil::LoadLCGrid(*grdLCDef, cboLCType->itemText(position), m_props);
    m_position = position;
    mark_saved();
    show_title();
}

bool frmISModelProps::save() {
    hide_overlay();
    const std::string shown = cboLCType->itemText(m_position).toStdString();
    basISModelPropsUtil::GridContents grid = grdLCDef->contents();
    const bool taken = basISModelPropsUtil::SaveModelPropUpdates(grid, shown, m_props);
    if (static_cast<int>(grid.rows.size()) != grdLCDef->rows()) {
        grdLCDef->set_contents(grid);
    }
    if (!taken) {
        return false;  // reported; the store is not written
    }
    if (!basUtil::PutISModelProperties(m_props, m_store)) {
        current_interaction().message_box(store_texts::save_failed(m_store));
        return false;
    }
    cboLCType->setFocus();
    mark_saved();
    return true;
}

bool frmISModelProps::may_proceed(const reporting::MessageBox& question) {
    return !m_changed || (current_interaction().message_box(question) == Answer::yes && save());
}

void frmISModelProps::mark_changed() {
    m_changed = true;
    enable_apply(true);
}

void frmISModelProps::mark_saved() {
    m_changed = false;
    enable_apply(false);
}

void frmISModelProps::enable_apply(bool enable) {
    cmdApply->setEnabled(enable);
    setWindowModified(enable);
}

void frmISModelProps::show_title() {
    const bool any = m_position >= 0;
    const QString name = cboLCType->itemText(m_position).replace("[*]", "[*][*]");
    setWindowTitle(any ? QStringLiteral("Coefficient Set - %1[*]").arg(name) : QStringLiteral("Coefficient Sets[*]"));
    // Without a set there is nothing that rows could belong to.
    grdLCDef->setEnabled(any);
    CmdExport->setEnabled(any);
}

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/analysis/frmISParams.h"

#include <QButtonGroup>
#include <QPointer>
#include <QSignalBlocker>

#include "base/errors.h"
#include "base/files.h"
#include "coefficients/basUtil.h"
#include "forms/analysis/form_texts.h"
#include "forms/analysis/parameter_controls.h"
#include "forms/coefficients/combo_boxes.h"
#include "parameters/basISModelUtil.h"
#include "reporting/error_report.h"

namespace kestrel {

using basISModelUtil::CheckLayers;
using basISModelUtil::LayerKind;
using reporting::current_interaction;

namespace {
constexpr const char* kModule = "ISParams";
}

frmISParams::~frmISParams() {
    if (m_map != nullptr) {
        m_map->remove_listener(*this);
    }
}

void frmISParams::setVisible(bool visible) {
    const bool opening = visible && m_map == nullptr;
    if (!opening || Form_Load()) {
        QDialog::setVisible(visible);
    }
}

contracts::Map& frmISParams::map() const {
    if (m_app == nullptr) {
        throw base::RuntimeError(base::kObjectVariableNotSet, "Object variable not set");
    }
    return m_app->document().focus_map();
}

bool frmISParams::Form_Load() try {
    contracts::Map& focus_map = map();
    empty_controls();
    if (!basUtil::GetISModelProperties(m_props, base::join_path(m_extension_folder, "etc/isprops.xml"))) {
        current_interaction().message_box(form_texts::store_not_loaded(m_extension_folder));
        return false;
    }
    fill_layer_lists();
    basUtil::LoadLCTypeCombobox(*cboLCType, m_props);
    cboLCType->setCurrentIndex(cboLCType->count() > 0 ? 0 : -1);
    cboLCUnits->addItems({"Meters", "Feet"});
    basISModelUtil::SetDefaultLCUnits(*cboLCUnits, focus_map);
    focus_map.add_listener(*this);
    m_map = &focus_map;
    cboLCTheme->setFocus();
    return true;
} catch (...) {
    return reported<bool>({"Form_Load", kModule});
}

/// As if the form had just been made.
void frmISParams::empty_controls() {
    m_props = {};
    m_told.clear();
    fraDSMain->clear();
    for (QComboBox* list : {cboLCTheme, cboLCUnits, cboAnalysisTheme, cboAnalysisUnit, cboLCType}) {
        list->clear();
    }
    m_options->setExclusive(false);
    for (QRadioButton* option : optPopDensity) {
        option->setChecked(false);
    }
    m_options->setExclusive(true);
    txtOutputTheme->clear();
    txtThemeName->clear();
    m_output_folder.clear();
    m_output_file.clear();
    m_output_pending = false;
    m_land_cover_position = m_analysis_position = m_field_position = -1;
}

void frmISParams::Form_Unload() {
    if (m_map != nullptr) {
        m_map->remove_listener(*this);
        m_map = nullptr;
    }
    m_density.reset();
    m_output_pending = false;
}

void frmISParams::fill_layer_lists() {
    tell_once(CheckLayers(*cboLCTheme, LayerKind::RasterLayer, map()));
    tell_once(CheckLayers(*cboAnalysisTheme, LayerKind::FeatureLayer, map()));
    cboAnalysisTheme_Click();
    // What is chosen in the scenarios stays, as far as the map still has it.
    for (int row = 0; row < fraDSMain->count(); ++row) {
        basISModelUtil::copy_items(*cboAnalysisTheme, fraDSMain->themes(row));
    }
}

void frmISParams::refresh_lists(const char* event) try {
    if (m_running) {
        m_refresh_due = true;  // files of the map may be out of the way now
        return;
    }
    fill_layer_lists();
} catch (...) {
    report_current({event, kModule});
}

void frmISParams::tell_once(const std::vector<std::string>& sentences) {
    for (const std::string& sentence : sentences) {
        if (m_told.insert(sentence).second) {
            current_interaction().notice(sentence);
        }
    }
}

void frmISParams::cboAnalysisTheme_Click() try {
    const auto layer = basISModelUtil::selected_features(*cboAnalysisTheme, map());
    basISModelUtil::LoadFldsCombobox(layer.get(), *cboAnalysisUnit, basISModelUtil::kAnalysisFields);
} catch (...) {
    report_current({"cboAnalysisTheme_Click", kModule});
}

/// The classes that scenarios change to are those of the set: one that the new set lacks is chosen no more.
void frmISParams::cboLCType_Click() try {
    if (fraDSMain->count() == 0) {
        return;
    }
    QComboBox classes;
    basISModelUtil::LoadDSToClassCombo(classes, m_props, cboLCType->currentText().toStdString());
    for (int row = 0; row < fraDSMain->count(); ++row) {
        basISModelUtil::copy_items(classes, fraDSMain->classes(row), true);
    }
} catch (...) {
    report_current({"cboLCType_Click", kModule});
}

void frmISParams::optPopDensity_MouseUp(int index) try {
    leave_output_box();
    if (static_cast<CoefficientOption>(index) == CoefficientOption::by_density) {
        show_density_dialog();
    }
} catch (...) {
    report_current({"optPopDensity_MouseUp", kModule});
}

void frmISParams::show_density_dialog() {
    const QPointer<frmISParams> alive(this);
    const bool cancelled = density().exec() == QDialog::Rejected;
    if (alive && cancelled) {
        m_density.reset();
    }
}

frmISPDensity& frmISParams::density() {
    if (!m_density) {
        m_density = std::make_unique<frmISPDensity>(this);
        m_density->Application(m_app);
        m_density->Form_Load();
    }
    return *m_density;
}

std::optional<CoefficientOption> frmISParams::coefficient_option() const {
    const int button = m_options->checkedId();
    return button < 0 ? std::nullopt : std::optional(static_cast<CoefficientOption>(button));
}

void frmISParams::cmdDSAdd_Click() try {
    leave_output_box();
    tell_once(basISModelUtil::AddDS(*fraDSMain, *cboLCType, m_props, map()));
} catch (...) {
    report_current({"cmdDSAdd_Click", kModule});
}

void frmISParams::cmdDSDelete_Click() try {
    leave_output_box();
    basISModelUtil::RemoveDS(*fraDSMain);
} catch (...) {
    report_current({"cmdDSDelete_Click", kModule});
}

void frmISParams::cmdISQuit_Click() try {
    if (m_running) {
        return;
    }
    Form_Unload();
    QDialog::reject();
} catch (...) {
    report_current({"cmdISQuit_Click", kModule});
}

void frmISParams::cmdISHelp_Click() try { current_interaction().show_help(); } catch (...) {
    report_current({"cmdISHelp_Click", kModule});
}

}  // namespace kestrel

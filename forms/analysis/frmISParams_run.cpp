// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QButtonGroup>
#include <memory>
#include <optional>
#include <utility>

#include "base/files.h"
#include "engine/basUtil.h"
#include "forms/analysis/form_texts.h"
#include "forms/analysis/frmISParams.h"
#include "parameters/basISModelUtil.h"
#include "reporting/error_report.h"

/// \file
/// The parameter form's run: what is checked first, what is written, and what stands when the run has ended.
namespace kestrel {

using reporting::current_interaction;

namespace {

constexpr const char* kModule = "ISParams";

/// The file that the run would read a layer of this name from; empty when it is in none.
std::string file_of(const std::string& layer_name, const contracts::Map& map) {
    const auto layer = basUtil::FindLayer(layer_name, map);
    if (const auto* raster = dynamic_cast<const contracts::RasterLayer*>(layer.get())) {
        return raster->source();
    }
    const auto* features = dynamic_cast<const contracts::FeatureLayer*>(layer.get());
    return features != nullptr ? features->source().file() : std::string();
}

/// Names of the layers that a run with these choices reads.
std::vector<std::string> layers_read(const ModelParameters& choices) {
    std::vector<std::string> names{choices.land_cover_layer, choices.analysis_layer};
    if (choices.coefficient_option == CoefficientOption::by_density) {
        names.push_back(choices.density_layer);
    }
    for (const ScenarioChoice& scenario : choices.scenarios) {
        names.push_back(scenario.layer);
    }
    return names;
}

}  // namespace

/// The time in which a run is under way.
class frmISParams::Running {
  public:
    explicit Running(frmISParams& form) : m_form(&form) { form.begin_run(); }
    ~Running() {
        if (m_form) {
            m_form->end_run();
        }
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

  private:
    QPointer<frmISParams> m_form;
};

void frmISParams::cmdISRun_Click() try {
    if (m_running) {
        return;
    }
    leave_output_box();
    if (txtOutputTheme->text().isEmpty()) {
        current_interaction().message_box(form_texts::no_output_name());
        txtOutputTheme->setFocus();
        return;
    }
    if (basISModelUtil::SetThemeName(m_output_file).empty()) {
        current_interaction().message_box(form_texts::no_shapefile_name());
        txtOutputTheme->setFocus();
        return;
    }
    const QPointer<frmISParams> alive(this);
    if (ValidateForm(fraDSMain->highest())) {
        run();
    }
    if (alive) {
        RefreshForm();
    }
} catch (...) {
    report_current({"cmdISRun_Click", kModule});
}

void frmISParams::run() {
    running::RunOrder order = this->order();
    const QPointer<frmISParams> alive(this);
    std::optional<Running> running;
    std::unique_ptr<reporting::WaitingWindow> waiting;
    order.begins = [&] {
        tell_once(basISModelUtil::shared_names(layers_read(order.parameters), map()));
        running.emplace(*this);
        waiting = current_interaction().waiting_window(form_texts::kWaiting);
        return !alive.isNull();
    };
    // From here on nothing of the form may be needed: it may be destroyed meanwhile.
    const running::RunEnding ending = running::carry_out_run(*m_app, std::string(m_extension_folder), order);
    if (ending.refusal) {
        tell(*ending.refusal);
    }
}

running::RunOrder frmISParams::order() {
    const RunOutput place = output();
    const ModelParameters chosen = choices();
    std::vector<std::string> inputs{base::join_path(m_extension_folder, "etc/isprops.xml")};
    for (const std::string& name : layers_read(chosen)) {
        inputs.push_back(file_of(name, map()));
    }
    return {.parameters = chosen,
            .output = place,
            .store = m_props,
            .set_name = cboLCType->currentText().toStdString(),
            .inputs = std::move(inputs),
            .replacing = running::Replacing::allowed};
}

void frmISParams::tell(const running::RunRefusal& refusal) {
    if (refusal.cause == running::RunRefusal::Cause::extension_folder) {
        current_interaction().message_box(form_texts::folder_refused(refusal.reason));
        return;
    }
    const bool stopped = refusal.cause != running::RunRefusal::Cause::output_name;
    current_interaction().message_box(form_texts::output_refused(refusal.reason + (stopped ? "" : ".")));
    txtOutputTheme->setFocus();
}

RunOutput frmISParams::output() {
    if (txtThemeName->text().trimmed().isEmpty()) {
        txtThemeName->setText(QString::fromStdString(basISModelUtil::SetThemeName(m_output_file)));
    }
    const std::string folder = base::folder_of(m_output_folder);
    // A name that ends in "shp" without a point is taken as it is, but a shapefile is not without one.
    const bool whole = basISModelUtil::SetThemeName(m_output_file) != m_output_file;
    return {folder, m_output_file + (whole ? "" : ".shp"), txtThemeName->text().toStdString()};
}

ModelParameters frmISParams::choices() {
    ModelParameters chosen;
    chosen.land_cover_layer = cboLCTheme->currentText().toStdString();
    chosen.land_cover_units = cboLCUnits->currentText().toStdString();
    chosen.analysis_layer = cboAnalysisTheme->currentText().toStdString();
    chosen.analysis_field = cboAnalysisUnit->currentText().toStdString();
    chosen.coefficient_option = coefficient_option();
    if (chosen.coefficient_option == CoefficientOption::by_density) {
        density().write_into(chosen);
    }
    chosen.output_path = txtOutputTheme->text().toStdString();
    chosen.layer_name = txtThemeName->text().toStdString();
    chosen.scenarios = fraDSMain->choices();
    return chosen;
}

void frmISParams::begin_run() {
    m_running = true;
    m_focus_before_run = focusWidget();
    m_contents->setEnabled(false);
    setCursor(Qt::WaitCursor);
}

void frmISParams::end_run() {
    setCursor(Qt::ArrowCursor);
    m_contents->setEnabled(true);
    if (m_focus_before_run) {
        m_focus_before_run->setFocus();
    }
    m_running = false;
    if (std::exchange(m_refresh_due, false) && m_map != nullptr) {
        refresh_lists("cmdISRun_Click");
    }
}

bool frmISParams::ValidateForm(std::int16_t highest_row) try {
    const auto refusal = first_refusal(state(highest_row));
    if (!refusal) {
        return true;
    }
    control_of(refusal->control)->setFocus();
    current_interaction().message_box(refusal->box);
    return false;
} catch (...) {
    return reported<bool>({"ValidateForm", "basISModelUtil"});
}

FormState frmISParams::state(std::int16_t highest_row) {
    FormState state{.analysis_layer_chosen = cboAnalysisTheme->currentIndex() >= 0,
                    .land_cover_chosen = cboLCTheme->currentIndex() >= 0,
                    .units_chosen = cboLCUnits->currentIndex() >= 0,
                    .set_chosen = cboLCType->currentIndex() >= 0,
                    .analysis_field_chosen = cboAnalysisUnit->currentIndex() >= 0,
                    .coefficient_option = coefficient_option(),
                    .output = txtOutputTheme->text().toStdString(),
                    .highest_row = highest_row,
                    .scenarios = fraDSMain->states()};
    if (state.coefficient_option == CoefficientOption::by_density) {
        state.density = density().state();
    }
    return state;
}

QWidget* frmISParams::control_of(FormControl control) {
    switch (control) {
        case FormControl::cboAnalysisTheme:
            return cboAnalysisTheme;
        case FormControl::cboLCTheme:
            return cboLCTheme;
        case FormControl::cboLCUnits:
            return cboLCUnits;
        case FormControl::cboLCType:
            return cboLCType;
        case FormControl::cboAnalysisUnit:
            return cboAnalysisUnit;
        case FormControl::optPopDensity:
            return optPopDensity.front();
        case FormControl::density:
            return optPopDensity[static_cast<std::size_t>(CoefficientOption::by_density)];
        case FormControl::cboDSTheme:
            return &fraDSMain->themes(0);
        case FormControl::cboDSToClass:
            return &fraDSMain->classes(0);
        case FormControl::txtOutputTheme:
            break;
    }
    return txtOutputTheme;
}

}  // namespace kestrel

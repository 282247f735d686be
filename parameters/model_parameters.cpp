// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "parameters/model_parameters.h"

#include "base/conversions.h"
#include "base/files.h"
#include "coefficients/clsISLCDef.h"
#include "coefficients/clsISLCDefs.h"
#include "coefficients/clsISModelProperties.h"
#include "coefficients/clsLCClass.h"
#include "coefficients/clsLCClasses.h"
#include "parameters/parameter_file_texts.h"
#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel {

namespace {

using base::text_of;
using base::TextWriter;

/// How the file names a coefficient option; "4" when none was chosen.
std::string name_in_file(std::optional<CoefficientOption> option) {
    if (!option) {
        return "4";
    }
    switch (*option) {
        case CoefficientOption::high:
            return "0";
        case CoefficientOption::medium:
            return "1";
        case CoefficientOption::low:
            return "2";
        case CoefficientOption::by_density:
            break;
    }
    return "3";
}

void write_density(TextWriter& file, const ModelParameters& choices) {
    file.write_line("POPDENSITY#" + name_in_file(choices.coefficient_option));
    if (choices.coefficient_option != CoefficientOption::by_density) {
        return;
    }
    file.write_line("POPDENSITYTHEME#" + choices.density_layer);
    file.write_line("POPDENSITYFLD#" + choices.density_field);
    file.write_line("POPDENSITYHIGH#" + choices.density_high);
    file.write_line("POPDENSITYMED#" + choices.density_medium[0] + "#" + choices.density_medium[1]);
    file.write_line("POPDENSITYLOW#" + choices.density_low);
}

void write_settings(TextWriter& file, const ModelParameters& choices, const std::string& view_name) {
    file.write_line("VIEW#" + view_name);
    file.write_line("LCTHEME#" + choices.land_cover_layer);
    file.write_line("LCUNITS#" + choices.land_cover_units);
    file.write_line("ANALYSISTHEME#" + choices.analysis_layer);
    file.write_line("ANALYSISUNIT#" + choices.analysis_field);
    write_density(file, choices);
    file.write_line("OUTTHEME#" + choices.output_path);
    file.write_line("OUTTHEMENAME#" + choices.layer_name);
}

void write_scenarios(TextWriter& file, const std::vector<ScenarioChoice>& scenarios) {
    for (const ScenarioChoice& scenario : scenarios) {
        file.write_line("DS#" + text_of(scenario.number) + "#" + scenario.layer + "#" + scenario.class_name + "#" +
                        scenario.class_code);
    }
}

void write_classes(TextWriter& file, const clsISModelProperties& store, const std::string& set_name) {
    // Sets that share the name are all written. Intended; do not stop at the first.
    for (const auto& set : store.ISLCDefs) {
        if (set->LCType != set_name) {
            continue;
        }
        for (const auto& land_class : set->LCClasses) {
            file.write_line("CLASS#" + text_of(land_class->ID) + "#" + land_class->LCName + "#" +
                            text_of(land_class->LCHigh) + "#" + text_of(land_class->LCMed) + "#" +
                            text_of(land_class->LCLow));
        }
    }
}

}  // namespace

bool write_model_parameters(const std::string& folder, const std::string& file_name, const ModelParameters& choices,
                            const clsISModelProperties& store, const std::string& set_name,
                            const std::string& view_name) try {
    if (!base::folder_exists(folder)) {
        reporting::current_interaction().message_box(parameter_file_texts::missing_folder(folder));
        return false;
    }
    TextWriter file(folder + "/" + file_name);
    write_settings(file, choices, view_name);
    write_scenarios(file, choices.scenarios);
    write_classes(file, store, set_name);
    file.close();
    return true;
} catch (...) {
    return reported<bool>({"WriteParamsToFile", "basISModelUtil"});
}

}  // namespace kestrel

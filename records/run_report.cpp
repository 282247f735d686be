// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "records/run_report.h"

#include "base/files.h"

namespace kestrel {

namespace {

using base::TextWriter;

void write_layers(TextWriter& file, const RunRecord& record) {
    file.write_line("Impervious surface analysis run: " + record.time.long_form());
    file.write_line("");
    file.write_line("  Output Layer Name: " + record.output_layer);
    file.write_line("");
    file.write_line("  Land Cover Layer: " + record.land_cover_layer);
    file.write_line("  Land Cover Grid Units: " + record.land_cover_units);
    file.write_line("");
    file.write_line("  Analysis Layer: " + record.analysis_layer);
    file.write_line("  Analysis Field: " + record.analysis_field);
    file.write_line("");
}

void write_coefficient_option(TextWriter& file, const RunRecord& record) {
    file.write_line("  Coefficient Option");
    if (record.coefficient_option == CoefficientOption::high) {
        file.write_line("  High population coefficient applied to all analysis");
    } else if (record.coefficient_option == CoefficientOption::medium) {
        file.write_line("  Medium population coefficient applied to all analysis");
    } else if (record.coefficient_option == CoefficientOption::low) {
        file.write_line("  Low population coefficient applied to all analysis");
    } else {
        // One sentence on two lines, the first ending in a blank.
        file.write_line("  Population coefficient was identified using the value of the ");
        file.write_line(" " + record.density_field + " field within the " + record.density_layer + " theme.");
        file.write_line("    High >= " + record.density_high);
        file.write_line("    Medium between " + record.density_high + " and " + record.density_low);
        file.write_line("    Low <= " + record.density_low);
    }
    file.write_line("");
}

void write_coefficients(TextWriter& file, const RunRecord& record) {
    file.write_line("  Coefficients:(Value,ClassName,High,Medium,Low)");
    for (const ClassRecord& land_class : record.classes) {
        file.write_line("      " + coefficient_line(land_class));
    }
}

void write_scenarios(TextWriter& file, const RunRecord& record) {
    if (record.scenarios.empty()) {
        return;
    }
    file.write_line("");
    file.write_line(" Change Scenarios");
    for (const ScenarioRecord& scenario : record.scenarios) {
        file.write_line("  Changed land cover classes within " + scenario.layer + " layer to " + scenario.class_name);
    }
}

}  // namespace

void write_run_report(const std::string& path, const RunRecord& record) {
    TextWriter file(path);
    write_layers(file, record);
    write_coefficient_option(file, record);
    write_coefficients(file, record);
    write_scenarios(file, record);
    file.close();
}

}  // namespace kestrel

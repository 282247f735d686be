// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/run_records.h"

namespace kestrel {

RunRecord record_of(const ModelRun& run, const base::LocalTime& time) {
    RunRecord record{.time = time,
                     .output_layer = run.out_theme_name,
                     .land_cover_layer = run.land_cover_theme,
                     .land_cover_units = run.units,
                     .analysis_layer = run.analysis_theme,
                     .analysis_field = run.analysis_field,
                     .coefficient_option = run.option,
                     .density_layer = run.density_theme,
                     .density_field = run.density_field,
                     .density_high = run.density_high,
                     .density_low = run.density_low,
                     .classes = {},
                     .scenarios = {}};
    for (const auto& [code, entry] : *run.classes) {
        record.classes.push_back({code, entry.Item(1), entry.Item(2), entry.Item(3), entry.Item(4)});
    }
    for (const auto& [number, entry] : *run.scenario_choices) {
        record.scenarios.push_back({entry.Item(1), entry.Item(2)});
    }
    return record;
}

OutputRecord output_record_of(const ModelRun& run) {
    OutputRecord record{.extent = run.output.polygons.envelope(),
                        .decimal_degrees = run.map().distance_units() == contracts::kDecimalDegrees,
                        .field_names = run.output.field_names(),
                        .analysis_values = {}};
    record.analysis_values.reserve(run.groups.count());
    for (std::size_t i = 0; i < run.groups.count(); ++i) {
        record.analysis_values.push_back(run.groups.text(i));
    }
    return record;
}

}  // namespace kestrel

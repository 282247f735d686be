// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "records/run_record.h"

namespace kestrel::test {

/// The run of the fixtures in tests/fixtures/records, without scenarios.
inline RunRecord sample_run(std::optional<CoefficientOption> coefficient_option) {
    RunRecord run;
    run.time = {.year = 2003, .month = 11, .day = 6, .hour = 14, .minute = 15, .second = 7};
    run.output_layer = "is_out1";
    run.land_cover_layer = "lc2000";
    run.land_cover_units = "Meters";
    run.analysis_layer = "subwatersheds";
    run.analysis_field = "SHED_ID";
    run.coefficient_option = coefficient_option;
    if (run.coefficient_option == CoefficientOption::by_density) {
        run.density_layer = "blockgroups";
        run.density_field = "POPDEN";
        run.density_high = "1000";
        run.density_low = "200.5";
    }
    run.classes = {{"2", "High Intensity Developed", "90", "85", "80"},
                   {"5", "Grassland", "2", "1.5", "1"},
                   {"11", "Water, open", "0", "0", "0"}};
    return run;
}

inline std::vector<ScenarioRecord> sample_scenarios() {
    return {{"newmall", "High Intensity Developed"}, {"new_park", "Grassland"}};
}

}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/clock.h"
#include "coefficients/coefficient_option.h"

namespace kestrel {

/// A land-cover class with its coefficients, as the run read them.
struct ClassRecord {
    std::string code;
    std::string name;
    std::string high;
    std::string medium;
    std::string low;
};

/// A development scenario: inside the polygons of `layer` the land cover counted as the class `class_name`.
struct ScenarioRecord {
    std::string layer;
    std::string class_name;
};

/// What a run was done with. Every value is the text that the run held and is written as it is; layers and fields
/// carry the names that the user chose.
struct RunRecord {
    /// Taken once; run report and metadata share it.
    base::LocalTime time;
    std::string output_layer;
    std::string land_cover_layer;
    std::string land_cover_units;
    std::string analysis_layer;
    std::string analysis_field;
    /// Nothing is described as by density.
    std::optional<CoefficientOption> coefficient_option;
    std::string density_layer;
    std::string density_field;
    std::string density_high;
    std::string density_low;
    std::vector<ClassRecord> classes;
    std::vector<ScenarioRecord> scenarios;
};

/// The line of a class in a table of coefficients: "code,name,high,medium,low". A comma in the name is written as it
/// is.
inline std::string coefficient_line(const ClassRecord& record) {
    return record.code + "," + record.name + "," + record.high + "," + record.medium + "," + record.low;
}

}  // namespace kestrel

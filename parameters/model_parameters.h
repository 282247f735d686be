// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "coefficients/coefficient_option.h"

namespace kestrel {

class clsISModelProperties;

/// Inside the polygons of `layer` the land cover is to count as another class.
struct ScenarioChoice {
    /// The row's own number, from 1; rows that are not applied leave gaps.
    std::int32_t number = 0;
    std::string layer;
    std::string class_name;
    std::string class_code;
};

/// What was chosen for a run, as the model parameter file hands it on. Texts are written as they are: one that holds
/// "#" is cut there by the reader.
struct ModelParameters {
    std::string land_cover_layer;
    /// "Meters" or "Feet"
    std::string land_cover_units;
    std::string analysis_layer;
    std::string analysis_field;

    /// Nothing when none was chosen.
    std::optional<CoefficientOption> coefficient_option{};
    // With CoefficientOption::by_density only; the bounds as they were typed.
    std::string density_layer;
    std::string density_field;
    std::string density_high;
    std::array<std::string, 2> density_medium;
    std::string density_low;

    std::string output_path;
    std::string layer_name;
    /// The applied ones, in order.
    std::vector<ScenarioChoice> scenarios;
};

/// Writes the model parameter file, replacing an earlier one.
///
/// This is the only writer of its lines, for the parameter form and the command alike; errors are reported for
/// `WriteParamsToFile` here.
///
/// \param folder the working folder; when it is missing this is told in a box and nothing is written.
/// \param store the classes of every set in it that is named exactly `set_name` are written.
/// \return whether the file was written.
bool write_model_parameters(const std::string& folder, const std::string& file_name, const ModelParameters& choices,
                            const clsISModelProperties& store, const std::string& set_name,
                            const std::string& view_name);

}  // namespace kestrel

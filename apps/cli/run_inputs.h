// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "apps/cli/run_request.h"
#include "coefficients/clsISModelProperties.h"
#include "contracts/map.h"
#include "hosting/run_layers.h"
#include "parameters/model_parameters.h"

namespace kestrel::cli {

/// The inputs of a run, opened, checked and named.
struct RunInputs {
    hosting::RunLayers layers;
    contracts::DistanceUnits distance_units = contracts::kUnknownUnits;
    clsISModelProperties store;
    std::string set_name;
    /// Everything but the output.
    ModelParameters parameters;
};

/// Looks at everything that can be wrong with the inputs before anything is written, in the order of the options.
/// \param store_path the coefficient store.
/// \throws RuntimeError with a message that names the option and says what to do.
RunInputs checked_inputs(const RunRequest& request, const std::string& store_path);

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "coefficients/coefficient_option.h"

namespace kestrel::cli {

struct ScenarioRequest {
    std::string source;
    std::int32_t code = 0;
};

/// What the command line of `kestrel run` asks for, as given.
struct RunRequest {
    std::string land_cover{};
    /// "Meters" or "Feet"; empty for the raster's own.
    std::string units{};
    std::string zones{};
    std::string field{};
    std::string where{};
    std::string store{};
    std::string set{};
    CoefficientOption option = CoefficientOption::high;
    std::string density_layer{};
    std::string density_field{};
    std::string density_high{};
    std::string density_low{};
    std::vector<ScenarioRequest> scenarios{};
    std::string output{};
    std::string layer_name{};
    bool overwrite = false;
    bool yes = false;
    bool quiet = false;
    bool json = false;
    bool keep_temp = false;
    bool allow_degrees = false;
    int threads = 0;
    std::string extension_folder{};

    bool by_density() const { return option == CoefficientOption::by_density; }
};

/// "SRC:CODE", cut at the last colon.
/// \throws std::invalid_argument with the reason when there is no source, or no class code.
ScenarioRequest parse_scenario(const std::string& text);

}  // namespace kestrel::cli

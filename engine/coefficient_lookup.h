// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "coefficients/coefficient_option.h"
#include "parameters/clsReadParams.h"

namespace kestrel {

/// Finds the impervious coefficient of a class in a zone: the one that the run's option names, or by density
/// the one of the density class that the zone's key ends in.
class CoefficientLookup {
  public:
    /// What stands for a class without a coefficient.
    static constexpr double kNoCoefficient = -9999;

    /// \param option nothing: no coefficient is found.
    /// \param classes outlives the lookup.
    CoefficientLookup(std::optional<CoefficientOption> option, const LandClassDictionary& classes)
        : m_option(option), m_classes(classes) {}

    /// The coefficient in percent; kNoCoefficient whenever it cannot be found: no such class, no such position, no
    /// number there.
    double coefficient(const std::string& class_code, std::string_view zone_key) const;

  private:
    /// Where the coefficient stands in a class's entry, behind its name.
    std::int32_t position(std::string_view zone_key) const;
    double look_up(const std::string& class_code, std::string_view zone_key) const;

    std::optional<CoefficientOption> m_option;
    const LandClassDictionary& m_classes;
};

}  // namespace kestrel

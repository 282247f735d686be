// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "parameters/clsReadParams.h"

namespace kestrel {

/// Finds the impervious coefficient of a class in a zone: the one that the run's option names, or under option "3" the
/// one of the density class that the zone's key ends in.
class CoefficientLookup {
  public:
    /// What stands for a class without a coefficient.
    static constexpr double kNoCoefficient = -9999;

    /// \param option "0" High, "1" Medium, "2" Low for every zone, "3" by the zone's density class.
    /// \param classes outlives the lookup.
    CoefficientLookup(std::string option, const LandClassDictionary& classes)
        : m_option(std::move(option)), m_classes(classes) {}

    /// The coefficient in percent; kNoCoefficient whenever it cannot be found: no such class, no such position, no
    /// number there.
    double coefficient(const std::string& class_code, std::string_view zone_key) const;

  private:
    double look_up(const std::string& class_code, std::string_view zone_key) const;

    std::string m_option;
    const LandClassDictionary& m_classes;
};

}  // namespace kestrel

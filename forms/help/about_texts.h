// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// \file
/// The texts of the about box.
namespace kestrel::about_texts {

/// A number is written plainly, without grouping.
inline std::string version(int major, int minor, int revision) {
    return "Version " + std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(revision);
}

inline constexpr const char* kDescription =
    "The Kestrel uses a land cover grid to estimate the impervious surface area for polygon features within a shapefile based on coefficients of imperviousness for each land cover type."
    "\n\n"
    "It was developed by the Marlin Institute in partnership with a programme that educates municipal officials about land use.";

inline std::string disclaimer(const std::string& e_mail) {
    return "The results are estimates. They are no better than the land cover and the coefficients that they are made from, and are given without warranty of any kind. Please check them against what you know of the place before you base a decision on them."
           "\n\n"
           "Questions or comments? Write to the Marlin Institute: " +
           e_mail;
}

}  // namespace kestrel::about_texts

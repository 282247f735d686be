// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "coefficients/clsISModelProperties.h"
#include "data/spatial_reference.h"

/// \file
/// What a host without the parameter form chooses for its user.
namespace kestrel::hosting {

/// "Meters" or "Feet" for a land cover in those units; empty for any other.
std::string units_of(const data::SpatialReference& reference);

/// The name that the set gives a class; the code for one that it does not know, which the engine refuses itself.
std::string class_name(const clsISModelProperties& store, const std::string& set_name, std::int32_t code);

}  // namespace kestrel::hosting

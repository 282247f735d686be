// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "data/field.h"
#include "polygons/polygons.h"

namespace kestrel::data {

/// Polygons with the attributes that were asked for: position i of every member belongs to feature i.
struct PolygonFeatures {
    std::vector<std::int64_t> ids;
    polygons::PolygonSet polygons;
    /// One column of values for each field asked for, in that order.
    std::vector<std::vector<Value>> columns;
};

}  // namespace kestrel::data

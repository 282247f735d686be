// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "polygons/polygons.h"

namespace kestrel::polygons {

/// Whether a feature is certainly a valid polygon: one ring that neither crosses nor touches itself.
///
/// A quick check that spares most polygons the full one. False says nothing: the feature may have holes or several
/// parts, or edges so close that rounding leaves doubt.
bool certainly_valid(const PolygonSet& polygons, std::size_t feature);

}  // namespace kestrel::polygons

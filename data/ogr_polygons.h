// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>

#include "polygons/polygons.h"

class OGRGeometry;

/// \file
/// Private to this room: polygons between OGR and PolygonSet.
namespace kestrel::data {

enum class AppendResult { appended, no_polygon, not_finite };

/// Appends the polygons of `geometry` as a new feature: of a collection its polygons, of curves their line strings; an
/// empty or missing geometry gives a feature without polygons. Open rings are closed; rings of fewer than four points
/// are left out, with a shell its holes.
/// \return whether it was appended; otherwise the set is of no use.
AppendResult append_feature(polygons::PolygonSet& set, const OGRGeometry* geometry);

/// Feature `feature` of `set` as a polygon or multipolygon; nothing for one without polygons.
std::unique_ptr<OGRGeometry> geometry_of(const polygons::PolygonSet& set, std::size_t feature);

}  // namespace kestrel::data

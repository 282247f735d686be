// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "base/progress.h"
#include "polygons/dissolved_polygons.h"
#include "polygons/polygons.h"

namespace kestrel::polygons {

/// Joins the polygons of each group into one feature. Polygons that share their borders exactly are joined by dropping
/// the shared edges, others by cutting their edges where they meet; where that gives no valid feature, GEOS unites
/// them.
/// \param polygons valid polygons (see repair()).
/// \param group_of for each feature of `polygons`, the group it belongs to, below `group_count`.
/// \return one feature for each group, valid; without polygons for a group that has only empty geometries.
/// \throws RuntimeError (library failure) when a group cannot be joined.
/// \param threads that may be used; 0 for as many as there are cores. The result does not depend on it.
/// When `progress` answers stop, the result is incomplete and must not be used.
DissolvedPolygons dissolve(const SharedPolygons& polygons, std::span<const std::uint32_t> group_of,
                           std::size_t group_count, base::Progress& progress, int threads = 0);

}  // namespace kestrel::polygons

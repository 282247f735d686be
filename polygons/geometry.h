// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "base/progress.h"
#include "polygons/dissolved_polygons.h"
#include "polygons/polygons.h"

/// \file
/// Operations on whole polygons. All coordinates are in the units of the layers, which must agree.
namespace kestrel::polygons {

/// Repairs invalid polygons (self-crossing rings, overlapping parts, repeated rings) in place of the given ones; what
/// remains of lines and points is dropped.
/// \param progress hears the share of the features that was checked. When it answers stop, nothing is repaired.
/// \param threads that may be used; 0 for as many as there are cores. The result does not depend on it.
/// \return how many features were invalid.
std::size_t repair(PolygonSet& polygons, base::Progress& progress, int threads = 0);
/// The same without anyone to tell.
std::size_t repair(PolygonSet& polygons);

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

/// Takes one piece of an intersection: the positions of the two features that it comes from, and the piece as feature 0
/// of a set. Returns true to go on.
using PieceVisitor = std::function<bool(std::size_t input, std::size_t overlay, const PolygonSet& piece)>;

/// Intersects every feature of `input` with every feature of `overlay` (valid polygons), and hands over the pieces that
/// have an area, in the order of the input features, then of the overlay features. Pieces that share only lines or
/// points are none.
void intersect(const PolygonSet& input, const PolygonSet& overlay, const PieceVisitor& visit);

}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "data/raster.h"
#include "polygons/polygons.h"

/// \file
/// The slow and obvious way to decide which cells lie in which polygon, in whole numbers, and polygons to try it on.
namespace kestrel::test {

/// Coordinates of the polygons below and of the grids used with them are whole multiples of 1 / kScale.
inline constexpr std::int64_t kScale = 64;

/// Whether the centre of a cell lies in feature `feature`, by counting the edges west of it.
bool centre_inside(const polygons::PolygonSet& polygons, std::size_t feature, const data::Grid& grid, int column,
                   int row);

/// Whether the feature shares a point with the closed square of a cell.
bool touches_square(const polygons::PolygonSet& polygons, std::size_t feature, const data::Grid& grid, int column,
                    int row);

/// The last feature whose polygon holds the centre, or -1: later features own the cells that several cover.
int owner(const polygons::PolygonSet& polygons, const data::Grid& grid, int column, int row);

/// Features of every unpleasant kind: stars, spikes, slivers, holes, several parts, overlaps, bow-ties, empty ones;
/// many vertices on cell centres, corners and grid lines, some outside of the grid.
polygons::PolygonSet awkward_polygons(std::mt19937& random, const data::Grid& grid, int count);

/// Polygons that share their borders exactly and cover the grid's extent without a gap.
polygons::PolygonSet coverage(std::mt19937& random, const data::Grid& grid, int columns, int rows);

}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "polygons/polygons.h"

/// \file
/// A country divided into regions with irregular borders, which neighbours share point by point.
namespace kestrel::cli {

/// A lattice of squares, each of which belongs to one region, or to none (-1).
struct RegionLattice {
    int columns = 0;
    int rows = 0;
    std::vector<std::int32_t> labels;  // row by row

    /// -1 outside.
    std::int32_t at(int column, int row) const {
        return column < 0 || row < 0 || column >= columns || row >= rows
                   ? -1
                   : labels[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                            static_cast<std::size_t>(column)];
    }
    void set(int column, int row, std::int32_t label) {
        labels[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(column)] =
            label;
    }
};

/// Changes labels until every region is in one piece whose parts meet in more than a corner.
void make_regions_whole(RegionLattice& lattice);

/// One feature a region that has squares, ascending by label; the lattice is whole.
/// \param place where a corner of the lattice lies in the map; asked once for each use, so it must answer alike.
/// \param labels receives the label of each feature.
polygons::PolygonSet region_polygons(const RegionLattice& lattice,
                                     const std::function<polygons::Point(int column, int row)>& place,
                                     std::vector<std::int32_t>& labels);

}  // namespace kestrel::cli

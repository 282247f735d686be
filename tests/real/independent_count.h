// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <ogr_geometry.h>
#include <ogr_spatialref.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/real/run_settings.h"

/// \file
/// A second count of the cells, by GDAL's own means: every polygon is burnt into a grid of its own cell by cell, and
/// the cells are counted one after the other. Nothing of the code under test is used.
namespace kestrel::test {

/// A land-cover raster, cell by cell.
struct LandCover {
    std::array<double, 6> transform{};
    int columns = 0;
    int rows = 0;
    std::vector<std::int32_t> classes;
    std::vector<std::uint8_t> nodata;
    OGRSpatialReference reference;

    std::size_t cell_count() const { return classes.size(); }
    double cell_area() const { return std::abs(transform[1] * transform[5]); }
    double x(double column) const { return transform[0] + column * transform[1]; }
    double y(double row) const { return transform[3] + row * transform[5]; }
};

/// Polygons in the land cover's coordinate system, in the order of their source.
struct Shapes {
    std::vector<std::int64_t> ids;
    std::vector<OGRGeometryUniquePtr> shapes;
    /// The wanted field, as text and as number.
    std::vector<std::string> texts;
    std::vector<double> numbers;
};

LandCover read_land_cover(const std::string& path);

/// \param field read as text and as number; may be empty.
/// \param selected ids to take; all when empty.
Shapes read_shapes(const std::string& source, const std::string& field, const std::vector<std::int64_t>& selected,
                   const LandCover& land_cover);

/// For each cell the position of the polygon that holds its centre, the last of several, or -1.
std::vector<std::int32_t> burn(const Shapes& shapes, const LandCover& land_cover);

/// How many cell centres lie within `distance` of an edge, where two ways of deciding may differ.
std::size_t centres_near_edges(const Shapes& shapes, const LandCover& land_cover, double distance);

/// For each polygon whether it shares a point with the closed square of a NODATA cell.
std::vector<bool> touch_nodata(const Shapes& shapes, const LandCover& land_cover);

/// For each polygon whether it reaches out of the raster.
std::vector<bool> reach_beyond(const Shapes& shapes, const LandCover& land_cover);

/// High, Medium and Low of each class of a set of the store `isprops.xml`.
std::map<std::int32_t, std::array<double, 3>> read_coefficients(const std::string& store, const std::string& set);

}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "data/field.h"
#include "tests/support/test_files.h"

namespace kestrel::test {

/// Squares with attributes, for a shapefile.
struct SquareLayer {
    std::vector<data::Field> fields;
    struct Row {
        double left;
        double top;
        double right;
        double bottom;
        std::vector<data::Value> values;
    };
    std::vector<Row> rows;
};

/// A folder with everything that a small run needs.
///
/// `lc.tif`: 10 x 10 cells of 30 m in EPSG:5070; columns 0 to 4 are class 21, the others 41, the last cell of the last
/// row is NODATA (0). `sheds.shp`: fields ID (integer), NAME (text), RATE (real); zone 1 "West" is the left half, zone
/// 2 "East" the right half. `blocks.shp`: field POP_DEN (real) and KIND (text); the upper half has 20, the lower 1.
/// `mall.shp`: the upper left 2 x 2 cells. `store.xml`: the set "Small" with the classes 21, 24 and 41.
struct RunData {
    RunData();

    std::string operator/(const std::string& name) const { return folder / name; }
    /// The arguments of a run that succeeds, with coefficients "medium" and the output `out/is.shp`.
    std::vector<std::string> arguments() const;
    /// The same without the option and its value, or with another value.
    std::vector<std::string> without(const std::string& option) const;
    std::vector<std::string> with(const std::string& option, const std::string& value) const;

    TemporaryFolder folder;
};

/// Corner of the grid of lc.tif.
inline constexpr double kLeft = 1000000;
inline constexpr double kTop = 2000000;

/// Writes squares, given in cells of that grid, as a shapefile in EPSG:5070.
void write_squares(const std::string& path, const SquareLayer& layer);

/// A raster of that grid in the coordinate system `definition` (none when empty), every cell of class 21.
void write_plain_raster(const std::string& path, const std::string& definition, double cell = 30);

/// A store with one set for each name, each with the classes 21, 24 and 41.
void write_store(const std::string& path, const std::vector<std::string>& set_names);

}  // namespace kestrel::test

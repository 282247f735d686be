// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "tests/real/independent_count.h"
#include "tests/real/run_settings.h"

namespace kestrel::test {

using CellsByClass = std::map<std::int32_t, std::uint64_t>;

/// What the cells of a zone (under kByDensity: of one density class of a zone) amount to.
struct ExpectedPiece {
    /// Cells of each class as the land cover has them, then after each scenario.
    std::vector<CellsByClass> states;
    /// For each scenario, whether it covers a cell here, NODATA included.
    std::vector<bool> meets;
    std::uint64_t nodata_cells = 0;
};

struct ExpectedZone {
    std::uint64_t cells = 0;
    std::uint64_t nodata_cells = 0;
    bool touches_nodata = false;
    bool beyond_raster = false;
    double total_area = 0;
    double impervious_area = 0;
    double percent = 0;
    /// How far the areas may be off, for the roundings that tables prescribe.
    double area_tolerance = 0;
    double percent_tolerance = 0;
};

/// Place of some cells: position of the zone, of the density polygon or -1, of the scenarios; class.
using CellPlace = std::tuple<std::int32_t, std::int32_t, std::set<std::uint32_t>, std::int32_t>;

/// What a run has to find, from a cell-by-cell count and elementary arithmetic.
struct ExpectedOutput {
    /// By analysis value.
    std::map<std::string, ExpectedZone> zones;
    /// By key: analysis value, under kByDensity with "#" and the digit.
    std::map<std::string, ExpectedPiece> pieces;
    std::map<CellPlace, std::uint64_t> cells;
    /// By place, with class 0.
    std::map<CellPlace, std::uint64_t> nodata_cells;
    /// Area of a cell in acres or hectares.
    double cell_area = 0;
    /// Cell centres within a micrometre of an edge of any polygon used. The count decides nothing there.
    std::size_t centres_near_edges = 0;
};

ExpectedOutput expected_output(const RunSettings& settings);

}  // namespace kestrel::test

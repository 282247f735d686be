// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "counting/zone_counts.h"
#include "data/field.h"
#include "data/table.h"

namespace kestrel::contracts {

/// One row of a finished output: a group of analysis features of one value.
struct ZoneResult {
    /// The analysis value as text; empty for NULL.
    std::string value;
    double total_area = 0;
    double impervious_area = 0;
    /// As stored: 2 decimals.
    double percent = 0;
    /// Cells with a class.
    std::uint64_t cells = 0;
    std::uint64_t nodata_cells = 0;
    bool touches_nodata = false;
    bool beyond_raster = false;

    bool complete() const noexcept { return !touches_nodata; }
    /// Not even a NODATA cell has its centre in the zone.
    bool without_cells() const noexcept { return cells == 0 && nodata_cells == 0; }
};

/// A land-cover class of the raster that the coefficient set does not know.
struct UnknownClass {
    std::int32_t code = 0;
    std::uint64_t cells = 0;
};

/// A class of the legend with the number of zones in it.
struct LegendCount {
    std::string label;
    std::size_t zones = 0;
};

/// What one run made; plain data, handed to the application when the run ends.
struct RunResult {
    /// Whether there is a finished output.
    bool finished = false;
    bool cancelled = false;
    std::string layer_name;
    std::string analysis_layer;
    std::string analysis_field;
    std::string land_cover_layer;
    /// "acres" or "hectares"
    std::string area_unit;
    /// Ascending by analysis value.
    std::vector<ZoneResult> zones;
    std::vector<LegendCount> legend;
    /// The table of counts that the figures come from.
    counting::ZoneCounts counts;
    /// The per-zone area table as tabulated, then after each scenario.
    std::vector<data::Table> zone_tables;
    /// Classes without coefficients, when these ended the run.
    std::vector<UnknownClass> unknown_classes;
    /// Warnings that need no answer.
    std::vector<std::string> notices;
    /// Files written, the shapefile first.
    std::vector<std::string> files;
};

}  // namespace kestrel::contracts

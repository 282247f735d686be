// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/conversions.h"

namespace kestrel {

/// The area of each land-cover class within each zone, as cells: one row for each zone that has a cell, one column for
/// each class that occurs in one, classes ascending.
struct Tabulation {
    struct Cell {
        /// Position in `classes`.
        std::uint32_t column = 0;
        std::uint64_t cells = 0;
    };
    struct Row {
        /// The zone's key: the analysis value as text, with "#" and a density digit where zones are split by density.
        std::string key;
        /// Classes that occur, ascending by column. None when all cells of the zone are NODATA.
        std::vector<Cell> cells;
    };

    /// Area of one cell, in square map units.
    double cell_area = 0;
    std::vector<std::int32_t> classes;
    /// Ascending by analysis value, then by density digit.
    std::vector<Row> rows;

    /// Fields as a table of tabulated areas has them: row id, zone value, then one for each class.
    std::size_t field_count() const noexcept { return classes.size() + 2; }
    /// Name of the field of a class: a prefix of six characters and the class code.
    std::string field_name(std::size_t column) const { return "VALUE_" + platform::text_of(classes[column]); }
};

}  // namespace kestrel

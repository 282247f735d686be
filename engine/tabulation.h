// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/conversions.h"

namespace kestrel {

/// The area of each land-cover class within each zone, as cells: one row for each zone that has a cell, one column for
/// each class that occurs in one.
struct Tabulation {
    struct Entry {
        std::uint32_t row = 0;
        std::uint64_t cells = 0;
    };
    struct Column {
        std::int32_t land_class = 0;
        /// The rows that have cells of the class, ascending: a raster may hold thousands of classes, few of them in
        /// each zone.
        std::vector<Entry> entries{};
    };

    /// Area of one cell, in square map units.
    double cell_area = 0;
    /// The key of each row: the zone's analysis value as text, with "#" and a density digit where zones are split by
    /// density. Ascending by analysis value, then by density digit.
    std::vector<std::string> keys;
    /// Ascending by class.
    std::vector<Column> columns;

    /// Fields as a table of tabulated areas has them: row id, zone value, then one for each class.
    std::size_t field_count() const noexcept { return columns.size() + 2; }
    /// Name of the field of a class: a prefix of six characters and the class code.
    std::string field_name(std::size_t column) const { return "VALUE_" + base::text_of(columns[column].land_class); }
};

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>
#include <tuple>
#include <vector>

namespace kestrel::counting {

/// Stands for "no overlay polygon here".
inline constexpr std::uint32_t kNoOverlay = std::numeric_limits<std::uint32_t>::max();

/// The table that one pass over a raster yields, and from which everything else is computed: how many cells of which
/// class lie in which piece of a zone under which set of scenarios.
struct ZoneCounts {
    /// The cells of one class in one piece under one set of scenarios.
    struct Row {
        /// Position of the zone polygon that owns the cells.
        std::uint32_t zone = 0;
        /// Position of the overlay polygon that owns the cells, or kNoOverlay.
        std::uint32_t overlay = kNoOverlay;
        /// Position in `scenario_sets`.
        std::uint32_t scenario_set = 0;
        std::int32_t land_class = 0;
        std::uint64_t cells = 0;

        friend bool operator==(const Row&, const Row&) = default;
        friend bool operator<(const Row& a, const Row& b) {
            return std::tie(a.zone, a.overlay, a.scenario_set, a.land_class, a.cells) <
                   std::tie(b.zone, b.overlay, b.scenario_set, b.land_class, b.cells);
        }
    };
    /// NODATA cells of one piece under one set of scenarios; `land_class` is 0 and means nothing.
    using NodataRow = Row;

    /// Ascending by zone, overlay, scenario set, class; each of them once.
    std::vector<Row> rows;
    std::vector<NodataRow> nodata_rows;
    /// Sets of scenarios that cover a cell, as ascending positions of scenarios, ascending; the first set is empty.
    std::vector<std::vector<std::uint32_t>> scenario_sets{{}};
    /// For each zone polygon, whether it touches the closed square of a NODATA cell.
    std::vector<std::uint8_t> touches_nodata;

    /// Adds the sets that are missing. \return the position of each of `sets` among `scenario_sets`.
    std::vector<std::uint32_t> add_scenario_sets(const std::vector<std::vector<std::uint32_t>>& sets);
    /// To be called when rows were appended. Puts the sets of scenarios that are in use and the rows into their order,
    /// each row once: the same table whatever order the cells were counted in.
    void put_in_order();
};

/// Sorts rows and sums those of the same place.
void sort_and_sum(std::vector<ZoneCounts::Row>& rows);

}  // namespace kestrel::counting

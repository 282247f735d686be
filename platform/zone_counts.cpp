// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/zone_counts.h"

#include <algorithm>

#include "platform/errors.h"

namespace kestrel::platform {

namespace {

bool same_place(const ZoneCounts::Row& a, const ZoneCounts::Row& b) {
    return a.zone == b.zone && a.overlay == b.overlay && a.scenario_set == b.scenario_set &&
           a.land_class == b.land_class;
}

/// Position in `ours` of every set of `theirs`, added where it is missing.
std::vector<std::uint32_t> join_sets(std::vector<std::vector<std::uint32_t>>& ours,
                                     const std::vector<std::vector<std::uint32_t>>& theirs) {
    std::vector<std::uint32_t> positions;
    for (const auto& set : theirs) {
        const auto found = std::find(ours.begin(), ours.end(), set);
        positions.push_back(static_cast<std::uint32_t>(found - ours.begin()));
        if (found == ours.end()) {
            ours.push_back(set);
        }
    }
    return positions;
}

void add_rows(std::vector<ZoneCounts::Row>& rows, const std::vector<ZoneCounts::Row>& more,
              const std::vector<std::uint32_t>& set_positions) {
    for (ZoneCounts::Row row : more) {
        row.scenario_set = set_positions[row.scenario_set];
        rows.push_back(row);
    }
}

}  // namespace

void sort_and_sum(std::vector<ZoneCounts::Row>& rows) {
    std::sort(rows.begin(), rows.end());
    std::size_t last = 0;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        if (same_place(rows[last], rows[i])) {
            rows[last].cells += rows[i].cells;
        } else {
            rows[++last] = rows[i];
        }
    }
    rows.resize(rows.empty() ? 0 : last + 1);
}

void ZoneCounts::order_scenario_sets() {
    std::vector<std::uint8_t> used(scenario_sets.size(), 0);
    used[0] = 1;
    for (const auto* table : {&rows, &nodata_rows}) {
        for (const Row& row : *table) {
            used[row.scenario_set] = 1;
        }
    }
    std::vector<std::vector<std::uint32_t>> ordered;
    for (std::size_t i = 0; i < used.size(); ++i) {
        if (used[i] != 0) {
            ordered.push_back(scenario_sets[i]);
        }
    }
    std::sort(ordered.begin(), ordered.end());
    const std::size_t used_sets = ordered.size();
    const auto positions = join_sets(ordered, scenario_sets);
    for (auto* table : {&rows, &nodata_rows}) {
        for (Row& row : *table) {
            row.scenario_set = positions[row.scenario_set];
        }
        sort_and_sum(*table);
    }
    ordered.resize(used_sets);  // join_sets() has put those that no row uses behind them
    scenario_sets = std::move(ordered);
}

void ZoneCounts::merge(const ZoneCounts& other) {
    if (touches_nodata.size() != other.touches_nodata.size()) {
        throw RuntimeError(kInvalidProcedureCall, "Counts of different zones cannot be merged");
    }
    const auto positions = join_sets(scenario_sets, other.scenario_sets);
    add_rows(rows, other.rows, positions);
    add_rows(nodata_rows, other.nodata_rows, positions);
    for (std::size_t i = 0; i < touches_nodata.size(); ++i) {
        touches_nodata[i] = touches_nodata[i] | other.touches_nodata[i];
    }
    order_scenario_sets();
}

}  // namespace kestrel::platform

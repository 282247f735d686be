// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/zone_counts.h"

#include <algorithm>
#include <numeric>

namespace kestrel::counting {

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

/// Deals the rows out to their zones and sorts them there: each zone has few.
void sort(std::vector<ZoneCounts::Row>& rows) {
    std::vector<std::size_t> zone_ends;
    for (const ZoneCounts::Row& row : rows) {
        if (row.zone >= zone_ends.size()) {
            zone_ends.resize(std::size_t{row.zone} + 1, 0);
        }
        ++zone_ends[row.zone];
    }
    std::exclusive_scan(zone_ends.begin(), zone_ends.end(), zone_ends.begin(), std::size_t{0});
    std::vector<ZoneCounts::Row> dealt(rows.size());
    for (const ZoneCounts::Row& row : rows) {
        dealt[zone_ends[row.zone]++] = row;
    }
    auto begin = dealt.begin();
    for (const std::size_t end_position : zone_ends) {
        const auto end = dealt.begin() + static_cast<std::ptrdiff_t>(end_position);
        std::sort(begin, end);
        begin = end;
    }
    rows.swap(dealt);
}

}  // namespace

void sort_and_sum(std::vector<ZoneCounts::Row>& rows) {
    if (!std::is_sorted(rows.begin(), rows.end())) {
        sort(rows);
    }
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

std::vector<std::uint32_t> ZoneCounts::add_scenario_sets(const std::vector<std::vector<std::uint32_t>>& sets) {
    return join_sets(scenario_sets, sets);
}

void ZoneCounts::put_in_order() {
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

}  // namespace kestrel::counting

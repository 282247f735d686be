// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/land_cover_counts.h"

#include <algorithm>

namespace kestrel {

using platform::ZoneCounts;

namespace {

/// Cells of one class under one key; a row of NODATA has no class.
struct KeyedCells {
    std::uint32_t key = 0;
    std::int32_t land_class = 0;
    std::uint64_t cells = 0;
};

bool before(const KeyedCells& a, const KeyedCells& b) {
    return a.key != b.key ? a.key < b.key : a.land_class < b.land_class;
}

/// The classes that occur, ascending; there are few.
std::vector<std::int32_t> classes_of(const std::vector<KeyedCells>& cells) {
    std::vector<std::int32_t> classes;
    for (const KeyedCells& entry : cells) {
        const auto at = std::lower_bound(classes.begin(), classes.end(), entry.land_class);
        if (at == classes.end() || *at != entry.land_class) {
            classes.insert(at, entry.land_class);
        }
    }
    return classes;
}

/// Sorts what is in order already where zones have keys in their own order.
template <typename Element, typename Before>
void sort_unless_sorted(std::vector<Element>& elements, Before is_before) {
    if (!std::is_sorted(elements.begin(), elements.end(), is_before)) {
        std::sort(elements.begin(), elements.end(), is_before);
    }
}

}  // namespace

LandCoverCounts::LandCoverCounts(ZoneCounts counts, ZoneKeys keys, double cell_area)
    : m_counts(std::move(counts)), m_keys(std::move(keys)), m_cell_area(cell_area) {}

template <typename Wanted, typename ClassOf>
Tabulation LandCoverCounts::tabulate(Wanted wanted, ClassOf class_of) const {
    std::vector<KeyedCells> cells;
    for (const ZoneCounts::Row& row : m_counts.rows) {
        const std::uint32_t key = m_keys.key(row.zone, row.overlay);
        if (key != ZoneKeys::kNoKey && wanted(row)) {
            cells.push_back({key, class_of(row), row.cells});
        }
    }
    std::vector<std::uint32_t> keys;
    for (const ZoneCounts::Row& row : m_counts.nodata_rows) {
        const std::uint32_t key = m_keys.key(row.zone, row.overlay);
        if (key != ZoneKeys::kNoKey && wanted(row)) {
            keys.push_back(key);
        }
    }
    sort_unless_sorted(cells, before);
    const auto of_nodata = static_cast<std::ptrdiff_t>(keys.size());
    for (const KeyedCells& entry : cells) {
        if (static_cast<std::ptrdiff_t>(keys.size()) == of_nodata || keys.back() != entry.key) {
            keys.push_back(entry.key);
        }
    }
    std::sort(keys.begin(), keys.begin() + of_nodata);
    std::inplace_merge(keys.begin(), keys.begin() + of_nodata, keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());

    Tabulation result{.cell_area = m_cell_area, .classes = classes_of(cells), .rows = {}};
    auto entry = cells.begin();
    for (const std::uint32_t key : keys) {
        Tabulation::Row& row = result.rows.emplace_back(Tabulation::Row{m_keys.text(key), {}});
        for (; entry != cells.end() && entry->key == key; ++entry) {
            const auto at = std::lower_bound(result.classes.begin(), result.classes.end(), entry->land_class);
            const auto column = static_cast<std::uint32_t>(at - result.classes.begin());
            if (row.cells.empty() || row.cells.back().column != column) {
                row.cells.push_back({column, 0});
            }
            row.cells.back().cells += entry->cells;
        }
    }
    return result;
}

Tabulation LandCoverCounts::whole() const {
    return tabulate([](const ZoneCounts::Row&) { return true; },
                    [](const ZoneCounts::Row& row) { return row.land_class; });
}

bool LandCoverCounts::covers(std::uint32_t scenario_set, std::uint32_t scenario) const {
    const auto& members = m_counts.scenario_sets[scenario_set];
    return std::binary_search(members.begin(), members.end(), scenario);
}

bool LandCoverCounts::any_inside(std::uint32_t scenario) const {
    const auto inside = [&](const ZoneCounts::Row& row) {
        return covers(row.scenario_set, scenario) && m_keys.key(row.zone, row.overlay) != ZoneKeys::kNoKey;
    };
    return std::any_of(m_counts.rows.begin(), m_counts.rows.end(), inside) ||
           std::any_of(m_counts.nodata_rows.begin(), m_counts.nodata_rows.end(), inside);
}

Tabulation LandCoverCounts::inside(std::uint32_t scenario) const {
    std::vector<std::optional<std::int32_t>> left_by_earlier;
    for (std::uint32_t set = 0; set < m_counts.scenario_sets.size(); ++set) {
        left_by_earlier.push_back(reclassified(set));
    }
    return tabulate(
        [&](const ZoneCounts::Row& row) { return covers(row.scenario_set, scenario); },
        [&](const ZoneCounts::Row& row) { return left_by_earlier[row.scenario_set].value_or(row.land_class); });
}

void LandCoverCounts::apply(std::uint32_t scenario, std::int32_t target) {
    m_applied.push_back({scenario, target});
}

std::optional<std::int32_t> LandCoverCounts::reclassified(std::uint32_t scenario_set) const {
    for (auto applied = m_applied.rbegin(); applied != m_applied.rend(); ++applied) {
        if (covers(scenario_set, applied->scenario)) {
            return applied->target;
        }
    }
    return std::nullopt;
}

}  // namespace kestrel

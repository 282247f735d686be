// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/land_cover_counts.h"

#include <algorithm>
#include <array>
#include <map>

namespace kestrel {

using counting::ZoneCounts;

namespace {

constexpr std::uint32_t kNoRow = UINT32_MAX;

/// The columns of a tabulation while it is filled, in whatever order cells come.
class ColumnsByClass {
  public:
    void add(std::int32_t land_class, std::uint32_t row, std::uint64_t cells) {
        // The few classes that there are mostly differ in their last digits.
        Tabulation::Column*& recent = m_recent[static_cast<std::uint32_t>(land_class) % m_recent.size()];
        if (recent == nullptr || recent->land_class != land_class) {
            recent = &m_columns.try_emplace(land_class, Tabulation::Column{land_class, {}}).first->second;
        }
        recent->entries.push_back({row, cells});
    }

    std::vector<Tabulation::Column> take() {
        std::vector<Tabulation::Column> columns;
        for (auto& [land_class, column] : m_columns) {
            put_in_order(column.entries);
            columns.push_back(std::move(column));
        }
        return columns;
    }

  private:
    /// One entry for each row, ascending.
    static void put_in_order(std::vector<Tabulation::Entry>& entries) {
        const auto before = [](const Tabulation::Entry& a, const Tabulation::Entry& b) { return a.row < b.row; };
        // Zones that are groups of their own mostly come in the order of their rows.
        if (!std::is_sorted(entries.begin(), entries.end(), before)) {
            std::sort(entries.begin(), entries.end(), before);
        }
        std::size_t last = 0;
        for (std::size_t i = 1; i < entries.size(); ++i) {
            if (entries[i].row == entries[last].row) {
                entries[last].cells += entries[i].cells;
            } else {
                entries[++last] = entries[i];
            }
        }
        entries.resize(last + 1);
    }

    std::map<std::int32_t, Tabulation::Column> m_columns;
    std::array<Tabulation::Column*, 256> m_recent{};
};

}  // namespace

LandCoverCounts::LandCoverCounts(ZoneCounts counts, ZoneKeys keys, double cell_area)
    : m_counts(std::move(counts)), m_keys(std::move(keys)), m_cell_area(cell_area) {}

template <typename Wanted, typename ClassOf>
Tabulation LandCoverCounts::tabulate(Wanted wanted, ClassOf class_of) const {
    const auto key_of = [&](const ZoneCounts::Row& row) {
        return wanted(row) ? m_keys.key(row.zone, row.overlay) : ZoneKeys::kNoKey;
    };
    std::vector<std::uint32_t> row_of_key(m_keys.count(), kNoRow);
    for (const auto* counted : {&m_counts.rows, &m_counts.nodata_rows}) {
        for (const ZoneCounts::Row& row : *counted) {
            if (const std::uint32_t key = key_of(row); key != ZoneKeys::kNoKey) {
                row_of_key[key] = 0;
            }
        }
    }
    Tabulation result{.cell_area = m_cell_area, .keys = {}, .columns = {}};
    for (std::uint32_t key = 0; key < row_of_key.size(); ++key) {
        if (row_of_key[key] != kNoRow) {
            row_of_key[key] = static_cast<std::uint32_t>(result.keys.size());
            result.keys.push_back(m_keys.text(key));
        }
    }
    ColumnsByClass columns;
    for (const ZoneCounts::Row& row : m_counts.rows) {
        if (const std::uint32_t key = key_of(row); key != ZoneKeys::kNoKey) {
            columns.add(class_of(row), row_of_key[key], row.cells);
        }
    }
    result.columns = columns.take();
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

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "counting/zone_counts.h"
#include "engine/tabulation.h"
#include "engine/zone_keys.h"

namespace kestrel {

/// The counts of one pass over the land cover, seen as the run's stages see them: zones tabulated whole, or inside one
/// scenario. Scenarios that have been applied change what later ones find.
class LandCoverCounts {
  public:
    /// \param cell_area of one cell, in square map units.
    LandCoverCounts(counting::ZoneCounts counts, ZoneKeys keys, double cell_area);

    const counting::ZoneCounts& counts() const noexcept { return m_counts; }
    /// Hands the counts over when the stages are done with them: there may be millions of rows.
    counting::ZoneCounts take_counts() noexcept { return std::exchange(m_counts, {}); }

    /// All cells of all zones, in the raster's own classes.
    Tabulation whole() const;
    /// Whether any cell of a zone, NODATA or not, lies in the scenario.
    bool any_inside(std::uint32_t scenario) const;
    /// The cells inside a scenario, in the classes that the scenarios applied so far have left.
    Tabulation inside(std::uint32_t scenario) const;
    /// From now on the cells inside `scenario` are of class `target`.
    void apply(std::uint32_t scenario, std::int32_t target);

  private:
    struct Applied {
        std::uint32_t scenario = 0;
        std::int32_t target = 0;
    };
    /// The class that the applied scenarios give to cells of a set of scenarios; nothing when none covers them.
    std::optional<std::int32_t> reclassified(std::uint32_t scenario_set) const;
    bool covers(std::uint32_t scenario_set, std::uint32_t scenario) const;
    template <typename Wanted, typename ClassOf>
    Tabulation tabulate(Wanted wanted, ClassOf class_of) const;

    counting::ZoneCounts m_counts;
    ZoneKeys m_keys;
    double m_cell_area;
    std::vector<Applied> m_applied;
};

}  // namespace kestrel

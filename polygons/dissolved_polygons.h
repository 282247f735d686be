// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "polygons/polygons.h"

namespace kestrel::polygons {

/// What dissolve() makes: one feature for each group of input features.
///
/// A group of a single feature is that feature of the input, which is shared, not copied: where every zone is a group
/// of its own, as is usual, the polygons are in memory once. Coordinates are in the units of the input.
class DissolvedPolygons {
  public:
    /// A feature, and the set that holds it; good as long as the DissolvedPolygons are.
    struct Feature {
        const PolygonSet& set;
        std::size_t position;
    };

    DissolvedPolygons() = default;
    /// \param input what was dissolved.
    /// \param joined sets of features that were made of several of the input, or of none.
    DissolvedPolygons(SharedPolygons input, std::vector<PolygonSet> joined)
        : m_input(std::move(input)), m_joined(std::move(joined)) {}

    /// The next group is feature `position` of the input.
    void add_from_input(std::size_t position) { m_places.push_back({kInput, position}); }
    /// The next group is feature `position` of the joined set `set`.
    void add_joined(std::size_t set, std::size_t position) { m_places.push_back({set, position}); }

    std::size_t feature_count() const noexcept { return m_places.size(); }
    Feature feature(std::size_t group) const noexcept {
        const Place& place = m_places[group];
        return {place.set == kInput ? *m_input : m_joined[place.set], place.position};
    }
    /// The rectangle around all features.
    Envelope envelope() const noexcept;

  private:
    static constexpr std::size_t kInput = static_cast<std::size_t>(-1);
    struct Place {
        std::size_t set = kInput;
        std::size_t position = 0;
    };

    SharedPolygons m_input;
    std::vector<PolygonSet> m_joined;
    std::vector<Place> m_places;
};

}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "polygons/noded_edges.h"

namespace kestrel::polygons {

/// Private to this room: counts the polygons on both sides of each of the edges that noded() gives.
///
/// A line is drawn to the middle of the edge from far outside, where no polygon is, and the polygons are counted that
/// it enters and leaves; what lies beyond the edge differs by its `polygons_left`. The line comes from the west to
/// steep edges, from the south to flat ones, so that it meets them at a wide angle. It crosses an edge that it meets in
/// an end when that is the lower (the western) end: where two edges go on from one another, it crosses one of them.
class SideCounter {
  public:
    /// \param edges outlive the counter.
    explicit SideCounter(const std::vector<Edge>& edges)
        : m_edges(edges), m_rows(edges, false), m_columns(edges, true) {}

    /// How many polygons lie on either side of an edge, looking from its low to its high end.
    struct Sides {
        int left = 0;
        int right = 0;
    };
    /// \param edge one of the edges, the very object: it is told from the others by its address.
    /// \return nothing when it cannot be told because another edge passes through its middle, or when a count is below
    ///         zero; then the edges are not those of polygons, or rounding has moved one across another.
    std::optional<Sides> of(const Edge& edge) const;

  private:
    /// Edges by the strips that they reach: the plane cut into rows for lines from the west, or into columns for lines
    /// from the south, so that a line is compared only with the edges of the strip that it runs in.
    class Strips {
      public:
        Strips(const std::vector<Edge>& edges, bool columns);
        std::span<const std::uint32_t> near(Point p) const;

      private:
        double position(Point p) const { return m_columns ? p.x : p.y; }
        std::size_t strip_of(double at) const;
        template <typename Take>
        void for_each(const std::vector<Edge>& edges, Take take) const;

        bool m_columns;
        double m_lowest = 0;
        double m_per_unit = 0;
        std::vector<std::uint32_t> m_begin;
        std::vector<std::uint32_t> m_members;
    };

    template <bool kFromSouth>
    std::optional<int> count(const Edge& edge, Point middle) const;

    const std::vector<Edge>& m_edges;
    Strips m_rows;
    Strips m_columns;
};

}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/side_counter.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "polygons/orientation.h"

namespace kestrel::polygons {

std::optional<SideCounter::Sides> SideCounter::of(const Edge& edge) const {
    const bool steep = std::abs(edge.high.y - edge.low.y) >= std::abs(edge.high.x - edge.low.x);
    const Point middle{edge.low.x / 2 + edge.high.x / 2, edge.low.y / 2 + edge.high.y / 2};
    const std::optional<int> before = steep ? count<false>(edge, middle) : count<true>(edge, middle);
    if (!before) {
        return std::nullopt;
    }
    // The line from the west comes to the left side; one from the south comes to the right of what runs east.
    const bool before_is_left = steep || edge.high.x <= edge.low.x;
    const Sides sides =
        before_is_left ? Sides{*before, *before - edge.polygons_left} : Sides{*before + edge.polygons_left, *before};
    return sides.left < 0 || sides.right < 0 ? std::nullopt : std::optional(sides);
}

/// Polygons at the end of the line to the middle of an edge, just before it; nothing when another edge runs there.
template <bool kFromSouth>
std::optional<int> SideCounter::count(const Edge& edge, Point middle) const {
    int polygons = 0;
    const double at = kFromSouth ? middle.x : middle.y;
    for (const std::uint32_t other : (kFromSouth ? m_columns : m_rows).near(middle)) {
        const Edge& o = m_edges[other];
        const double from = kFromSouth ? std::min(o.low.x, o.high.x) : o.low.y;
        const double to = kFromSouth ? std::max(o.low.x, o.high.x) : o.high.y;
        if (&o == &edge || !(from <= at && at < to)) {
            continue;
        }
        const int side = orientation(o.low, o.high, middle);
        if (side == 0) {
            return std::nullopt;
        }
        if (!kFromSouth && side < 0) {
            polygons -= o.polygons_left;  // crossed from its left to its right
        } else if (kFromSouth && side == (o.high.x > o.low.x ? 1 : -1)) {
            polygons += side * o.polygons_left;
        }
    }
    return polygons;
}

SideCounter::Strips::Strips(const std::vector<Edge>& edges, bool columns)
    : m_columns(columns), m_lowest(std::numeric_limits<double>::infinity()) {
    double highest = -std::numeric_limits<double>::infinity();
    for (const Edge& e : edges) {
        m_lowest = std::min({m_lowest, position(e.low), position(e.high)});
        highest = std::max({highest, position(e.low), position(e.high)});
    }
    const std::size_t count = std::clamp<std::size_t>(edges.size() / 4, 1, 4096);
    m_per_unit = highest > m_lowest ? static_cast<double>(count) / (highest - m_lowest) : 0;
    m_begin.assign(count + 1, 0);
    for_each(edges, [&](std::size_t strip, std::uint32_t) { ++m_begin[strip + 1]; });
    std::partial_sum(m_begin.begin(), m_begin.end(), m_begin.begin());
    m_members.resize(m_begin.back());
    std::vector<std::uint32_t> next(m_begin.begin(), m_begin.end() - 1);
    for_each(edges, [&](std::size_t strip, std::uint32_t edge) { m_members[next[strip]++] = edge; });
}

std::span<const std::uint32_t> SideCounter::Strips::near(Point p) const {
    const std::size_t strip = strip_of(position(p));
    return std::span(m_members).subspan(m_begin[strip], m_begin[strip + 1] - m_begin[strip]);
}

std::size_t SideCounter::Strips::strip_of(double at) const {
    const double strip = (at - m_lowest) * m_per_unit;
    return strip > 0 ? std::min(static_cast<std::size_t>(strip), m_begin.size() - 2) : 0;
}

template <typename Take>
void SideCounter::Strips::for_each(const std::vector<Edge>& edges, Take take) const {
    for (std::uint32_t e = 0; e < edges.size(); ++e) {
        const std::size_t one = strip_of(position(edges[e].low));
        const std::size_t other = strip_of(position(edges[e].high));
        for (std::size_t strip = std::min(one, other); strip <= std::max(one, other); ++strip) {
            take(strip, e);
        }
    }
}

}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/polygon_check.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

namespace kestrel::polygons {

namespace {

/// More comparisons than this for each edge mean a shape for which the sweep is no gain.
constexpr std::size_t kComparisonsPerEdge = 64;

/// The side of the line from `a` to `b` on which `c` lies: 1 left, -1 right, 0 when rounding leaves doubt (the error
/// bound is that of Shewchuk's adaptive predicates, first stage).
int certain_side(Point a, Point b, Point c) {
    const double left = (a.x - c.x) * (b.y - c.y);
    const double right = (a.y - c.y) * (b.x - c.x);
    const double determinant = left - right;
    const double bound = 4 * std::numeric_limits<double>::epsilon() * (std::abs(left) + std::abs(right));
    if (determinant > bound) {
        return 1;
    }
    return determinant < -bound ? -1 : 0;
}

/// The edges of one ring, checked against one another in ascending order of y.
class RingSweep {
  public:
    explicit RingSweep(std::span<const Point> ring) : m_ring(ring), m_count(ring.size() - 1) {}

    bool certainly_simple();

  private:
    double low(std::size_t edge) const { return std::min(m_ring[edge].y, m_ring[edge + 1].y); }
    double high(std::size_t edge) const { return std::max(m_ring[edge].y, m_ring[edge + 1].y); }
    /// Whether two edges certainly have nothing in common but the vertex between neighbours.
    bool certainly_apart(std::size_t e, std::size_t f) const;
    bool neighbours_apart(Point before, Point shared, Point after) const;

    std::span<const Point> m_ring;
    std::size_t m_count;
};

bool RingSweep::neighbours_apart(Point before, Point shared, Point after) const {
    if (certain_side(before, shared, after) != 0) {
        return true;
    }
    // Nearly straight on is fine; nearly straight back may be a spike.
    return (before.x - shared.x) * (after.x - shared.x) + (before.y - shared.y) * (after.y - shared.y) < 0;
}

bool RingSweep::certainly_apart(std::size_t e, std::size_t f) const {
    const Point a = m_ring[e];
    const Point b = m_ring[e + 1];
    const Point c = m_ring[f];
    const Point d = m_ring[f + 1];
    if (e + 1 == f || (f == 0 && e + 1 == m_count)) {
        return neighbours_apart(a, b, d);
    }
    if (f + 1 == e || (e == 0 && f + 1 == m_count)) {
        return neighbours_apart(c, d, b);
    }
    if (std::max(a.x, b.x) < std::min(c.x, d.x) || std::max(c.x, d.x) < std::min(a.x, b.x)) {
        return true;
    }
    const int side_of_c = certain_side(a, b, c);
    if (side_of_c != 0 && side_of_c == certain_side(a, b, d)) {
        return true;
    }
    const int side_of_a = certain_side(c, d, a);
    return side_of_a != 0 && side_of_a == certain_side(c, d, b);
}

bool RingSweep::certainly_simple() {
    if (m_count < 3) {
        return false;
    }
    std::vector<std::uint32_t> order(m_count);
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&](std::uint32_t e, std::uint32_t f) { return low(e) < low(f); });
    std::vector<std::uint32_t> open;
    std::size_t comparisons = 0;
    for (const std::uint32_t edge : order) {
        if (m_ring[edge] == m_ring[edge + 1]) {
            return false;
        }
        std::size_t kept = 0;
        for (const std::uint32_t other : open) {
            if (high(other) < low(edge)) {
                continue;
            }
            open[kept++] = other;
            if (!certainly_apart(other, edge)) {
                return false;
            }
        }
        comparisons += kept;
        if (comparisons > kComparisonsPerEdge * m_count) {
            return false;
        }
        open.resize(kept);
        open.push_back(edge);
    }
    return true;
}

}  // namespace

bool certainly_valid(const PolygonSet& polygons, std::size_t feature) {
    const std::size_t ring = polygons.first_ring_of(feature);
    if (polygons.first_ring_of(feature + 1) != ring + 1) {
        return false;
    }
    const std::span<const Point> points = polygons.ring(ring);
    return points.size() >= 4 && RingSweep(points).certainly_simple();
}

}  // namespace kestrel::polygons

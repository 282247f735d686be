// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/ring_assembly.h"

#include <algorithm>
#include <bit>

#include "polygons/orientation.h"

namespace kestrel::polygons {

namespace {

constexpr std::uint32_t kFree = UINT32_MAX;

std::size_t hash_of(Point p) {
    // Adding 0 makes the two zeros one.
    std::uint64_t mixed = std::bit_cast<std::uint64_t>(p.x + 0.0) * 0x9E3779B97F4A7C15ULL;
    mixed = (mixed ^ (mixed >> 32)) + std::bit_cast<std::uint64_t>(p.y + 0.0) * 0xC2B2AE3D27D4EB4FULL;
    mixed = (mixed ^ (mixed >> 29)) * 0xBF58476D1CE4E5B9ULL;
    return static_cast<std::size_t>(mixed ^ (mixed >> 32));
}

bool before(Point a, Point b) {
    return a.x != b.x ? a.x < b.x : a.y < b.y;
}

}  // namespace

PointNumbers::PointNumbers(std::size_t most_points) {
    m_buckets.assign(std::bit_ceil(2 * most_points + 1), kFree);
    m_points.reserve(most_points);
}

std::uint32_t PointNumbers::of(Point p) {
    std::size_t at = hash_of(p) & (m_buckets.size() - 1);
    while (m_buckets[at] != kFree && m_points[m_buckets[at]] != p) {
        at = (at + 1) & (m_buckets.size() - 1);
    }
    if (m_buckets[at] == kFree) {
        m_buckets[at] = static_cast<std::uint32_t>(m_points.size());
        m_points.push_back(p);
    }
    return m_buckets[at];
}

namespace {

/// Whether `p` lies inside the closed ring, or nothing when it lies on it.
std::optional<bool> inside(Point p, std::span<const Point> ring) {
    bool result = false;
    for (std::size_t i = 0; i + 1 < ring.size(); ++i) {
        const bool rises = ring[i].y < ring[i + 1].y;
        const Point low = rises ? ring[i] : ring[i + 1];
        const Point high = rises ? ring[i + 1] : ring[i];
        if (p.y < low.y || p.y > high.y) {
            continue;
        }
        const int side = orientation(low, high, p);
        if (side == 0 && p.x >= std::min(low.x, high.x) && p.x <= std::max(low.x, high.x)) {
            return std::nullopt;
        }
        if (p.y < high.y && side < 0) {
            result = !result;
        }
    }
    return result;
}

struct Shell {
    std::size_t ring = 0;
    double twice_area = 0;
    Envelope envelope;
    std::vector<std::size_t> holes;
};

/// Whether a ring lies inside another that it does not cross: what the first of its points says that is not on the
/// other; nothing when all are.
std::optional<bool> ring_inside(std::span<const Point> ring, std::span<const Point> other) {
    std::optional<bool> result;
    for (std::size_t i = 0; i + 1 < ring.size() && !result; ++i) {
        result = inside(ring[i], other);
    }
    return result;
}

/// The smallest shell around a hole.
Shell* shell_around(std::span<const Point> hole, std::vector<Shell>& shells,
                    const std::vector<std::vector<Point>>& rings) {
    Shell* smallest = nullptr;
    for (Shell& shell : shells) {
        Envelope point;
        point.add(hole.front());
        if ((smallest != nullptr && shell.twice_area >= smallest->twice_area) || !shell.envelope.contains(point)) {
            continue;
        }
        const std::optional<bool> holds = ring_inside(hole, rings[shell.ring]);
        if (!holds) {
            return nullptr;
        }
        smallest = *holds ? &shell : smallest;
    }
    return smallest;
}

void add_ring(PolygonSet& result, std::span<const Point> ring) {
    result.begin_ring();
    for (const Point p : ring) {
        result.add(p);
    }
}

/// Rings begin at their lowest point and stand in its order; those that touch there, in the order of what follows.
void put_in_order(std::vector<std::vector<Point>>& rings) {
    for (auto& ring : rings) {
        ring.pop_back();
        std::rotate(ring.begin(), std::min_element(ring.begin(), ring.end(), before), ring.end());
        ring.push_back(ring.front());
    }
    std::sort(rings.begin(), rings.end(), [](const auto& a, const auto& b) {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), before);
    });
}

}  // namespace

std::optional<PolygonSet> assemble_rings(std::vector<std::vector<Point>> rings) {
    put_in_order(rings);
    std::vector<Shell> shells;
    std::vector<std::size_t> holes;
    for (std::size_t i = 0; i < rings.size(); ++i) {
        const double twice_area = twice_signed_area(rings[i]);
        if (twice_area < 0) {
            holes.push_back(i);
            continue;
        }
        Shell shell{i, twice_area, {}, {}};
        for (const Point p : rings[i]) {
            shell.envelope.add(p);
        }
        shells.push_back(std::move(shell));
    }
    for (const std::size_t hole : holes) {
        Shell* shell = shell_around(rings[hole], shells, rings);
        if (shell == nullptr) {
            return std::nullopt;
        }
        shell->holes.push_back(hole);
    }
    PolygonSet result;
    result.begin_feature();
    for (const Shell& shell : shells) {
        result.begin_polygon();
        add_ring(result, rings[shell.ring]);
        for (const std::size_t hole : shell.holes) {
            add_ring(result, rings[hole]);
        }
    }
    return result;
}

}  // namespace kestrel::polygons

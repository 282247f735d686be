// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/edge_cancelling.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "platform/geometry.h"

namespace kestrel::platform {

namespace {

constexpr std::uint32_t kNone = UINT32_MAX;

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

/// The vertices of the features, each numbered once, with the edges that leave it.
class EdgeGraph {
  public:
    explicit EdgeGraph(std::size_t edges) {
        m_buckets.assign(std::bit_ceil(2 * edges + 1), kNone);
        m_points.reserve(edges);
        m_leaving.reserve(edges);
        m_edges.reserve(edges);
    }

    /// Adds an edge, or takes away the one that runs the other way. \return false when it is there already.
    bool add(Point from, Point to);
    /// The rings that remain; nothing when several edges leave one vertex.
    std::optional<std::vector<std::vector<Point>>> rings() const;

  private:
    struct Edge {
        std::uint32_t to = 0;
        /// The next edge that leaves the same vertex.
        std::uint32_t next = kNone;
        bool cancelled = false;
    };

    std::uint32_t vertex(Point p);
    std::uint32_t find(std::uint32_t from, std::uint32_t to) const;
    /// The one edge that is left at a vertex; kNone when there are none or several.
    std::uint32_t only_edge(std::uint32_t vertex, std::size_t& count) const;

    std::vector<std::uint32_t> m_buckets;
    std::vector<Point> m_points;
    std::vector<std::uint32_t> m_leaving;  // first edge of each vertex
    std::vector<Edge> m_edges;
};

std::uint32_t EdgeGraph::vertex(Point p) {
    std::size_t at = hash_of(p) & (m_buckets.size() - 1);
    while (m_buckets[at] != kNone && m_points[m_buckets[at]] != p) {
        at = (at + 1) & (m_buckets.size() - 1);
    }
    if (m_buckets[at] == kNone) {
        m_buckets[at] = static_cast<std::uint32_t>(m_points.size());
        m_points.push_back(p);
        m_leaving.push_back(kNone);
    }
    return m_buckets[at];
}

std::uint32_t EdgeGraph::find(std::uint32_t from, std::uint32_t to) const {
    std::uint32_t edge = m_leaving[from];
    while (edge != kNone && (m_edges[edge].to != to || m_edges[edge].cancelled)) {
        edge = m_edges[edge].next;
    }
    return edge;
}

bool EdgeGraph::add(Point from, Point to) {
    const std::uint32_t a = vertex(from);
    const std::uint32_t b = vertex(to);
    if (a == b) {
        return true;  // a repeated point
    }
    const std::uint32_t opposite = find(b, a);
    if (opposite != kNone) {
        m_edges[opposite].cancelled = true;
        return true;
    }
    if (find(a, b) != kNone) {
        return false;
    }
    m_edges.push_back({b, m_leaving[a], false});
    m_leaving[a] = static_cast<std::uint32_t>(m_edges.size() - 1);
    return true;
}

std::uint32_t EdgeGraph::only_edge(std::uint32_t vertex, std::size_t& count) const {
    std::uint32_t found = kNone;
    count = 0;
    for (std::uint32_t edge = m_leaving[vertex]; edge != kNone; edge = m_edges[edge].next) {
        if (!m_edges[edge].cancelled) {
            found = edge;
            ++count;
        }
    }
    return found;
}

std::optional<std::vector<std::vector<Point>>> EdgeGraph::rings() const {
    std::vector<std::uint32_t> following(m_points.size(), kNone);
    for (std::uint32_t v = 0; v < m_points.size(); ++v) {
        std::size_t count = 0;
        const std::uint32_t edge = only_edge(v, count);
        if (count > 1) {
            return std::nullopt;
        }
        following[v] = edge == kNone ? kNone : m_edges[edge].to;
    }
    std::vector<std::vector<Point>> result;
    for (std::uint32_t start = 0; start < following.size(); ++start) {
        std::vector<Point> ring;
        for (std::uint32_t v = start; following[v] != kNone;) {
            ring.push_back(m_points[v]);
            const std::uint32_t to = following[v];
            following[v] = kNone;
            v = to;
        }
        if (!ring.empty()) {
            // Every vertex has as many edges coming as going, so the ring is back where it began.
            std::rotate(ring.begin(), std::min_element(ring.begin(), ring.end(), before), ring.end());
            ring.push_back(ring.front());
            result.push_back(std::move(ring));
        }
    }
    std::sort(result.begin(), result.end(), [](const auto& a, const auto& b) { return before(a.front(), b.front()); });
    return result;
}

/// Adds the edges of a feature with its inside on their left. \return false when an edge is there already.
bool add_edges(EdgeGraph& graph, const PolygonSet& polygons, std::size_t feature) {
    for (std::size_t p = polygons.first_polygon(feature); p < polygons.first_polygon(feature + 1); ++p) {
        for (std::size_t r = polygons.first_ring(p); r < polygons.first_ring(p + 1); ++r) {
            const auto ring = polygons.ring(r);
            const bool shell = r == polygons.first_ring(p);
            const bool left = (twice_signed_area(ring) > 0) == shell;
            for (std::size_t i = 0; i + 1 < ring.size(); ++i) {
                if (!(left ? graph.add(ring[i], ring[i + 1]) : graph.add(ring[i + 1], ring[i]))) {
                    return false;
                }
            }
        }
    }
    return true;
}

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

/// The smallest shell around a hole.
Shell* shell_around(Point p, std::vector<Shell>& shells, const std::vector<std::vector<Point>>& rings) {
    Shell* smallest = nullptr;
    for (Shell& shell : shells) {
        Envelope point;
        point.add(p);
        if ((smallest != nullptr && shell.twice_area >= smallest->twice_area) || !shell.envelope.contains(point)) {
            continue;
        }
        const std::optional<bool> holds = inside(p, rings[shell.ring]);
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

/// Sorts rings into shells, which run left about, and their holes.
std::optional<PolygonSet> assembled(const std::vector<std::vector<Point>>& rings) {
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
        Shell* shell = shell_around(rings[hole].front(), shells, rings);
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

}  // namespace

std::optional<PolygonSet> cancel_shared_edges(const PolygonSet& polygons, std::span<const std::size_t> members) {
    std::size_t edges = 0;
    for (const std::size_t feature : members) {
        for (std::size_t r = polygons.first_ring_of(feature); r < polygons.first_ring_of(feature + 1); ++r) {
            edges += polygons.ring(r).size();
        }
    }
    if (edges >= kNone) {
        return std::nullopt;
    }
    EdgeGraph graph(edges);
    for (const std::size_t feature : members) {
        if (!add_edges(graph, polygons, feature)) {
            return std::nullopt;
        }
    }
    const auto rings = graph.rings();
    return rings ? assembled(*rings) : std::nullopt;
}

}  // namespace kestrel::platform

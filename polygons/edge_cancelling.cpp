// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/edge_cancelling.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "polygons/ring_assembly.h"

namespace kestrel::polygons {

namespace {

constexpr std::uint32_t kNone = UINT32_MAX;

/// The vertices of the features, each numbered once, with the edges that leave it.
class EdgeGraph {
  public:
    explicit EdgeGraph(std::size_t edges) : m_numbers(edges) {
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

    PointNumbers m_numbers;
    std::vector<std::uint32_t> m_leaving;  // first edge of each vertex
    std::vector<Edge> m_edges;
};

std::uint32_t EdgeGraph::vertex(Point p) {
    const std::uint32_t number = m_numbers.of(p);
    if (number == m_leaving.size()) {
        m_leaving.push_back(kNone);
    }
    return number;
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
    std::vector<std::uint32_t> following(m_leaving.size(), kNone);
    for (std::uint32_t v = 0; v < m_leaving.size(); ++v) {
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
            ring.push_back(m_numbers.points()[v]);
            const std::uint32_t to = following[v];
            following[v] = kNone;
            v = to;
        }
        if (!ring.empty()) {
            // Every vertex has as many edges coming as going, so the ring is back where it began.
            ring.push_back(ring.front());
            result.push_back(std::move(ring));
        }
    }
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
    auto rings = graph.rings();
    return rings ? assemble_rings(std::move(*rings)) : std::nullopt;
}

}  // namespace kestrel::polygons

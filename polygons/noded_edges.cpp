// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/noded_edges.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>

#include "polygons/orientation.h"

namespace kestrel::polygons {

namespace {

/// More comparisons than this for each edge mean a shape for which this way is no gain.
constexpr std::size_t kComparisonsPerEdge = 256;

/// \param polygons_left as seen from `from`.
Edge edge_of(Point from, Point to, int polygons_left) {
    return below(from, to) ? Edge{from, to, polygons_left} : Edge{to, from, -polygons_left};
}

/// Where two edges cross that do; the same point whichever comes first.
Point crossing(const Edge* e, const Edge* f) {
    const auto key = [](const Edge* edge) { return std::tuple(edge->low.y, edge->low.x, edge->high.y, edge->high.x); };
    if (key(f) < key(e)) {
        std::swap(e, f);
    }
    // Edges that nearly touch cross at tiny angles: the digits of a double would not do.
    using Wide = long double;
    const Wide ex = Wide{e->high.x} - e->low.x;
    const Wide ey = Wide{e->high.y} - e->low.y;
    const Wide fx = Wide{f->high.x} - f->low.x;
    const Wide fy = Wide{f->high.y} - f->low.y;
    const Wide along = ((Wide{f->low.x} - e->low.x) * fy - (Wide{f->low.y} - e->low.y) * fx) / (ex * fy - ey * fx);
    Point p{static_cast<double>(e->low.x + along * ex), static_cast<double>(e->low.y + along * ey)};
    for (const Edge* edge : {e, f}) {
        p.x = std::clamp(p.x, std::min(edge->low.x, edge->high.x), std::max(edge->low.x, edge->high.x));
        p.y = std::clamp(p.y, edge->low.y, edge->high.y);
    }
    return p;
}

/// Cuts edges where they meet.
class Cutter {
  public:
    /// \param crossings whether edges are cut where they cross, too, or only where one ends on another.
    Cutter(std::vector<Edge> edges, bool crossings) : m_edges(std::move(edges)), m_crossings(crossings) {}

    /// \return false when there are too many edges close together.
    bool find_cuts();
    /// The parts of all edges.
    std::vector<Edge> parts();

  private:
    struct Cut {
        std::uint32_t edge = 0;
        double along = 0;
        Point at;
    };

    void meet(std::uint32_t e, std::uint32_t f);
    void snap_cuts();
    void cut_on_line(std::uint32_t edge, Point p);
    void cut(std::uint32_t edge, Point p);

    std::vector<Edge> m_edges;
    bool m_crossings;
    std::vector<Cut> m_cuts;
};

void Cutter::cut(std::uint32_t edge, Point p) {
    const Edge& e = m_edges[edge];
    if (p != e.low && p != e.high) {
        const double along = (p.x - e.low.x) * (e.high.x - e.low.x) + (p.y - e.low.y) * (e.high.y - e.low.y);
        m_cuts.push_back({edge, along, p});
    }
}

/// Cuts an edge at a point on its line, if it lies between its ends.
void Cutter::cut_on_line(std::uint32_t edge, Point p) {
    const Edge& e = m_edges[edge];
    if (p.y >= e.low.y && p.y <= e.high.y && p.x >= std::min(e.low.x, e.high.x) && p.x <= std::max(e.low.x, e.high.x)) {
        cut(edge, p);
    }
}

void Cutter::meet(std::uint32_t e, std::uint32_t f) {
    const Edge& a = m_edges[e];
    const Edge& b = m_edges[f];
    const int low_of_b = orientation(a.low, a.high, b.low);
    const int high_of_b = orientation(a.low, a.high, b.high);
    if (low_of_b * high_of_b > 0) {
        return;
    }
    const int low_of_a = orientation(b.low, b.high, a.low);
    const int high_of_a = orientation(b.low, b.high, a.high);
    if (low_of_a * high_of_a > 0) {
        return;
    }
    if (low_of_b * high_of_b * low_of_a * high_of_a != 0) {
        if (m_crossings) {
            const Point p = crossing(&a, &b);
            cut(e, p);
            cut(f, p);
        }
        return;
    }
    const std::pair<int, Point> ends_of_b[] = {{low_of_b, b.low}, {high_of_b, b.high}};
    for (const auto& [side, p] : ends_of_b) {
        if (side == 0) {
            cut_on_line(e, p);
        }
    }
    const std::pair<int, Point> ends_of_a[] = {{low_of_a, a.low}, {high_of_a, a.high}};
    for (const auto& [side, p] : ends_of_a) {
        if (side == 0) {
            cut_on_line(f, p);
        }
    }
}

/// Three edges that cross in one point are found to cross in three, some digits apart: makes one point of those.
class PointSnapper {
  public:
    PointSnapper(const std::vector<Edge>& edges, std::size_t cuts) {
        m_places.reserve(2 * edges.size() + cuts);
        double magnitude = 0;
        for (const Edge& e : edges) {
            m_places.push_back({e.low, e.low, kEnd});
            m_places.push_back({e.high, e.high, kEnd});
            magnitude = std::max({magnitude, std::abs(e.low.x), std::abs(e.high.x), std::abs(e.high.y)});
            magnitude = std::max(magnitude, std::abs(e.low.y));
        }
        constexpr double kLastDigits = 8;
        m_reach = kLastDigits * std::numeric_limits<double>::epsilon() * magnitude;
    }

    void add(Point cut, std::size_t number) { m_places.push_back({cut, cut, number}); }

    /// Calls take(number, point) for every cut with the end of an edge that is very near, or the first of the cuts that
    /// are.
    template <typename Take>
    void snap(Take take) {
        std::sort(m_places.begin(), m_places.end(), [](const Place& a, const Place& b) {
            return a.at != b.at ? below(a.at, b.at) : a.number > b.number;  // ends of edges come first
        });
        for (std::size_t i = 0; i < m_places.size(); ++i) {
            if (m_places[i].number != kEnd) {
                m_places[i].snapped = target_of(i);
                take(m_places[i].number, m_places[i].snapped);
            }
        }
    }

  private:
    static constexpr std::size_t kEnd = std::numeric_limits<std::size_t>::max();
    struct Place {
        Point at;
        Point snapped;
        std::size_t number = 0;
    };

    bool near(const Place& place, Point p) const { return std::abs(place.at.x - p.x) <= m_reach; }

    Point target_of(std::size_t i) const {
        const Point p = m_places[i].at;
        std::optional<Point> cut_before;
        for (std::size_t j = i; j-- > 0 && p.y - m_places[j].at.y <= m_reach;) {
            if (near(m_places[j], p)) {
                if (m_places[j].number == kEnd) {
                    return m_places[j].at;
                }
                cut_before = m_places[j].snapped;
            }
        }
        for (std::size_t j = i + 1; j < m_places.size() && m_places[j].at.y - p.y <= m_reach; ++j) {
            if (m_places[j].number == kEnd && near(m_places[j], p)) {
                return m_places[j].at;
            }
        }
        return cut_before.value_or(p);
    }

    std::vector<Place> m_places;
    double m_reach = 0;
};

void Cutter::snap_cuts() {
    PointSnapper snapper(m_edges, m_cuts.size());
    for (std::size_t i = 0; i < m_cuts.size(); ++i) {
        snapper.add(m_cuts[i].at, i);
    }
    std::vector<Cut> cuts;
    cuts.swap(m_cuts);
    snapper.snap([&](std::size_t number, Point p) { cut(cuts[number].edge, p); });
}

bool Cutter::find_cuts() {
    std::sort(m_edges.begin(), m_edges.end(), [](const Edge& a, const Edge& b) { return a.low.y < b.low.y; });
    std::vector<std::uint32_t> open;
    std::size_t comparisons = 0;
    for (std::uint32_t e = 0; e < m_edges.size(); ++e) {
        const Edge& edge = m_edges[e];
        const double west = std::min(edge.low.x, edge.high.x);
        const double east = std::max(edge.low.x, edge.high.x);
        std::size_t kept = 0;
        for (const std::uint32_t other : open) {
            const Edge& o = m_edges[other];
            if (o.high.y < edge.low.y) {
                continue;
            }
            open[kept++] = other;
            if (std::max(o.low.x, o.high.x) >= west && std::min(o.low.x, o.high.x) <= east) {
                meet(other, e);
            }
        }
        comparisons += kept;
        if (comparisons > kComparisonsPerEdge * (m_edges.size() + kComparisonsPerEdge)) {
            return false;
        }
        open.resize(kept);
        open.push_back(e);
    }
    if (m_crossings && !m_cuts.empty()) {
        snap_cuts();
    }
    return true;
}

std::vector<Edge> Cutter::parts() {
    std::sort(m_cuts.begin(), m_cuts.end(), [](const Cut& a, const Cut& b) {
        return std::tie(a.edge, a.along, a.at.y, a.at.x) < std::tie(b.edge, b.along, b.at.y, b.at.x);
    });
    std::vector<Edge> result;
    auto next = m_cuts.begin();
    for (std::uint32_t e = 0; e < m_edges.size(); ++e) {
        const Edge& edge = m_edges[e];
        Point from = edge.low;
        for (; next != m_cuts.end() && next->edge == e; ++next) {
            if (next->at != from) {
                result.push_back(edge_of(from, next->at, edge.polygons_left));
                from = next->at;
            }
        }
        if (from != edge.high) {
            result.push_back(edge_of(from, edge.high, edge.polygons_left));
        }
    }
    return result;
}

/// Makes one edge of those that lie on one another; what has as many polygons on either side is left out.
void merge(std::vector<Edge>& edges) {
    const auto place = [](const Edge& e) { return std::tie(e.low.y, e.low.x, e.high.y, e.high.x); };
    std::sort(edges.begin(), edges.end(), [&](const Edge& a, const Edge& b) { return place(a) < place(b); });
    std::size_t kept = 0;
    for (std::size_t i = 0; i < edges.size();) {
        Edge merged = edges[i];
        for (++i; i < edges.size() && place(edges[i]) == place(merged); ++i) {
            merged.polygons_left += edges[i].polygons_left;
        }
        if (merged.polygons_left != 0) {
            edges[kept++] = merged;
        }
    }
    edges.resize(kept);
}

}  // namespace

std::vector<Edge> edges_of(const PolygonSet& polygons, std::span<const std::size_t> members) {
    std::vector<Edge> edges;
    for (const std::size_t feature : members) {
        for (std::size_t p = polygons.first_polygon(feature); p < polygons.first_polygon(feature + 1); ++p) {
            for (std::size_t r = polygons.first_ring(p); r < polygons.first_ring(p + 1); ++r) {
                const auto ring = polygons.ring(r);
                const bool inside_is_left = (twice_signed_area(ring) > 0) == (r == polygons.first_ring(p));
                for (std::size_t i = 0; i + 1 < ring.size(); ++i) {
                    if (ring[i] != ring[i + 1]) {
                        edges.push_back(edge_of(ring[i], ring[i + 1], inside_is_left ? 1 : -1));
                    }
                }
            }
        }
    }
    return edges;
}

std::optional<std::vector<Edge>> noded(std::vector<Edge> edges) {
    // First what is exact, so that edges on one line are one edge where a third one crosses them.
    for (const bool crossings : {false, true}) {
        Cutter cutter(std::move(edges), crossings);
        if (!cutter.find_cuts()) {
            return std::nullopt;
        }
        edges = cutter.parts();
        merge(edges);
    }
    return edges;
}

}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/polygon_arrangement.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "polygons/noded_edges.h"
#include "polygons/orientation.h"
#include "polygons/ring_assembly.h"
#include "polygons/side_counter.h"

namespace kestrel::polygons {

namespace {

/// Chains the edges that bound the union, which lies on their left, to rings.
class RingChainer {
  public:
    explicit RingChainer(std::size_t edges) : m_numbers(2 * edges) {}

    void add(Point from, Point to) { m_steps.push_back({m_numbers.of(from), m_numbers.of(to), false}); }
    /// Rings that do not meet themselves; nothing when the edges do not close.
    std::optional<std::vector<std::vector<Point>>> rings();

  private:
    struct Step {
        std::uint32_t from = 0;
        std::uint32_t to = 0;
        bool taken = false;
    };

    std::optional<std::uint32_t> next(std::uint32_t step) const;
    bool turns_before(Point at, Point back, Point a, Point b) const;
    void cut_loops(const std::vector<std::uint32_t>& walk, std::vector<std::vector<Point>>& rings);
    Point point(std::uint32_t number) const { return m_numbers.points()[number]; }

    PointNumbers m_numbers;
    std::vector<Step> m_steps;
    std::vector<std::uint32_t> m_first;   // of the steps that leave each point
    std::vector<std::size_t> m_position;  // of each point in the walk, from 1
};

/// Whether `a` comes before `b` when the direction from `at` to `back` turns clockwise.
bool RingChainer::turns_before(Point at, Point back, Point a, Point b) const {
    const auto half = [&](Point p) {
        const int side = orientation(at, back, p);
        return side < 0 ? 0 : (side == 0 ? 1 : 2);
    };
    return half(a) != half(b) ? half(a) < half(b) : orientation(at, a, b) < 0;
}

/// The step that follows: the other border of the part of the union that lies between the two at their common point.
std::optional<std::uint32_t> RingChainer::next(std::uint32_t step) const {
    const std::uint32_t at = m_steps[step].to;
    std::optional<std::uint32_t> best;
    for (std::uint32_t s = m_first[at]; s < m_first[at + 1]; ++s) {
        if (!best ||
            turns_before(point(at), point(m_steps[step].from), point(m_steps[s].to), point(m_steps[*best].to))) {
            best = s;
        }
    }
    return best && !m_steps[*best].taken ? best : std::nullopt;
}

/// Makes a ring of every loop of a closed walk: it may come to a point several times.
void RingChainer::cut_loops(const std::vector<std::uint32_t>& walk, std::vector<std::vector<Point>>& rings) {
    std::vector<std::uint32_t> open;
    for (const std::uint32_t at : walk) {
        if (m_position[at] != 0) {
            std::vector<Point> ring;
            const auto begin = open.begin() + static_cast<std::ptrdiff_t>(m_position[at]) - 1;
            for (auto p = begin; p != open.end(); ++p) {
                ring.push_back(point(*p));
                m_position[*p] = 0;
            }
            ring.push_back(point(at));
            rings.push_back(std::move(ring));
            open.erase(begin, open.end());
        }
        open.push_back(at);
        m_position[at] = open.size();
    }
    for (const std::uint32_t at : open) {
        m_position[at] = 0;
    }
}

std::optional<std::vector<std::vector<Point>>> RingChainer::rings() {
    std::sort(m_steps.begin(), m_steps.end(), [](const Step& a, const Step& b) { return a.from < b.from; });
    m_first.assign(m_numbers.points().size() + 1, 0);
    m_position.assign(m_numbers.points().size(), 0);
    for (const Step& step : m_steps) {
        ++m_first[step.from + 1];
    }
    std::partial_sum(m_first.begin(), m_first.end(), m_first.begin());
    std::vector<std::vector<Point>> result;
    std::vector<std::uint32_t> walk;
    for (std::uint32_t start = 0; start < m_steps.size(); ++start) {
        if (m_steps[start].taken) {
            continue;
        }
        walk.assign(1, m_steps[start].from);
        std::uint32_t step = start;
        m_steps[start].taken = true;
        while (m_steps[step].to != m_steps[start].from || next(step)) {
            walk.push_back(m_steps[step].to);
            const std::optional<std::uint32_t> following = next(step);
            if (!following) {
                return std::nullopt;
            }
            step = *following;
            m_steps[step].taken = true;
        }
        walk.push_back(m_steps[step].to);
        cut_loops(walk, result);
    }
    return result;
}

}  // namespace

std::optional<PolygonSet> arranged_union(const PolygonSet& polygons, std::span<const std::size_t> members) {
    const std::optional<std::vector<Edge>> edges = noded(edges_of(polygons, members));
    if (!edges) {
        return std::nullopt;
    }
    const SideCounter counter(*edges);
    RingChainer chainer(edges->size());
    for (const Edge& edge : *edges) {
        const auto sides = counter.of(edge);
        if (!sides) {
            return std::nullopt;
        }
        if (sides->left > 0 && sides->right == 0) {
            chainer.add(edge.low, edge.high);
        } else if (sides->right > 0 && sides->left == 0) {
            chainer.add(edge.high, edge.low);
        }
    }
    auto rings = chainer.rings();
    return rings ? assemble_rings(std::move(*rings)) : std::nullopt;
}

}  // namespace kestrel::polygons

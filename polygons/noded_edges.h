// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "polygons/polygons.h"

/// \file
/// Private to this room: the edges of polygons, cut where they meet.
namespace kestrel::polygons {

/// Points from south to north, and from west to east on a level.
inline bool below(Point a, Point b) {
    return a.y != b.y ? a.y < b.y : a.x < b.x;
}

/// An edge of a polygon, or a part of one, with its ends in ascending order. `polygons_left` says how many more
/// polygons lie on its left, looking from `low` to `high`, than on its right: 1 or -1 for the edge of one polygon, any
/// number where edges of several lie on one another.
struct Edge {
    Point low;
    Point high;
    int polygons_left = 0;
    friend bool operator==(const Edge&, const Edge&) = default;
};

/// The edges of the features at the positions `members`, none of them of no length. Rings may run either way: the first
/// of a polygon is its shell, the others are holes.
std::vector<Edge> edges_of(const PolygonSet& polygons, std::span<const std::size_t> members);

/// The parts of edges that meet at their ends only. Parts that lie on one another are one; those with as many polygons
/// on either side are left out, so a border that two polygons share is gone, however their corners lie along it. The
/// order of the result does not depend on that of the edges.
///
/// Where edges end on one another is decided exactly; where they cross is rounded to doubles, points that are some last
/// digits apart being one.
/// \return nothing when so many edges lie close together that looking at all pairs of them is no gain.
std::optional<std::vector<Edge>> noded(std::vector<Edge> edges);

}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/side_counter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/support/lattice_polygons.h"

namespace kestrel::polygons {
namespace {

using test::all_of;
using test::box;
using test::features;

/// The polygons on both sides of every edge are those over points a hair beside it.
/// \param hair shorter than the way from there to any other edge.
void compare_with_points_beside(const PolygonSet& set, double hair, const std::string& what) {
    const auto members = all_of(set);
    const auto edges = noded(edges_of(set, members));
    ASSERT_TRUE(edges.has_value()) << what;
    const SideCounter counter(*edges);
    for (const Edge& e : *edges) {
        const auto sides = counter.of(e);
        ASSERT_TRUE(sides.has_value()) << what;
        const auto [left, right] = test::points_beside(e.low, e.high, hair);
        ASSERT_EQ(sides->left, test::polygons_over(set, members, left)) << what << " at " << left.x << " " << left.y;
        ASSERT_EQ(sides->right, test::polygons_over(set, members, right))
            << what << " at " << right.x << " " << right.y;
    }
}

TEST(SideCounter, EdgesOfABoxHaveItOnOneSide) {
    compare_with_points_beside(features({{box(0, 0, 4, 2)}}), 0.1, "box");
}

TEST(SideCounter, AHoleIsNoPolygon) {
    compare_with_points_beside(features({{box(0, 0, 9, 9), box(3, 3, 3, 3)}}), 0.1, "hole");
}

TEST(SideCounter, APolygonInAHoleIsCountedAlone) {
    compare_with_points_beside(features({{box(0, 0, 9, 9), box(2, 2, 5, 5)}, {box(3, 3, 1, 1)}}), 0.1, "island");
}

TEST(SideCounter, PolygonsOverPolygonsAreAllCounted) {
    const PolygonSet set = features({{box(0, 0, 9, 9)}, {box(1, 1, 7, 7)}, {box(2, 2, 5, 5)}, {box(3, 3, 1, 1)}});
    compare_with_points_beside(set, 0.1, "nest");
    const auto edges = noded(edges_of(set, all_of(set)));
    ASSERT_TRUE(edges.has_value());
    int most = 0;
    for (const Edge& e : *edges) {
        most = std::max(most, SideCounter(*edges).of(e)->left);
    }
    EXPECT_EQ(most, 4);
}

TEST(SideCounter, ALineThroughCornersCountsWhatItCrossesOnce) {
    // The line to the middle of the last box comes through a corner where borders go on, and one where they turn.
    compare_with_points_beside(
        features({{{{0, 0}, {2, 1}, {0, 2}}}, {{{3, 1}, {5, 0}, {5, 2}}}, {box(6, 0, 2, 2)}, {box(0, -3, 4, 1)}}), 0.01,
        "corners");
}

TEST(SideCounter, CountsBelowZeroAreNone) {
    // No polygon can lie west of everything, as it would on the left of this edge.
    const std::vector<Edge> edges{{{0, 0}, {0, 1}, 1}};
    EXPECT_FALSE(SideCounter(edges).of(edges[0]).has_value());
    const std::vector<Edge> level{{{0, 0}, {1, 0}, -1}};
    EXPECT_FALSE(SideCounter(level).of(level[0]).has_value());
}

TEST(SideCounter, AnEdgeThroughTheMiddleLeavesItUntold) {
    const std::vector<Edge> edges{{{0, 0}, {0, 2}, -1}, {{-1, 0}, {1, 2}, -1}};
    EXPECT_FALSE(SideCounter(edges).of(edges[0]).has_value());
}

TEST(SideCounter, LatticePolygonsAreThoseOverPointsBesideTheEdges) {
    std::mt19937 random(51);
    for (int i = 0; i < 4000; ++i) {
        compare_with_points_beside(test::lattice_polygons(random, 2 + i % 5, 1 + i % 9), 1e-8,
                                   "set " + std::to_string(i));
    }
}

TEST(SideCounter, ManySmallBoxesInManyStripsAreThoseOverPointsBesideTheEdges) {
    std::mt19937 random(52);
    for (int i = 0; i < 30; ++i) {
        compare_with_points_beside(test::lattice_boxes(random, 60, 1 + i % 12, 200), 0.1, "set " + std::to_string(i));
    }
}

}  // namespace
}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/polygons.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace kestrel::polygons {
namespace {

Envelope around(std::initializer_list<Point> points) {
    Envelope result;
    for (const Point p : points) {
        result.add(p);
    }
    return result;
}

void add_ring(PolygonSet& set, std::initializer_list<Point> points) {
    set.begin_ring();
    for (const Point p : points) {
        set.add(p);
    }
}

/// Feature 0: a square with a hole, and a triangle; feature 1: empty; feature 2: a square.
PolygonSet sample() {
    PolygonSet set;
    set.begin_feature();
    set.begin_polygon();
    add_ring(set, {{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}});
    add_ring(set, {{1, 1}, {2, 1}, {2, 2}, {1, 2}, {1, 1}});
    set.begin_polygon();
    add_ring(set, {{10, 0}, {12, 0}, {10, 2}, {10, 0}});
    set.begin_feature();
    set.begin_feature();
    set.begin_polygon();
    add_ring(set, {{20, 20}, {21, 20}, {21, 21}, {20, 21}, {20, 20}});
    return set;
}

TEST(Envelope, IsEmptyUntilAPointIsAdded) {
    Envelope none;
    EXPECT_TRUE(none.empty());
    none.include(Envelope());
    EXPECT_TRUE(none.empty());
    none.add({3, 4});
    EXPECT_FALSE(none.empty());
    EXPECT_EQ(none.min_x, 3.0);
    EXPECT_EQ(none.max_y, 4.0);
}

TEST(Envelope, IncludesAnother) {
    Envelope one = around({{0, 0}, {1, 1}});
    one.include(around({{5, -2}, {6, 0.5}}));
    EXPECT_EQ(one.min_x, 0.0);
    EXPECT_EQ(one.max_x, 6.0);
    EXPECT_EQ(one.min_y, -2.0);
    EXPECT_EQ(one.max_y, 1.0);
}

TEST(Envelope, TouchesAlsoInACornerOrAlongABorder) {
    const Envelope one = around({{0, 0}, {1, 1}});
    EXPECT_TRUE(one.touches(around({{1, 1}, {2, 2}})));
    EXPECT_TRUE(one.touches(around({{1, 0}, {2, 1}})));
    EXPECT_TRUE(one.touches(around({{0.2, 0.2}, {0.3, 0.3}})));
    EXPECT_FALSE(one.touches(around({{1.001, 0}, {2, 1}})));
    EXPECT_FALSE(one.touches(around({{0, -2}, {1, -0.001}})));
    EXPECT_FALSE(one.touches(Envelope()));
    EXPECT_FALSE(Envelope().touches(one));
}

TEST(Envelope, ContainsWhatReachesItsBorderAndNothing) {
    const Envelope one = around({{0, 0}, {1, 1}});
    EXPECT_TRUE(one.contains(one));
    EXPECT_TRUE(one.contains(Envelope()));
    EXPECT_FALSE(one.contains(around({{0, 0}, {1, 1.001}})));
    EXPECT_FALSE(Envelope().contains(one));
}

TEST(PolygonSet, KnowsWhatBelongsToWhat) {
    const PolygonSet set = sample();
    EXPECT_EQ(set.feature_count(), 3U);
    EXPECT_EQ(set.polygon_count(), 3U);
    EXPECT_EQ(set.ring_count(), 4U);
    EXPECT_EQ(set.point_count(), 19U);
    EXPECT_EQ(set.first_polygon(0), 0U);
    EXPECT_EQ(set.first_polygon(1), 2U);
    EXPECT_EQ(set.first_polygon(2), 2U);
    EXPECT_EQ(set.first_polygon(3), 3U) << "one past the last";
    EXPECT_EQ(set.first_ring(1), 2U);
    EXPECT_EQ(set.first_ring(3), 4U);
    EXPECT_EQ(set.first_ring_of(2), 3U);
    EXPECT_EQ(set.ring(1).size(), 5U);
    EXPECT_EQ(set.ring(2).size(), 4U);
    EXPECT_EQ(set.ring(3).back(), (Point{20, 20}));
    EXPECT_FALSE(set.empty(0));
    EXPECT_TRUE(set.empty(1));
    EXPECT_FALSE(set.empty(2));
}

TEST(PolygonSet, AreaIsShellsLessHoles) {
    const PolygonSet set = sample();
    EXPECT_EQ(set.area(0), 16 - 1 + 2.0);
    EXPECT_EQ(set.area(1), 0.0);
    EXPECT_EQ(set.area(2), 1.0);
}

TEST(PolygonSet, AreaDoesNotDependOnTheWayRingsRun) {
    PolygonSet set;
    set.begin_feature();
    set.begin_polygon();
    add_ring(set, {{0, 0}, {0, 4}, {4, 4}, {4, 0}, {0, 0}});
    add_ring(set, {{1, 1}, {1, 2}, {2, 2}, {2, 1}, {1, 1}});
    EXPECT_EQ(set.area(0), 15.0);
}

TEST(PolygonSet, AreaFarFromTheOriginKeepsItsDigits) {
    PolygonSet set;
    set.begin_feature();
    set.begin_polygon();
    constexpr double kFar = 1e9;
    add_ring(set, {{kFar, kFar}, {kFar + 0.5, kFar}, {kFar + 0.5, kFar + 0.5}, {kFar, kFar + 0.5}, {kFar, kFar}});
    EXPECT_EQ(set.area(0), 0.25);
}

TEST(PolygonSet, EnvelopesOfOneAndOfAll) {
    const PolygonSet set = sample();
    EXPECT_EQ(set.envelope(0).max_x, 12.0);
    EXPECT_EQ(set.envelope(0).max_y, 4.0);
    EXPECT_TRUE(set.envelope(1).empty());
    EXPECT_EQ(set.envelope(2).min_x, 20.0);
    EXPECT_EQ(set.envelope().min_x, 0.0);
    EXPECT_EQ(set.envelope().max_y, 21.0);
    EXPECT_TRUE(PolygonSet().envelope().empty());
}

TEST(PolygonSet, AppendedFeaturesAreCopiesInTheirOwnOrder) {
    const PolygonSet source = sample();
    PolygonSet set;
    set.append(source, 2);
    set.append(source, 1);
    set.append(source, 0);
    ASSERT_EQ(set.feature_count(), 3U);
    EXPECT_EQ(set.area(0), 1.0);
    EXPECT_TRUE(set.empty(1));
    EXPECT_EQ(set.area(2), 17.0);
    EXPECT_EQ(set.first_ring(set.first_polygon(2) + 1) - set.first_ring_of(2), 2U) << "shell and hole";
}

TEST(PolygonSet, PointsAddedAtOnceBelongToTheRingBegun) {
    PolygonSet set;
    set.begin_feature();
    set.begin_polygon();
    set.begin_ring();
    set.add({0, 0});
    const auto rest = set.add_points(3);
    rest[0] = {2, 0};
    rest[1] = {0, 2};
    rest[2] = {0, 0};
    ASSERT_EQ(set.ring(0).size(), 4U);
    EXPECT_EQ(set.area(0), 2.0);
}

TEST(PolygonSet, PointsCanBeMovedInPlace) {
    PolygonSet set = sample();
    for (Point& p : set.points()) {
        p.x += 100;
    }
    set.shrink_to_fit();
    EXPECT_EQ(set.envelope(0).min_x, 100.0);
    EXPECT_EQ(set.area(0), 17.0);
}

TEST(PolygonSet, NewOneHoldsNothing) {
    const PolygonSet set;
    EXPECT_EQ(set.feature_count(), 0U);
    EXPECT_EQ(set.first_polygon(0), 0U);
    EXPECT_EQ(set.point_count(), 0U);
}

}  // namespace
}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/overlap.h"

#include <gtest/gtest.h>

#include <random>

#include "polygons/intersect.h"
#include "polygons/repair.h"
#include "tests/support/lattice_polygons.h"

namespace kestrel::polygons {
namespace {

using test::box;
using test::features;

bool slow_overlap(const PolygonSet& a, const PolygonSet& b) {
    bool any = false;
    intersect(a, b, [&](std::size_t, std::size_t, const PolygonSet&) {
        any = true;
        return false;
    });
    return any;
}

TEST(Overlap, TouchingIsNone) {
    const PolygonSet square = features({{box(0, 0, 2, 2)}});
    EXPECT_FALSE(overlap(square, features({{box(2, 0, 2, 2)}}))) << "along a side";
    EXPECT_FALSE(overlap(square, features({{box(2, 2, 1, 1)}}))) << "at a corner";
    EXPECT_FALSE(overlap(square, features({{box(5, 5, 1, 1)}}))) << "not at all";
    EXPECT_TRUE(overlap(square, features({{box(1, 1, 2, 2)}})));
    EXPECT_TRUE(overlap(square, features({{box(0.5, 0.5, 1, 1)}}))) << "within";
    EXPECT_TRUE(overlap(features({{box(0.5, 0.5, 1, 1)}}), square)) << "around";
    EXPECT_TRUE(overlap(square, square));
}

TEST(Overlap, InAHoleIsNone) {
    const PolygonSet frame = features({{box(0, 0, 6, 6), box(1, 1, 4, 4)}});
    EXPECT_FALSE(overlap(frame, features({{box(2, 2, 2, 2)}})));
    EXPECT_FALSE(overlap(frame, features({{box(1, 1, 4, 4)}})));
    EXPECT_TRUE(overlap(frame, features({{box(2, 2, 3.5, 1)}})));
}

TEST(Overlap, EmptySetsAndFeaturesHaveNone) {
    PolygonSet empty;
    EXPECT_FALSE(overlap(empty, empty));
    empty.begin_feature();
    EXPECT_FALSE(overlap(empty, features({{box(0, 0, 1, 1)}})));
    EXPECT_FALSE(overlap(features({{box(0, 0, 1, 1)}}), empty));
}

TEST(Overlap, IsWhatAnyIntersectionSays) {
    std::mt19937 random(12);
    int overlapping = 0;
    for (int i = 0; i < 400; ++i) {
        PolygonSet a = test::lattice_boxes(random, 12, 2, 1 + i % 4);
        PolygonSet b =
            i % 2 == 0 ? test::lattice_boxes(random, 12, 2, 1 + i % 3) : test::lattice_polygons(random, 6, 1 + i % 3);
        repair(a);
        repair(b);
        const bool expected = slow_overlap(a, b);
        ASSERT_EQ(overlap(a, b), expected) << i;
        ASSERT_EQ(overlap(b, a), expected) << i;
        overlapping += expected ? 1 : 0;
    }
    EXPECT_GT(overlapping, 50);
    EXPECT_LT(overlapping, 350);
}

}  // namespace
}  // namespace kestrel::polygons

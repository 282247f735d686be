// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/repair.h"

#include <gtest/gtest.h>

#include "tests/polygons/polygon_makers.h"

namespace kestrel::polygons {
namespace {

TEST(Repair, LeavesValidPolygonsAsTheyAre) {
    PolygonSet set = set_of(
        {{{rectangle(0, 0, 4, 4), rectangle(1, 1, 2, 2)}, {rectangle(4, 4, 5, 5)}}, {}, {{rectangle(0, 0, 1, 1)}}});
    const PolygonSet before = set;
    EXPECT_EQ(repair(set), 0U);
    EXPECT_TRUE(equal(set, before));
}

TEST(Repair, BowTieBecomesItsTwoTriangles) {
    PolygonSet set = set_of({{{{{0, 0}, {2, 2}, {2, 0}, {0, 2}, {0, 0}}}}});
    EXPECT_EQ(repair(set), 1U);
    EXPECT_EQ(set.polygon_count(), 2U);
    EXPECT_NEAR(set.area(0), 2.0, 1e-12);
    EXPECT_TRUE(is_valid(set));
}

TEST(Repair, OverlappingPartsKeepWhatEitherCovers) {
    PolygonSet set = set_of({{{rectangle(0, 0, 2, 2)}, {rectangle(1, 0, 3, 2)}}});
    EXPECT_EQ(repair(set), 1U);
    EXPECT_NEAR(set.area(0), 6.0, 1e-12);
    EXPECT_EQ(set.polygon_count(), 1U);
}

TEST(Repair, RepeatedPartsCountOnce) {
    PolygonSet set = set_of({{{rectangle(0, 0, 2, 2)}, {rectangle(0, 0, 2, 2)}}});
    EXPECT_EQ(repair(set), 1U);
    EXPECT_NEAR(set.area(0), 4.0, 1e-12);
}

TEST(Repair, HolesMayOverlapOrLeaveTheShell) {
    PolygonSet overlapping = set_of({{{rectangle(0, 0, 9, 9), rectangle(1, 1, 4, 4), rectangle(2, 2, 5, 5)}}});
    EXPECT_EQ(repair(overlapping), 1U);
    EXPECT_NEAR(overlapping.area(0), 81 - (9 + 9 - 4), 1e-9);
    PolygonSet leaving = set_of({{{rectangle(0, 0, 4, 4), rectangle(3, 1, 6, 2)}}});
    EXPECT_EQ(repair(leaving), 1U);
    EXPECT_NEAR(leaving.area(0), 15.0, 1e-9);
}

TEST(Repair, SpikesAndCollapsedPartsAreDropped) {
    PolygonSet set = set_of({{{{{0, 0}, {2, 0}, {2, 2}, {5, 2}, {2, 2}, {0, 2}, {0, 0}}}},
                             {{{{0, 0}, {3, 3}, {1, 1}, {0, 0}}}},
                             {{{{0, 0}, {0, 0}, {0, 0}, {0, 0}}}}});
    EXPECT_EQ(repair(set), 3U);
    EXPECT_NEAR(set.area(0), 4.0, 1e-12);
    EXPECT_EQ(set.envelope(0).max_x, 2.0);
    EXPECT_TRUE(set.empty(1));
    EXPECT_TRUE(set.empty(2));
    EXPECT_EQ(set.feature_count(), 3U);
}

TEST(Repair, KeepsTheOrderOfFeatures) {
    const Polygon bow_tie{{{0, 0}, {2, 2}, {2, 0}, {0, 2}, {0, 0}}};
    PolygonSet set = set_of({{{rectangle(10, 0, 11, 1)}}, {bow_tie}, {}, {{rectangle(20, 0, 22, 2)}}, {bow_tie}});
    EXPECT_EQ(repair(set), 2U);
    ASSERT_EQ(set.feature_count(), 5U);
    EXPECT_EQ(set.envelope(0).min_x, 10.0);
    EXPECT_NEAR(set.area(1), 2.0, 1e-12);
    EXPECT_TRUE(set.empty(2));
    EXPECT_EQ(set.envelope(3).min_x, 20.0);
    EXPECT_NEAR(set.area(4), 2.0, 1e-12);
}

}  // namespace
}  // namespace kestrel::polygons

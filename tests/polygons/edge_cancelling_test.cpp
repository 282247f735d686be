// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/edge_cancelling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "polygons/dissolve.h"
#include "polygons/repair.h"
#include "tests/support/dissolved_copy.h"
#include "tests/support/exact_reference.h"

namespace kestrel::polygons {
namespace {

const data::Grid kGrid{.x0 = 0, .y0 = 64, .dx = 1, .dy = -1, .columns = 64, .rows = 64};

void add_square(PolygonSet& polygons, double x, double y, double size) {
    polygons.begin_feature();
    polygons.begin_polygon();
    polygons.begin_ring();
    for (const Point p :
         {Point{x, y}, Point{x, y + size}, Point{x + size, y + size}, Point{x + size, y}, Point{x, y}}) {
        polygons.add(p);
    }
}

std::vector<std::size_t> all_of(const PolygonSet& polygons) {
    std::vector<std::size_t> members(polygons.feature_count());
    std::iota(members.begin(), members.end(), 0U);
    return members;
}

TEST(EdgeCancelling, TwoSquaresBecomeOneRing) {
    PolygonSet polygons;
    add_square(polygons, 0, 0, 1);
    add_square(polygons, 1, 0, 1);
    const auto joined = cancel_shared_edges(polygons, all_of(polygons));
    ASSERT_TRUE(joined);
    EXPECT_EQ(joined->ring_count(), 1U);
    EXPECT_EQ(joined->area(0), 2);
    EXPECT_EQ(joined->ring(0).front(), (Point{0, 0}));
}

TEST(EdgeCancelling, ARingOfSquaresHasAHole) {
    PolygonSet polygons;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            if (i != 1 || j != 1) {
                add_square(polygons, i, j, 1);
            }
        }
    }
    const auto joined = cancel_shared_edges(polygons, all_of(polygons));
    ASSERT_TRUE(joined);
    EXPECT_EQ(joined->polygon_count(), 1U);
    EXPECT_EQ(joined->ring_count(), 2U);
    EXPECT_EQ(joined->area(0), 8);
}

TEST(EdgeCancelling, AFeatureThatFillsAHoleClosesIt) {
    PolygonSet polygons;
    add_square(polygons, 0, 0, 3);
    polygons.begin_ring();  // the hole of the first feature, run the same way about as its shell
    for (const Point p : {Point{1, 1}, Point{1, 2}, Point{2, 2}, Point{2, 1}, Point{1, 1}}) {
        polygons.add(p);
    }
    add_square(polygons, 1, 1, 1);
    const auto joined = cancel_shared_edges(polygons, all_of(polygons));
    ASSERT_TRUE(joined);
    EXPECT_EQ(joined->ring_count(), 1U);
    EXPECT_EQ(joined->area(0), 9);
}

TEST(EdgeCancelling, PartsThatAreApartStayParts) {
    PolygonSet polygons;
    add_square(polygons, 5, 0, 1);
    add_square(polygons, 0, 0, 1);
    const auto joined = cancel_shared_edges(polygons, all_of(polygons));
    ASSERT_TRUE(joined);
    EXPECT_EQ(joined->polygon_count(), 2U);
    EXPECT_EQ(joined->ring(0).front(), (Point{0, 0})) << "ordered by their lowest points";
}

TEST(EdgeCancelling, DoubtIsLeftToOthers) {
    PolygonSet twice;
    add_square(twice, 0, 0, 1);
    add_square(twice, 0, 0, 1);
    EXPECT_FALSE(cancel_shared_edges(twice, all_of(twice))) << "the same edge twice";
    PolygonSet corner;
    add_square(corner, 0, 0, 1);
    add_square(corner, 1, 1, 1);
    EXPECT_FALSE(cancel_shared_edges(corner, all_of(corner))) << "two rings meet in a corner";
}

TEST(EdgeCancelling, TheOrderOfThePolygonsDoesNotShow) {
    std::mt19937 random(31);
    for (int i = 0; i < 100; ++i) {
        const PolygonSet polygons = test::coverage(random, kGrid, 6, 5);
        std::vector<std::size_t> members = all_of(polygons);
        members.resize(3 + static_cast<std::size_t>(i) % 25);
        const auto joined = cancel_shared_edges(polygons, members);
        std::shuffle(members.begin(), members.end(), random);
        const auto shuffled = cancel_shared_edges(polygons, members);
        ASSERT_EQ(joined.has_value(), shuffled.has_value());
        if (joined) {
            ASSERT_TRUE(std::ranges::equal(joined->points(), shuffled->points())) << "case " << i;
        }
    }
}

TEST(EdgeCancelling, JoinedCoveragesHaveTheCellsAndTheAreaOfTheirMembers) {
    std::mt19937 random(32);
    std::size_t joined_groups = 0;
    for (int i = 0; i < 600; ++i) {
        const PolygonSet polygons = test::coverage(random, kGrid, 7, 6);
        std::vector<std::size_t> members;
        for (std::size_t f = 0; f < polygons.feature_count(); ++f) {
            if (random() % 3 != 0) {
                members.push_back(f);
            }
        }
        const auto joined = cancel_shared_edges(polygons, members);
        if (!joined) {
            continue;
        }
        ++joined_groups;
        double area = 0;
        for (const std::size_t f : members) {
            area += polygons.area(f);
        }
        ASSERT_NEAR(joined->area(0), area, 1e-9) << "case " << i;
        for (int row = 0; row < kGrid.rows; row += 3) {
            for (int column = 0; column < kGrid.columns; column += 3) {
                const bool expected = std::any_of(members.begin(), members.end(), [&](std::size_t f) {
                    return test::centre_inside(polygons, f, kGrid, column, row);
                });
                ASSERT_EQ(test::centre_inside(*joined, 0, kGrid, column, row), expected) << "case " << i;
            }
        }
    }
    EXPECT_GT(joined_groups, 20U);
}

TEST(EdgeCancelling, DissolvingAnythingAtAllGivesTheUnionWhateverTheThreads) {
    // Coverages and awkward polygons mixed: borders that do not match and overlaps are united by GEOS.
    std::mt19937 random(33);
    for (int i = 0; i < 60; ++i) {
        PolygonSet polygons = test::coverage(random, kGrid, 5, 4);
        polygons.append(test::awkward_polygons(random, kGrid, i % 5));
        repair(polygons);
        std::vector<std::uint32_t> groups;
        for (std::size_t f = 0; f < polygons.feature_count(); ++f) {
            groups.push_back(static_cast<std::uint32_t>(random() % 4));
        }
        const auto shared = std::make_shared<PolygonSet>(polygons);
        base::NoProgress nobody;
        const PolygonSet one = test::copy_of(dissolve(shared, groups, 5, nobody, 1));
        const PolygonSet three = test::copy_of(dissolve(shared, groups, 5, nobody, 3));
        ASSERT_TRUE(std::ranges::equal(one.points(), three.points())) << "case " << i;
        ASSERT_EQ(one.feature_count(), 5U);
        EXPECT_TRUE(one.empty(4));
        PolygonSet checked = one;
        EXPECT_EQ(repair(checked), 0U) << "case " << i;
    }
}

}  // namespace
}  // namespace kestrel::polygons

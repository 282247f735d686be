// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/polygon_arrangement.h"

#include <geos_c.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "polygons/geos_support.h"
#include "polygons/repair.h"
#include "tests/support/exact_reference.h"

namespace kestrel::polygons {
namespace {

using Rings = std::vector<std::vector<Point>>;

void add_polygon(PolygonSet& set, const Rings& rings) {
    set.begin_polygon();
    for (const auto& ring : rings) {
        set.begin_ring();
        for (const Point p : ring) {
            set.add(p);
        }
        set.add(ring.front());
    }
}

PolygonSet features(const std::vector<Rings>& polygons) {
    PolygonSet set;
    for (const Rings& rings : polygons) {
        set.begin_feature();
        add_polygon(set, rings);
    }
    return set;
}

std::vector<std::size_t> all_of(const PolygonSet& set) {
    std::vector<std::size_t> members(set.feature_count());
    std::iota(members.begin(), members.end(), 0U);
    return members;
}

bool valid(const Geos& geos, const PolygonSet& set) {
    return GEOSisValid_r(geos.handle(), geos.multipolygon(set, 0).get()) == 1;
}

/// The area by which the result and the union that GEOS makes differ, and the area of the latter.
std::pair<double, double> difference_to_geos(const Geos& geos, const PolygonSet& set, const PolygonSet& result) {
    const Geos::Geometry all = geos.multipolygon(set, all_of(set));
    const Geos::Geometry expected = geos.owned(GEOSUnaryUnion_r(geos.handle(), all.get()), "union");
    const Geos::Geometry ours = geos.multipolygon(result, 0);
    const Geos::Geometry differing =
        geos.owned(GEOSSymDifference_r(geos.handle(), expected.get(), ours.get()), "difference");
    double area = 0;
    double whole = 0;
    GEOSArea_r(geos.handle(), differing.get(), &area);
    GEOSArea_r(geos.handle(), expected.get(), &whole);
    return {area, whole};
}

std::vector<Point> box(double x, double y, double width, double height) {
    return {{x, y}, {x + width, y}, {x + width, y + height}, {x, y + height}};
}

PolygonSet united(const PolygonSet& set) {
    auto result = arranged_union(set, all_of(set));
    EXPECT_TRUE(result.has_value());
    return result.value_or(PolygonSet());
}

TEST(PolygonArrangement, ACornerOnANeighboursEdgeNeedsNoGap) {
    const PolygonSet result = united(features({{box(0, 0, 10, 10)}, {box(10, 0, 10, 4)}, {box(10, 4, 10, 6)}}));
    EXPECT_EQ(result.ring_count(), 1U);
    EXPECT_EQ(result.area(0), 200);
}

TEST(PolygonArrangement, OverlapsAreCountedOnce) {
    const PolygonSet result = united(features({{box(0, 0, 10, 10)}, {box(5, 5, 10, 10)}, {box(7, 7, 2, 2)}}));
    EXPECT_EQ(result.ring_count(), 1U);
    EXPECT_EQ(result.area(0), 175);
}

TEST(PolygonArrangement, TheSamePolygonTwiceIsThatPolygon) {
    const PolygonSet result =
        united(features({{box(0, 0, 10, 10), box(2, 2, 3, 3)}, {box(0, 0, 10, 10), box(2, 2, 3, 3)}}));
    EXPECT_EQ(result.ring_count(), 2U);
    EXPECT_EQ(result.area(0), 91);
}

TEST(PolygonArrangement, AHoleThatIsFilledGoes) {
    EXPECT_EQ(united(features({{box(0, 0, 10, 10), box(2, 2, 4, 4)}, {box(2, 2, 4, 4)}})).ring_count(), 1U);
    const PolygonSet half = united(features({{box(0, 0, 10, 10), box(2, 2, 4, 4)}, {box(1, 1, 3, 6)}}));
    EXPECT_EQ(half.ring_count(), 2U);
    EXPECT_EQ(half.area(0), 92);
}

TEST(PolygonArrangement, PolygonsThatTouchInAPointStayApart) {
    const Geos geos;
    const PolygonSet result = united(features({{box(0, 0, 10, 10)}, {box(10, 10, 5, 5)}}));
    EXPECT_EQ(result.polygon_count(), 2U);
    EXPECT_TRUE(valid(geos, result));
}

TEST(PolygonArrangement, AHoleThatTouchesTheShellIsAHole) {
    const Geos geos;
    // Four boxes around a gap, of which two meet in a point only.
    const PolygonSet result = united(
        features({{box(0, 0, 10, 4)}, {box(0, 4, 4, 6)}, {{{4, 10}, {10, 4}, {12, 12}}}, {box(4, 9.5, 0.5, 0.5)}}));
    EXPECT_TRUE(valid(geos, result));
    const auto [differing, whole] = difference_to_geos(
        geos,
        features({{box(0, 0, 10, 4)}, {box(0, 4, 4, 6)}, {{{4, 10}, {10, 4}, {12, 12}}}, {box(4, 9.5, 0.5, 0.5)}}),
        result);
    EXPECT_NEAR(differing, 0, 1e-12 * whole);
    EXPECT_EQ(result.ring_count(), 2U);
}

TEST(PolygonArrangement, NothingIsMadeOfNoEdges) {
    PolygonSet set;
    set.begin_feature();
    const auto result = arranged_union(set, all_of(set));
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(result->polygon_count(), 0U);
}

/// Polygons on a lattice of few points, so that edges lie on one another, cross, touch and end on one another all the
/// time; all crossings of edges are exact where the lattice allows.
PolygonSet lattice_polygons(std::mt19937& random, const Geos& geos) {
    PolygonSet set;
    const int side = 3 + static_cast<int>(random() % 8);
    while (set.feature_count() < 2 + random() % 8) {
        PolygonSet one;
        one.begin_feature();
        std::vector<Point> ring;
        const std::size_t corners = 3 + random() % 5;
        for (std::size_t i = 0; i < corners; ++i) {
            ring.push_back({static_cast<double>(random() % static_cast<unsigned>(side)),
                            static_cast<double>(random() % static_cast<unsigned>(side))});
        }
        add_polygon(one, {ring});
        if (valid(geos, one)) {
            set.append(one, 0);
        }
    }
    return set;
}

/// Lots along a street in two rows, their corners rounded so that borders gape or overlap by a hair.
PolygonSet lots(std::mt19937& random, double step) {
    PolygonSet set;
    std::uniform_real_distribution<double> between(0, 1);
    const double turn = between(random) * 6.283;
    const double c = std::cos(turn);
    const double s = std::sin(turn);
    const auto at = [&](double x, double y) {
        return Point{std::round((1e6 + c * x - s * y) / step) * step, std::round((2e6 + s * x + c * y) / step) * step};
    };
    for (int row = 0; row < 2; ++row) {
        std::vector<double> cuts{0, 200};
        for (std::size_t i = 0; i < 3 + random() % 6; ++i) {
            cuts.push_back(200 * between(random));
        }
        std::sort(cuts.begin(), cuts.end());
        for (std::size_t i = 0; i + 1 < cuts.size(); ++i) {
            set.begin_feature();
            add_polygon(set, {{at(cuts[i], 30.0 * row), at(cuts[i + 1], 30.0 * row), at(cuts[i + 1], 30.0 * row + 30),
                               at(cuts[i], 30.0 * row + 30)}});
        }
    }
    return set;
}

void compare_with_geos(const Geos& geos, const PolygonSet& set, double tolerance, int& made, const std::string& what) {
    const auto result = arranged_union(set, all_of(set));
    if (!result || !valid(geos, *result)) {
        return;  // then GEOS does it
    }
    ++made;
    const auto [differing, whole] = difference_to_geos(geos, set, *result);
    EXPECT_LE(differing, tolerance * whole) << what;
    EXPECT_NEAR(result->area(0), whole, tolerance * whole) << what;
}

TEST(PolygonArrangement, UnionsOnALatticeAreThoseOfGeos) {
    const Geos geos;
    std::mt19937 random(31);
    int made = 0;
    for (int i = 0; i < 4000; ++i) {
        compare_with_geos(geos, lattice_polygons(random, geos), 1e-9, made, "set " + std::to_string(i));
    }
    EXPECT_GT(made, 3900);
}

TEST(PolygonArrangement, UnionsOfLotsAreThoseOfGeos) {
    const Geos geos;
    std::mt19937 random(32);
    for (const double step : {0.001, 0.01, 1e-7}) {
        int made = 0;
        for (int i = 0; i < 700; ++i) {
            PolygonSet set = lots(random, step);
            base::NoProgress nobody;
            repair(set);
            compare_with_geos(geos, set, 1e-9, made, "lots " + std::to_string(i));
        }
        EXPECT_GT(made, 650) << step;
    }
}

TEST(PolygonArrangement, UnionsOfAwkwardPolygonsAreThoseOfGeos) {
    const Geos geos;
    std::mt19937 random(33);
    const data::Grid grid{.x0 = 0, .y0 = 40, .dx = 1, .dy = -1, .columns = 40, .rows = 40};
    int made = 0;
    for (int i = 0; i < 1000; ++i) {
        PolygonSet set = test::awkward_polygons(random, grid, 6);
        repair(set);
        compare_with_geos(geos, set, 1e-9, made, "set " + std::to_string(i));
    }
    EXPECT_GT(made, 900);
}

TEST(PolygonArrangement, TheOrderOfThePolygonsDoesNotShow) {
    std::mt19937 random(34);
    for (int i = 0; i < 200; ++i) {
        const PolygonSet set = lots(random, 0.001);
        std::vector<std::size_t> members = all_of(set);
        const auto first = arranged_union(set, members);
        std::shuffle(members.begin(), members.end(), random);
        const auto second = arranged_union(set, members);
        ASSERT_EQ(first.has_value(), second.has_value());
        if (first) {
            EXPECT_TRUE(std::equal(first->points().begin(), first->points().end(), second->points().begin(),
                                   second->points().end()));
            EXPECT_EQ(first->ring_count(), second->ring_count());
        }
    }
}

TEST(PolygonArrangement, TooManyEdgesCloseTogetherAreLeftToOthers) {
    PolygonSet set;
    for (int i = 0; i < 3000; ++i) {
        set.begin_feature();
        add_polygon(set, {box(i * 1e-6, 0, 1, 100)});
    }
    EXPECT_FALSE(arranged_union(set, all_of(set)).has_value());
}

}  // namespace
}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/ring_assembly.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "tests/support/lattice_polygons.h"

namespace kestrel::polygons {
namespace {

using test::box;

using Ring = std::vector<Point>;
using Rings = std::vector<Ring>;

Ring closed(Ring ring) {
    ring.push_back(ring.front());
    return ring;
}

Ring shell(Ring ring) {
    return closed(std::move(ring));
}

Ring hole(Ring ring) {
    std::reverse(ring.begin(), ring.end());
    return closed(std::move(ring));
}

bool earlier(Point a, Point b) {
    return a.x != b.x ? a.x < b.x : a.y < b.y;
}

/// The polygons of the feature, each as its rings.
std::vector<Rings> polygons_of(const std::optional<PolygonSet>& set) {
    std::vector<Rings> result;
    for (std::size_t p = 0; set && p < set->polygon_count(); ++p) {
        result.emplace_back();
        for (std::size_t r = set->first_ring(p); r < set->first_ring(p + 1); ++r) {
            const auto ring = set->ring(r);
            result.back().emplace_back(ring.begin(), ring.end());
        }
    }
    return result;
}

std::vector<std::pair<Point, std::size_t>> lowest_points_and_rings(const std::vector<Rings>& polygons) {
    std::vector<std::pair<Point, std::size_t>> result;
    for (const Rings& rings : polygons) {
        result.emplace_back(rings.front().front(), rings.size());
    }
    return result;
}

TEST(PointNumbers, EqualPointsHaveTheSameNumberAndNumbersFollowOneAnother) {
    std::mt19937 random(61);
    for (int i = 0; i < 2000; ++i) {
        const std::size_t count = random() % 60;
        PointNumbers numbers(count);
        std::map<std::pair<double, double>, std::uint32_t> expected;
        std::uniform_int_distribution<int> pick(0, i % 12);
        const double step = i % 2 == 0 ? 1 : 1e-300;
        for (std::size_t n = 0; n < count; ++n) {
            const Point p{step * pick(random), -step * pick(random)};  // some are minus zero
            const auto next = static_cast<std::uint32_t>(expected.size());
            ASSERT_EQ(numbers.of(p), expected.insert({{p.x, p.y}, next}).first->second) << "case " << i;
        }
        ASSERT_EQ(numbers.points().size(), expected.size());
        for (const auto& [place, number] : expected) {
            EXPECT_EQ(numbers.points()[number], (Point{place.first, place.second}));
        }
    }
}

TEST(PointNumbers, ZeroAndMinusZeroAreOnePoint) {
    PointNumbers numbers(4);
    EXPECT_EQ(numbers.of({0.0, 0.0}), 0U);
    EXPECT_EQ(numbers.of({-0.0, 0.0}), 0U);
    EXPECT_EQ(numbers.of({0.0, -0.0}), 0U);
    EXPECT_EQ(numbers.of({0.0, 1.0}), 1U);
}

TEST(RingAssembly, NoRingsMakeAFeatureOfNoPolygon) {
    const auto result = assemble_rings({});
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(result->feature_count(), 1U);
    EXPECT_EQ(result->polygon_count(), 0U);
}

TEST(RingAssembly, RingsBeginInTheWestAndThereInTheSouth) {
    const auto polygons =
        polygons_of(assemble_rings({shell({{5, 1}, {9, 9}, {5, 5}}), shell({{4, 0}, {0, 8}, {0, 3}})}));
    EXPECT_EQ(polygons, (std::vector<Rings>{{{{0, 3}, {4, 0}, {0, 8}, {0, 3}}}, {{{5, 1}, {9, 9}, {5, 5}, {5, 1}}}}));
}

TEST(RingAssembly, AnIslandInAHoleIsAPolygonAndItsHoleIsItsOwn) {
    const auto polygons = polygons_of(
        assemble_rings({hole(box(4, 4, 1, 1)), hole(box(1, 1, 7, 7)), shell(box(0, 0, 9, 9)), shell(box(2, 2, 5, 5))}));
    const Rings outer{shell(box(0, 0, 9, 9)), closed({{1, 1}, {1, 8}, {8, 8}, {8, 1}})};
    const Rings inner{shell(box(2, 2, 5, 5)), closed({{4, 4}, {4, 5}, {5, 5}, {5, 4}})};
    EXPECT_EQ(polygons, (std::vector<Rings>{outer, inner}));
}

TEST(RingAssembly, AHoleThatTouchesItsShellInACornerIsItsHole) {
    const auto polygons = polygons_of(assemble_rings({shell(box(0, 0, 9, 9)), hole({{0, 4}, {5, 2}, {5, 6}})}));
    EXPECT_EQ(lowest_points_and_rings(polygons), (std::vector<std::pair<Point, std::size_t>>{{{0, 0}, 2}}));
}

TEST(RingAssembly, AHoleBesideAShellThatItTouchesIsNotItsHole) {
    // The small shell touches the hole from inside.
    const auto polygons =
        polygons_of(assemble_rings({shell(box(0, 0, 9, 9)), hole(box(1, 1, 7, 7)), shell({{1, 4}, {5, 2}, {5, 6}})}));
    EXPECT_EQ(lowest_points_and_rings(polygons),
              (std::vector<std::pair<Point, std::size_t>>{{{0, 0}, 2}, {{1, 4}, 1}}));
}

TEST(RingAssembly, AHoleLevelWithACornerOfItsShellIsItsHole) {
    const auto polygons =
        polygons_of(assemble_rings({shell({{0, 2}, {4, 0}, {8, 2}, {4, 4}}), hole({{2, 2}, {4, 1}, {4, 3}})}));
    EXPECT_EQ(lowest_points_and_rings(polygons), (std::vector<std::pair<Point, std::size_t>>{{{0, 2}, 2}}));
}

TEST(RingAssembly, ShellsThatTouchInTheirFirstCornerHaveTheirOwnHoles) {
    // The inner shell comes first: its second corner lies further west.
    const auto polygons =
        polygons_of(assemble_rings({shell({{0, 0}, {9, -9}, {9, 9}}), hole({{0, 0}, {8, -6}, {8, 6}}),
                                    shell({{0, 0}, {7, -3}, {7, 3}}), hole({{4, 0}, {5, -1}, {5, 1}})}));
    ASSERT_EQ(polygons.size(), 2U);
    EXPECT_EQ(polygons[0], (Rings{closed({{0, 0}, {7, -3}, {7, 3}}), closed({{4, 0}, {5, 1}, {5, -1}})}));
    EXPECT_EQ(polygons[1], (Rings{closed({{0, 0}, {9, -9}, {9, 9}}), closed({{0, 0}, {8, 6}, {8, -6}})}));
}

TEST(RingAssembly, AHoleInNoShellMakesNothing) {
    EXPECT_FALSE(assemble_rings({shell(box(0, 0, 2, 2)), hole(box(5, 5, 1, 1))}).has_value());
    EXPECT_FALSE(assemble_rings({hole(box(5, 5, 1, 1))}).has_value());
    // Within the envelope of the shell, but outside of it.
    EXPECT_FALSE(assemble_rings({shell({{0, 0}, {9, 0}, {0, 9}}), hole(box(7, 7, 1, 1))}).has_value());
}

TEST(RingAssembly, AHoleWithAllCornersOnTheShellMakesNothing) {
    EXPECT_FALSE(assemble_rings({shell(box(0, 0, 4, 4)), hole({{2, 0}, {4, 2}, {2, 4}, {0, 2}})}).has_value());
}

/// Rings in rings, shells and holes in turn, that touch one another here and there.
class Nest {
  public:
    explicit Nest(std::mt19937& random) : m_random(random) { fill(0, 0, 1024, true, false); }

    Rings rings;

  private:
    void fill(double x, double y, double size, bool is_shell, bool may_be_missing) {
        if (size < 8 || (may_be_missing && m_random() % 3 == 0)) {
            return;
        }
        const double cell = size / 2;
        if (may_be_missing && m_random() % 2 == 0) {
            // Reaches the ring around it, or its neighbours, in one corner or in none.
            const double top = m_random() % 2 == 0 ? size : size * 3 / 4;
            const Ring ring{{x + size / 8, y + size / 8}, {x + size * 7 / 8, y + size / 8}, {x + cell, y + top}};
            rings.push_back(is_shell ? shell(ring) : hole(ring));
            fill(x + size * 3 / 8, y + size / 4, size / 4, !is_shell, true);
            return;
        }
        const Ring ring = box(x + size / 8, y + size / 8, size * 3 / 4, size * 3 / 4);
        rings.push_back(is_shell ? shell(ring) : hole(ring));
        const double quarter = size * 3 / 8;
        for (int i = 0; i < 4; ++i) {
            const int row = i / 2;
            fill(x + size / 8 + i % 2 * quarter, y + size / 8 + row * quarter, quarter, !is_shell, true);
        }
    }

    std::mt19937& m_random;
};

/// A point just inside of the ring's first corner, from which the rings of a nest go east and steeply up.
Point point_in(const Ring& ring) {
    const Point first = *std::min_element(ring.begin(), ring.end(), earlier);
    return {first.x + 0.002, first.y + 0.001};
}

bool holds(const Ring& ring, Point p) {
    PolygonSet one;
    one.begin_feature();
    one.begin_polygon();
    one.begin_ring();
    for (const Point q : ring) {
        one.add(q);
    }
    const std::size_t members[] = {0};
    return test::polygons_over(one, members, p) == 1;
}

/// The polygons that the rings make: their first points, and those of their holes, all ascending.
std::map<std::pair<double, double>, std::vector<Point>> assembled_slowly(const Rings& rings) {
    std::map<std::pair<double, double>, std::vector<Point>> result;
    const auto first = [](const Ring& ring) { return *std::min_element(ring.begin(), ring.end(), earlier); };
    for (const Ring& ring : rings) {
        if (twice_signed_area(ring) > 0) {
            result[{first(ring).x, first(ring).y}];
            continue;
        }
        const Ring* around = nullptr;
        for (const Ring& other : rings) {
            const double area = twice_signed_area(other);
            if (area > 0 && holds(other, point_in(ring)) && (around == nullptr || area < twice_signed_area(*around))) {
                around = &other;
            }
        }
        result.at({first(*around).x, first(*around).y}).push_back(first(ring));
    }
    for (auto& [place, holes] : result) {
        std::sort(holes.begin(), holes.end(), earlier);
    }
    return result;
}

TEST(RingAssembly, NestedRingsGoToTheSmallestShellAroundWhateverTheirOrder) {
    std::mt19937 random(62);
    std::size_t most = 0;
    for (int i = 0; i < 2000; ++i) {
        Rings rings = Nest(random).rings;
        most = std::max(most, rings.size());
        const auto expected = assembled_slowly(rings);
        std::shuffle(rings.begin(), rings.end(), random);
        for (Ring& ring : rings) {
            ring.pop_back();
            std::rotate(ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(random() % ring.size()), ring.end());
            ring.push_back(ring.front());
        }
        const auto polygons = polygons_of(assemble_rings(rings));
        ASSERT_EQ(polygons.size(), expected.size()) << "case " << i;
        auto next = expected.begin();
        for (const Rings& polygon : polygons) {
            ASSERT_EQ(polygon.front().front(), (Point{next->first.first, next->first.second})) << "case " << i;
            std::vector<Point> holes;
            for (std::size_t r = 1; r < polygon.size(); ++r) {
                ASSERT_EQ(polygon[r].front(), polygon[r].back());
                ASSERT_LT(twice_signed_area(polygon[r]), 0);
                holes.push_back(polygon[r].front());
            }
            ASSERT_EQ(holes, next->second) << "case " << i;
            ++next;
        }
    }
    EXPECT_GT(most, 50U);
}

}  // namespace
}  // namespace kestrel::polygons

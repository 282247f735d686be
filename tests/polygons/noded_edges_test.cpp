// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/noded_edges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <set>
#include <utility>

#include "tests/support/lattice_polygons.h"

namespace kestrel::polygons {

void PrintTo(const Edge& e, std::ostream* stream) {
    *stream << "(" << e.low.x << " " << e.low.y << ")-(" << e.high.x << " " << e.high.y << ") " << e.polygons_left;
}

namespace {

using test::all_of;
using test::box;
using test::features;

using Edges = std::vector<Edge>;

Edges noded_edges_of(const PolygonSet& polygons) {
    const auto edges = noded(edges_of(polygons, all_of(polygons)));
    EXPECT_TRUE(edges.has_value());
    return edges.value_or(Edges());
}

TEST(NodedEdges, EdgesSayHowManyMorePolygonsLieOnTheirLeft) {
    const Edges expected{{{0, 0}, {2, 0}, 1}, {{2, 0}, {0, 2}, 1}, {{0, 0}, {0, 2}, -1}};
    const PolygonSet left_about = features({{{{0, 0}, {2, 0}, {0, 2}}}});
    EXPECT_EQ(edges_of(left_about, all_of(left_about)), expected);
    const PolygonSet right_about = features({{{{0, 0}, {0, 2}, {2, 0}}}});
    EXPECT_EQ(edges_of(right_about, all_of(right_about)), (Edges{expected[2], expected[1], expected[0]}));
}

TEST(NodedEdges, EdgesOfAHoleHaveThePolygonOutside) {
    const std::vector<Point> left_about = box(1, 1, 1, 1);
    const std::vector<Point> right_about{{1, 1}, {1, 2}, {2, 2}, {2, 1}};
    for (const auto& hole : {left_about, right_about}) {
        const PolygonSet set = features({{box(0, 0, 3, 3), hole}});
        for (const Edge& e : edges_of(set, all_of(set))) {
            const bool of_hole = e.low.x >= 1 && e.high.x <= 2 && e.low.y >= 1 && e.high.y <= 2;
            const bool polygon_in_the_middle = !of_hole;
            const double side = (e.high.x - e.low.x) * (1.5 - e.low.y) - (e.high.y - e.low.y) * (1.5 - e.low.x);
            EXPECT_EQ(e.polygons_left > 0, (side > 0) == polygon_in_the_middle) << ::testing::PrintToString(e);
        }
    }
}

TEST(NodedEdges, PointsThatAreRepeatedMakeNoEdge) {
    const PolygonSet set = features({{{{0, 0}, {0, 0}, {2, 0}, {2, 0}, {0, 2}}}});
    EXPECT_EQ(edges_of(set, all_of(set)).size(), 3U);
}

TEST(NodedEdges, OnlyTheMembersHaveEdges) {
    const PolygonSet set = features({{box(0, 0, 1, 1)}, {box(5, 5, 1, 1)}, {box(9, 9, 1, 1)}});
    const std::vector<std::size_t> members{1};
    const Edges edges = edges_of(set, members);
    ASSERT_EQ(edges.size(), 4U);
    for (const Edge& e : edges) {
        EXPECT_TRUE(e.low.x >= 5 && e.high.x <= 6) << ::testing::PrintToString(e);
    }
}

TEST(NodedEdges, ASharedBorderGoesAlsoWhereOneSideHasMoreCorners) {
    const Edges edges = noded_edges_of(features({{box(0, 0, 1, 2)}, {box(1, 0, 1, 1)}, {box(1, 1, 1, 1)}}));
    const Edges expected{{{0, 0}, {1, 0}, 1}, {{0, 0}, {0, 2}, -1}, {{1, 0}, {2, 0}, 1}, {{2, 0}, {2, 1}, 1},
                         {{2, 1}, {2, 2}, 1}, {{0, 2}, {1, 2}, -1}, {{1, 2}, {2, 2}, -1}};
    EXPECT_TRUE(std::is_permutation(edges.begin(), edges.end(), expected.begin(), expected.end()))
        << ::testing::PrintToString(edges);
}

TEST(NodedEdges, ABorderThatGoesCutsNothing) {
    const Edges edges = noded_edges_of(features({{box(0, 0, 2, 2)}, {box(2, 0, 2, 2)}, {box(1, 0.5, 2, 1)}}));
    EXPECT_EQ(std::count(edges.begin(), edges.end(), Edge{{1, 0.5}, {3, 0.5}, 1}), 1)
        << ::testing::PrintToString(edges);
}

TEST(NodedEdges, ASpikeOfNoWidthGoes) {
    EXPECT_EQ(noded_edges_of(features({{{{0, 0}, {2, 0}, {9, 7}, {2, 0}, {0, 2}}}})),
              noded_edges_of(features({{{{0, 0}, {2, 0}, {0, 2}}}})));
}

TEST(NodedEdges, ThePolygonThatIsGivenTwiceCountsTwice) {
    for (const Edge& e : noded_edges_of(features({{box(0, 0, 1, 1)}, {box(0, 0, 1, 1)}}))) {
        EXPECT_EQ(std::abs(e.polygons_left), 2);
    }
}

TEST(NodedEdges, EdgesThatCrossAreCutInOnePoint) {
    const auto edges = noded({{{0, 0}, {3, 1}, 1}, {{1, 0}, {2, 1}, 1}});
    ASSERT_TRUE(edges.has_value());
    EXPECT_EQ(
        *edges,
        (Edges{{{0, 0}, {1.5, 0.5}, 1}, {{1, 0}, {1.5, 0.5}, 1}, {{1.5, 0.5}, {2, 1}, 1}, {{1.5, 0.5}, {3, 1}, 1}}));
}

TEST(NodedEdges, ThreeEdgesThroughAPointThatIsNoDoubleMeetInOnePoint) {
    // All three pass through (1/3, 1/3).
    const auto edges = noded({{{0, 0}, {1, 1}, 1}, {{0.5, 0}, {0, 1}, 1}, {{1, 0}, {0, 0.5}, 1}});
    ASSERT_TRUE(edges.has_value());
    std::set<std::pair<double, double>> inner;
    for (const Edge& e : *edges) {
        for (const Point p : {e.low, e.high}) {
            if (std::abs(p.x - 1.0 / 3) < 1e-9) {
                inner.insert({p.x, p.y});
            }
        }
    }
    EXPECT_EQ(edges->size(), 6U);
    EXPECT_EQ(inner.size(), 1U);
}

TEST(NodedEdges, ThreeEdgesThatMissACommonPointByLastDigitsMeetInOnePoint) {
    std::mt19937 random(44);
    std::uniform_real_distribution<double> between(0, 1);
    for (int i = 0; i < 2000; ++i) {
        const Point centre{1e6 + between(random), 2e6 + between(random)};
        const double turned = between(random);
        Edges edges;
        for (int n = 0; n < 3; ++n) {
            const double angle = turned + n * 1.04;
            const auto at = [&](double along) {
                return Point{centre.x + along * std::cos(angle), centre.y + along * std::sin(angle)};
            };
            const Point one = at(50 + 50 * between(random));
            const Point other = at(-50 - 50 * between(random));
            edges.push_back({below(one, other) ? one : other, below(one, other) ? other : one, 1});
        }
        const auto parts = noded(edges);
        ASSERT_TRUE(parts.has_value());
        ASSERT_EQ(parts->size(), 6U) << "case " << i;
        std::set<std::pair<double, double>> ends;
        for (const Edge& e : *parts) {
            ends.insert({{e.low.x, e.low.y}, {e.high.x, e.high.y}});
        }
        ASSERT_EQ(ends.size(), 7U) << "case " << i;
    }
}

TEST(NodedEdges, TooManyEdgesCloseTogetherAreNotCompared) {
    Edges edges;
    for (int i = 0; i < 3000; ++i) {
        edges.push_back({{i * 1e-6, 0}, {i * 1e-6, 100}, 1});
    }
    EXPECT_FALSE(noded(edges).has_value());
}

/// A point in ten-millionths: of the points where edges of small lattices end and cross, no two are the same then.
using Place = std::pair<std::int64_t, std::int64_t>;

Place place_of(Point p) {
    return {std::llround(p.x * 1e7), std::llround(p.y * 1e7)};
}

double side_of(Point a, Point b, Point p) {
    return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

constexpr double kNothing = 1e-9;

bool lies_on(const Edge& e, Point p) {
    return std::abs(side_of(e.low, e.high, p)) < kNothing && p.x > std::min(e.low.x, e.high.x) - kNothing &&
           p.x < std::max(e.low.x, e.high.x) + kNothing && p.y > e.low.y - kNothing && p.y < e.high.y + kNothing;
}

bool lies_within(const Edge& e, Point p) {
    return lies_on(e, p) && place_of(p) != place_of(e.low) && place_of(p) != place_of(e.high);
}

bool cross(const Edge& e, const Edge& f) {
    const double low = side_of(e.low, e.high, f.low);
    const double high = side_of(e.low, e.high, f.high);
    const double other_low = side_of(f.low, f.high, e.low);
    const double other_high = side_of(f.low, f.high, e.high);
    const double least = std::min({std::abs(low), std::abs(high), std::abs(other_low), std::abs(other_high)});
    return least > kNothing && (low > 0) != (high > 0) && (other_low > 0) != (other_high > 0);
}

/// Every point where an edge ends or two edges cross.
std::vector<Point> nodes_of(const Edges& edges) {
    std::map<Place, Point> nodes;
    for (const Edge& e : edges) {
        nodes.insert({place_of(e.low), e.low});
        nodes.insert({place_of(e.high), e.high});
        for (const Edge& f : edges) {
            if (cross(e, f)) {
                const double low = side_of(e.low, e.high, f.low);
                const double along = low / (low - side_of(e.low, e.high, f.high));
                const Point p{f.low.x + along * (f.high.x - f.low.x), f.low.y + along * (f.high.y - f.low.y)};
                nodes.insert({place_of(p), p});
            }
        }
    }
    std::vector<Point> result;
    for (const auto& [place, p] : nodes) {
        result.push_back(p);
    }
    return result;
}

/// What lies between neighbouring nodes on the edges, and how many more polygons on the left than on the right.
std::map<std::pair<Place, Place>, int> between_nodes(const Edges& edges, const std::vector<Point>& nodes) {
    std::map<std::pair<Place, Place>, int> result;
    for (const Edge& e : edges) {
        std::vector<Point> on;
        std::copy_if(nodes.begin(), nodes.end(), std::back_inserter(on), [&](Point p) { return lies_on(e, p); });
        const bool level = e.low.y == e.high.y;
        std::sort(on.begin(), on.end(), [&](Point a, Point b) { return level ? a.x < b.x : a.y < b.y; });
        for (std::size_t i = 0; i + 1 < on.size(); ++i) {
            result[{place_of(on[i]), place_of(on[i + 1])}] += e.polygons_left;
        }
    }
    std::erase_if(result, [](const auto& part) { return part.second == 0; });
    return result;
}

void check_that_edges_meet_at_ends_only(const Edges& edges, const std::string& what) {
    std::map<Place, Point> ends;
    for (const Edge& e : edges) {
        ASSERT_TRUE(below(e.low, e.high)) << what;
        ASSERT_NE(e.polygons_left, 0) << what;
        for (const Point p : {e.low, e.high}) {
            ASSERT_EQ(ends.insert({place_of(p), p}).first->second, p) << what << ": points some digits apart";
        }
        for (const Edge& f : edges) {
            ASSERT_FALSE(cross(e, f) || lies_within(e, f.low) || lies_within(e, f.high))
                << what << ": " << ::testing::PrintToString(e) << " and " << ::testing::PrintToString(f);
            ASSERT_TRUE(&e == &f || e.low != f.low || e.high != f.high) << what;
        }
    }
}

TEST(NodedEdges, PartsOfLatticePolygonsAreThoseBetweenAllPointsWhereEdgesMeet) {
    std::mt19937 random(41);
    for (int i = 0; i < 4000; ++i) {
        const std::string what = "set " + std::to_string(i);
        const PolygonSet set = test::lattice_polygons(random, 2 + i % 8, 1 + i % 6);
        const Edges given = edges_of(set, all_of(set));
        const Edges edges = noded_edges_of(set);
        check_that_edges_meet_at_ends_only(edges, what);
        const std::vector<Point> nodes = nodes_of(given);
        ASSERT_EQ(between_nodes(edges, nodes), between_nodes(given, nodes)) << what;
        for (const Edge& e : edges) {
            for (const Point p : {e.low, e.high}) {
                ASSERT_TRUE(
                    std::any_of(nodes.begin(), nodes.end(), [&](Point n) { return place_of(n) == place_of(p); }))
                    << what << ": cut where nothing meets";
            }
        }
    }
}

TEST(NodedEdges, ThePolygonsOnBothSidesDifferByWhatEdgesSay) {
    std::mt19937 random(42);
    for (int i = 0; i < 2000; ++i) {
        const PolygonSet set = test::lattice_polygons(random, 2 + i % 5, 1 + i % 6);
        const auto members = all_of(set);
        for (const Edge& e : noded_edges_of(set)) {
            const auto [left, right] = test::points_beside(e.low, e.high, 1e-8);
            const int difference = test::polygons_over(set, members, left) - test::polygons_over(set, members, right);
            ASSERT_EQ(e.polygons_left, difference) << "set " << i << ": " << ::testing::PrintToString(e);
        }
    }
}

TEST(NodedEdges, TheOrderOfEdgesDoesNotShow) {
    std::mt19937 random(43);
    for (int i = 0; i < 1000; ++i) {
        const PolygonSet set = test::lattice_polygons(random, 2 + i % 10, 1 + i % 6);
        Edges edges = edges_of(set, all_of(set));
        const auto first = noded(edges);
        std::shuffle(edges.begin(), edges.end(), random);
        ASSERT_EQ(first, noded(edges)) << "set " << i;
    }
}

}  // namespace
}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/geometry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "data/feature_class.h"
#include "tests/support/dissolved_copy.h"
#include "tests/support/listening_progress.h"
#include "tests/support/test_files.h"

namespace kestrel::polygons {
namespace {

using Ring = std::vector<Point>;
using Polygon = std::vector<Ring>;
using Groups = std::vector<std::uint32_t>;

void add_polygon(PolygonSet& set, const Polygon& polygon) {
    set.begin_polygon();
    for (const Ring& ring : polygon) {
        set.begin_ring();
        for (const Point p : ring) {
            set.add(p);
        }
    }
}

void add_feature(PolygonSet& set, const std::vector<Polygon>& polygons) {
    set.begin_feature();
    for (const Polygon& polygon : polygons) {
        add_polygon(set, polygon);
    }
}

PolygonSet set_of(const std::vector<std::vector<Polygon>>& features) {
    PolygonSet set;
    for (const auto& feature : features) {
        add_feature(set, feature);
    }
    return set;
}

Ring box(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}, {x0, y0}};
}

/// A partition of a wobbly rectangle into n x n quadrilaterals that share their corners exactly.
PolygonSet partition(std::size_t n, unsigned seed, double jitter = 0.3) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> offset(-jitter, jitter);
    std::vector<Point> corners;
    for (std::size_t j = 0; j <= n; ++j) {
        for (std::size_t i = 0; i <= n; ++i) {
            corners.push_back(
                {300000 + static_cast<double>(i) + offset(random), 4100000 + static_cast<double>(j) + offset(random)});
        }
    }
    PolygonSet set;
    for (std::size_t j = 0; j < n; ++j) {
        for (std::size_t i = 0; i < n; ++i) {
            const std::size_t a = j * (n + 1) + i;
            add_feature(set, {{{corners[a], corners[a + 1], corners[a + n + 2], corners[a + n + 1], corners[a]}}});
        }
    }
    return set;
}

double total_area(const PolygonSet& set) {
    double sum = 0;
    for (std::size_t f = 0; f < set.feature_count(); ++f) {
        sum += set.area(f);
    }
    return sum;
}

bool equal(const PolygonSet& a, const PolygonSet& b) {
    const auto same_points = std::equal(a.points().begin(), a.points().end(), b.points().begin(), b.points().end());
    bool same = same_points && a.feature_count() == b.feature_count() && a.polygon_count() == b.polygon_count() &&
                a.ring_count() == b.ring_count();
    for (std::size_t f = 0; same && f < a.feature_count(); ++f) {
        same = a.first_polygon(f) == b.first_polygon(f);
    }
    for (std::size_t p = 0; same && p < a.polygon_count(); ++p) {
        same = a.first_ring(p) == b.first_ring(p);
    }
    for (std::size_t r = 0; same && r < a.ring_count(); ++r) {
        same = a.ring(r).size() == b.ring(r).size();
    }
    return same;
}

PolygonSet dissolved(const PolygonSet& set, const Groups& groups, std::size_t count) {
    base::NoProgress progress;
    return test::copy_of(dissolve(std::make_shared<PolygonSet>(set), groups, count, progress));
}

bool is_valid(PolygonSet set) {
    return repair(set) == 0;
}

TEST(Repair, LeavesValidPolygonsAsTheyAre) {
    PolygonSet set = set_of({{{box(0, 0, 4, 4), box(1, 1, 2, 2)}, {box(4, 4, 5, 5)}}, {}, {{box(0, 0, 1, 1)}}});
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
    PolygonSet set = set_of({{{box(0, 0, 2, 2)}, {box(1, 0, 3, 2)}}});
    EXPECT_EQ(repair(set), 1U);
    EXPECT_NEAR(set.area(0), 6.0, 1e-12);
    EXPECT_EQ(set.polygon_count(), 1U);
}

TEST(Repair, RepeatedPartsCountOnce) {
    PolygonSet set = set_of({{{box(0, 0, 2, 2)}, {box(0, 0, 2, 2)}}});
    EXPECT_EQ(repair(set), 1U);
    EXPECT_NEAR(set.area(0), 4.0, 1e-12);
}

TEST(Repair, HolesMayOverlapOrLeaveTheShell) {
    PolygonSet overlapping = set_of({{{box(0, 0, 9, 9), box(1, 1, 4, 4), box(2, 2, 5, 5)}}});
    EXPECT_EQ(repair(overlapping), 1U);
    EXPECT_NEAR(overlapping.area(0), 81 - (9 + 9 - 4), 1e-9);
    PolygonSet leaving = set_of({{{box(0, 0, 4, 4), box(3, 1, 6, 2)}}});
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
    PolygonSet set = set_of({{{box(10, 0, 11, 1)}}, {bow_tie}, {}, {{box(20, 0, 22, 2)}}, {bow_tie}});
    EXPECT_EQ(repair(set), 2U);
    ASSERT_EQ(set.feature_count(), 5U);
    EXPECT_EQ(set.envelope(0).min_x, 10.0);
    EXPECT_NEAR(set.area(1), 2.0, 1e-12);
    EXPECT_TRUE(set.empty(2));
    EXPECT_EQ(set.envelope(3).min_x, 20.0);
    EXPECT_NEAR(set.area(4), 2.0, 1e-12);
}

TEST(Dissolve, JoinsNeighboursAcrossTheirSharedBorder) {
    const auto set = set_of({{{box(0, 0, 1, 1)}}, {{box(1, 0, 2, 1)}}});
    const auto result = dissolved(set, {0, 0}, 1);
    ASSERT_EQ(result.feature_count(), 1U);
    EXPECT_EQ(result.polygon_count(), 1U);
    EXPECT_EQ(result.ring_count(), 1U);
    EXPECT_EQ(result.area(0), 2.0);
}

TEST(Dissolve, SingleFeatureIsPassedThroughAsItIs) {
    const auto set = set_of({{{box(0, 0, 9, 9), box(1, 1, 2, 2)}, {box(20, 0, 21, 1)}}});
    EXPECT_TRUE(equal(dissolved(set, {0}, 1), set));
}

TEST(Dissolve, EmptyFeaturesAndGroupsStayEmpty) {
    const auto set = set_of({{}, {{box(0, 0, 1, 1)}}, {}});
    const auto result = dissolved(set, {0, 2, 2}, 4);
    ASSERT_EQ(result.feature_count(), 4U);
    EXPECT_TRUE(result.empty(0));
    EXPECT_TRUE(result.empty(1));
    EXPECT_EQ(result.area(2), 1.0);
    EXPECT_TRUE(result.empty(3));
    EXPECT_EQ(dissolved(PolygonSet(), {}, 0).feature_count(), 0U);
}

TEST(Dissolve, OverlapsCountOnce) {
    const auto set = set_of({{{box(0, 0, 2, 2)}}, {{box(1, 1, 3, 3)}}, {{box(0, 0, 2, 2)}}});
    const auto result = dissolved(set, {0, 0, 0}, 1);
    EXPECT_NEAR(result.area(0), 7.0, 1e-12);
    EXPECT_TRUE(is_valid(result));
}

TEST(Dissolve, RingAroundAnotherGroupHasAHole) {
    const auto set = partition(3, 1);
    Groups groups(9, 0);
    groups[4] = 1;
    const auto result = dissolved(set, groups, 2);
    ASSERT_EQ(result.first_ring(result.first_polygon(1)) - result.first_ring(result.first_polygon(0)), 2U);
    EXPECT_NEAR(result.area(0) + result.area(1), total_area(set), 1e-6);
    EXPECT_NEAR(std::abs(twice_signed_area(result.ring(1))) / 2, result.area(1), 1e-6)
        << "the hole comes after the shell";
}

TEST(Dissolve, HoleThatAnotherFeatureFillsDisappears) {
    const auto set = set_of({{{box(0, 0, 3, 3), box(1, 1, 2, 2)}}, {{box(1, 1, 2, 2)}}});
    const auto result = dissolved(set, {0, 0}, 1);
    EXPECT_EQ(result.ring_count(), 1U);
    EXPECT_EQ(result.area(0), 9.0);
}

TEST(Dissolve, PartsThatTouchInAPointStayPolygonsOfTheirOwn) {
    const auto set = set_of({{{box(0, 0, 1, 1)}}, {{box(1, 1, 2, 2)}}});
    const auto result = dissolved(set, {0, 0}, 1);
    EXPECT_EQ(result.polygon_count(), 2U);
    EXPECT_EQ(result.area(0), 2.0);
    EXPECT_TRUE(is_valid(result));
}

TEST(Dissolve, AreasOfRandomPartitionsAddUp) {
    for (const unsigned seed : {1U, 2U, 3U, 4U, 5U}) {
        constexpr std::size_t kSide = 12;
        constexpr std::uint32_t kGroups = 7;
        const auto set = partition(kSide, seed);
        std::mt19937 random(seed);
        Groups groups;
        std::vector<double> areas(kGroups, 0);
        for (std::size_t f = 0; f < set.feature_count(); ++f) {
            groups.push_back(static_cast<std::uint32_t>(random() % kGroups));
            areas[groups.back()] += set.area(f);
        }
        const auto result = dissolved(set, groups, kGroups);
        ASSERT_EQ(result.feature_count(), kGroups);
        EXPECT_TRUE(is_valid(result));
        for (std::uint32_t g = 0; g < kGroups; ++g) {
            EXPECT_NEAR(result.area(g), areas[g], 1e-7) << "seed " << seed << ", group " << g;
        }
    }
}

TEST(Dissolve, KeepsTheVerticesOfTheInput) {
    const auto set = partition(6, 9);
    const auto result = dissolved(set, Groups(36, 0), 1);
    const auto less = [](Point a, Point b) { return std::pair(a.x, a.y) < std::pair(b.x, b.y); };
    const std::set<Point, decltype(less)> given(set.points().begin(), set.points().end(), less);
    EXPECT_EQ(result.ring_count(), 1U);
    EXPECT_EQ(result.ring(0).size(), 25U) << "the 24 corners of the outline";
    for (const Point p : result.points()) {
        EXPECT_TRUE(given.contains(p));
    }
}

TEST(Dissolve, AnswersTheSameEveryTimeAndOnEveryThread) {
    const auto set = partition(15, 3);
    Groups groups;
    for (std::uint32_t f = 0; f < 225; ++f) {
        groups.push_back(f * 7 % 11);
    }
    const auto first = dissolved(set, groups, 11);
    PolygonSet second;
    std::thread([&] { second = dissolved(set, groups, 11); }).join();
    EXPECT_TRUE(equal(first, second));
}

/// Pairs of overlapping circles, the two of a pair in one group: work for a good part of a second.
std::pair<PolygonSet, Groups> overlapping_pairs() {
    PolygonSet set;
    Groups groups;
    for (std::uint32_t pair = 0; pair < 1500; ++pair) {
        for (const double shift : {0.0, 0.7}) {
            Ring ring;
            for (int i = 0; i < 200; ++i) {
                ring.push_back({3 * pair + shift + std::cos(i * 0.0314159), std::sin(i * 0.0314159)});
            }
            ring.push_back(ring.front());
            add_feature(set, {{ring}});
            groups.push_back(pair);
        }
    }
    return {set, groups};
}

TEST(Dissolve, AGroupOfOneFeatureIsThatOfTheInputAndNotACopy) {
    const auto set = std::make_shared<PolygonSet>();
    for (const double west : {0.0, 1.0, 5.0, 9.0}) {
        add_feature(*set, {{{{west, 0}, {west, 1}, {west + 1, 1}, {west + 1, 0}, {west, 0}}}});
    }
    base::NoProgress progress;
    const std::vector<std::uint32_t> groups{2, 2, 3, 0};
    const DissolvedPolygons result = dissolve(set, groups, 4, progress);
    ASSERT_EQ(result.feature_count(), 4U);
    EXPECT_EQ(&result.feature(0).set, set.get());
    EXPECT_EQ(result.feature(0).position, 3U);
    EXPECT_TRUE(result.feature(1).set.empty(result.feature(1).position));
    EXPECT_NE(&result.feature(2).set, set.get());
    EXPECT_EQ(result.feature(2).set.area(result.feature(2).position), 2);
    EXPECT_EQ(&result.feature(3).set, set.get());
    EXPECT_EQ(result.feature(3).position, 2U);
    EXPECT_EQ(result.envelope().min_x, 0);
    EXPECT_EQ(result.envelope().max_x, 10);
}

TEST(Dissolve, TellsProgressWithoutFallingAndNotTooOften) {
    const auto [set, groups] = overlapping_pairs();
    test::ListeningProgress progress;
    const auto start = std::chrono::steady_clock::now();
    const auto result = dissolve(std::make_shared<PolygonSet>(set), groups, groups.size() / 2, progress);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(result.feature_count(), groups.size() / 2);
    const auto& fractions = progress.fractions;
    ASSERT_GE(fractions.size(), 1U);
    EXPECT_LE(fractions.size(), static_cast<std::size_t>(elapsed / std::chrono::milliseconds(50)) + 2);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_GE(fractions.front(), 0.0);
    EXPECT_LE(fractions.back(), 1.0);
}

TEST(Dissolve, AsksNoMoreOnceItIsToldToStop) {
    const auto [set, groups] = overlapping_pairs();
    test::ListeningProgress progress(1);
    dissolve(std::make_shared<PolygonSet>(set), groups, groups.size() / 2, progress);
    EXPECT_EQ(progress.fractions.size(), 1U);
    EXPECT_TRUE(progress.cancelled());
}

struct Piece {
    std::size_t input;
    std::size_t overlay;
    double area;
};

std::vector<Piece> pieces_of(const PolygonSet& input, const PolygonSet& overlay) {
    std::vector<Piece> pieces;
    intersect(input, overlay, [&](std::size_t i, std::size_t o, const PolygonSet& piece) {
        EXPECT_EQ(piece.feature_count(), 1U);
        pieces.push_back({i, o, piece.area(0)});
        return true;
    });
    return pieces;
}

std::vector<std::pair<std::size_t, std::size_t>> origins(const std::vector<Piece>& pieces) {
    std::vector<std::pair<std::size_t, std::size_t>> result;
    for (const Piece& piece : pieces) {
        result.emplace_back(piece.input, piece.overlay);
    }
    return result;
}

TEST(Intersect, PiecesComeByInputThenByOverlay) {
    const auto input = set_of({{{box(0, 0, 4, 1)}}, {{box(0, 1, 4, 2)}}});
    const auto overlay = set_of({{{box(3, 0, 5, 2)}}, {{box(-1, 0, 1, 2)}}, {{box(1, 0, 3, 2)}}});
    using Pair = std::pair<std::size_t, std::size_t>;
    const auto pieces = pieces_of(input, overlay);
    EXPECT_THAT(origins(pieces),
                ::testing::ElementsAre(Pair{0, 0}, Pair{0, 1}, Pair{0, 2}, Pair{1, 0}, Pair{1, 1}, Pair{1, 2}));
    EXPECT_EQ(pieces[0].area, 1.0);
    EXPECT_EQ(pieces[1].area, 1.0);
    EXPECT_EQ(pieces[2].area, 2.0);
}

TEST(Intersect, WhatOnlyTouchesIsNoPiece) {
    const auto input = set_of({{{box(0, 0, 1, 1)}}});
    const auto overlay = set_of({{{box(1, 0, 2, 1)}}, {{box(1, 1, 2, 2)}}, {{box(5, 5, 6, 6)}}});
    EXPECT_TRUE(pieces_of(input, overlay).empty());
}

TEST(Intersect, PieceThatAlsoTouchesElsewhereHoldsItsAreaOnly) {
    // They share the box from 0,0 to 1,1, and a stretch of border at x = 3.
    const auto input = set_of({{{box(0, 0, 1, 1)}, {box(2, 0, 3, 1)}}});
    const auto overlay = set_of({{{box(-1, -1, 1, 2)}, {box(3, 0, 4, 1)}}});
    std::size_t count = 0;
    intersect(input, overlay, [&](std::size_t, std::size_t, const PolygonSet& piece) {
        EXPECT_EQ(piece.polygon_count(), 1U);
        EXPECT_EQ(piece.area(0), 1.0);
        ++count;
        return true;
    });
    EXPECT_EQ(count, 1U);
}

TEST(Intersect, ContainedFeaturesAreHandedOverAsTheyAre) {
    const auto large = set_of({{{box(0, 0, 9, 9), box(6, 6, 7, 7)}}});
    const auto small = set_of({{{box(1, 1, 4, 4), box(2, 2, 3, 3)}}});
    const auto expect_small = [&](std::size_t, std::size_t, const PolygonSet& piece) {
        EXPECT_TRUE(equal(piece, small));
        return true;
    };
    intersect(large, small, expect_small);
    intersect(small, large, expect_small);
    const auto equal_sets = pieces_of(large, large);
    ASSERT_EQ(equal_sets.size(), 1U);
    EXPECT_EQ(equal_sets[0].area, 80.0);
}

TEST(Intersect, FeatureInsideAHoleIsNoPiece) {
    const auto ring = set_of({{{box(0, 0, 9, 9), box(3, 3, 6, 6)}}});
    const auto inside = set_of({{{box(4, 4, 5, 5)}}, {{box(3, 3, 6, 6)}}});
    EXPECT_TRUE(pieces_of(ring, inside).empty());
    EXPECT_TRUE(pieces_of(inside, ring).empty());
}

TEST(Intersect, EmptyFeaturesHaveNoPieces) {
    const auto some = set_of({{}, {{box(0, 0, 1, 1)}}, {}});
    const auto pieces = pieces_of(some, some);
    ASSERT_EQ(pieces.size(), 1U);
    EXPECT_EQ(pieces[0].input, 1U);
    EXPECT_EQ(pieces[0].overlay, 1U);
    EXPECT_TRUE(pieces_of(PolygonSet(), some).empty());
    EXPECT_TRUE(pieces_of(some, PolygonSet()).empty());
}

TEST(Intersect, StopsWhenTheVisitorHasEnough) {
    const auto set = partition(5, 1);
    std::size_t count = 0;
    intersect(set, set, [&](std::size_t, std::size_t, const PolygonSet&) { return ++count < 3; });
    EXPECT_EQ(count, 3U);
}

TEST(Intersect, OverlappingOverlaysEachGetTheirPiece) {
    const auto input = set_of({{{box(0, 0, 4, 4)}}});
    const auto overlay = set_of({{{box(1, 1, 3, 5)}}, {{box(2, 2, 6, 3)}}, {{box(1, 1, 3, 5)}}});
    const auto pieces = pieces_of(input, overlay);
    ASSERT_EQ(pieces.size(), 3U);
    EXPECT_NEAR(pieces[0].area, 6.0, 1e-12);
    EXPECT_NEAR(pieces[1].area, 2.0, 1e-12);
    EXPECT_NEAR(pieces[2].area, 6.0, 1e-12);
}

TEST(Intersect, PiecesOfTwoPartitionsAddUp) {
    const auto input = partition(10, 21);
    PolygonSet overlay = set_of({{{box(299990, 4099990, 300004.3, 4100020)}},
                                 {{box(300004.3, 4099990, 300020, 4100006.7)}},
                                 {{box(300004.3, 4100006.7, 300020, 4100020)}}});
    std::vector<double> sums(input.feature_count(), 0);
    for (const Piece& piece : pieces_of(input, overlay)) {
        sums[piece.input] += piece.area;
    }
    for (std::size_t f = 0; f < input.feature_count(); ++f) {
        EXPECT_NEAR(sums[f], input.area(f), 1e-8) << f;
    }
}

/// Area that two convex rings (counter-clockwise) share: one is cut along each edge of the other.
double shared_area(Ring subject, const Ring& cutter) {
    subject.pop_back();
    for (std::size_t e = 0; e + 1 < cutter.size() && !subject.empty(); ++e) {
        const Point a = cutter[e];
        const Point b = cutter[e + 1];
        const auto side = [&](Point p) { return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x); };
        Ring kept;
        for (std::size_t i = 0; i < subject.size(); ++i) {
            const Point p = subject[i];
            const Point q = subject[(i + 1) % subject.size()];
            if (side(p) >= 0) {
                kept.push_back(p);
            }
            if ((side(p) >= 0) != (side(q) >= 0)) {
                const double t = side(p) / (side(p) - side(q));
                kept.push_back({p.x + t * (q.x - p.x), p.y + t * (q.y - p.y)});
            }
        }
        subject = kept;
    }
    if (subject.empty()) {
        return 0;
    }
    subject.push_back(subject.front());
    return twice_signed_area(subject) / 2;
}

TEST(Intersect, AgreesWithCuttingConvexPolygonsByHand) {
    std::mt19937 random(42);
    std::uniform_real_distribution<double> place(0, 30);
    std::uniform_real_distribution<double> size(0.5, 6);
    const auto convex = [&] {
        const Point centre{place(random), place(random)};
        const double radius = size(random);
        std::vector<double> angles(3 + random() % 8);
        std::generate(angles.begin(), angles.end(), [&] { return place(random) / 30 * 6.283185307179586; });
        std::sort(angles.begin(), angles.end());
        Ring ring;
        for (const double angle : angles) {
            ring.push_back({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
        }
        ring.push_back(ring.front());
        return ring;
    };
    std::vector<Ring> inputs(60);
    std::vector<Ring> overlays(60);
    std::generate(inputs.begin(), inputs.end(), convex);
    std::generate(overlays.begin(), overlays.end(), convex);
    PolygonSet input;
    PolygonSet overlay;
    std::for_each(inputs.begin(), inputs.end(), [&](const Ring& ring) { add_feature(input, {{ring}}); });
    std::for_each(overlays.begin(), overlays.end(), [&](const Ring& ring) { add_feature(overlay, {{ring}}); });
    std::map<std::pair<std::size_t, std::size_t>, double> found;
    for (const Piece& piece : pieces_of(input, overlay)) {
        found[{piece.input, piece.overlay}] = piece.area;
    }
    std::size_t expected_count = 0;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        for (std::size_t o = 0; o < overlays.size(); ++o) {
            const double expected = shared_area(inputs[i], overlays[o]);
            const auto piece = found.find({i, o});
            EXPECT_NEAR(piece == found.end() ? 0 : piece->second, expected, 1e-9) << i << ", " << o;
            expected_count += expected > 1e-9 ? 1 : 0;
        }
    }
    EXPECT_GT(expected_count, 200U) << "or the case tests nothing";
}

TEST(GeometryRealData, ShedsDissolveAndIntersectWithoutLosingArea) {
    const std::string folder = test::real_data_folder();
    if (folder.empty()) {
        GTEST_SKIP() << "no real data; set KESTREL_REAL_DATA";
    }
    PolygonSet sheds = data::FeatureClass::open({folder + "/sheds.shp"}).read_polygons({}).polygons;
    repair(sheds);
    PolygonSet blocks = data::FeatureClass::open({folder + "/blockgroups.shp"}).read_polygons({}).polygons;
    repair(blocks);
    Groups groups;
    for (std::uint32_t f = 0; f < sheds.feature_count(); ++f) {
        groups.push_back(f % 4);
    }
    const auto joined = dissolved(sheds, groups, 4);
    EXPECT_TRUE(is_valid(joined));
    const auto all = dissolved(sheds, Groups(sheds.feature_count(), 0), 1);
    const auto all_blocks = dissolved(blocks, Groups(blocks.feature_count(), 0), 1);
    EXPECT_LE(all.area(0), total_area(sheds) * (1 + 1e-12));
    const auto sum = [](const std::vector<Piece>& pieces) {
        return std::accumulate(pieces.begin(), pieces.end(), 0.0, [](double s, const Piece& p) { return s + p.area; });
    };
    const auto whole = pieces_of(all, all_blocks);
    ASSERT_EQ(whole.size(), 1U);
    EXPECT_NEAR(sum(pieces_of(all, blocks)), whole[0].area, 1e-6 * whole[0].area);
}

}  // namespace
}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/intersect.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "data/feature_class.h"
#include "tests/polygons/polygon_makers.h"
#include "tests/support/test_files.h"

namespace kestrel::polygons {
namespace {

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
    const auto input = set_of({{{rectangle(0, 0, 4, 1)}}, {{rectangle(0, 1, 4, 2)}}});
    const auto overlay = set_of({{{rectangle(3, 0, 5, 2)}}, {{rectangle(-1, 0, 1, 2)}}, {{rectangle(1, 0, 3, 2)}}});
    using Pair = std::pair<std::size_t, std::size_t>;
    const auto pieces = pieces_of(input, overlay);
    EXPECT_THAT(origins(pieces),
                ::testing::ElementsAre(Pair{0, 0}, Pair{0, 1}, Pair{0, 2}, Pair{1, 0}, Pair{1, 1}, Pair{1, 2}));
    EXPECT_EQ(pieces[0].area, 1.0);
    EXPECT_EQ(pieces[1].area, 1.0);
    EXPECT_EQ(pieces[2].area, 2.0);
}

TEST(Intersect, WhatOnlyTouchesIsNoPiece) {
    const auto input = set_of({{{rectangle(0, 0, 1, 1)}}});
    const auto overlay = set_of({{{rectangle(1, 0, 2, 1)}}, {{rectangle(1, 1, 2, 2)}}, {{rectangle(5, 5, 6, 6)}}});
    EXPECT_TRUE(pieces_of(input, overlay).empty());
}

TEST(Intersect, PieceThatAlsoTouchesElsewhereHoldsItsAreaOnly) {
    // They share the box from 0,0 to 1,1, and a stretch of border at x = 3.
    const auto input = set_of({{{rectangle(0, 0, 1, 1)}, {rectangle(2, 0, 3, 1)}}});
    const auto overlay = set_of({{{rectangle(-1, -1, 1, 2)}, {rectangle(3, 0, 4, 1)}}});
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
    const auto large = set_of({{{rectangle(0, 0, 9, 9), rectangle(6, 6, 7, 7)}}});
    const auto small = set_of({{{rectangle(1, 1, 4, 4), rectangle(2, 2, 3, 3)}}});
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
    const auto ring = set_of({{{rectangle(0, 0, 9, 9), rectangle(3, 3, 6, 6)}}});
    const auto inside = set_of({{{rectangle(4, 4, 5, 5)}}, {{rectangle(3, 3, 6, 6)}}});
    EXPECT_TRUE(pieces_of(ring, inside).empty());
    EXPECT_TRUE(pieces_of(inside, ring).empty());
}

TEST(Intersect, EmptyFeaturesHaveNoPieces) {
    const auto some = set_of({{}, {{rectangle(0, 0, 1, 1)}}, {}});
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
    const auto input = set_of({{{rectangle(0, 0, 4, 4)}}});
    const auto overlay = set_of({{{rectangle(1, 1, 3, 5)}}, {{rectangle(2, 2, 6, 3)}}, {{rectangle(1, 1, 3, 5)}}});
    const auto pieces = pieces_of(input, overlay);
    ASSERT_EQ(pieces.size(), 3U);
    EXPECT_NEAR(pieces[0].area, 6.0, 1e-12);
    EXPECT_NEAR(pieces[1].area, 2.0, 1e-12);
    EXPECT_NEAR(pieces[2].area, 6.0, 1e-12);
}

TEST(Intersect, PiecesOfTwoPartitionsAddUp) {
    const auto input = partition(10, 21);
    PolygonSet overlay = set_of({{{rectangle(299990, 4099990, 300004.3, 4100020)}},
                                 {{rectangle(300004.3, 4099990, 300020, 4100006.7)}},
                                 {{rectangle(300004.3, 4100006.7, 300020, 4100020)}}});
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

TEST(IntersectRealData, ShedsDissolveAndIntersectWithoutLosingArea) {
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

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/dissolve.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include "tests/polygons/polygon_makers.h"
#include "tests/support/listening_progress.h"

namespace kestrel::polygons {
namespace {

TEST(Dissolve, JoinsNeighboursAcrossTheirSharedBorder) {
    const auto set = set_of({{{rectangle(0, 0, 1, 1)}}, {{rectangle(1, 0, 2, 1)}}});
    const auto result = dissolved(set, {0, 0}, 1);
    ASSERT_EQ(result.feature_count(), 1U);
    EXPECT_EQ(result.polygon_count(), 1U);
    EXPECT_EQ(result.ring_count(), 1U);
    EXPECT_EQ(result.area(0), 2.0);
}

TEST(Dissolve, SingleFeatureIsPassedThroughAsItIs) {
    const auto set = set_of({{{rectangle(0, 0, 9, 9), rectangle(1, 1, 2, 2)}, {rectangle(20, 0, 21, 1)}}});
    EXPECT_TRUE(equal(dissolved(set, {0}, 1), set));
}

TEST(Dissolve, EmptyFeaturesAndGroupsStayEmpty) {
    const auto set = set_of({{}, {{rectangle(0, 0, 1, 1)}}, {}});
    const auto result = dissolved(set, {0, 2, 2}, 4);
    ASSERT_EQ(result.feature_count(), 4U);
    EXPECT_TRUE(result.empty(0));
    EXPECT_TRUE(result.empty(1));
    EXPECT_EQ(result.area(2), 1.0);
    EXPECT_TRUE(result.empty(3));
    EXPECT_EQ(dissolved(PolygonSet(), {}, 0).feature_count(), 0U);
}

TEST(Dissolve, OverlapsCountOnce) {
    const auto set = set_of({{{rectangle(0, 0, 2, 2)}}, {{rectangle(1, 1, 3, 3)}}, {{rectangle(0, 0, 2, 2)}}});
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
    const auto set = set_of({{{rectangle(0, 0, 3, 3), rectangle(1, 1, 2, 2)}}, {{rectangle(1, 1, 2, 2)}}});
    const auto result = dissolved(set, {0, 0}, 1);
    EXPECT_EQ(result.ring_count(), 1U);
    EXPECT_EQ(result.area(0), 9.0);
}

TEST(Dissolve, PartsThatTouchInAPointStayPolygonsOfTheirOwn) {
    const auto set = set_of({{{rectangle(0, 0, 1, 1)}}, {{rectangle(1, 1, 2, 2)}}});
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

}  // namespace
}  // namespace kestrel::polygons

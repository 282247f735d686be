// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/zone_counts.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <tuple>

#include "platform/errors.h"

namespace kestrel::platform {
namespace {

ZoneCounts part(std::vector<ZoneCounts::Row> rows, std::vector<std::vector<std::uint32_t>> sets,
                std::vector<std::uint8_t> touches) {
    ZoneCounts counts;
    counts.rows = std::move(rows);
    counts.scenario_sets = std::move(sets);
    counts.touches_nodata = std::move(touches);
    return counts;
}

TEST(ZoneCounts, PartsOfARasterMergeBySumAndByOr) {
    ZoneCounts counts = part({{0, kNoOverlay, 0, 21, 5}, {1, kNoOverlay, 0, 21, 7}}, {{}}, {0, 1, 0});
    counts.merge(part({{0, kNoOverlay, 0, 11, 2}, {1, kNoOverlay, 0, 21, 3}}, {{}}, {1, 0, 0}));
    EXPECT_EQ(counts.rows, (std::vector<ZoneCounts::Row>{
                               {0, kNoOverlay, 0, 11, 2}, {0, kNoOverlay, 0, 21, 5}, {1, kNoOverlay, 0, 21, 10}}));
    EXPECT_EQ(counts.touches_nodata, (std::vector<std::uint8_t>{1, 1, 0}));
}

TEST(ZoneCounts, TheOrderOfMergingDoesNotShow) {
    const ZoneCounts a = part({{0, 4, 1, 21, 5}}, {{}, {1}}, {0});
    const ZoneCounts b = part({{0, 4, 2, 21, 1}, {0, 4, 1, 21, 2}}, {{}, {0}, {0, 1}}, {0});
    ZoneCounts ab = part({}, {{}}, {0});
    ab.merge(a);
    ab.merge(b);
    ZoneCounts ba = part({}, {{}}, {0});
    ba.merge(b);
    ba.merge(a);
    EXPECT_EQ(ab.scenario_sets, (std::vector<std::vector<std::uint32_t>>{{}, {0}, {0, 1}, {1}}));
    EXPECT_EQ(ab.scenario_sets, ba.scenario_sets);
    EXPECT_EQ(ab.rows, ba.rows);
    EXPECT_EQ(ab.rows, (std::vector<ZoneCounts::Row>{{0, 4, 1, 21, 2}, {0, 4, 2, 21, 1}, {0, 4, 3, 21, 5}}));
}

TEST(ZoneCounts, RowsInAnyOrderAreSummedAsByAMap) {
    std::mt19937 random(3);
    for (const std::uint32_t zones : {1U, 7U, 5000U}) {
        std::vector<ZoneCounts::Row> rows;
        std::map<std::tuple<std::uint32_t, std::uint32_t, std::uint32_t, std::int32_t>, std::uint64_t> expected;
        for (std::uint32_t i = 0; i < 4000; ++i) {
            const auto zone = static_cast<std::uint32_t>(random() % zones);
            const std::uint32_t overlay = random() % 3 == 0 ? static_cast<std::uint32_t>(random() % 5) : kNoOverlay;
            const auto set = static_cast<std::uint32_t>(random() % 3);
            const std::int32_t land_class = static_cast<std::int32_t>(random() % 9) - 4;
            rows.push_back({zone, overlay, set, land_class, i + 1U});
            expected[{zone, overlay, set, land_class}] += i + 1U;
        }
        std::vector<ZoneCounts::Row> summed;
        for (const auto& [place, cells] : expected) {
            const auto& [zone, overlay, set, land_class] = place;
            summed.push_back({zone, overlay, set, land_class, cells});
        }
        sort_and_sum(rows);
        EXPECT_EQ(rows, summed) << zones;
        sort_and_sum(rows);
        EXPECT_EQ(rows, summed) << zones;
    }
}

TEST(ZoneCounts, NoRowsAreInOrder) {
    std::vector<ZoneCounts::Row> rows;
    sort_and_sum(rows);
    EXPECT_TRUE(rows.empty());
}

TEST(ZoneCounts, SetsOfScenariosThatNoCellHasAreDropped) {
    ZoneCounts counts = part({{0, kNoOverlay, 2, 21, 5}}, {{}, {0}, {0, 1}}, {0});
    counts.put_in_order();
    EXPECT_EQ(counts.scenario_sets, (std::vector<std::vector<std::uint32_t>>{{}, {0, 1}}));
    EXPECT_EQ(counts.rows.at(0).scenario_set, 1U);
}

TEST(ZoneCounts, CountsOfOtherZonesAreRefused) {
    ZoneCounts counts = part({}, {{}}, {0, 0});
    try {
        counts.merge(part({}, {{}}, {0}));
        FAIL() << "merged";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), kInvalidProcedureCall);
    }
}

}  // namespace
}  // namespace kestrel::platform

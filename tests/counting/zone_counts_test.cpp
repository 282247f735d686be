// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/zone_counts.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <tuple>

namespace kestrel::counting {
namespace {

ZoneCounts part(std::vector<ZoneCounts::Row> rows, std::vector<std::vector<std::uint32_t>> sets) {
    ZoneCounts counts;
    counts.rows = std::move(rows);
    counts.scenario_sets = std::move(sets);
    return counts;
}

/// The counts of several parts of a raster together, each with sets of scenarios of its own.
ZoneCounts together(const std::vector<ZoneCounts>& parts) {
    ZoneCounts counts;
    for (const ZoneCounts& one : parts) {
        const auto positions = counts.add_scenario_sets(one.scenario_sets);
        for (ZoneCounts::Row row : one.rows) {
            row.scenario_set = positions[row.scenario_set];
            counts.rows.push_back(row);
        }
    }
    counts.put_in_order();
    return counts;
}

TEST(ZoneCounts, RowsOfTheSamePlaceAreSummed) {
    const ZoneCounts counts = together({part({{0, kNoOverlay, 0, 21, 5}, {1, kNoOverlay, 0, 21, 7}}, {{}}),
                                        part({{0, kNoOverlay, 0, 11, 2}, {1, kNoOverlay, 0, 21, 3}}, {{}})});
    EXPECT_EQ(counts.rows, (std::vector<ZoneCounts::Row>{
                               {0, kNoOverlay, 0, 11, 2}, {0, kNoOverlay, 0, 21, 5}, {1, kNoOverlay, 0, 21, 10}}));
}

TEST(ZoneCounts, TheOrderOfThePartsDoesNotShow) {
    const ZoneCounts a = part({{0, 4, 1, 21, 5}}, {{}, {1}});
    const ZoneCounts b = part({{0, 4, 2, 21, 1}, {0, 4, 1, 21, 2}}, {{}, {0}, {0, 1}});
    const ZoneCounts ab = together({a, b});
    const ZoneCounts ba = together({b, a});
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
    ZoneCounts counts = part({{0, kNoOverlay, 2, 21, 5}}, {{}, {0}, {0, 1}});
    counts.put_in_order();
    EXPECT_EQ(counts.scenario_sets, (std::vector<std::vector<std::uint32_t>>{{}, {0, 1}}));
    EXPECT_EQ(counts.rows.at(0).scenario_set, 1U);
}

}  // namespace
}  // namespace kestrel::counting

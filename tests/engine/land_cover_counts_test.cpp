// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/land_cover_counts.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>

namespace kestrel {
namespace {

using counting::kNoOverlay;
using counting::ZoneCounts;
using data::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A tabulation as lines "key: class x cells, ...".
std::vector<std::string> lines_of(const Tabulation& tabulation) {
    std::vector<std::string> lines;
    for (std::size_t row = 0; row < tabulation.keys.size(); ++row) {
        std::string line = tabulation.keys[row] + ":";
        for (const Tabulation::Column& column : tabulation.columns) {
            for (const Tabulation::Entry& entry : column.entries) {
                line += entry.row == row ? fmt::format(" {}x{}", column.land_class, entry.cells) : "";
            }
        }
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::int32_t> classes_of(const Tabulation& tabulation) {
    std::vector<std::int32_t> classes;
    for (const Tabulation::Column& column : tabulation.columns) {
        classes.push_back(column.land_class);
    }
    return classes;
}

/// Zones 20, 10 and again 20 under two scenarios: the sets are none, {0}, {0, 1} and {1}.
ZoneCounts counts() {
    ZoneCounts result;
    result.scenario_sets = {{}, {0}, {0, 1}, {1}};
    result.rows = {
        {.zone = 0, .scenario_set = 0, .land_class = 5, .cells = 4},
        {.zone = 0, .scenario_set = 1, .land_class = -7, .cells = 1},
        {.zone = 0, .scenario_set = 2, .land_class = 5, .cells = 2},
        {.zone = 1, .scenario_set = 3, .land_class = 5, .cells = 3},
        {.zone = 2, .scenario_set = 0, .land_class = 5, .cells = 10},
    };
    result.nodata_rows = {{.zone = 1, .scenario_set = 0, .cells = 6}};
    result.touches_nodata = {0, 1, 0};
    return result;
}

class Counted : public testing::Test {
  protected:
    ZoneGroups groups{std::vector<Value>{std::int64_t{20}, std::int64_t{10}, std::int64_t{20}}};
    LandCoverCounts counted{counts(), ZoneKeys(groups), 100};
};

TEST_F(Counted, PiecesOfOneValueAreOneRowAndRowsAscendByValue) {
    EXPECT_THAT(lines_of(counted.whole()), ElementsAre("10: 5x3", "20: -7x1 5x16"));
}

TEST_F(Counted, ColumnsAscendByClass) {
    EXPECT_THAT(classes_of(counted.whole()), ElementsAre(-7, 5));
    EXPECT_EQ(counted.whole().field_name(0), "VALUE_-7");
    EXPECT_EQ(counted.whole().field_count(), 4U);
    EXPECT_EQ(counted.whole().cell_area, 100);
}

TEST_F(Counted, InsideAScenarioOnlyItsCellsCount) {
    EXPECT_THAT(lines_of(counted.inside(0)), ElementsAre("20: -7x1 5x2"));
    EXPECT_THAT(lines_of(counted.inside(1)), ElementsAre("10: 5x3", "20: 5x2"));
}

TEST_F(Counted, AClassThatLiesOutsideTheScenarioHasNoColumn) {
    EXPECT_THAT(classes_of(counted.inside(1)), ElementsAre(5));
}

TEST_F(Counted, AnAppliedScenarioChangesWhatLaterOnesFind) {
    counted.apply(0, 2);
    EXPECT_THAT(lines_of(counted.inside(1)), ElementsAre("10: 5x3", "20: 2x2"));
    EXPECT_THAT(lines_of(counted.inside(0)), ElementsAre("20: 2x3"));
}

TEST_F(Counted, OfSeveralAppliedScenariosTheLastOneCounts) {
    counted.apply(0, 2);
    counted.apply(1, 9);
    EXPECT_THAT(lines_of(counted.inside(0)), ElementsAre("20: 2x1 9x2"));
}

TEST_F(Counted, TheWholeZonesKeepTheRastersOwnClasses) {
    counted.apply(0, 2);
    EXPECT_THAT(lines_of(counted.whole()), ElementsAre("10: 5x3", "20: -7x1 5x16"));
}

TEST_F(Counted, CountsAreHandedOver) {
    EXPECT_EQ(counted.take_counts().rows, counts().rows);
    EXPECT_THAT(counted.counts().rows, IsEmpty());
}

TEST(LandCoverCounts, AZoneOfNodataOnlyIsARowWithoutCells) {
    const ZoneGroups groups({Value("dry"), Value("wet")});
    ZoneCounts given;
    given.rows = {{.zone = 0, .land_class = 5, .cells = 4}};
    given.nodata_rows = {{.zone = 1, .cells = 9}};
    EXPECT_THAT(lines_of(LandCoverCounts(given, ZoneKeys(groups), 1).whole()), ElementsAre("dry: 5x4", "wet:"));
}

TEST(LandCoverCounts, AZoneWithoutAnyCellIsNoRow) {
    const ZoneGroups groups({Value("a"), Value("b")});
    ZoneCounts given;
    given.rows = {{.zone = 1, .land_class = 5, .cells = 4}};
    EXPECT_THAT(lines_of(LandCoverCounts(given, ZoneKeys(groups), 1).whole()), ElementsAre("b: 5x4"));
    EXPECT_THAT(lines_of(LandCoverCounts({}, ZoneKeys(groups), 1).whole()), IsEmpty());
}

TEST(LandCoverCounts, CountsBeyond32BitsAreKept) {
    const ZoneGroups groups(std::vector<Value>{Value("a")});
    ZoneCounts given;
    given.rows = {{.zone = 0, .land_class = 5, .cells = 9'000'000'000}};
    EXPECT_THAT(lines_of(LandCoverCounts(given, ZoneKeys(groups), 1).whole()), ElementsAre("a: 5x9000000000"));
}

TEST(LandCoverCounts, AgreesWithSumsInAMap) {
    std::mt19937 random(11);
    const auto up_to = [&](std::int64_t most) { return std::uniform_int_distribution<std::int64_t>(0, most)(random); };
    constexpr std::size_t kZones = 300;
    std::vector<Value> values(kZones);
    for (Value& value : values) {
        value = up_to(90);
    }
    const ZoneGroups groups(values);
    ZoneCounts given;
    std::map<std::int64_t, std::map<std::int32_t, std::uint64_t>> expected;
    for (std::uint32_t zone = 0; zone < kZones; ++zone) {
        // Classes that share their last eight bits, and some that do not.
        for (std::int32_t land_class = -512; land_class <= 512; land_class += up_to(1) == 0 ? 256 : 100) {
            const auto cells = static_cast<std::uint64_t>(up_to(1000) + 1);
            given.rows.push_back({.zone = zone, .land_class = land_class, .cells = cells});
            expected[std::get<std::int64_t>(values[zone])][land_class] += cells;
        }
    }
    std::vector<std::string> lines;
    for (const auto& [value, cells_of_class] : expected) {
        std::string line = fmt::format("{}:", value);
        for (const auto& [land_class, cells] : cells_of_class) {
            line += fmt::format(" {}x{}", land_class, cells);
        }
        lines.push_back(line);
    }
    EXPECT_EQ(lines_of(LandCoverCounts(given, ZoneKeys(groups), 1).whole()), lines);
}

TEST(LandCoverCounts, PiecesOutsideOfEveryDensityPolygonDropOut) {
    const ZoneGroups groups(std::vector<Value>{std::int64_t{7}});
    ZoneCounts given;
    given.scenario_sets = {{}, {0}, {1}};
    given.rows = {{.zone = 0, .overlay = 0, .land_class = 5, .cells = 1},
                  {.zone = 0, .overlay = 1, .scenario_set = 1, .land_class = 5, .cells = 2},
                  {.zone = 0, .overlay = kNoOverlay, .scenario_set = 2, .land_class = 6, .cells = 4}};
    const LandCoverCounts counted(given, ZoneKeys(groups, {3, 1}), 1);
    EXPECT_THAT(lines_of(counted.whole()), ElementsAre("7#1: 5x2", "7#3: 5x1"));
    EXPECT_TRUE(counted.any_inside(0));
    EXPECT_FALSE(counted.any_inside(1));
}

TEST(LandCoverCounts, NodataCellsAreCellsOfAScenarioToo) {
    const ZoneGroups groups(std::vector<Value>{std::int64_t{7}});
    ZoneCounts given;
    given.scenario_sets = {{}, {0}};
    given.nodata_rows = {{.zone = 0, .scenario_set = 1, .cells = 1}};
    const LandCoverCounts counted(given, ZoneKeys(groups), 1);
    EXPECT_TRUE(counted.any_inside(0));
    EXPECT_THAT(lines_of(counted.inside(0)), ElementsAre("7:"));
    EXPECT_FALSE(counted.any_inside(1));
}

}  // namespace
}  // namespace kestrel

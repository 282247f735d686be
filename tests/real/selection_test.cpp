// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "tests/real/comparison.h"

namespace kestrel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class RealRunOfSelectedZones : public RealData {
  protected:
    static RunSettings of(std::vector<std::int64_t> selected) {
        RunSettings settings;
        settings.selected = std::move(selected);
        return settings;
    }

    static std::vector<std::string> values_of(const WholeRun& run) {
        std::vector<std::string> values;
        for (const contracts::ZoneResult& zone : run.result.zones) {
            values.push_back(zone.value);
        }
        return values;
    }
};

TEST_F(RealRunOfSelectedZones, HoldsThoseZonesOnly) {
    const RunSettings settings = of({5, 14, 22});
    expect_run_as_counted(settings);
    EXPECT_THAT(values_of(WholeRun(settings)), ElementsAre("0", "27", "42"));
}

// 1 and 15 have the same value as 0.
TEST_F(RealRunOfSelectedZones, LeavesOutUnselectedFeaturesOfTheSameValue) {
    const RunSettings settings = of({0});
    expect_run_as_counted(settings);
    const WholeRun selected(settings);
    const WholeRun whole(RunSettings{});
    ASSERT_THAT(values_of(selected), ElementsAre("3"));
    EXPECT_EQ(whole.result.zones[1].value, "3");
    EXPECT_LT(selected.result.zones[0].cells, whole.result.zones[1].cells / 2);
}

TEST_F(RealRunOfSelectedZones, JoinsSelectedFeaturesOfOneValue) {
    const RunSettings settings = of({0, 2, 15});
    expect_run_as_counted(settings);
    EXPECT_THAT(values_of(WholeRun(settings)), ElementsAre("3", "7"));
}

TEST_F(RealRunOfSelectedZones, KeepsTextOfThirtyTwoCharactersWhole) {
    RunSettings settings = of({1, 3, 8, 17});
    settings.field = "SHED_NAME";
    expect_run_as_counted(settings);
    EXPECT_THAT(values_of(WholeRun(settings)), ElementsAre("Cañada Larga", "Lower Basin of the Long Dry Wash",
                                                           "Sector #7", "Upper Basin of the Long Dry Wash"));
}

TEST_F(RealRunOfSelectedZones, InAGeoPackageGoesByItsIdsAndLongFields) {
    RunSettings settings = of({1, 9, 27});
    settings.zones = real_file("sheds.gpkg|layername=sheds");
    settings.field = "WATERSHED_IDENTIFIER";
    expect_run_as_counted(settings);
    const WholeRun run(settings);
    EXPECT_THAT(values_of(run), ElementsAre("5000000003", "5000000015", "5000009002"));
    EXPECT_EQ(read_output(run.output()).field_names.front(), "WATERSHE_1");
    EXPECT_EQ(read_output(run.output()).field_type, "Integer64");
}

TEST_F(RealRunOfSelectedZones, KeepsLongTextOfALongFieldWhole) {
    RunSettings settings = of({2, 9, 18});
    settings.zones = real_file("sheds.gpkg|layername=sheds");
    settings.field = "WATERSHED_DESCRIPTION";
    expect_run_as_counted(settings);
    EXPECT_THAT(values_of(WholeRun(settings)),
                ElementsAre("Catchment of Cañada Larga", "Catchment of Lower Basin of the Long Dry Wash",
                            "Catchment of Upper Basin of the Long Dry Wash"));
}

TEST_F(RealRunOfSelectedZones, ByDensityWithScenariosIsAsCounted) {
    RunSettings settings = of({0, 2, 6, 7, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18});
    settings.option = kByDensity;
    settings.scenarios = {{real_file("town_plan.shp"), 23}, {real_file("resort_wgs84.gpkg"), 22}};
    expect_run_as_counted(settings);
}

TEST_F(RealRunOfSelectedZones, CarriesTheChosenNamesIntoOutputAndReport) {
    const WholeRun run(of({5, 14}));
    EXPECT_EQ(read_output(run.output()).field_names.front(), "SHED_ID");
    EXPECT_EQ(run.result.analysis_layer, "sheds");
    EXPECT_EQ(run.result.analysis_field, "SHED_ID");
    const std::string folder = base::folder_of(run.output());
    EXPECT_THAT(base::read_file(folder + "/result.prm"),
                HasSubstr("  Analysis Layer: sheds\r\n  Analysis Field: SHED_ID\r\n"));
    EXPECT_THAT(base::read_file(folder + "/result.met"), ::testing::Not(HasSubstr("analyfld")));
}

// 24 lies over its neighbours, and takes their cells only where it is part of the run.
TEST_F(RealRunOfSelectedZones, GivesTheNeighboursTheCellsOfAnUnselectedLaterZone) {
    std::vector<std::int64_t> all_but_campus;
    for (std::int64_t id = 0; id < 24; ++id) {
        all_but_campus.push_back(id);
    }
    const RunSettings settings = of(all_but_campus);
    expect_run_as_counted(settings);
    const auto cells_of_neighbours = [](const WholeRun& run) {
        std::uint64_t sum = 0;
        for (const contracts::ZoneResult& zone : run.result.zones) {
            sum += zone.value == "60" ? 0 : zone.cells;
        }
        return sum;
    };
    EXPECT_GT(cells_of_neighbours(WholeRun(settings)), cells_of_neighbours(WholeRun(RunSettings{})) + 5000);
}

}  // namespace
}  // namespace kestrel::test

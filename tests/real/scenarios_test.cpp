// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/real/comparison.h"

namespace kestrel::test {
namespace {

class RealRunWithScenarios : public RealData {
  protected:
    static RunSettings::Scenario town_plan(std::int32_t target) { return {real_file("town_plan.shp"), target}; }
    static RunSettings::Scenario resort(std::int32_t target) { return {real_file("resort_wgs84.gpkg"), target}; }

    static RunSettings with(std::vector<RunSettings::Scenario> scenarios) {
        RunSettings settings;
        settings.scenarios = std::move(scenarios);
        return settings;
    }
};

TEST_F(RealRunWithScenarios, OneIsAsTheReclassifiedCellsAmountTo) {
    expect_run_as_counted(with({town_plan(23)}));
}

TEST_F(RealRunWithScenarios, ATargetClassThatTheRasterLacksGetsItsOwnColumns) {
    expect_run_as_counted(with({town_plan(24)}));
}

TEST_F(RealRunWithScenarios, PolygonsInAnotherSystemOfTheSameProjectionAreProjected) {
    const RunSettings settings = with({resort(22)});
    expect_run_as_counted(settings);
    EXPECT_THAT(WholeRun(settings).boxes,
                ::testing::Not(::testing::Contains(::testing::Field(&reporting::MessageBox::title, "Projection"))));
}

TEST_F(RealRunWithScenarios, TwoThatOverlapAreAppliedInOrder) {
    const RunSettings settings = with({town_plan(23), resort(22)});
    std::uint64_t in_both = 0;
    for (const auto& [place, cells] : expected_output(settings).cells) {
        in_both += std::get<2>(place).size() == 2 ? cells : 0;
    }
    EXPECT_GT(in_both, 100U);
    expect_run_as_counted(settings);
}

TEST_F(RealRunWithScenarios, TheLaterOneOwnsTheCellsOfBoth) {
    const RunSettings town_last = with({resort(11), town_plan(24)});
    const RunSettings resort_last = with({town_plan(24), resort(11)});
    expect_run_as_counted(town_last);
    expect_run_as_counted(resort_last);
    const auto impervious = [](const RunSettings& settings) {
        double sum = 0;
        for (const contracts::ZoneResult& zone : WholeRun(settings).result.zones) {
            sum += zone.impervious_area;
        }
        return sum;
    };
    EXPECT_GT(impervious(town_last), impervious(resort_last) + 10);
}

TEST_F(RealRunWithScenarios, AThirdFindsTheLandAsTheLatestBeforeItLeftIt) {
    expect_run_as_counted(with({town_plan(23), resort(22), town_plan(24)}));
}

TEST_F(RealRunWithScenarios, TwoThatOverlapByDensityInFeet) {
    RunSettings settings = with({town_plan(23), resort(24)});
    settings.option = kByDensity;
    settings.units = "Feet";
    expect_run_as_counted(settings);
}

TEST_F(RealRunWithScenarios, HighLowAndTextZonesAreAsCounted) {
    for (const CoefficientOption option : {kHigh, kLow}) {
        RunSettings settings = with({resort(24), town_plan(82)});
        settings.option = option;
        settings.field = "SHED_NAME";
        expect_run_as_counted(settings);
    }
}

TEST_F(RealRunWithScenarios, OfSelectedPolygonsTakeTheseOnly) {
    RunSettings::Scenario second_only = town_plan(23);
    second_only.selected = {1};
    RunSettings::Scenario first_of_resort = resort(22);
    first_of_resort.selected = {1};
    expect_run_as_counted(with({second_only, first_of_resort}));
}

TEST_F(RealRunWithScenarios, LeaveTheTotalAreaOfEveryZoneAsItWas) {
    const WholeRun before(RunSettings{});
    const WholeRun after(with({town_plan(23), resort(22)}));
    ASSERT_EQ(before.result.zones.size(), after.result.zones.size());
    for (std::size_t i = 0; i < before.result.zones.size(); ++i) {
        // 14 classes, each rounded to 3 decimals by two scenarios.
        EXPECT_NEAR(before.result.zones[i].total_area, after.result.zones[i].total_area, 14 * 2 * 0.001)
            << before.result.zones[i].value;
    }
}

TEST_F(RealRunWithScenarios, OneBesideAllSelectedZonesIsToldAndSkipped) {
    RunSettings settings = with({town_plan(23)});
    settings.selected = {23};  // far from the town
    const WholeRun run(settings);
    const reporting::MessageBox no_overlay{
        "The Analysis Layer and the Development Scenario (town_plan) do not overlap.", "No Overlay",
        reporting::Icon::information};
    EXPECT_THAT(run.boxes, ::testing::Contains(no_overlay));
    ASSERT_TRUE(run.result.finished);
    expect_same_rows(read_output(run.output()), expected_output(settings));
}

TEST_F(RealRunWithScenarios, ATargetClassWithoutCoefficientsEndsTheRun) {
    const WholeRun run(with({town_plan(77)}));
    const reporting::MessageBox invalid{
        "No coefficients defined in the selected Coefficient Set for the land cover class 77!", "Invalid Coefficient",
        reporting::Icon::critical};
    EXPECT_THAT(run.boxes, ::testing::ElementsAre(invalid));
    EXPECT_FALSE(run.result.finished);
    EXPECT_THAT(run.output_files(), ::testing::IsEmpty());
}

}  // namespace
}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/real/comparison.h"

namespace kestrel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RealRunThatFails : public RealData {};

TEST_F(RealRunThatFails, ForAClassWithoutCoefficientsNamesItAndLeavesNoOutput) {
    RunSettings settings;
    settings.set = "NLCD without crops";
    const WholeRun run(settings);
    const reporting::MessageBox invalid{
        "No coefficients defined in the selected Coefficient Set for the land cover class 82!", "Invalid Coefficient",
        reporting::Icon::critical};
    EXPECT_THAT(run.boxes, ElementsAre(invalid));
    EXPECT_FALSE(run.result.finished);
    EXPECT_THAT(run.output_files(), IsEmpty());
    EXPECT_THAT(run.temporary_files(), IsEmpty());
    EXPECT_THAT(run.call_stacks, IsEmpty());
}

TEST_F(RealRunThatFails, ForAClassWithoutCoefficientsCountsItsCells) {
    RunSettings settings;
    settings.set = "NLCD without crops";
    std::uint64_t counted = 0;
    for (const auto& [place, cells] : expected_output(settings).cells) {
        counted += std::get<3>(place) == 82 ? cells : 0;
    }
    const WholeRun run(settings);
    ASSERT_EQ(run.result.unknown_classes.size(), 1U);
    EXPECT_EQ(run.result.unknown_classes[0].code, 82);
    EXPECT_EQ(run.result.unknown_classes[0].cells, counted);
    EXPECT_GT(counted, 0U);
}

TEST_F(RealRunThatFails, ForADensityLayerInASystemOfAnotherNameTellsTheDensityError) {
    RunSettings settings;
    settings.option = kByDensity;
    settings.density = real_file("blockgroups_wgs84.gpkg");
    const WholeRun run(settings);
    const reporting::MessageBox density_error{
        "Error calculting the Population Density:\r  1) Check that the Analysis Layer and the Population Density Layer overlap.\r  2) Check that the Analysis Layer and the Population Density Layer are in the same projection.",  // sic
        "Population Density Calculation Error"};
    EXPECT_THAT(run.boxes, ElementsAre(density_error));
    EXPECT_FALSE(run.result.finished);
    EXPECT_THAT(run.output_files(), IsEmpty());
    EXPECT_THAT(run.temporary_files(), IsEmpty());
    EXPECT_THAT(run.call_stacks, IsEmpty());
}

TEST_F(RealRunThatFails, ForADensityLayerBesideTheSelectedZonesTellsTheDensityError) {
    RunSettings settings;
    settings.option = kByDensity;
    settings.selected = {26};  // far from every block
    const WholeRun run(settings);
    ASSERT_EQ(run.boxes.size(), 1U);
    EXPECT_EQ(run.boxes[0].title, "Population Density Calculation Error");
    EXPECT_FALSE(run.result.finished);
    EXPECT_THAT(run.output_files(), IsEmpty());
}

}  // namespace
}  // namespace kestrel::test

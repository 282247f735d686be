// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "data/shapefile_writer.h"
#include "engine/clsISExecuteModel.h"
#include "tests/support/small_world.h"

namespace kestrel {
namespace {

using data::SpatialReference;
using data::Value;
using reporting::Answer;
using reporting::Buttons;
using reporting::Icon;
using reporting::MessageBox;
using test::Box;
using test::Shape;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Two watersheds of four cells of grassland each, under the Medium coefficients: 2 for grassland, 80 for developed.
class Scenarios : public testing::Test {
  protected:
    Scenarios() {
        world.land_cover("5 5 5 5\n5 5 5 5\n");
        world.layer("sheds", {test::integer_field("ID")},
                    {{{Box{0, 0, 2, 2}}, {std::int64_t{1}}}, {{Box{2, 0, 4, 2}}, {std::int64_t{2}}}});
    }
    void plan(const std::string& name, const std::vector<Box>& boxes, std::vector<std::int64_t> selected = {},
              const std::string& reference = "EPSG:26912") {
        std::vector<Shape> shapes;
        for (const Box& box : boxes) {
            shapes.push_back({{box}, {std::int64_t{1}}});
        }
        world.layer(name, {test::integer_field("N")}, shapes, std::move(selected), reference);
    }

    test::SmallWorld world;
};

TEST_F(Scenarios, ThePercentageChangesAndTheAreaDoesNot) {
    plan("mall", {Box{0, 0, 2, 1}});
    world.parameters.scenarios = {"1#mall#Developed#2"};
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|4|1.64|41|Y", "2|4|0.08|2|Y"));
    EXPECT_THAT(world.said.boxes, IsEmpty());
}

TEST_F(Scenarios, AScenarioOverTwoZonesChangesBoth) {
    plan("mall", {Box{1, 0, 3, 1}});
    world.parameters.scenarios = {"1#mall#Developed#2"};
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|4|0.86|21.5|Y", "2|4|0.86|21.5|Y"));
}

TEST_F(Scenarios, OfTwoThatOverlapTheSecondTakesFromTheFirstsTarget) {
    plan("mall", {Box{0, 0, 2, 1}});
    plan("road", {Box{1, 0, 2, 2}});
    world.parameters.scenarios = {"1#mall#Developed#2", "3#road#Roads#7"};
    ASSERT_TRUE(world.run());
    // One cell developed, two of road, one of grass.
    EXPECT_THAT(world.rows(), ElementsAre("1|4|2.82|70.5|Y", "2|4|0.08|2|Y"));
    const data::Table& last = world.result().zone_tables.back();
    EXPECT_EQ(last.number(0, last.find_field("area-2")), 1);
    EXPECT_EQ(last.number(0, last.find_field("area-7")), 2);
    EXPECT_EQ(last.number(0, last.find_field("area-5")), 1);
}

TEST_F(Scenarios, AreAppliedInTheirOrder) {
    plan("mall", {Box{0, 0, 2, 1}});
    plan("road", {Box{1, 0, 2, 2}});
    world.parameters.scenarios = {"1#road#Roads#7", "2#mall#Developed#2"};
    ASSERT_TRUE(world.run());
    // Two cells developed, one of road, one of grass.
    EXPECT_THAT(world.rows(), ElementsAre("1|4|2.62|65.5|Y", "2|4|0.08|2|Y"));
}

TEST_F(Scenarios, TheSameLayerTwiceEndsAtTheSecondTarget) {
    plan("mall", {Box{0, 0, 2, 1}});
    world.parameters.scenarios = {"1#mall#Roads#7", "2#mall#Developed#2"};
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|4|1.64|41|Y", "2|4|0.08|2|Y"));
}

TEST_F(Scenarios, WorkingTablesAreNumberedFromTwo) {
    plan("mall", {Box{0, 0, 2, 1}});
    plan("road", {Box{1, 0, 2, 2}});
    world.parameters.scenarios = {"1#mall#Developed#2", "2#road#Roads#7"};
    ASSERT_TRUE(world.run());
    std::vector<std::string> names;
    for (const data::Table& table : world.result().zone_tables) {
        names.push_back(table.name());
    }
    EXPECT_THAT(names, ElementsAre("areaTemp", "2dsarea", "3dsarea"));
}

TEST_F(Scenarios, OfALayerWithASelectionOnlyTheSelectedPolygonsCount) {
    plan("mall", {Box{0, 0, 2, 1}, Box{2, 0, 3, 1}, Box{3, 0, 4, 2}}, {1});
    world.parameters.scenarios = {"1#mall#Developed#2"};
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|4|0.08|2|Y", "2|4|0.86|21.5|Y"));
    EXPECT_THAT(world.temp(), IsEmpty());
}

TEST_F(Scenarios, EachSelectionHasItsOwnWorkingCopyBesideThatOfTheZones) {
    plan("mall", {Box{0, 0, 1, 1}, Box{3, 0, 4, 1}}, {0});
    plan("road", {Box{1, 0, 2, 1}, Box{2, 0, 3, 1}}, {0});
    world.layer("chosen", {test::integer_field("ID")},
                {{{Box{0, 0, 2, 2}}, {std::int64_t{1}}}, {{Box{2, 0, 4, 2}}, {std::int64_t{2}}}}, {0});
    world.parameters.analysis_layer = "chosen";
    world.parameters.scenarios = {"1#mall#Developed#2", "2#road#Roads#7"};
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|4|1.84|46|Y"));
}

TEST_F(Scenarios, OneThatLiesOutsideIsToldAndSkipped) {
    plan("mall", {Box{50, 50, 51, 51}});
    plan("road", {Box{0, 0, 1, 1}});
    world.parameters.scenarios = {"1#mall#Developed#2", "2#road#Roads#7"};
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.said.boxes,
                ElementsAre(MessageBox{"The Analysis Layer and the Development Scenario (mall) do not overlap.",
                                       "No Overlay", Icon::information}));
    EXPECT_THAT(world.rows(), ElementsAre("1|4|1.06|26.5|Y", "2|4|0.08|2|Y"));
}

MessageBox projection_question(const std::string& layer) {
    return {
        "The Analysis Layer and the Development Scenario (" + layer +
            ") are not in the same projection.\rWould you like to continue with the analysis without this scenario?",
        "Projection", Icon::none, Buttons::ok_cancel};
}

TEST_F(Scenarios, OneInAnotherProjectionIsSkippedAfterOk) {
    plan("mall", {Box{0, 0, 2, 1}}, {}, "EPSG:26913");
    world.parameters.scenarios = {"1#mall#Developed#2"};
    world.said.answers = {Answer::ok};
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.said.boxes, ElementsAre(projection_question("mall")));
    EXPECT_THAT(world.rows(), ElementsAre("1|4|0.08|2|Y", "2|4|0.08|2|Y"));
}

TEST_F(Scenarios, OneInAnotherProjectionEndsTheRunAfterCancel) {
    plan("mall", {Box{0, 0, 2, 1}}, {}, "EPSG:26913");
    plan("road", {Box{50, 50, 51, 51}});
    world.parameters.scenarios = {"1#mall#Developed#2", "2#road#Roads#7"};
    world.said.answers = {Answer::cancel};
    EXPECT_FALSE(world.run());
    EXPECT_THAT(world.said.boxes, ElementsAre(projection_question("mall")));
    EXPECT_THAT(world.temp(), IsEmpty());
    EXPECT_THAT(test::names_in(world.output.path()), IsEmpty());
    EXPECT_EQ(world.layer_names().front(), "cover");
}

TEST_F(Scenarios, AnotherSystemOfTheSameProjectionIsProjected) {
    // In NAD27 the same numbers lie some 200 metres to the south of where they lie in NAD83.
    const auto nad83 = SpatialReference::from("EPSG:26912");
    const auto nad27 = SpatialReference::from("EPSG:26712");
    polygons::PolygonSet polygons = test::polygons_of({{{Box{0.1, 0.1, 1.9, 0.9}}}});
    data::project(polygons, nad83, nad27);
    const std::string path = world.folder / "mall.shp";
    const std::vector<data::Field> fields{test::integer_field("N")};
    const std::vector<Value> values{std::int64_t{1}};
    data::ShapefileWriter writer(path, fields, nad27);
    writer.insert(polygons, 0, values);
    writer.close();
    world.application.map().append_layer(
        std::make_shared<hosting::HeadlessFeatureLayer>("mall", data::FeatureSource{.path = path}));
    world.parameters.scenarios = {"1#mall#Developed#2"};
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.said.boxes, IsEmpty());
    EXPECT_THAT(world.rows(), ElementsAre("1|4|1.64|41|Y", "2|4|0.08|2|Y"));
}

TEST_F(Scenarios, OneWithoutASystemIsTakenToBeInTheAnalysisLayers) {
    plan("mall", {Box{0, 0, 2, 1}}, {}, "");
    world.parameters.scenarios = {"1#mall#Developed#2"};
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|4|1.64|41|Y", "2|4|0.08|2|Y"));
    EXPECT_THAT(world.said.notices,
                ElementsAre("\"mall\" names no coordinate system: that of \"sheds\" is taken for it."));
}

TEST_F(Scenarios, WithAnAnalysisLayerWithoutASystemItIsComparedWithTheLandCovers) {
    world.layer("bare", {test::integer_field("ID")}, {{{Box{0, 0, 2, 2}}, {std::int64_t{1}}}}, {}, "");
    plan("mall", {Box{0, 0, 2, 1}}, {}, "EPSG:26913");
    world.parameters.analysis_layer = "bare";
    world.parameters.scenarios = {"1#mall#Developed#2"};
    world.said.answers = {Answer::ok};
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.said.boxes, ElementsAre(projection_question("mall")));
    EXPECT_THAT(world.said.notices,
                ElementsAre("\"bare\" names no coordinate system: that of \"cover\" is taken for it."));
}

TEST_F(Scenarios, ATargetWithoutCoefficientStopsTheRun) {
    plan("mall", {Box{0, 0, 2, 1}});
    world.parameters.scenarios = {"1#mall#Moon#99"};
    EXPECT_FALSE(world.run());
    EXPECT_THAT(
        world.said.boxes,
        ElementsAre(MessageBox{"No coefficients defined in the selected Coefficient Set for the land cover class 99!",
                               "Invalid Coefficient", Icon::critical}));
    EXPECT_THAT(test::names_in(world.output.path()), IsEmpty());
}

TEST_F(Scenarios, ALayerThatTheMapLacksStopsTheRun) {
    world.parameters.scenarios = {"1#mall#Developed#2"};
    EXPECT_FALSE(world.run());
    EXPECT_THAT(
        world.said.boxes,
        ElementsAre(MessageBox{"Error occurred while adjusting area calculations for selected 'Development Scenarios'.",
                               "Error: Development Scenarios Adjustment"}));
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("\tisDSAdjustment clsISDSAdjustment Line : ")));
}

TEST_F(Scenarios, WhatIsWrongWithOneIsToldAfterTheAreasAreFound) {
    world.parameters.classes = {"2#Developed#90#80#70"};
    world.parameters.scenarios = {"1#mall#Developed#2"};
    EXPECT_FALSE(world.run());
    ASSERT_EQ(world.said.boxes.size(), 1U);
    EXPECT_EQ(world.said.boxes[0].title, "Invalid Coefficient");
}

TEST_F(Scenarios, UnderOptionThreeEachPieceHasItsOwnCoefficient) {
    world.layer("blocks", {test::real_field("POP")}, {{{Box{0, 0, 1, 2}}, {1000.0}}, {{Box{1, 0, 4, 2}}, {1.0}}});
    plan("mall", {Box{0, 0, 2, 1}});
    world.parameters.option = "3";
    world.parameters.density_layer = "blocks";
    world.parameters.density_field = "POP";
    world.parameters.density_high = "1000";
    world.parameters.density_low = "200";
    world.parameters.scenarios = {"1#mall#Developed#2"};
    ASSERT_TRUE(world.run());
    // High: 0.9 and 0.03; Low: 0.7 and 0.01.
    EXPECT_THAT(world.rows(), ElementsAre("1|4|1.64|41|Y", "2|4|0.04|1|Y"));
}

TEST_F(Scenarios, UnderOptionThreeOneOutsideTheDensityDoesNotOverlap) {
    world.layer("blocks", {test::real_field("POP")}, {{{Box{0, 0, 1, 2}}, {1000.0}}});
    plan("mall", {Box{3, 0, 4, 1}});
    world.parameters.option = "3";
    world.parameters.density_layer = "blocks";
    world.parameters.density_field = "POP";
    world.parameters.density_high = "1000";
    world.parameters.density_low = "200";
    world.parameters.scenarios = {"1#mall#Developed#2"};
    ASSERT_TRUE(world.run());
    ASSERT_EQ(world.said.boxes.size(), 1U);
    EXPECT_EQ(world.said.boxes[0].title, "No Overlay");
}

}  // namespace
}  // namespace kestrel

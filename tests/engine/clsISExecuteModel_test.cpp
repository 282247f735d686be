// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/clsISExecuteModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/small_world.h"

namespace kestrel {
namespace {

using data::Value;
using reporting::Icon;
using reporting::MessageBox;
using test::Box;
using test::Shape;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Two watersheds of four cells each.
class Run : public testing::Test {
  protected:
    Run() {
        world.land_cover("2 2 5 5\n2 5 5 7\n");
        world.layer("sheds", {test::integer_field("ID")},
                    {{{Box{0, 0, 2, 2}}, {std::int64_t{2}}}, {{Box{2, 0, 4, 2}}, {std::int64_t{1}}}});
    }
    void expect_silence() const {
        EXPECT_THAT(world.said.boxes, IsEmpty());
        EXPECT_THAT(world.said.call_stacks, IsEmpty());
    }

    test::SmallWorld world;
};

TEST_F(Run, OptionZeroUsesTheHighCoefficients) {
    world.parameters.option = "0";
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|4|1.09|27.25|Y", "2|4|2.73|68.25|Y"));
    expect_silence();
}

TEST_F(Run, OptionOneUsesTheMediumCoefficients) {
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|4|1.06|26.5|Y", "2|4|2.42|60.5|Y"));
    expect_silence();
}

TEST_F(Run, OptionTwoUsesTheLowCoefficients) {
    world.parameters.option = "2";
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|4|1.03|25.75|Y", "2|4|2.11|52.75|Y"));
    expect_silence();
}

TEST_F(Run, NoOptionAtAllFindsNoCoefficients) {
    world.parameters.option = "4";
    // Sheds 2 and 1 end in digits that would be density classes; shed 9 names none.
    world.layer("other", {test::integer_field("ID")}, {{{Box{0, 0, 2, 2}}, {std::int64_t{9}}}});
    world.parameters.analysis_layer = "other";
    EXPECT_FALSE(world.run());
    ASSERT_EQ(world.said.boxes.size(), 1U);
    EXPECT_EQ(world.said.boxes[0].title, "Invalid Coefficient");
}

TEST_F(Run, MetersGiveHectareFields) {
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.field_names(), ElementsAre("ID", "TotHects", "TotISHec", "pctIS", "Complete"));
    EXPECT_EQ(world.result().area_unit, "hectares");
}

TEST_F(Run, FeetGiveAcreFields) {
    world.parameters.units = "Feet";
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.field_names(), ElementsAre("ID", "TotAcres", "TotISAcr", "pctIS", "Complete"));
    EXPECT_THAT(world.rows(), ElementsAre("1|0.91824|0.243334|26.5|Y", "2|0.91824|0.555535|60.5|Y"));
    EXPECT_EQ(world.result().area_unit, "acres");
}

TEST_F(Run, OtherUnitsGiveHectareFieldsAndNoAreas) {
    world.parameters.units = "Yards";
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.field_names(), ElementsAre("ID", "TotHects", "TotISHec", "pctIS", "Complete"));
    EXPECT_THAT(world.rows(), ElementsAre("1|0|0|0|Y", "2|0|0|0|Y"));
}

TEST_F(Run, OutputFieldsHaveTheirSizes) {
    ASSERT_TRUE(world.run());
    const auto fields = data::FeatureClass::open({.path = world.output_path()}).fields();
    EXPECT_TRUE(data::integral(fields[0].type));
    EXPECT_EQ(fields[0].length, 9);
    for (const int area : {1, 2}) {
        EXPECT_EQ(fields[static_cast<std::size_t>(area)].type, data::FieldType::real);
        EXPECT_EQ(fields[static_cast<std::size_t>(area)].length, 18);
        EXPECT_EQ(fields[static_cast<std::size_t>(area)].scale, 6);
    }
    EXPECT_EQ(fields[3].length, 10);
    EXPECT_EQ(fields[3].scale, 2);
    EXPECT_EQ(fields[4].type, data::FieldType::text);
}

TEST_F(Run, UnitsThatContradictTheLandCoverDrawANotice) {
    world.parameters.units = "Feet";
    ASSERT_TRUE(world.run());
    EXPECT_THAT(
        world.said.notices,
        ElementsAre(HasSubstr("The units \"Feet\" contradict the coordinate system of the land cover \"cover\"")));
    EXPECT_EQ(world.result().notices, world.said.notices);
}

/// The density of columns: High, twice Medium, Low.
void add_blocks(test::SmallWorld& world, const std::string& field = "POP",
                const std::string& reference = "EPSG:26912") {
    world.layer("blocks", {test::real_field(field)},
                {{{Box{0, 0, 1, 2}}, {1000.0}}, {{Box{1, 0, 3, 2}}, {500.0}}, {{Box{3, 0, 4, 2}}, {200.0}}}, {},
                reference);
    world.parameters.option = "3";
    world.parameters.density_layer = "blocks";
    world.parameters.density_field = field;
    world.parameters.density_high = "1000";
    world.parameters.density_low = "200";
}

TEST_F(Run, OptionThreeChoosesByPopulationDensity) {
    add_blocks(world);
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|4|1.05|26.25|Y", "2|4|2.62|65.5|Y"));
    expect_silence();
}

TEST_F(Run, OptionThreeKeepsTheTableOfPiecesAndTheirSum) {
    add_blocks(world);
    ASSERT_TRUE(world.run());
    const auto& tables = world.result().zone_tables;
    ASSERT_EQ(tables.size(), 2U);
    EXPECT_EQ(tables[0].name(), "areaTemp");
    EXPECT_EQ(tables[0].fields()[1].name, "new_ID");
    ASSERT_EQ(tables[0].row_count(), 4U);
    EXPECT_EQ(tables[0].key(0), "1#2");
    EXPECT_EQ(tables[0].key(1), "1#3");
    EXPECT_EQ(tables[0].key(2), "2#1");
    EXPECT_EQ(tables[0].key(3), "2#2");
    EXPECT_EQ(tables[1].name(), "areaTab");
    EXPECT_EQ(tables[1].fields()[1].name, "ID");
}

TEST_F(Run, OptionThreeWithADensityFieldThatBothLayersHave) {
    world.layer("zoned", {test::integer_field("ZONEID")}, {{{Box{0, 0, 4, 2}}, {std::int64_t{5}}}});
    world.parameters.analysis_layer = "zoned";
    world.parameters.analysis_field = "ZONEID";
    add_blocks(world, "ZONEID");
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("5|8|3.67|45.88|Y"));
}

TEST_F(Run, PartsWithoutDensityDropOutOfTheTotals) {
    world.layer("few", {test::real_field("POP")}, {{{Box{0, 0, 1, 2}}, {1000.0}}});
    add_blocks(world);
    world.parameters.density_layer = "few";
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|0|0|0|Y", "2|2|1.8|90|Y"));
    EXPECT_THAT(
        world.said.notices,
        ElementsAre("6 cells of the zones lie outside of the population density layer \"few\" and count nowhere."));
}

TEST_F(Run, DensityInAnotherSystemEndsTheRun) {
    add_blocks(world, "POP", "EPSG:32612");
    EXPECT_FALSE(world.run());
    EXPECT_THAT(
        world.said.boxes,
        ElementsAre(MessageBox{
            "Error calculting the Population Density:\r  1) Check that the Analysis Layer and the Population Density Layer overlap.\r  2) Check that the Analysis Layer and the Population Density Layer are in the same projection.",
            "Population Density Calculation Error"}));
    EXPECT_THAT(test::names_in(world.output.path()), IsEmpty());
    EXPECT_THAT(world.temp(), IsEmpty());
}

TEST_F(Run, DensityThatDoesNotOverlapEndsTheRun) {
    world.layer("far", {test::real_field("POP")}, {{{Box{50, 50, 51, 51}}, {1.0}}});
    add_blocks(world);
    world.parameters.density_layer = "far";
    EXPECT_FALSE(world.run());
    ASSERT_EQ(world.said.boxes.size(), 1U);
    EXPECT_EQ(world.said.boxes[0].title, "Population Density Calculation Error");
}

TEST_F(Run, DensityIsCheckedBeforeTheLandCoverIsLookedAt) {
    world.layer("far", {test::real_field("POP")}, {{{Box{50, 50, 51, 51}}, {1.0}}});
    add_blocks(world);
    world.parameters.density_layer = "far";
    world.raster_analysis.refuses = true;
    world.parameters.classes.clear();
    EXPECT_FALSE(world.run());
    ASSERT_EQ(world.said.boxes.size(), 1U);
    EXPECT_EQ(world.said.boxes[0].title, "Population Density Calculation Error");
}

TEST_F(Run, TheExtensionFoldersTempIsEmptyAfterwards) {
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.temp(), IsEmpty());
}

TEST_F(Run, ProgressNeverFallsAndEndsAtOne) {
    ASSERT_TRUE(world.run());
    const auto& fractions = world.progress.fractions;
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_EQ(fractions.front(), 0);
    EXPECT_EQ(fractions.back(), 1);
}

TEST_F(Run, TheSameObjectRunsTwice) {
    ASSERT_TRUE(world.run());
    const auto first = world.rows();
    ASSERT_TRUE(world.run());
    EXPECT_EQ(world.rows(), first);
}

TEST_F(Run, TheResultHoldsCountsZonesAndTheLegend) {
    ASSERT_TRUE(world.run());
    const contracts::RunResult& result = world.result();
    EXPECT_EQ(result.layer_name, "Sheds IS");
    EXPECT_EQ(result.analysis_layer, "sheds");
    EXPECT_EQ(result.analysis_field, "ID");
    EXPECT_EQ(result.land_cover_layer, "cover");
    ASSERT_EQ(result.zones.size(), 2U);
    EXPECT_EQ(result.zones[0].value, "1");
    EXPECT_EQ(result.zones[0].cells, 4U);
    EXPECT_EQ(result.zones[0].percent, 26.5);
    ASSERT_EQ(result.legend.size(), 3U);
    EXPECT_EQ(result.legend[2].label, "> 25%");
    EXPECT_EQ(result.legend[2].zones, 2U);
    EXPECT_FALSE(result.cancelled);
}

TEST_F(Run, TheFiguresDoNotDependOnTheNumberOfThreads) {
    ASSERT_TRUE(world.run({.threads = 1}));
    const auto rows = world.rows();
    ASSERT_TRUE(world.run({.threads = 4}));
    EXPECT_EQ(world.rows(), rows);
}

TEST_F(Run, KeepTempKeepsTablesAndWorkingShapefiles) {
    add_blocks(world);
    world.layer("plans", {test::integer_field("ID")}, {{{Box{0, 0, 1, 1}}, {std::int64_t{1}}}});
    world.layer("chosen", {test::integer_field("ID")}, {{{Box{0, 0, 2, 2}}, {std::int64_t{2}}}}, {0});
    world.parameters.analysis_layer = "chosen";
    world.parameters.scenarios = {"1#plans#Roads#7"};
    ASSERT_TRUE(world.run({.keep_temp_folder = world.folder / "kept"}));
    const auto names = test::names_in(world.folder / "kept");
    for (const char* name :
         {"areaTemp.dbf", "2dsarea.dbf", "areaTab.dbf", "popIntersect.shp", "2dsInt.shp", "tempAnalysis.shp"}) {
        EXPECT_THAT(names, testing::Contains(name));
    }
    EXPECT_THAT(world.temp(), IsEmpty());
}

}  // namespace
}  // namespace kestrel

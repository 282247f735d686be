// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/clsISGetLCArea.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "base/files.h"
#include "tests/support/small_world.h"

namespace kestrel {
namespace {

using data::Table;
using data::Value;
using reporting::Icon;
using reporting::MessageBox;
using test::Box;
using test::Shape;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

LandClassDictionary classes() {
    LandClassDictionary result;
    for (const auto& [code, high, medium, low] :
         std::initializer_list<std::tuple<const char*, const char*, const char*, const char*>>{
             {"2", "90", "80", "70"}, {"5", "30", "20", "10"}}) {
        TextList list;
        for (const char* text : {"name", high, medium, low}) {
            list.Add(text);
        }
        result.add(code, list);
    }
    return result;
}

class LandCoverAreas : public testing::Test {
  protected:
    /// Lays zones of these values over the land cover; with density polygons when there are any.
    void zones(const std::vector<Shape>& shapes, const std::vector<Value>& values,
               const std::vector<Shape>& density = {}, const std::vector<std::uint8_t>& digits = {}) {
        groups = ZoneGroups(values);
        run_zones = RunZones{.zones = test::shared_polygons_of(shapes, world.cell),
                             .density = digits.empty() ? nullptr : test::shared_polygons_of(density, world.cell),
                             .scenarios = {},
                             .keys = digits.empty() ? ZoneKeys(groups) : ZoneKeys(groups, digits)};
    }
    std::optional<Table> areas(const std::string& units, CoefficientOption option = CoefficientOption::high,
                               const std::string& zone_field = "SHED") {
        if (!initialised) {
            engine.Initialise(&world.application, option, 1);
            initialised = true;
        }
        const LandClassDictionary known = classes();
        AreaTheme theme{.name = "sheds", .fields = fields, .zones = &*run_zones};
        const hosting::HeadlessRasterLayer cover("cover", world.folder / "cover.tif");
        return engine.isGetLCArea(world.extension.path(), theme, cover, "Value", zone_field,
                                  run_zones->density != nullptr, units, known, "tmpZone", "areaTemp");
    }
    static double number(const Table& table, const std::string& key, const std::string& column) {
        return table.number(table.find_row(key).value(), table.find_field(column));
    }

    test::SmallWorld world;
    std::vector<data::Field> fields{{.name = "SHED"}};
    ZoneGroups groups;
    std::optional<RunZones> run_zones;
    clsISGetLCArea engine;
    bool initialised = false;
};

TEST(AreaFactor, FeetUseTheFixedAcreFactor) {
    EXPECT_EQ(area_factor("Feet"), 2.2956e-05);
    EXPECT_DOUBLE_EQ(43560 * area_factor("Feet"), 0.99996336);
}

TEST(AreaFactor, MetersAreTenThousandToAHectare) {
    EXPECT_EQ(area_factor("Meters"), 0.0001);
}

TEST(AreaFactor, AnyOtherTextIsNoFactor) {
    for (const char* units : {"", "meters", "feet", "Feet ", "Yards"}) {
        EXPECT_EQ(area_factor(units), 0) << units;
    }
}

TEST_F(LandCoverAreas, FeetOf43560SquareFeetAreNotQuiteAnAcre) {
    world.cell = 66;  // ten of them are 43,560 square feet
    world.land_cover("5 5 5 5 5\n5 5 5 5 5\n");
    zones({{{Box{0, 0, 5, 2}}}}, {Value("a")});
    const auto table = areas("Feet");
    ASSERT_TRUE(table);
    EXPECT_DOUBLE_EQ(number(*table, "a", "area-5"), 0.999963);
    EXPECT_DOUBLE_EQ(number(*table, "a", "ISarea-5"), 0.299989);
}

TEST_F(LandCoverAreas, TenThousandSquareMetresAreAHectare) {
    world.land_cover("5\n");
    zones({{{Box{0, 0, 1, 1}}}}, {Value("a")});
    const auto table = areas("Meters");
    ASSERT_TRUE(table);
    EXPECT_DOUBLE_EQ(number(*table, "a", "area-5"), 1);
    EXPECT_DOUBLE_EQ(number(*table, "a", "ISarea-5"), 0.3);
}

TEST_F(LandCoverAreas, OtherUnitsMakeAllAreasZero) {
    world.land_cover("5 2\n");
    zones({{{Box{0, 0, 2, 1}}}}, {Value("a")});
    const auto table = areas("Yards");
    ASSERT_TRUE(table);
    for (const char* column : {"area-2", "ISarea-2", "area-5", "ISarea-5"}) {
        EXPECT_EQ(number(*table, "a", column), 0) << column;
    }
}

TEST_F(LandCoverAreas, EveryZoneIsARowAndEveryClassAPairOfColumns) {
    world.land_cover("5 2\n5 5\n");
    zones({{{Box{1, 0, 2, 2}}}, {{Box{0, 0, 1, 2}}}}, {Value("b"), Value("a")});
    const auto table = areas("Meters");
    ASSERT_TRUE(table);
    EXPECT_EQ(table->name(), "areaTemp");
    ASSERT_EQ(table->row_count(), 2U);
    EXPECT_EQ(table->key(0), "a");
    EXPECT_EQ(table->key(1), "b");
    ASSERT_EQ(table->fields().size(), 6U);
    EXPECT_EQ(table->fields()[1].name, "SHED");
    EXPECT_EQ(table->fields()[2].name, "area-2");
    EXPECT_EQ(table->fields()[5].name, "ISarea-5");
    EXPECT_EQ(number(*table, "a", "area-2"), 0);
    EXPECT_EQ(number(*table, "a", "area-5"), 2);
    EXPECT_EQ(number(*table, "b", "area-2"), 1);
    EXPECT_EQ(number(*table, "b", "area-5"), 1);
}

TEST_F(LandCoverAreas, ALongZoneFieldHasItsShortName) {
    world.land_cover("5\n");
    fields = {{.name = "POPULATION_2000"}, {.name = "POPULATION_DENSITY"}};
    zones({{{Box{0, 0, 1, 1}}}}, {Value("a")});
    const auto table = areas("Meters", CoefficientOption::high, "POPULATION_DENSITY");
    ASSERT_TRUE(table);
    EXPECT_EQ(table->fields()[1].name, "POPULATI_1");
}

TEST_F(LandCoverAreas, OptionOneUsesTheMediumCoefficientInEveryZone) {
    world.land_cover("5 2\n");
    zones({{{Box{0, 0, 1, 1}}}, {{Box{1, 0, 2, 1}}}}, {Value("12#3"), Value("12#1")});
    const auto table = areas("Meters", CoefficientOption::medium);
    ASSERT_TRUE(table);
    EXPECT_DOUBLE_EQ(number(*table, "12#3", "ISarea-5"), 0.2);
    EXPECT_DOUBLE_EQ(number(*table, "12#1", "ISarea-2"), 0.8);
}

TEST_F(LandCoverAreas, OptionThreeUsesTheLowCoefficientInZone12Hash3) {
    world.land_cover("5 5 5\n");
    zones({{{Box{0, 0, 3, 1}}}}, {Value(std::int64_t{12})},
          {{{Box{0, 0, 1, 1}}}, {{Box{1, 0, 2, 1}}}, {{Box{2, 0, 3, 1}}}}, {1, 2, 3});
    const auto table = areas("Meters", CoefficientOption::by_density);
    ASSERT_TRUE(table);
    EXPECT_DOUBLE_EQ(number(*table, "12#1", "ISarea-5"), 0.3);
    EXPECT_DOUBLE_EQ(number(*table, "12#2", "ISarea-5"), 0.2);
    EXPECT_DOUBLE_EQ(number(*table, "12#3", "ISarea-5"), 0.1);
}

TEST_F(LandCoverAreas, AClassWithoutCoefficientsStopsWithItsCode) {
    world.land_cover("5 9 2 9 8\n");
    zones({{{Box{0, 0, 5, 1}}}}, {Value("a")});
    EXPECT_FALSE(areas("Meters"));
    EXPECT_THAT(
        world.said.boxes,
        ElementsAre(MessageBox{"No coefficients defined in the selected Coefficient Set for the land cover class 8!",
                               "Invalid Coefficient", Icon::critical}));
    ASSERT_EQ(engine.unknown_classes().size(), 2U);
    EXPECT_EQ(engine.unknown_classes()[0].code, 8);
    EXPECT_EQ(engine.unknown_classes()[0].cells, 1U);
    EXPECT_EQ(engine.unknown_classes()[1].code, 9);
    EXPECT_EQ(engine.unknown_classes()[1].cells, 2U);
}

TEST_F(LandCoverAreas, AClassOutsideOfEveryZoneNeedsNoCoefficients) {
    world.land_cover("5 9\n");
    zones({{{Box{0, 0, 1, 1}}}}, {Value("a")});
    EXPECT_TRUE(areas("Meters"));
    EXPECT_THAT(world.said.boxes, IsEmpty());
}

TEST_F(LandCoverAreas, AClassOfAnotherZoneIsMissedInTheFirstZoneAlready) {
    world.land_cover("5 9\n");
    zones({{{Box{0, 0, 1, 1}}}, {{Box{1, 0, 2, 1}}}}, {Value("a"), Value("b")});
    EXPECT_FALSE(areas("Meters"));
    EXPECT_EQ(world.said.boxes.size(), 1U);
}

TEST_F(LandCoverAreas, WithoutAZoneInTheLandCoverNothingIntersects) {
    world.land_cover("5 5\n");
    zones({{{Box{10, 0, 12, 1}}}}, {Value("a")});
    EXPECT_FALSE(areas("Meters"));
    EXPECT_THAT(
        world.said.boxes,
        ElementsAre(MessageBox{"None of the selected features within sheds\r intersect with the Land Cover layer cover",
                               "Error: Area Calculation", Icon::critical}));
}

TEST_F(LandCoverAreas, AnUnreadableLandCoverIsAnErrorInTheCalculation) {
    zones({{{Box{0, 0, 1, 1}}}}, {Value("a")});
    EXPECT_FALSE(areas("Meters"));
    EXPECT_THAT(
        world.said.boxes,
        ElementsAre(MessageBox{
            "An error occurred while calculating land area and impervious surface area. \rCheck that the Analysis Layer and the Land Cover Layer overlap.",
            "Error: Area Calculations", Icon::critical}));
    EXPECT_THAT(world.said.notices, ElementsAre(HasSubstr("cover.tif")));
}

TEST_F(LandCoverAreas, WithoutRasterAnalysisItIsRequired) {
    world.land_cover("5\n");
    world.raster_analysis.refuses = true;
    zones({{{Box{0, 0, 1, 1}}}}, {Value("a")});
    EXPECT_FALSE(areas("Meters"));
    EXPECT_THAT(world.said.boxes,
                ElementsAre(MessageBox{"Spatial Analyst extension is required.", "Error: Spatial Analyst Required"}));
}

TEST_F(LandCoverAreas, RasterAnalysisIsSwitchedOn) {
    world.land_cover("5\n");
    zones({{{Box{0, 0, 1, 1}}}}, {Value("a")});
    EXPECT_TRUE(areas("Meters"));
    EXPECT_EQ(world.raster_analysis.IExtensionConfig_State(), contracts::kExtensionEnabled);
}

TEST_F(LandCoverAreas, RasterAnalysisIsAskedForBeforeAnythingElse) {
    world.raster_analysis.refuses = true;  // and there is no land cover either
    zones({{{Box{0, 0, 1, 1}}}}, {Value("a")});
    EXPECT_FALSE(areas("Meters"));
    ASSERT_EQ(world.said.boxes.size(), 1U);
    EXPECT_EQ(world.said.boxes[0].title, "Error: Spatial Analyst Required");
}

TEST_F(LandCoverAreas, WithoutTheTempFolderThereIsNoTable) {
    world.land_cover("5\n");
    zones({{{Box{0, 0, 1, 1}}}}, {Value("a")});
    std::filesystem::remove_all(world.extension / "temp");
    EXPECT_FALSE(areas("Meters"));
    EXPECT_THAT(world.said.boxes,
                ElementsAre(MessageBox{"\rFolder does not exist: " + world.extension.path() + "/temp"}));
}

TEST_F(LandCoverAreas, OnePassServesAllCallsOfARun) {
    world.land_cover("5\n");
    zones({{{Box{0, 0, 1, 1}}}}, {Value("a")});
    ASSERT_TRUE(areas("Meters"));
    base::remove_file(world.folder / "cover.tif");
    const auto again = areas("Meters");
    ASSERT_TRUE(again);
    EXPECT_EQ(number(*again, "a", "area-5"), 1);
}

TEST_F(LandCoverAreas, ACancelledPassSaysNothing) {
    world.land_cover("5 9\n");
    world.progress.allowed = 0;
    zones({{{Box{0, 0, 2, 1}}}}, {Value("a")});
    EXPECT_FALSE(areas("Meters"));
    EXPECT_THAT(world.said.boxes, IsEmpty());
    EXPECT_THAT(world.said.call_stacks, IsEmpty());
}

TEST_F(LandCoverAreas, AFailureOfCalculateAreasIsReported) {
    world.land_cover("5 5\n");
    // A number and a text that read alike: two rows of one key.
    zones({{{Box{0, 0, 1, 1}}}, {{Box{1, 0, 2, 1}}}}, {Value(std::int64_t{5}), Value("5")});
    EXPECT_FALSE(areas("Meters"));
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("\tCalculateAreas clsISGetLCArea Line : ")));
}

TEST_F(LandCoverAreas, AFailureOfIsGetLCAreaIsReported) {
    engine.Reset();
    initialised = true;  // without an application
    zones({{{Box{0, 0, 1, 1}}}}, {Value("a")});
    EXPECT_FALSE(areas("Meters"));
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("\tisGetLCArea clsISGetLCArea Line : ")));
}

}  // namespace
}  // namespace kestrel

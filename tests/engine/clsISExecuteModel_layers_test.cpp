// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/clsISExecuteModel.h"
#include "tests/support/small_world.h"

/// \file
/// What a run makes of the analysis layer: its selection, its field, its polygons, and NODATA below them.
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

/// Grassland everywhere, under the Medium coefficient of 2.
class Zones : public testing::Test {
  protected:
    void grassland() { world.land_cover("5 5 5 5\n5 5 5 5\n"); }
    void sheds(const std::vector<Shape>& shapes, std::vector<std::int64_t> selected = {}) {
        world.layer("sheds", {test::integer_field("ID")}, shapes, std::move(selected));
    }
    /// Five columns of the lower row, numbered from 1.
    static Shape column(std::int64_t number, Value value) {
        const auto x = static_cast<double>(number - 1);
        return {{Box{x, 0, x + 1, 1}}, {std::move(value)}};
    }
    void named(const std::vector<std::string>& names, std::vector<std::int64_t> selected = {}) {
        std::vector<Shape> shapes;
        for (const std::string& name : names) {
            shapes.push_back(column(static_cast<std::int64_t>(shapes.size()) + 1, name));
        }
        world.layer("sheds", {test::text_field("NAME")}, shapes, std::move(selected));
        world.parameters.analysis_field = "NAME";
    }

    test::SmallWorld world;
};

TEST_F(Zones, OfThreeSelectedFeaturesOnlyTheirZonesAreInTheOutput) {
    world.land_cover("5 5 5 5 5\n");
    sheds({column(1, std::int64_t{10}), column(2, std::int64_t{20}), column(3, std::int64_t{30}),
           column(4, std::int64_t{40}), column(5, std::int64_t{50})},
          {1, 2, 4});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("20|1|0.02|2|Y", "30|1|0.02|2|Y", "50|1|0.02|2|Y"));
    EXPECT_THAT(world.field_names(), ElementsAre("ID", "TotHects", "TotISHec", "pctIS", "Complete"));
    EXPECT_THAT(world.temp(), IsEmpty());
}

TEST_F(Zones, WithoutASelectionAllFeaturesAreUsed) {
    world.land_cover("5 5 5\n");
    sheds({column(1, std::int64_t{10}), column(2, std::int64_t{20}), column(3, std::int64_t{30})});
    ASSERT_TRUE(world.run());
    EXPECT_EQ(world.rows().size(), 3U);
}

TEST_F(Zones, TextIsGroupedWithItsOwnRow) {
    grassland();
    named({"b", "a"});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("a|1|0.02|2|Y", "b|1|0.02|2|Y"));
}

TEST_F(Zones, NumbersStandByTheirSize) {
    grassland();
    sheds({column(1, std::int64_t{10}), column(2, std::int64_t{9}), column(3, std::int64_t{-1})});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("-1|1|0.02|2|Y", "9|1|0.02|2|Y", "10|1|0.02|2|Y"));
}

TEST_F(Zones, QuotesNumberSignsAndWildcardsInValuesAreHarmless) {
    world.land_cover("5 5 5 5 5 5\n");
    named({"O'Neil", "a#1", "50%", "_0%", "a", "\"q\""});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("\"q\"|1|0.02|2|Y", "50%|1|0.02|2|Y", "O'Neil|1|0.02|2|Y", "_0%|1|0.02|2|Y",
                                          "a|1|0.02|2|Y", "a#1|1|0.02|2|Y"));
}

TEST_F(Zones, NumberSignsInValuesAreHarmlessUnderOptionThreeToo) {
    world.land_cover("5 5 5 5\n");
    named({"a", "a#1", "a#", "%"});
    world.layer("blocks", {test::real_field("POP")}, {{{Box{0, 0, 4, 1}}, {1.0}}});
    world.parameters.option = "3";
    world.parameters.density_layer = "blocks";
    world.parameters.density_field = "POP";
    world.parameters.density_high = "1000";
    world.parameters.density_low = "200";
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("%|1|0.01|1|Y", "a|1|0.01|1|Y", "a#|1|0.01|1|Y", "a#1|1|0.01|1|Y"));
}

TEST_F(Zones, ALongFieldNameHasItsShortNameInTheOutput) {
    grassland();
    world.json_layer("sheds", {{Box{0, 0, 1, 1}, R"({"POPULATION_2000": 1, "POPULATION_DENSITY": 77})"}});
    world.parameters.analysis_field = "POPULATION_DENSITY";
    ASSERT_TRUE(world.run());
    EXPECT_EQ(world.field_names().front(), "POPULATI_1");
    EXPECT_THAT(world.rows(), ElementsAre("77|1|0.02|2|Y"));
    EXPECT_THAT(
        world.said.notices,
        ElementsAre("The analysis field \"POPULATION_DENSITY\" is stored as \"POPULATI_1\" in the output shapefile."));
    EXPECT_EQ(world.result().analysis_field, "POPULATION_DENSITY");
}

TEST_F(Zones, ALongFieldNameKeepsItsShortNameWithASelection) {
    grassland();
    world.json_layer("sheds",
                     {{Box{0, 0, 1, 1}, R"({"POPULATION_2000": 1, "POPULATION_DENSITY": 77})"},
                      {Box{1, 0, 2, 1}, R"({"POPULATION_2000": 1, "POPULATION_DENSITY": 78})"}},
                     {1});
    world.parameters.analysis_field = "POPULATION_DENSITY";
    ASSERT_TRUE(world.run());
    EXPECT_EQ(world.field_names().front(), "POPULATI_1");
    EXPECT_THAT(world.rows(), ElementsAre("78|1|0.02|2|Y"));
}

TEST_F(Zones, WholeNumbersOf64BitsKeepAllDigits) {
    grassland();
    world.json_layer("sheds", {{Box{0, 0, 1, 1}, R"({"ID": 9007199254740993})"},
                               {Box{1, 0, 2, 1}, R"({"ID": 9007199254740992})"},
                               {Box{2, 0, 3, 1}, R"({"ID": -5})"}});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(),
                ElementsAre("-5|1|0.02|2|Y", "9007199254740992|1|0.02|2|Y", "9007199254740993|1|0.02|2|Y"));
    const auto fields = data::FeatureClass::open({.path = world.output_path()}).fields();
    EXPECT_EQ(fields.front().type, data::FieldType::big_integer);
    EXPECT_EQ(fields.front().length, 18);
}

TEST_F(Zones, WholeNumbersOf64BitsKeepAllDigitsWithASelection) {
    grassland();
    world.json_layer("sheds",
                     {{Box{0, 0, 1, 1}, R"({"ID": 9007199254740993})"},
                      {Box{1, 0, 2, 1}, R"({"ID": 9007199254740992})"},
                      {Box{2, 0, 3, 1}, R"({"ID": null})"}},
                     {0, 2});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("|1|0.02|2|Y", "9007199254740993|1|0.02|2|Y"));
}

TEST_F(Zones, NullAndEmptyTextAreOneZoneAndStayInTheOutput) {
    grassland();
    world.json_layer("sheds", {{Box{0, 0, 1, 1}, R"({"NAME": "x"})"},
                               {Box{1, 0, 2, 1}, R"({"NAME": null})"},
                               {Box{2, 0, 3, 1}, R"({"NAME": ""})"}});
    world.parameters.analysis_field = "NAME";
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("|2|0.04|2|Y", "x|1|0.02|2|Y"));
}

TEST_F(Zones, NullNumbersAreAZoneOfTheirOwn) {
    grassland();
    sheds({column(1, std::int64_t{0}), column(2, Value())});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("|1|0.02|2|Y", "0|1|0.02|2|Y"));
}

TEST_F(Zones, AnalysisFieldsNamedLikeOtherColumnsDoNoHarm) {
    for (const auto& [field, stored] : std::initializer_list<std::pair<const char*, const char*>>{
             {"OID", "OID"}, {"pctIS", "pctIS_0"}, {"COMPLETE", "COMPLETE_0"}, {"area", "area"}}) {
        test::SmallWorld other;
        other.land_cover("5 5\n");
        other.layer("sheds", {test::integer_field(field)}, {{{Box{0, 0, 2, 1}}, {std::int64_t{5}}}});
        other.parameters.analysis_field = field;
        ASSERT_TRUE(other.run()) << field;
        EXPECT_EQ(other.field_names().front(), stored);
        EXPECT_THAT(other.rows(), ElementsAre("5|2|0.04|2|Y"));
    }
}

TEST_F(Zones, FeaturesOfOneValueAreDissolvedAndTheirAreasSummed) {
    grassland();
    sheds({column(1, std::int64_t{7}), column(2, std::int64_t{8}), column(3, std::int64_t{7}),
           column(4, std::int64_t{7})});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("7|3|0.06|2|Y", "8|1|0.02|2|Y"));
    const auto features = data::FeatureClass::open({.path = world.output_path()}).read_polygons({});
    ASSERT_EQ(features.polygons.feature_count(), 2U);
    EXPECT_DOUBLE_EQ(features.polygons.area(0), 30000);
    EXPECT_EQ(features.polygons.first_polygon(1) - features.polygons.first_polygon(0), 2U);
}

TEST_F(Zones, WithoutAnyCellStayWithAreaZeroAndPercentZero) {
    grassland();
    sheds({column(1, std::int64_t{1}), {{Box{0.1, 1.1, 0.3, 1.3}}, {std::int64_t{2}}}, {{}, {std::int64_t{3}}}});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|1|0.02|2|Y", "2|0|0|0|Y", "3|0|0|0|Y"));
    EXPECT_TRUE(world.result().zones[1].without_cells());
    EXPECT_FALSE(world.result().zones[0].without_cells());
    EXPECT_EQ(world.result().legend[0].zones, 3U);
}

TEST_F(Zones, BeyondTheLandCoverStayCompleteAndAreNoted) {
    grassland();
    sheds({{{Box{3, 0, 6, 1}}, {std::int64_t{1}}},
           {{Box{20, 20, 21, 21}}, {std::int64_t{2}}},
           column(1, std::int64_t{3})});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|1|0.02|2|Y", "2|0|0|0|Y", "3|1|0.02|2|Y"));
    EXPECT_TRUE(world.result().zones[0].beyond_raster);
    EXPECT_TRUE(world.result().zones[1].beyond_raster);
    EXPECT_FALSE(world.result().zones[2].beyond_raster);
    EXPECT_THAT(world.said.boxes, IsEmpty());
}

TEST_F(Zones, WhenNoZoneHasACellTheRunEnds) {
    grassland();
    sheds({{{Box{20, 20, 21, 21}}, {std::int64_t{2}}}});
    EXPECT_FALSE(world.run());
    EXPECT_THAT(
        world.said.boxes,
        ElementsAre(MessageBox{"None of the selected features within sheds\r intersect with the Land Cover layer cover",
                               "Error: Area Calculation", Icon::critical}));
}

TEST_F(Zones, TheMessagesNameTheUsersLayerAlsoWithASelection) {
    grassland();
    sheds({column(1, std::int64_t{1}), {{Box{20, 20, 21, 21}}, {std::int64_t{2}}}}, {1});
    EXPECT_FALSE(world.run());
    ASSERT_EQ(world.said.boxes.size(), 1U);
    EXPECT_THAT(world.said.boxes[0].text, HasSubstr("features within sheds\r"));
}

TEST_F(Zones, OfOverlappingOnesTheLaterFeatureOwnsTheCell) {
    grassland();
    sheds({{{Box{0, 0, 3, 1}}, {std::int64_t{9}}}, {{Box{1, 0, 3, 1}}, {std::int64_t{4}}}});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("4|2|0.04|2|Y", "9|1|0.02|2|Y"));
}

MessageBox nodata_message() {
    return {
        "Some of the (selected) polygons in the Analysis Layer \roverlapped NODATA cells in the Land Cover Layer.  The \rarea calculations for these polygons excludes the area \rof the NODATA cells.  These polygons may be identified \rby a 'N' in the 'Complete' field of the newly created \rImpervious Surface theme.",
        "NODATA Cells!", Icon::information};
}

TEST_F(Zones, OfNodataOnlyAreARowOfZerosAndIncomplete) {
    world.land_cover("5 . .\n");
    sheds({column(1, std::int64_t{1}), {{Box{1.5, 0, 3, 1}}, {std::int64_t{2}}}});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|1|0.02|2|N", "2|0|0|0|N"));
    EXPECT_EQ(world.result().zones[1].nodata_cells, 2U);
    EXPECT_THAT(world.said.boxes, ElementsAre(nodata_message()));
}

TEST_F(Zones, ThatTouchANodataCellAtABorderAreIncomplete) {
    world.land_cover("5 5 .\n");
    sheds({column(1, std::int64_t{1}), column(2, std::int64_t{2})});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|1|0.02|2|Y", "2|1|0.02|2|N"));
    EXPECT_THAT(world.said.boxes, ElementsAre(nodata_message()));
}

TEST_F(Zones, ThatTouchANodataCellAtACornerAreIncomplete) {
    world.land_cover(". 5\n5 5\n");
    sheds({{{Box{1, 0, 2, 1}}, {std::int64_t{1}}}});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|1|0.02|2|N"));
}

TEST_F(Zones, ThatOnlyCutIntoANodataCellAreIncomplete) {
    world.land_cover("5 5 .\n");
    sheds({{{Box{0, 0, 2.1, 1}}, {std::int64_t{1}}}});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|2|0.04|2|N"));
}

TEST_F(Zones, OnePartThatTouchesNodataMakesTheGroupIncomplete) {
    world.land_cover("5 5 5 .\n");
    sheds({column(1, std::int64_t{1}), column(3, std::int64_t{1}), column(2, std::int64_t{2})});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|2|0.04|2|N", "2|1|0.02|2|Y"));
}

TEST_F(Zones, WithoutNodataThereIsNoMessage) {
    world.land_cover("5 5 5 .\n");
    sheds({column(1, std::int64_t{1})});
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.said.boxes, IsEmpty());
}

TEST_F(Zones, InAnotherSystemThanTheLandCoverAreProjected) {
    grassland();
    world.layer("sheds", {test::integer_field("ID")}, {{{Box{0.1, 0.1, 1.9, 0.9}}, {std::int64_t{1}}}}, {},
                "EPSG:32612");
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|2|0.04|2|Y"));
    EXPECT_EQ(data::FeatureClass::open({.path = world.output_path()}).spatial_reference().authority_code(),
              "EPSG:32612");
}

}  // namespace
}  // namespace kestrel

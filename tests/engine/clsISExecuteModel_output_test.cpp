// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "engine/clsISExecuteModel.h"
#include "engine/output_layer.h"
#include "hosting/headless_map.h"
#include "tests/support/small_world.h"

/// \file
/// What a finished run leaves: layer, legend, files and records.
namespace kestrel {
namespace {

using hosting::HeadlessFeatureLayer;
using test::Box;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class FixedClock final : public base::Clock {
  public:
    base::LocalTime now() const override {
        return {.year = 2003, .month = 11, .day = 6, .hour = 14, .minute = 15, .second = 7};
    }
};

class Output : public testing::Test {
  protected:
    Output() {
        world.land_cover("2 5\n");
        world.layer("sheds", {test::integer_field("ID")},
                    {{{Box{0, 0, 1, 1}}, {std::int64_t{1}}}, {{Box{1, 0, 2, 1}}, {std::int64_t{2}}}});
    }

    test::SmallWorld world;
    FixedClock clock;
};

TEST_F(Output, TheFolderHoldsTheShapefileItsStyleAndTheRecords) {
    ASSERT_TRUE(world.run());
    EXPECT_THAT(test::names_in(world.output.path()),
                ElementsAre("Sheds IS.lyr", "Sheds IS.met", "Sheds IS.prm", "out.cpg", "out.dbf", "out.prj", "out.qml",
                            "out.shp", "out.shx"));
}

TEST_F(Output, TheResultNamesTheFilesTheShapefileFirst) {
    ASSERT_TRUE(world.run());
    std::vector<std::string> files = world.result().files;
    ASSERT_EQ(files.size(), 9U);
    EXPECT_EQ(files.front(), world.output / "out.shp");
    for (const std::string& file : files) {
        EXPECT_TRUE(base::file_exists(file)) << file;
    }
}

TEST_F(Output, TheShapefileIsInUtf8AndInTheAnalysisLayersSystem) {
    ASSERT_TRUE(world.run());
    EXPECT_EQ(base::read_file(world.output / "out.cpg"), "UTF-8");
    EXPECT_EQ(data::FeatureClass::open({.path = world.output_path()}).spatial_reference().authority_code(),
              "EPSG:26912");
}

TEST_F(Output, OfAnAnalysisLayerWithoutASystemHasNone) {
    world.layer("bare", {test::integer_field("ID")}, {{{Box{0, 0, 2, 1}}, {std::int64_t{1}}}}, {}, "");
    world.parameters.analysis_layer = "bare";
    ASSERT_TRUE(world.run());
    EXPECT_FALSE(base::file_exists(world.output / "out.prj"));
    EXPECT_THAT(world.said.notices,
                ElementsAre("\"bare\" names no coordinate system: that of \"cover\" is taken for it."));
}

TEST_F(Output, TheNewLayerIsOnTopOfTheMap) {
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.layer_names(), ElementsAre("Sheds IS", "cover", "sheds"));
    EXPECT_GT(world.application.map().refresh_count(), 0);
}

TEST_F(Output, AnExistingLayerOfTheNameIsRemovedFromTheMap) {
    world.layer("Sheds IS", {test::integer_field("ID")}, {});
    ASSERT_EQ(world.layer_names().size(), 3U);
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.layer_names(), ElementsAre("Sheds IS", "cover", "sheds"));
    const auto layer = std::dynamic_pointer_cast<HeadlessFeatureLayer>(world.application.map().layers().front());
    EXPECT_EQ(layer->feature_class().source().path, world.output_path());
}

TEST_F(Output, TheLayerInTheMapCarriesTheLegend) {
    ASSERT_TRUE(world.run());
    const auto layer = std::dynamic_pointer_cast<HeadlessFeatureLayer>(world.application.map().layers().front());
    ASSERT_TRUE(layer->renderer());
    EXPECT_EQ(*layer->renderer(), output_legend());
}

TEST_F(Output, TheLayerFileNamesTheShapefileWithoutItsFolder) {
    ASSERT_TRUE(world.run());
    const std::string file = base::read_file(world.output / "Sheds IS.lyr");
    EXPECT_THAT(file, HasSubstr("out.shp"));
    EXPECT_THAT(file, testing::Not(HasSubstr(world.output.path())));
    EXPECT_THAT(file, HasSubstr("&lt; 10%"));
}

TEST_F(Output, TheRunReportTellsTheSettings) {
    world.layer("mall", {test::integer_field("N")}, {{{Box{1, 0, 2, 1}}, {std::int64_t{1}}}});
    world.parameters.scenarios = {"1#mall#Roads, paved#7"};
    ASSERT_TRUE(world.run({.clock = &clock}));
    EXPECT_EQ(base::read_file(world.output / "Sheds IS.prm"),
              "Impervious surface analysis run: Thursday November 6, 2003 02:15:07 PM\r\n"
              "\r\n"
              "  Output Layer Name: Sheds IS\r\n"
              "\r\n"
              "  Land Cover Layer: cover\r\n"
              "  Land Cover Grid Units: Meters\r\n"
              "\r\n"
              "  Analysis Layer: sheds\r\n"
              "  Analysis Field: ID\r\n"
              "\r\n"
              "  Coefficient Option\r\n"
              "  Medium population coefficient applied to all analysis\r\n"
              "\r\n"
              "  Coefficients:(Value,ClassName,High,Medium,Low)\r\n"
              "      2,Developed,90,80,70\r\n"
              "      5,Grassland,3,2,1\r\n"
              "      7,Roads,100,100,100\r\n"
              "\r\n"
              " Change Scenarios\r\n"
              "  Changed land cover classes within mall layer to Roads, paved\r\n");
}

TEST_F(Output, TheRecordsNameTheUsersFieldAlsoWithASelection) {
    world.layer("chosen", {test::integer_field("ID")},
                {{{Box{0, 0, 1, 1}}, {std::int64_t{1}}}, {{Box{1, 0, 2, 1}}, {std::int64_t{2}}}}, {1});
    world.parameters.analysis_layer = "chosen";
    ASSERT_TRUE(world.run({.clock = &clock}));
    const std::string report = base::read_file(world.output / "Sheds IS.prm");
    EXPECT_THAT(report, HasSubstr("  Analysis Layer: chosen\r\n  Analysis Field: ID\r\n"));
    const std::string metadata = base::read_file(world.output / "Sheds IS.met");
    EXPECT_THAT(metadata, testing::Not(HasSubstr("analyfld")));
    EXPECT_THAT(metadata, testing::Not(HasSubstr("tempAnalysis")));
}

TEST_F(Output, TheMetadataIsWrittenAtTheSameTime) {
    ASSERT_TRUE(world.run({.clock = &clock}));
    EXPECT_THAT(base::read_file(world.output / "Sheds IS.met"), HasSubstr("20031106"));
}

TEST_F(Output, OlderFilesOfTheNameAreReplaced) {
    base::write_file(world.output / "Sheds IS.prm", "old");
    base::write_file(world.output / "out.dbf", "old");
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(), ElementsAre("1|1|0.8|80|Y", "2|1|0.02|2|Y"));
    EXPECT_THAT(base::read_file(world.output / "Sheds IS.prm"), HasSubstr("Impervious surface analysis run"));
}

TEST_F(Output, PercentagesAreStoredWithTwoDecimals) {
    world.parameters.classes = {"2#Developed#90#33.3#70", "5#Grassland#3#9.995#1"};
    ASSERT_TRUE(world.run());
    EXPECT_THAT(world.rows(),
                ElementsAre("1|1|0.333|33.3|Y", testing::AnyOf("2|1|0.09995|10|Y", "2|1|0.09995|9.99|Y")));
    // The legend's class is that of the stored number.
    const bool middle = world.rows()[1] == "2|1|0.09995|10|Y";
    EXPECT_EQ(world.result().legend[middle ? 1 : 0].zones, 1U);
}

}  // namespace
}  // namespace kestrel

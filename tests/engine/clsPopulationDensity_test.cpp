// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/clsPopulationDensity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/small_world.h"

namespace kestrel {
namespace {

using data::FeatureClass;
using data::Value;
using test::Box;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

base::NoProgress nobody;

TEST(DensityClass, TheHighCutOffItselfIsHigh) {
    EXPECT_EQ(density_class(1000, "1000", "200"), 1);
    EXPECT_EQ(density_class(1000.5, "1000", "200"), 1);
}

TEST(DensityClass, TheLowCutOffItselfIsLow) {
    EXPECT_EQ(density_class(200, "1000", "200"), 3);
    EXPECT_EQ(density_class(0, "1000", "200"), 3);
}

TEST(DensityClass, BetweenTheCutOffsIsMedium) {
    EXPECT_EQ(density_class(200.0001, "1000", "200"), 2);
    EXPECT_EQ(density_class(999.9999, "1000", "200"), 2);
}

TEST(DensityClass, WithHighAtOrBelowLowThereIsNoMedium) {
    for (const char* high : {"5", "10"}) {
        for (double density = 0; density <= 20; density += 0.5) {
            EXPECT_EQ(density_class(density, high, "10"), density >= std::stod(high) ? 1 : 3) << density;
        }
    }
}

TEST(DensityClass, CutOffsAreReadAsTyped) {
    EXPECT_EQ(density_class(1500, " 1.5e3", "200.50"), 1);
    EXPECT_EQ(density_class(200.5, " 1.5e3", "200.50"), 3);
}

TEST(DensityZoneKey, IsTheValueAndTheDigit) {
    EXPECT_EQ(density_zone_key("7", 1), "7#1");
    EXPECT_EQ(density_zone_key("", 3), "#3");
}

class PopulationDensity : public testing::Test {
  protected:
    /// Sheds with the fields ID and ZONEID at columns 0 to 4.
    void sheds(const std::string& reference = "EPSG:26912") {
        world.layer("sheds", {test::integer_field("ID", 5), test::integer_field("ZONEID")},
                    {{{Box{0, 0, 2, 2}}, {std::int64_t{7}, std::int64_t{111}}},
                     {{Box{2, 0, 4, 2}}, {std::int64_t{8}, std::int64_t{222}}}},
                    {}, reference);
    }
    clsPopulationDensity density(const std::string& field, const std::string& high = "1000",
                                 const std::string& low = "200") {
        const FeatureClass source = FeatureClass::open({.path = world.folder / "sheds.shp"});
        analysis = read_polygon_layer(source, "sheds", "ID", nobody, 0);
        return {world.application.map(), analysis, "blocks", field, high, low};
    }

    test::SmallWorld world;
    PolygonLayer analysis;
};

TEST_F(PopulationDensity, EveryDensityPolygonGetsItsDigit) {
    sheds();
    world.layer("blocks", {test::real_field("POP")},
                {{{Box{0, 0, 1, 2}}, {1000.0}}, {{Box{1, 0, 2, 2}}, {500.0}}, {{Box{2, 0, 4, 2}}, {200.0}}});
    clsPopulationDensity stage = density("POP");
    ASSERT_TRUE(stage.DensityCalculation(nobody, 0));
    EXPECT_THAT(stage.NewAnalysisTheme().class_digits, ElementsAre(1, 2, 3));
    EXPECT_EQ(stage.NewAnalysisTheme().density.name, "blocks");
}

TEST_F(PopulationDensity, TheChosenFieldCountsAlsoWhereTheDensityLayerHasAnotherOneWithASuffix) {
    sheds();
    world.layer("blocks", {test::real_field("POP_1"), test::real_field("POP")},
                {{{Box{0, 0, 1, 2}}, {1.0, 1000.0}}, {{Box{1, 0, 4, 2}}, {5000.0, 100.0}}});
    clsPopulationDensity stage = density("POP");
    ASSERT_TRUE(stage.DensityCalculation(nobody, 0));
    EXPECT_THAT(stage.NewAnalysisTheme().class_digits, ElementsAre(1, 3));
}

TEST_F(PopulationDensity, TheNewFieldIsNamedAfterTheAnalysisField) {
    world.layer("sheds", {test::text_field("WATERSHED", 12)}, {{{Box{0, 0, 2, 2}}, {"a"}}});
    world.layer("blocks", {test::real_field("POP")}, {{{Box{0, 0, 1, 2}}, {1000.0}}});
    const FeatureClass source = FeatureClass::open({.path = world.folder / "sheds.shp"});
    analysis = read_polygon_layer(source, "sheds", "WATERSHED", nobody, 0);
    clsPopulationDensity stage(world.application.map(), analysis, "blocks", "POP", "1000", "200");
    ASSERT_TRUE(stage.DensityCalculation(nobody, 0));
    EXPECT_EQ(stage.NewAnalysisFieldName(), "new_WATERS");
    EXPECT_EQ(stage.NewAliasName(), "new_WATERS");
    EXPECT_EQ(stage.OldAnalysisFldName(), "WATERSHED");
    EXPECT_EQ(stage.NewAnalysisField().type, data::FieldType::text);
    EXPECT_EQ(stage.NewAnalysisField().length, 20);
}

TEST_F(PopulationDensity, AFieldThatBothLayersHaveIsReadFromTheDensityLayer) {
    sheds();
    world.layer("blocks", {test::integer_field("ZONEID")},
                {{{Box{0, 0, 2, 2}}, {std::int64_t{5000}}}, {{Box{2, 0, 4, 2}}, {std::int64_t{1}}}});
    clsPopulationDensity stage = density("ZONEID");
    ASSERT_TRUE(stage.DensityCalculation(nobody, 0));
    EXPECT_THAT(stage.NewAnalysisTheme().class_digits, ElementsAre(1, 3));
}

TEST_F(PopulationDensity, FieldsThatDifferInLetterCaseAreSharedToo) {
    sheds();
    world.layer("blocks", {test::integer_field("zoneid")}, {{{Box{0, 0, 4, 2}}, {std::int64_t{5000}}}});
    clsPopulationDensity stage = density("zoneid");
    ASSERT_TRUE(stage.DensityCalculation(nobody, 0));
    EXPECT_THAT(stage.NewAnalysisTheme().class_digits, ElementsAre(1));
}

TEST_F(PopulationDensity, AFieldOfTheAnalysisLayerAloneIsNoDensity) {
    sheds();
    world.layer("blocks", {test::real_field("POP")}, {{{Box{0, 0, 4, 2}}, {1.0}}});
    EXPECT_FALSE(density("ZONEID").DensityCalculation(nobody, 0));
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("\tDensityCalculation clsPopulationDensity ")));
}

TEST_F(PopulationDensity, ANullDensityCountsAsZero) {
    sheds();
    world.layer("blocks", {test::real_field("POP")}, {{{Box{0, 0, 4, 2}}, {Value()}}});
    clsPopulationDensity stage = density("POP", "1000", "-1");
    ASSERT_TRUE(stage.DensityCalculation(nobody, 0));
    EXPECT_THAT(stage.NewAnalysisTheme().class_digits, ElementsAre(2));
}

TEST_F(PopulationDensity, AnotherCoordinateSystemFailsWithoutAReport) {
    sheds();
    world.layer("blocks", {test::real_field("POP")}, {{{Box{0, 0, 4, 2}}, {1.0}}}, {}, "EPSG:32612");
    EXPECT_FALSE(density("POP").DensityCalculation(nobody, 0));
    EXPECT_THAT(world.said.call_stacks, IsEmpty());
}

TEST_F(PopulationDensity, AMissingCoordinateSystemIsNoDifference) {
    sheds();
    world.layer("blocks", {test::real_field("POP")}, {{{Box{0, 0, 4, 2}}, {1.0}}}, {}, "");
    EXPECT_TRUE(density("POP").DensityCalculation(nobody, 0));
}

TEST_F(PopulationDensity, LayersThatDoNotOverlapFail) {
    sheds();
    world.layer("blocks", {test::real_field("POP")}, {{{Box{10, 0, 14, 2}}, {1.0}}});
    EXPECT_FALSE(density("POP").DensityCalculation(nobody, 0));
    EXPECT_THAT(world.said.call_stacks, IsEmpty());
}

TEST_F(PopulationDensity, LayersThatOnlyShareABorderDoNotOverlap) {
    sheds();
    world.layer("blocks", {test::real_field("POP")}, {{{Box{4, 0, 6, 2}}, {1.0}}});
    EXPECT_FALSE(density("POP").DensityCalculation(nobody, 0));
}

TEST_F(PopulationDensity, ACutOffThatIsNoNumberIsReported) {
    sheds();
    world.layer("blocks", {test::real_field("POP")}, {{{Box{0, 0, 4, 2}}, {1.0}}});
    EXPECT_FALSE(density("POP", "many").DensityCalculation(nobody, 0));
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("Error Number \r\n\t13\r\n")));
}

TEST_F(PopulationDensity, AMissingLayerIsReported) {
    sheds();
    EXPECT_FALSE(density("POP").DensityCalculation(nobody, 0));
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("The map has no polygon layer \"blocks\"")));
}

TEST_F(PopulationDensity, CarriesTheRuleOfShortFieldNames) {
    sheds();
    world.layer("blocks", {test::real_field("POP")}, {{{Box{0, 0, 4, 2}}, {1.0}}});
    const std::vector<data::Field> table{{.name = "POPULATION_2000"}, {.name = "POPULATION_DENSITY"}};
    EXPECT_EQ(density("POP").SetFieldName("POPULATION_DENSITY", table), "POPULATI_1");
    EXPECT_EQ(density("POP").SetFieldName("POP", table), "");
}

}  // namespace
}  // namespace kestrel

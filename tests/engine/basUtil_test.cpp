// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/basUtil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "hosting/headless_map.h"
#include "tests/support/small_world.h"

namespace kestrel {
namespace {

using contracts::Layer;
using data::Field;
using data::FieldType;
using data::Value;
using hosting::HeadlessFeatureLayer;
using hosting::HeadlessGroupLayer;
using hosting::HeadlessMap;
using hosting::HeadlessRasterLayer;
using reporting::MessageBox;
using test::Box;
using test::Shape;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::shared_ptr<Layer> layer(const std::string& name) {
    return std::make_shared<HeadlessRasterLayer>(name, "/nowhere/" + name);
}

std::shared_ptr<Layer> group(const std::string& name, std::vector<std::shared_ptr<Layer>> members) {
    return std::make_shared<HeadlessGroupLayer>(name, std::move(members));
}

std::vector<Field> table_of(std::initializer_list<const char*> names) {
    std::vector<Field> fields;
    for (const char* name : names) {
        fields.push_back({.name = name});
    }
    return fields;
}

TEST(FindLayer, ANameInTwoGroupsIsTheOneInTheFirstGroup) {
    HeadlessMap map;
    const auto first = layer("roads");
    map.append_layer(group("north", {layer("lakes"), first}));
    map.append_layer(group("south", {layer("roads")}));
    EXPECT_EQ(basUtil::FindLayer("roads", map), first);
}

TEST(FindLayer, AGroupIsSearchedInItsPlaceBeforeTheLayersBelowIt) {
    HeadlessMap map;
    const auto inside = layer("roads");
    map.append_layer(layer("lakes"));
    map.append_layer(group("north", {inside}));
    map.append_layer(layer("roads"));
    EXPECT_EQ(basUtil::FindLayer("roads", map), inside);
}

TEST(FindLayer, ComparesLetterCase) {
    HeadlessMap map;
    const auto lower = layer("roads");
    map.append_layer(layer("Roads"));
    map.append_layer(lower);
    EXPECT_EQ(basUtil::FindLayer("roads", map), lower);
    EXPECT_EQ(basUtil::FindLayer("ROADS", map), nullptr);
}

TEST(FindLayer, LooksIntoGroupsOneLevelDeepOnly) {
    HeadlessMap map;
    map.append_layer(group("outer", {group("inner", {layer("roads")})}));
    EXPECT_EQ(basUtil::FindLayer("roads", map), nullptr);
}

TEST(FindLayer, AnEmptyMapHasNothing) {
    EXPECT_EQ(basUtil::FindLayer("roads", HeadlessMap()), nullptr);
}

TEST(FindLayer, AFailureIsReportedAndNothingFound) {
    class Broken final : public Layer {
      public:
        std::string name() const override { throw base::RuntimeError(91, "no name"); }
    };
    const test::ScriptedInteraction said;
    HeadlessMap map;
    map.append_layer(std::make_shared<Broken>());
    EXPECT_EQ(basUtil::FindLayer("roads", map), nullptr);
    EXPECT_THAT(said.call_stacks, ElementsAre(HasSubstr("\tFindLayer basUtil Line : ")));
}

TEST(SetFieldName, TheSecondFieldOfThePrefixGetsOne) {
    EXPECT_EQ(basUtil::SetFieldName("POPULATION_DENSITY", table_of({"POPULATION_2000", "POPULATION_DENSITY"})),
              "POPULATI_1");
}

TEST(SetFieldName, TheFirstFieldOfThePrefixGetsZero) {
    EXPECT_EQ(basUtil::SetFieldName("POPULATION_2000", table_of({"ID", "POPULATION_2000", "POPULATION_DENSITY"})),
              "POPULATI_0");
}

TEST(SetFieldName, ANameOfTenCharactersIsNotShortened) {
    EXPECT_EQ(basUtil::SetFieldName("ABCDEFGHIJ", table_of({"ABCDEFGHIJ"})), "");
    EXPECT_EQ(basUtil::SetFieldName("", {}), "");
}

TEST(SetFieldName, OfElevenCharactersIsShortened) {
    EXPECT_EQ(basUtil::SetFieldName("ABCDEFGHIJK", table_of({"ABCDEFGHIJK"})), "ABCDEFGH_0");
}

TEST(SetFieldName, PrefixesThatDifferInTheTenthCharacterDoNotCount) {
    EXPECT_EQ(basUtil::SetFieldName("ABCDEFGHIJK", table_of({"ABCDEFGHIXX", "ABCDEFGHI", "ABCDEFGHIJK"})),
              "ABCDEFGH_0");
}

TEST(SetFieldName, AFieldOfExactlyThePrefixCounts) {
    EXPECT_EQ(basUtil::SetFieldName("ABCDEFGHIJK", table_of({"ABCDEFGHIJ", "ABCDEFGHIJK"})), "ABCDEFGH_1");
}

TEST(SetFieldName, FieldsBehindItsOwnDoNotCount) {
    EXPECT_EQ(basUtil::SetFieldName("ABCDEFGHIJK", table_of({"ABCDEFGHIJK", "ABCDEFGHIJL", "ABCDEFGHIJM"})),
              "ABCDEFGH_0");
}

TEST(SetFieldName, ANameThatTheTableLacksComesAfterAllOfThePrefix) {
    EXPECT_EQ(basUtil::SetFieldName("ABCDEFGHIJK", table_of({"ABCDEFGHIJL", "ABCDEFGHIJM"})), "ABCDEFGH_2");
}

TEST(SetFieldName, FromTheEleventhFieldOnTheCounterTakesTheRoomOfALetter) {
    std::vector<Field> fields;
    for (int i = 0; i < 10; ++i) {
        fields.push_back({.name = "ABCDEFGHIJ" + std::to_string(i)});
    }
    fields.push_back({.name = "ABCDEFGHIJK"});
    EXPECT_EQ(basUtil::SetFieldName("ABCDEFGHIJK", fields), "ABCDEFG_10");
}

TEST(SetFieldName, NeverCutsWithinACharacter) {
    const std::string name = "Bevölkerung_2000";
    EXPECT_EQ(basUtil::SetFieldName(name, table_of({name.c_str()})), "Bevölke_0");
    EXPECT_EQ(basUtil::SetFieldName("ABCDEFGöIJKL", table_of({"ABCDEFGöIJKL"})), "ABCDEFG_0");
}

TEST(CreateFields, TheFieldCarriesAllArguments) {
    EXPECT_EQ(basUtil::CreateFields("TotAcres", "TotalAcres", FieldType::real, 18, 18, 6),
              (Field{.name = "TotAcres",
                     .alias = "TotalAcres",
                     .type = FieldType::real,
                     .length = 18,
                     .precision = 18,
                     .scale = 6}));
}

TEST(AddFields, TakesTheAnalysisValueOfTheFeature) {
    data::PolygonFeatures source;
    source.columns = {{std::int64_t{7}, Value(), std::string("x")}};
    EXPECT_THAT(basUtil::AddFields(source, 0), ElementsAre(Value(std::int64_t{7})));
    EXPECT_THAT(basUtil::AddFields(source, 1), ElementsAre(Value()));
    EXPECT_THAT(basUtil::AddFields(source, 2), ElementsAre(Value("x")));
}

/// What lies in a shapefile that CreateShapefile() made of the layer "source".
struct Copied {
    std::vector<Field> fields;
    data::PolygonFeatures features;
};

class CreateShapefile : public testing::Test {
  protected:
    Copied copied(const std::string& field) {
        const auto made = basUtil::CreateShapefile(field, source(), world.output.path());
        if (!made) {
            throw base::RuntimeError(0, "nothing was made");
        }
        return {made->fields(),
                made->read_polygons(field.empty() ? std::vector<std::string>{} : std::vector<std::string>{"analyfld"})};
    }
    const contracts::FeatureLayer& source() {
        return dynamic_cast<const contracts::FeatureLayer&>(*basUtil::FindLayer("source", world.application.map()));
    }

    test::SmallWorld world;
};

TEST_F(CreateShapefile, ALayerWithoutSelectionYieldsAnEmptyTempAnalysis) {
    world.layer("source", {test::integer_field("ID")}, {{{Box{0, 0, 1, 1}}, {std::int64_t{1}}}});
    EXPECT_EQ(copied("ID").features.polygons.feature_count(), 0U);
    EXPECT_TRUE(data::FeatureClass::open({.path = world.output / "tempAnalysis.shp"}).polygonal());
}

TEST_F(CreateShapefile, OnlySelectedFeaturesAreCopied) {
    world.layer("source", {test::text_field("NAME"), test::integer_field("ID")},
                {{{Box{0, 0, 1, 1}}, {"a", std::int64_t{10}}},
                 {{Box{1, 0, 3, 1}}, {"b", std::int64_t{20}}},
                 {{Box{3, 0, 4, 1}}, {"c", std::int64_t{30}}}},
                {1, 2});
    const Copied made = copied("ID");
    EXPECT_THAT(made.features.columns, ElementsAre(ElementsAre(Value(std::int64_t{20}), Value(std::int64_t{30}))));
    EXPECT_DOUBLE_EQ(made.features.polygons.area(0), 20000);
}

TEST_F(CreateShapefile, TheOnlyFieldIsAnalyfld) {
    world.layer("source", {test::text_field("NAME"), test::integer_field("ID")},
                {{{Box{0, 0, 1, 1}}, {"a", std::int64_t{10}}}}, {0});
    const Copied made = copied("NAME");
    ASSERT_THAT(made.fields, SizeIs(1));
    EXPECT_EQ(made.fields[0].name, "analyfld");
    EXPECT_EQ(made.fields[0].type, FieldType::text);
    EXPECT_EQ(made.fields[0].length, 30);
}

TEST_F(CreateShapefile, WholeNumbersStayWholeNumbers) {
    world.layer("source", {test::integer_field("ID")}, {{{Box{0, 0, 1, 1}}, {std::int64_t{-12345678}}}}, {0});
    const Copied made = copied("ID");
    EXPECT_TRUE(data::integral(made.fields.at(0).type));
    EXPECT_THAT(made.features.columns, ElementsAre(ElementsAre(Value(std::int64_t{-12345678}))));
}

TEST_F(CreateShapefile, WholeNumbersOf64BitsKeepAllDigits) {
    world.layer("source", {test::big_integer_field("ID")}, {{{Box{0, 0, 1, 1}}, {std::int64_t{123456789012345678}}}},
                {0});
    EXPECT_EQ(data::text_of(copied("ID").features.columns.at(0).at(0)), "123456789012345678");
}

TEST_F(CreateShapefile, TextOfMoreThan30CharactersIsNotCut) {
    const std::string name = "a name of forty-odd characters, all needed";
    world.layer("source", {test::text_field("NAME", 60)}, {{{Box{0, 0, 1, 1}}, {name}}}, {0});
    EXPECT_THAT(copied("NAME").features.columns, ElementsAre(ElementsAre(Value(name))));
}

TEST_F(CreateShapefile, TheCopyHasTheSourcesCoordinateSystem) {
    world.layer("source", {test::integer_field("ID")}, {{{Box{0, 0, 1, 1}}, {std::int64_t{1}}}}, {0}, "EPSG:32612");
    copied("ID");
    EXPECT_EQ(
        data::FeatureClass::open({.path = world.output / "tempAnalysis.shp"}).spatial_reference().authority_code(),
        "EPSG:32612");
}

TEST_F(CreateShapefile, AMissingFieldIsReportedAndNothingMade) {
    world.layer("source", {test::integer_field("ID")}, {{{Box{0, 0, 1, 1}}, {std::int64_t{1}}}}, {0});
    EXPECT_EQ(basUtil::CreateShapefile("SHED", source(), world.output.path()), nullptr);
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("\tCreateShapefile basUtil Line : ")));
    EXPECT_THAT(test::names_in(world.output.path()), IsEmpty());
}

TEST_F(CreateShapefile, AMissingFolderIsReportedAndNothingMade) {
    world.layer("source", {test::integer_field("ID")}, {{{Box{0, 0, 1, 1}}, {std::int64_t{1}}}}, {0});
    EXPECT_EQ(basUtil::CreateShapefile("ID", source(), world.output / "missing"), nullptr);
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("\tCreateShapefile basUtil Line : ")));
}

int flushes_of(std::size_t features) {
    const test::TemporaryFolder folder;
    data::PolygonFeatures source;
    source.polygons = test::polygons_of(std::vector<Shape>(features, Shape{{Box{0, 0, 1, 1}}}));
    source.columns = {std::vector<Value>(features, std::int64_t{1})};
    const std::vector<Field> fields{test::integer_field("analyfld")};
    data::ShapefileWriter writer(folder / "copy.shp", fields, {});
    EXPECT_EQ(basUtil::copy_features(source, writer), features);
    const int flushes = writer.flush_count();
    writer.close();
    EXPECT_EQ(data::FeatureClass::open({.path = folder / "copy.shp"}).feature_count(),
              static_cast<std::int64_t>(features));
    return flushes;
}

TEST(CopyFeatures, Of250FlushesAfterThe100thAndThe200thAndAtTheEnd) {
    EXPECT_EQ(flushes_of(250), 3);
}

TEST(CopyFeatures, FlushesOnceMoreAtTheEndEvenWithNothingLeft) {
    EXPECT_EQ(flushes_of(0), 1);
    EXPECT_EQ(flushes_of(99), 1);
    EXPECT_EQ(flushes_of(100), 2);
}

class Intersect : public testing::Test {
  protected:
    Intersect() {
        world.layer("input", {test::integer_field("ID"), test::real_field("AREA")},
                    {{{Box{0, 0, 2, 2}}, {std::int64_t{1}, 99.0}}, {{Box{2, 0, 4, 2}}, {std::int64_t{2}, 99.0}}});
        world.layer("overlay", {test::real_field("ID")}, {{{Box{1, 0, 3, 1}}, {5.5}}, {{Box{1, 1, 2, 2}}, {6.5}}});
    }
    data::FeatureClass features(const std::string& name) const {
        return data::FeatureClass::open({.path = world.folder / (name + ".shp")});
    }

    test::SmallWorld world;
};

TEST_F(Intersect, AMissingInputIsTold) {
    const data::FeatureClass input = features("input");
    EXPECT_EQ(basUtil::Intersect(nullptr, &input, "popIntersect", world.output.path()), nullptr);
    EXPECT_EQ(basUtil::Intersect(&input, nullptr, "popIntersect", world.output.path()), nullptr);
    EXPECT_THAT(world.said.boxes, ElementsAre(MessageBox{"Table QI failed"}, MessageBox{"Table QI failed"}));
}

TEST_F(Intersect, PiecesComeInTheOrderOfTheInputThenOfTheOverlay) {
    const auto made = [&] {
        const data::FeatureClass input = features("input");
        const data::FeatureClass overlay = features("overlay");
        return basUtil::Intersect(&input, &overlay, "popIntersect", world.output.path());
    }();
    ASSERT_NE(made, nullptr);
    const std::vector<std::string> names{"ID", "ID_1"};
    EXPECT_THAT(made->read_columns(names),
                ElementsAre(ElementsAre(Value(std::int64_t{1}), Value(std::int64_t{1}), Value(std::int64_t{2})),
                            ElementsAre(Value(5.5), Value(6.5), Value(5.5))));
}

TEST_F(Intersect, TheFieldAreaOfAPieceHoldsThePiecesArea) {
    const data::FeatureClass input = features("input");
    const data::FeatureClass overlay = features("overlay");
    const auto made = basUtil::Intersect(&input, &overlay, "popIntersect", world.output.path());
    const std::vector<std::string> names{"AREA"};
    EXPECT_THAT(made->read_columns(names), ElementsAre(ElementsAre(Value(10000.0), Value(10000.0), Value(10000.0))));
}

TEST_F(Intersect, AFailureIsReported) {
    const data::FeatureClass input = features("input");
    EXPECT_EQ(basUtil::Intersect(&input, &input, "popIntersect", world.output / "missing"), nullptr);
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("\tIntersect basUtil Line : ")));
}

}  // namespace
}  // namespace kestrel

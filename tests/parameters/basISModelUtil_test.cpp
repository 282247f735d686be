// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "parameters/basISModelUtil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/small_world.h"

namespace kestrel::basISModelUtil {

void PrintTo(const ListedLayer& layer, std::ostream* stream) {
    *stream << layer.name << " at " << layer.position;
}

namespace {

using data::Field;
using data::FieldType;
using testing::ElementsAre;
using testing::IsEmpty;

/// A layer that draws from nothing, with these fields.
class FieldsLayer final : public contracts::FeatureLayer {
  public:
    FieldsLayer(std::string name, std::vector<Field> fields, bool polygonal = true)
        : m_name(std::move(name)), m_fields(std::move(fields)), m_polygonal(polygonal) {}
    std::string name() const override { return m_name; }
    data::FeatureClass feature_class() const override {
        throw base::RuntimeError(base::kFileNotFound, "a list opens nothing");
    }
    data::FeatureSource source() const override { return {}; }
    std::vector<Field> fields() const override { return m_fields; }
    bool polygonal() const override { return m_polygonal; }
    const contracts::Selection& selection() const override { return m_selection; }
    void set_renderer(const data::ClassBreaksRenderer&) override {}

  private:
    std::string m_name;
    std::vector<Field> m_fields;
    bool m_polygonal;
    hosting::HeadlessSelection m_selection{{}};
};

Field field(const std::string& name, FieldType type) {
    return {.name = name, .type = type};
}

std::shared_ptr<FieldsLayer> layer(const std::string& name,
                                   std::vector<Field> fields = {field("ID", FieldType::integer)},
                                   bool polygonal = true) {
    return std::make_shared<FieldsLayer>(name, std::move(fields), polygonal);
}

std::shared_ptr<contracts::Layer> raster(const std::string& name) {
    return std::make_shared<hosting::HeadlessRasterLayer>(name, name + ".tif");
}

const std::vector<Field> kOfEveryType = {
    field("fid", FieldType::oid),         field("bool", FieldType::boolean),  field("date", FieldType::other),
    field("real", FieldType::real),       field("single", FieldType::single), field("text", FieldType::text),
    field("big", FieldType::big_integer), field("int", FieldType::integer),   field("small", FieldType::small_integer)};

TEST(GetFThemes, YieldsThePositionOfTheFirstFieldOfTheModesTypes) {
    EXPECT_EQ(GetFThemes(*layer("a", kOfEveryType), kAllFields), 0);
    EXPECT_EQ(GetFThemes(*layer("a", kOfEveryType), kNumericFields), 3);
    EXPECT_EQ(GetFThemes(*layer("a", kOfEveryType), kAnalysisFields), 5);
}

TEST(GetFThemes, RefusesALayerWithoutSuchAField) {
    EXPECT_EQ(GetFThemes(*layer("a", {field("r", FieldType::real)}), kAnalysisFields), -1);
    EXPECT_EQ(GetFThemes(*layer("a", {field("t", FieldType::text)}), kNumericFields), -1);
    EXPECT_EQ(GetFThemes(*layer("a", {field("b", FieldType::boolean)}), kAnalysisFields), -1);
    EXPECT_EQ(GetFThemes(*layer("a", {field("b", FieldType::boolean)}), kNumericFields), -1);
    EXPECT_EQ(GetFThemes(*layer("a", {}), kAllFields), -1);
}

TEST(GetFThemes, RefusesWhatHoldsNoPolygons) {
    EXPECT_EQ(GetFThemes(*layer("roads", {field("ID", FieldType::integer)}, false), kAnalysisFields), -1);
}

TEST(FieldNames, AreThoseOfTheModesTypesInOrder) {
    const auto all = layer("a", kOfEveryType);
    EXPECT_EQ(field_names(*all, kAllFields).size(), kOfEveryType.size());
    EXPECT_THAT(field_names(*all, kNumericFields), ElementsAre("real", "single", "big", "int", "small"));
    EXPECT_THAT(field_names(*all, kAnalysisFields), ElementsAre("text", "big", "int", "small"));
}

TEST(GetLayerIndex, ListsLayersOfAKindWithTheirPositions) {
    hosting::HeadlessMap map;
    for (const std::shared_ptr<contracts::Layer>& added : std::vector<std::shared_ptr<contracts::Layer>>{
             layer("sheds"), raster("cover"), layer("roads", {field("ID", FieldType::integer)}, false),
             layer("blocks", {field("DENSITY", FieldType::real)}), raster("relief")}) {
        map.append_layer(added);
    }
    EXPECT_THAT(GetLayerIndex(LayerKind::RasterLayer, map).layers,
                ElementsAre(ListedLayer{"cover", 1}, ListedLayer{"relief", 4}));
    EXPECT_THAT(GetLayerIndex(LayerKind::FeatureLayer, map).layers, ElementsAre(ListedLayer{"sheds", 0}));
    EXPECT_THAT(GetLayerIndex(LayerKind::FeatureLayer, map, kNumericFields).layers,
                ElementsAre(ListedLayer{"sheds", 0}, ListedLayer{"blocks", 3}));
}

TEST(GetLayerIndex, ListsTheMembersOfGroupsInPlaceButNoDeeper) {
    hosting::HeadlessMap map;
    const auto inner = std::make_shared<hosting::HeadlessGroupLayer>(
        "inner", std::vector<std::shared_ptr<contracts::Layer>>{layer("deep")});
    map.append_layer(layer("first"));
    map.append_layer(std::make_shared<hosting::HeadlessGroupLayer>(
        "group", std::vector<std::shared_ptr<contracts::Layer>>{layer("second"), inner}));
    map.append_layer(layer("third"));
    EXPECT_THAT(GetLayerIndex(LayerKind::FeatureLayer, map).layers,
                ElementsAre(ListedLayer{"first", 0}, ListedLayer{"second", 2}, ListedLayer{"third", 4}));
}

TEST(GetLayerIndex, ListsLayersOfOneNameInTheMapsOrder) {
    hosting::HeadlessMap map;
    map.append_layer(layer("sheds"));
    map.append_layer(layer("sheds"));
    EXPECT_THAT(GetLayerIndex(LayerKind::FeatureLayer, map).layers,
                ElementsAre(ListedLayer{"sheds", 0}, ListedLayer{"sheds", 1}));
    EXPECT_THAT(shared_names({"sheds", "sheds", "cover"}, map),
                ElementsAre("Several layers of the map are named 'sheds'; the run takes the first of them."));
}

TEST(GetLayerIndex, LeavesOutWhatCannotBeOpenedAndSaysWhy) {
    test::SmallWorld world;
    world.layer("sheds", {test::integer_field("ID")}, {});
    world.layer("gone", {test::integer_field("ID")}, {});
    base::remove_file(world.folder / "gone.shp");
    const LayerList list = GetLayerIndex(LayerKind::FeatureLayer, world.application.map());
    EXPECT_THAT(list.layers, ElementsAre(ListedLayer{"sheds", 0}));
    ASSERT_EQ(list.left_out.size(), 1U);
    EXPECT_THAT(list.left_out[0],
                testing::StartsWith("The layer 'gone' is not listed, because its source cannot be opened: "));
    EXPECT_THAT(world.said.call_stacks, IsEmpty());
}

TEST(DefaultUnits, AreKnownForFeetAndMetresOnly) {
    EXPECT_EQ(default_units(contracts::kFeet), "Feet");
    EXPECT_EQ(default_units(contracts::kMeters), "Meters");
    EXPECT_EQ(default_units(contracts::kDecimalDegrees), "");
    EXPECT_EQ(default_units(contracts::kUnknownUnits), "");
    EXPECT_EQ(default_units(static_cast<contracts::DistanceUnits>(10)), "");
}

class OutputNameTest : public testing::Test {
  protected:
    std::string completed(const std::string& typed) {
        return completed_output_name(typed, m_temporary.path(), "/extension").path;
    }
    test::TemporaryFolder m_temporary;
};

TEST_F(OutputNameTest, ABareNameGoesIntoTheTemporaryFolder) {
    const OutputName name = completed_output_name("roads", m_temporary.path(), "/extension");
    EXPECT_EQ(name.path, m_temporary / "roads.shp");
    EXPECT_EQ(name.folder, m_temporary.path() + "/");
    EXPECT_EQ(name.file_name, "roads.shp");
    EXPECT_EQ(name.chosen_folder, m_temporary.path());
}

TEST_F(OutputNameTest, AFolderThatExistsStays) {
    const OutputName name = completed_output_name(m_temporary / "roads", "/none", "/extension");
    EXPECT_EQ(name.path, m_temporary / "roads.shp");
    EXPECT_EQ(name.folder, m_temporary.path() + "/");
    EXPECT_EQ(name.chosen_folder, "");
}

TEST_F(OutputNameTest, TheExtensionIsCompleted) {
    EXPECT_EQ(completed("roads."), m_temporary / "roads.shp");
    EXPECT_EQ(completed("roads.2020"), m_temporary / "roads.2020.shp");
    EXPECT_EQ(completed("roads.shp"), m_temporary / "roads.shp");
    EXPECT_EQ(completed("ROADS.SHP"), m_temporary / "ROADS.SHP");
    EXPECT_EQ(completed("myshp"), m_temporary / "myshp") << "the last three characters decide";
    EXPECT_EQ(completed("  my roads \t"), m_temporary / "my roads.shp");
    EXPECT_EQ(completed(m_temporary.path() + "/"), m_temporary / ".shp");
}

TEST_F(OutputNameTest, BothSeparatorsSplitThePath) {
    EXPECT_EQ(completed("C:\\data\\roads"), m_temporary / "roads.shp");
    EXPECT_EQ(completed("/no such folder/roads"), m_temporary / "roads.shp");
}

TEST_F(OutputNameTest, TheChosenFolderIsToldAsItIs) {
    const OutputName name = completed_output_name("roads", m_temporary.path() + "/", "/extension");
    EXPECT_EQ(name.chosen_folder, m_temporary.path() + "/");
    EXPECT_EQ(name.path, m_temporary / "roads.shp") << "with one separator";
}

TEST_F(OutputNameTest, NothingStaysNothing) {
    EXPECT_EQ(completed(""), "");
    EXPECT_EQ(completed("  "), "");
    EXPECT_EQ(completed_output_name(" ", m_temporary.path(), "/extension").chosen_folder, "");
}

TEST_F(OutputNameTest, WithoutATemporaryFolderTheExtensionsOutputFolderIsTaken) {
    EXPECT_EQ(completed_output_name("roads", "", "/extension").path, "/extension/output/roads.shp");
    EXPECT_EQ(completed_output_name("roads", "/none", "/extension").path, "/extension/output/roads.shp");
}

TEST(SetThemeName, IsTheFileNameWithoutItsExtension) {
    EXPECT_EQ(SetThemeName("/data/roads.shp"), "roads");
    EXPECT_EQ(SetThemeName("C:\\data\\roads.old.shp"), "roads.old");
    EXPECT_EQ(SetThemeName("ROADS.SHP"), "ROADS");
    EXPECT_EQ(SetThemeName("myshp"), "myshp");
    EXPECT_EQ(SetThemeName("/data/.shp"), "");
}

TEST(ScenarioNumber, IsOneOfTheRows) {
    EXPECT_EQ(scenario_number("1", 3), 1);
    EXPECT_EQ(scenario_number(" 3 ", 3), 3);
    EXPECT_EQ(scenario_number("2.0", 3), 2);
    for (const char* typed : {"0", "4", "-1", "x", "1.5", "1e99", "2nd"}) {
        EXPECT_EQ(scenario_number(typed, 3), std::nullopt) << typed;
    }
}

}  // namespace
}  // namespace kestrel::basISModelUtil

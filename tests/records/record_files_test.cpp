// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "records/record_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "hosting/headless_map.h"
#include "tests/support/test_files.h"

namespace kestrel::test {
namespace {

using hosting::HeadlessFeatureLayer;
using hosting::HeadlessGroupLayer;
using hosting::HeadlessMap;
using hosting::HeadlessRasterLayer;
using testing::ElementsAre;

std::shared_ptr<HeadlessFeatureLayer> features(const std::string& name, const std::string& path,
                                               const std::string& layer_name = {}) {
    return std::make_shared<HeadlessFeatureLayer>(name, data::FeatureSource{.path = path, .layer_name = layer_name});
}

std::vector<std::string> names_of(const HeadlessMap& map) {
    std::vector<std::string> names;
    for (const auto& layer : feature_layers(map)) {
        names.push_back(layer->name());
    }
    return names;
}

TEST(feature_layers, StandInTheMapsOrderWithoutRasters) {
    HeadlessMap map;
    map.append_layer(features("second on disk", "/b.shp"));
    map.append_layer(std::make_shared<HeadlessRasterLayer>("cover", "/c.tif"));
    map.append_layer(features("first on disk", "/a.shp"));
    EXPECT_THAT(names_of(map), ElementsAre("second on disk", "first on disk"));
}

TEST(feature_layers, OfAGroupStandInItsPlaceOneLevelDeep) {
    HeadlessMap map;
    const auto inner = std::make_shared<HeadlessGroupLayer>(
        "inner", std::vector<std::shared_ptr<contracts::Layer>>{features("too deep", "/d.shp")});
    map.append_layer(features("above", "/a.shp"));
    map.append_layer(std::make_shared<HeadlessGroupLayer>(
        "group", std::vector<std::shared_ptr<contracts::Layer>>{features("in group", "/g.shp"), inner}));
    map.append_layer(features("below", "/b.shp"));
    EXPECT_THAT(names_of(map), ElementsAre("above", "in group", "below"));
}

TEST(source_folder, EndsInASeparator) {
    EXPECT_EQ(source_folder({.path = "/data/out/sheds.shp"}), "/data/out/");
    EXPECT_EQ(source_folder({.path = "/sheds.shp"}), "/");
    EXPECT_EQ(source_folder({.path = "sheds.shp"}), "./");
}

TEST(source_folder, OfASourceThatIsAFolderIsThatFolder) {
    const TemporaryFolder folder;
    EXPECT_EQ(source_folder({.path = folder.path(), .layer_name = "sheds"}), folder.path() + "/");
}

TEST(source_folder, OfALayerInNoFileIsEmpty) {
    EXPECT_EQ(source_folder({.path = ""}), "");
}

class RecordName : public testing::Test {
  protected:
    void make(const std::string& name) { base::write_file(m_folder / name, "text"); }
    std::string folder() const { return m_folder.path() + "/"; }

    TemporaryFolder m_folder;
};

TEST_F(RecordName, IsTheSourcesNameBeforeTheLayersOwn) {
    make("sheds.prm");
    make("Watersheds.prm");
    EXPECT_EQ(record_name(*features("Watersheds", m_folder / "sheds.shp"), folder(), "prm"), "sheds");
}

TEST_F(RecordName, IsTheLayersOwnWhereTheSourcesNameHasNoFile) {
    make("Watersheds.prm");
    EXPECT_EQ(record_name(*features("Watersheds", m_folder / "sheds.shp"), folder(), "prm"), "Watersheds");
}

TEST_F(RecordName, IsThatOfTheLayerInsideASourceOfSeveral) {
    make("sheds.met");
    make("all.met");
    EXPECT_EQ(record_name(*features("x", m_folder / "all.gpkg", "sheds"), folder(), "met"), "sheds");
}

TEST_F(RecordName, KeepsPointsInsideAName) {
    make("sheds.2001.met");
    EXPECT_EQ(record_name(*features("x", m_folder / "sheds.2001.shp"), folder(), "met"), "sheds.2001");
}

TEST_F(RecordName, IsMissingForTheOtherKindOfFile) {
    make("sheds.prm");
    EXPECT_EQ(record_name(*features("sheds", m_folder / "sheds.shp"), folder(), "met"), std::nullopt);
}

TEST_F(RecordName, IsMissingForAFolderOfThatName) {
    base::create_folder(m_folder / "sheds.prm");
    EXPECT_EQ(record_name(*features("sheds", m_folder / "sheds.shp"), folder(), "prm"), std::nullopt);
}

TEST_F(RecordName, IsMissingForALayerInNoFile) {
    EXPECT_EQ(record_name(*features("sheds", ""), "", "prm"), std::nullopt);
}

}  // namespace
}  // namespace kestrel::test

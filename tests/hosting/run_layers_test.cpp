// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "hosting/run_layers.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/apps/cli/run_data.h"

namespace kestrel::hosting {
namespace {

namespace fs = std::filesystem;

using data::FeatureClass;
using data::FeatureSource;

class RunLayersTest : public testing::Test {
  protected:
    std::string add(const std::string& text, std::vector<std::int64_t> selected = {}) {
        const FeatureSource source = FeatureSource::parse(text);
        return m_layers.add_features(source, FeatureClass::open(source), std::move(selected));
    }
    void copy_sheds_to(const std::string& folder, const std::string& name) {
        fs::create_directories(m_data / folder);
        for (const char* extension : {".shp", ".shx", ".dbf", ".prj", ".cpg"}) {
            fs::copy_file(m_data / ("sheds" + std::string(extension)), fs::path(m_data / folder) / (name + extension));
        }
    }

    test::RunData m_data;
    RunLayers m_layers;
};

TEST_F(RunLayersTest, ALayerIsNamedAfterItsFile) {
    EXPECT_EQ(m_layers.add_raster(m_data / "lc.tif"), "lc");
    EXPECT_EQ(add(m_data / "sheds.shp"), "sheds");
}

TEST_F(RunLayersTest, AGivenNameGoesBeforeThatOfTheFile) {
    const FeatureSource source{.path = m_data / "sheds.shp"};
    EXPECT_EQ(m_layers.add_raster(m_data / "lc.tif", "Land #1"), "Land _1");
    EXPECT_EQ(m_layers.add_features(source, FeatureClass::open(source), {}, "Land #1"), "Land _1 (2)");
}

TEST_F(RunLayersTest, ALayerOfAMultiLayerSourceIsNamedAsGiven) {
    EXPECT_EQ(add(m_data.folder.path() + "|layername=mall"), "mall");
    EXPECT_EQ(m_layers.files(), (std::vector<std::string>{m_data / "mall.shp"}));
}

TEST_F(RunLayersTest, TwoFilesOfOneNameGetDistinctNames) {
    copy_sheds_to("older", "sheds");
    copy_sheds_to("oldest", "sheds");
    EXPECT_EQ(add(m_data / "sheds.shp"), "sheds");
    EXPECT_EQ(add(m_data / "older/sheds.shp"), "sheds (2)");
    EXPECT_EQ(add(m_data / "oldest/sheds.shp"), "sheds (3)");
}

TEST_F(RunLayersTest, ARasterAndPolygonsOfOneNameGetDistinctNames) {
    copy_sheds_to("zones", "lc");
    EXPECT_EQ(m_layers.add_raster(m_data / "lc.tif"), "lc");
    EXPECT_EQ(add(m_data / "zones/lc.shp"), "lc (2)");
}

TEST_F(RunLayersTest, ANumberSignInANameBecomesAnUnderscore) {
    copy_sheds_to("odd", "sheds#2");
    EXPECT_EQ(add(m_data / "odd/sheds#2.shp"), "sheds_2");
    EXPECT_EQ(layer_name_from("a#b\nc"), "a_b_c");
}

TEST_F(RunLayersTest, NamesThatBecomeEqualAreMadeDistinct) {
    copy_sheds_to("odd", "sheds#2");
    copy_sheds_to("odd", "sheds_2");
    EXPECT_EQ(add(m_data / "odd/sheds#2.shp"), "sheds_2");
    EXPECT_EQ(add(m_data / "odd/sheds_2.shp"), "sheds_2 (2)");
}

TEST_F(RunLayersTest, TheSameSourceTwiceIsOneLayer) {
    fs::create_symlink(m_data / "sheds.shp", m_data / "link.shp");
    EXPECT_EQ(add(m_data / "sheds.shp"), "sheds");
    EXPECT_EQ(add(m_data / "sheds.shp"), "sheds");
    EXPECT_EQ(add(m_data / "out/../sheds.shp|layername=sheds"), "sheds");
    EXPECT_EQ(m_layers.layers().size(), 1U);
}

TEST_F(RunLayersTest, TheSameSourceWithAnotherSelectionIsAnotherLayer) {
    EXPECT_EQ(add(m_data / "sheds.shp", {0}), "sheds");
    EXPECT_EQ(add(m_data / "sheds.shp"), "sheds (2)");
    EXPECT_EQ(add(m_data / "sheds.shp", {0}), "sheds");
    EXPECT_EQ(m_layers.layers().size(), 2U);
}

TEST_F(RunLayersTest, LayersStandInTheOrderInWhichTheyWereNamed) {
    m_layers.add_raster(m_data / "lc.tif");
    add(m_data / "sheds.shp", {1});
    add(m_data / "blocks.shp");
    std::vector<std::string> names;
    for (const auto& layer : m_layers.layers()) {
        names.push_back(layer->name());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"lc", "sheds", "blocks"}));
    const auto* sheds = dynamic_cast<contracts::FeatureLayer*>(m_layers.layers()[1].get());
    ASSERT_NE(sheds, nullptr);
    EXPECT_EQ(sheds->selection().ids(), (std::vector<std::int64_t>{1}));
}

}  // namespace
}  // namespace kestrel::hosting

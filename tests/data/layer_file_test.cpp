// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/layer_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "base/files.h"
#include "data/xml.h"
#include "tests/support/test_files.h"

namespace kestrel::data {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

ClassBreaksRenderer three_classes() {
    return {"pctIS", {{9.99, "< 10%", {170, 255, 0}}, {25, "10% - 25%", {255, 255, 190}}, {100, "> 25%", {255, 0, 0}}}};
}

constexpr const char* kUtm12 = "EPSG:26912";

class LayerFile : public testing::Test {
  protected:
    std::string layer_file_of(const LayerDefinition& definition) const {
        write_layer_file(m_folder / "result.lyr", definition);
        return base::read_file(m_folder / "result.lyr");
    }

    XmlElement map_layer_of(const LayerDefinition& definition) const {
        return XmlDocument::parse(layer_file_of(definition)).root().child("maplayers").child("maplayer");
    }

    test::TemporaryFolder m_folder;
};

TEST_F(LayerFile, LayerWithoutCoordinateSystemIsWrittenWhole) {
    EXPECT_EQ(layer_file_of({"Subsheds IS", "subsheds.shp", SpatialReference(), three_classes()}),
              base::read_file(test::fixture_path("data/layer_without_reference.lyr")));
}

TEST_F(LayerFile, StyleIsWrittenWhole) {
    write_style_file(m_folder / "subsheds.qml", three_classes());
    EXPECT_EQ(base::read_file(m_folder / "subsheds.qml"),
              base::read_file(test::fixture_path("data/three_classes.qml")));
}

TEST_F(LayerFile, SameLayerGivesTheSameBytes) {
    const LayerDefinition definition{"Subsheds IS", "subsheds.shp", SpatialReference::from(kUtm12), three_classes()};
    EXPECT_EQ(layer_file_of(definition), layer_file_of(definition));
}

TEST_F(LayerFile, CoordinateSystemIsTheTextOfThePrjFile) {
    const SpatialReference reference = SpatialReference::from(kUtm12);
    const XmlElement layer = map_layer_of({"Result", "res.shp", reference, three_classes()});
    EXPECT_EQ(layer.child("srs").child("spatialrefsys").node_text("wkt"), reference.esri_wkt());
    EXPECT_THAT(reference.esri_wkt(), HasSubstr("PROJCS["));
}

TEST_F(LayerFile, LayerWithoutCoordinateSystemHasNoSrsElement) {
    EXPECT_FALSE(map_layer_of({"Result", "res.shp", SpatialReference(), three_classes()}).child("srs"));
}

TEST_F(LayerFile, DataSourceIsRelativeSoThatTheFolderCanBeMoved) {
    const XmlElement layer = map_layer_of({"Result", "res.shp", SpatialReference(), three_classes()});
    EXPECT_EQ(layer.node_text("datasource"), "./res.shp");
    EXPECT_EQ(layer.node_text("provider"), "ogr");
    EXPECT_EQ(layer.child("provider").node_text("@encoding"), "UTF-8");
}

TEST_F(LayerFile, TreeNamesTheLayerById) {
    const XmlElement root =
        XmlDocument::parse(layer_file_of({"Result", "res.shp", SpatialReference(), three_classes()})).root();
    EXPECT_EQ(root.name(), "qlr");
    const XmlElement entry = root.child("layer-tree-group").child("layer-tree-layer");
    EXPECT_EQ(entry.node_text("@name"), "Result");
    EXPECT_EQ(entry.node_text("@id"), root.child("maplayers").child("maplayer").node_text("id"));
    EXPECT_THAT(entry.node_text("@id"), Not(testing::IsEmpty()));
}

TEST_F(LayerFile, NamesWithMarkupAndLettersOfAllKindsSurvive) {
    const std::string name = R"(Lots & <roads> "north" 'Märlin' 水)";
    const XmlElement layer = map_layer_of({name, name + ".shp", SpatialReference(), three_classes()});
    EXPECT_EQ(layer.node_text("layername"), name);
    EXPECT_EQ(layer.node_text("datasource"), "./" + name + ".shp");
}

TEST_F(LayerFile, RangesJoinAtTheBreaksFromZeroOn) {
    const XmlElement renderer =
        map_layer_of({"Result", "res.shp", SpatialReference(), three_classes()}).child("renderer-v2");
    EXPECT_EQ(renderer.node_text("@type"), "graduatedSymbol");
    EXPECT_EQ(renderer.node_text("@attr"), "pctIS");
    std::vector<std::string> ranges;
    for (const XmlElement& range : renderer.child("ranges").children("range")) {
        ranges.push_back(range.node_text("@symbol") + ": " + range.node_text("@lower") + " to " +
                         range.node_text("@upper") + " " + range.node_text("@label"));
    }
    EXPECT_THAT(ranges, ElementsAre("0: 0 to 9.99 < 10%", "1: 9.99 to 25 10% - 25%", "2: 25 to 100 > 25%"));
}

TEST_F(LayerFile, SymbolsAreOpaqueFillsOfTheClassColours) {
    const XmlElement renderer =
        map_layer_of({"Result", "res.shp", SpatialReference(), three_classes()}).child("renderer-v2");
    std::vector<std::string> symbols;
    for (const XmlElement& symbol : renderer.child("symbols").children("symbol")) {
        const XmlElement layer = symbol.child("layer");
        symbols.push_back(symbol.node_text("@name") + " " + symbol.node_text("@type") + " " +
                          layer.node_text("@class") + " " + layer.child("prop").node_text("@k") + " " +
                          layer.child("prop").node_text("@v"));
    }
    EXPECT_THAT(symbols, ElementsAre("0 fill SimpleFill color 170,255,0,255", "1 fill SimpleFill color 255,255,190,255",
                                     "2 fill SimpleFill color 255,0,0,255"));
}

TEST_F(LayerFile, ExistingFilesAreReplaced) {
    base::write_file(m_folder / "result.lyr", std::string(100000, 'x'));
    EXPECT_EQ(layer_file_of({"Subsheds IS", "subsheds.shp", SpatialReference(), three_classes()}),
              base::read_file(test::fixture_path("data/layer_without_reference.lyr")));
}

TEST_F(LayerFile, FailureLeavesNothingBehindAndTellsWhere) {
    const std::string path = m_folder / "missing/result.lyr";
    for (const auto& write : {+[](const std::string& to) {
                                  write_layer_file(to, {"Result", "res.shp", SpatialReference(), three_classes()});
                              },
                              +[](const std::string& to) { write_style_file(to, three_classes()); }}) {
        try {
            write(path);
            FAIL() << "nothing was thrown";
        } catch (const base::RuntimeError& error) {
            EXPECT_EQ(error.number(), 76);
            EXPECT_THAT(error.description(), HasSubstr(path));
        }
    }
    EXPECT_THAT(test::names_in(m_folder.path()), testing::IsEmpty());
}

}  // namespace
}  // namespace kestrel::data

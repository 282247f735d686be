// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <qgsgraduatedsymbolrenderer.h>
#include <qgslayerdefinition.h>
#include <qgslayertree.h>
#include <qgsreadwritecontext.h>
#include <qgssymbol.h>

#include <filesystem>

#include "data/layer_file.h"
#include "engine/output_layer.h"
#include "tests/apps/qgis/qgis_world.h"

namespace kestrel::test {
namespace {

/// The files that a run writes for QGIS beside its output, opened by QGIS.
class LayerFiles : public QgisWorld {
  protected:
    LayerFiles() {
        four_zones();
        add_vector(shapefile(), "sheds");
        run();
        project().clear();
    }

    /// "upper label colour" of each class.
    static std::vector<std::string> classes(const QgsMapLayer* layer) {
        const auto* vector = qobject_cast<const QgsVectorLayer*>(layer);
        const auto* renderer =
            vector == nullptr ? nullptr : dynamic_cast<const QgsGraduatedSymbolRenderer*>(vector->renderer());
        std::vector<std::string> texts;
        if (renderer != nullptr) {
            EXPECT_EQ(renderer->classAttribute(), "pctIS");
            for (const QgsRendererRange& range : renderer->ranges()) {
                texts.push_back(QStringLiteral("%1-%2 %3 %4")
                                    .arg(range.lowerValue())
                                    .arg(range.upperValue())
                                    .arg(range.label(), range.symbol()->color().name())
                                    .toStdString());
            }
        }
        return texts;
    }
    const std::vector<std::string> kClasses{"0-9.99 < 10% #aaff00", "9.99-25 10% - 25% #ffffbe",
                                            "25-100 > 25% #ff0000"};

    /// Loads a layer file as QGIS does when it is dropped on the map.
    QgsMapLayer* load_layer_file(const std::string& path) {
        QString error;
        EXPECT_TRUE(QgsLayerDefinition::loadLayerDefinition(QString::fromStdString(path), &project(),
                                                            project().layerTreeRoot(), error))
            << error.toStdString();
        const auto layers = project().mapLayers().values();
        return layers.isEmpty() ? nullptr : layers.first();
    }
};

TEST_F(LayerFiles, ShapefileAddedByItselfShowsTheClasses) {
    EXPECT_EQ(classes(&add_vector(world.output_path(), "out")), kClasses);
}

TEST_F(LayerFiles, RemovedAndAddedAgainTheShapefileShowsTheSameClasses) {
    QgsVectorLayer& first = add_vector(world.output_path(), "out");
    project().removeMapLayer(&first);
    EXPECT_EQ(classes(&add_vector(world.output_path(), "out")), kClasses);
}

TEST_F(LayerFiles, LayerFileOpensWithNameClassesDataAndCoordinateSystem) {
    const auto* layer = qobject_cast<QgsVectorLayer*>(load_layer_file(world.output / "Sheds IS.lyr"));
    ASSERT_NE(layer, nullptr);
    EXPECT_TRUE(layer->isValid());
    EXPECT_EQ(layer->name(), "Sheds IS");
    EXPECT_EQ(layer->featureCount(), 4);
    EXPECT_EQ(layer->crs().authid(), "EPSG:26912");
    EXPECT_EQ(classes(layer), kClasses);
    EXPECT_EQ(project().layerTreeRoot()->findLayers().size(), 1);
}

TEST_F(LayerFiles, FolderOfAnOutputCanBeMoved) {
    const TemporaryFolder elsewhere;
    std::filesystem::rename(world.output.path(), elsewhere / "moved");
    const auto* layer = qobject_cast<QgsVectorLayer*>(load_layer_file(elsewhere / "moved/Sheds IS.lyr"));
    ASSERT_NE(layer, nullptr);
    EXPECT_TRUE(layer->isValid());
    EXPECT_EQ(layer->featureCount(), 4);
    std::filesystem::rename(elsewhere / "moved", world.output.path());
}

TEST_F(LayerFiles, LayerFileWithNamesThatXmlMarksOpens) {
    data::write_layer_file(world.output / "odd.lyr", {.layer_name = "Müller & <Söhne> \"2\"",
                                                      .shapefile_name = "out.shp",
                                                      .reference = data::SpatialReference::from("EPSG:26912"),
                                                      .renderer = output_legend()});
    const QgsMapLayer* layer = load_layer_file(world.output / "odd.lyr");
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->name(), QString::fromUtf8("Müller & <Söhne> \"2\""));
    EXPECT_EQ(classes(layer), kClasses);
}

}  // namespace
}  // namespace kestrel::test

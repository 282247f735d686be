// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <qgsproject.h>
#include <qgsrasterlayer.h>
#include <qgsvectorlayer.h>

#include <optional>
#include <string>
#include <vector>

#include "apps/qgis/desktop_application.h"
#include "tests/support/small_world.h"

namespace kestrel::test {

/// Data made from literals, with a QGIS project to show them in.
class QgisWorld : public testing::Test {
  protected:
    QgisWorld();
    ~QgisWorld() override;

    /// Adds a layer at the bottom of the layer tree, or of a group in it.
    QgsVectorLayer& add_vector(const std::string& source, const std::string& name, const std::string& provider = "ogr",
                               const std::string& group = "");
    QgsRasterLayer& add_raster(const std::string& source, const std::string& name);
    /// A layer in memory with the features of another.
    QgsVectorLayer& add_memory_copy(const QgsVectorLayer& original, const std::string& name);
    /// Lets the map tell its listeners.
    static void settle();

    /// Names of the map's layers; a group is "name(member member)".
    std::vector<std::string> map_layers();
    std::shared_ptr<contracts::FeatureLayer> feature_layer(const std::string& name);
    std::vector<std::string> copies() const { return names_in(world.extension / "temp"); }

    /// A land cover of three classes, and the zones 1 to 4 on it.
    void four_zones();
    std::string shapefile() const { return world.folder / "sheds.shp"; }
    /// The zones in a GeoPackage of two layers, "other" and "sheds". \return its path.
    std::string geopackage();
    /// Carries the run out in QGIS. \return the output's rows; empty when there is no output.
    std::vector<std::string> run();

    QgsProject& project() { return *QgsProject::instance(); }

    SmallWorld world;
    int redrawn = 0;
    std::optional<contracts::RunResult> result;
    std::optional<qgis::DesktopApplication> application;
};

}  // namespace kestrel::test

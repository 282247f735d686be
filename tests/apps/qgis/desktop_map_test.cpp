// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/desktop_map.h"

#include <qgslayertree.h>
#include <qgslayertreegroup.h>
#include <qgslayertreelayer.h>

#include "apps/qgis/desktop_layers.h"
#include "tests/apps/qgis/qgis_world.h"
#include "tests/support/error_of.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Writes down what it is told.
class Listener final : public contracts::MapEvents {
  public:
    void layer_added() override { told.emplace_back("added"); }
    void layer_deleted() override { told.emplace_back("deleted"); }
    void layers_reordered() override { told.emplace_back("reordered"); }
    void document_opened() override { told.emplace_back("document"); }

    std::vector<std::string> told;
};

class DesktopMapTest : public QgisWorld {
  protected:
    DesktopMapTest() {
        four_zones();
        settle();
        application->map().add_listener(listener);
    }
    ~DesktopMapTest() override { application->map().remove_listener(listener); }

    std::vector<std::string> told() {
        settle();
        return std::exchange(listener.told, {});
    }
    QgsLayerTree& tree() { return *project().layerTreeRoot(); }

    Listener listener;
};

TEST_F(DesktopMapTest, LayersStandAsInTheLayerTree) {
    add_vector(shapefile(), "Sheds");
    add_vector(shapefile(), "Above");
    QgsLayerTreeNode* moved = tree().children().last()->clone();
    tree().insertChildNode(0, moved);
    tree().removeChildNode(tree().children().last());
    EXPECT_THAT(map_layers(), ElementsAre("Above", "cover", "Sheds"));
}

TEST_F(DesktopMapTest, GroupHoldsAllLayersBelowIt) {
    add_vector(shapefile(), "One", "ogr", "Group");
    QgsLayerTreeGroup* inner = tree().findGroup("Group")->addGroup("Inner");
    inner->addLayer(&add_vector(shapefile(), "Two", "ogr", "Elsewhere"));
    tree().removeChildNode(tree().findGroup("Elsewhere"));
    add_vector(shapefile(), "Three", "ogr", "Group");
    EXPECT_THAT(map_layers(), ElementsAre("cover", "Group(One Two Three)"));
    EXPECT_NE(feature_layer("Two"), nullptr) << "the engine finds a layer of a group in a group, too";
}

TEST_F(DesktopMapTest, NewLayerComesOnTopWithAnOpenLegend) {
    const auto made = application->make_feature_layer(shapefile(), "Output");
    ASSERT_NE(made, nullptr);
    EXPECT_THAT(map_layers(), ElementsAre("cover")) << "a layer is not in the map before it is added";
    application->map().add_layer(made);
    EXPECT_THAT(map_layers(), ElementsAre("Output", "cover"));
    EXPECT_EQ(made->name(), "Output");
    EXPECT_TRUE(tree().findLayers().first()->isExpanded());
}

TEST_F(DesktopMapTest, LayerThatNeverCameIntoTheMapIsDeletedWithItsObject) {
    auto made = application->make_feature_layer(shapefile(), "Output");
    const QPointer<QgsMapLayer> layer = dynamic_cast<qgis::DesktopFeatureLayer&>(*made).map_layer();
    ASSERT_FALSE(layer.isNull());
    made.reset();
    EXPECT_TRUE(layer.isNull());
}

TEST_F(DesktopMapTest, WhatIsNoShapefileMakesNoLayer) {
    EXPECT_EQ(application->make_feature_layer(world.folder / "nothing.shp", "x"), nullptr);
}

TEST_F(DesktopMapTest, LayerThatIsInTheMapCannotBeAddedAgain) {
    add_vector(shapefile(), "Sheds");
    EXPECT_EQ(error_of([this] { application->map().add_layer(feature_layer("Sheds")); }).number(),
              base::kInvalidProcedureCall);
}

TEST_F(DesktopMapTest, LayerIsRemovedOnce) {
    add_vector(shapefile(), "Sheds");
    const auto layer = feature_layer("Sheds");
    application->map().remove_layer(layer);
    EXPECT_THAT(map_layers(), ElementsAre("cover"));
    application->map().remove_layer(layer);
    EXPECT_THAT(map_layers(), ElementsAre("cover"));
}

TEST_F(DesktopMapTest, UnitsAreThoseOfTheProjectsCoordinateSystem) {
    project().setCrs(QgsCoordinateReferenceSystem("EPSG:26912"));
    EXPECT_EQ(application->map().distance_units(), contracts::kMeters);
    project().setCrs(QgsCoordinateReferenceSystem("EPSG:2263"));  // US survey feet
    EXPECT_EQ(application->map().distance_units(), contracts::kFeet);
    project().setCrs(QgsCoordinateReferenceSystem("EPSG:4326"));
    EXPECT_EQ(application->map().distance_units(), contracts::kDecimalDegrees);
    project().setCrs(QgsCoordinateReferenceSystem());
    EXPECT_EQ(application->map().distance_units(), contracts::kUnknownUnits);
}

TEST_F(DesktopMapTest, RefreshRedrawsTheCanvas) {
    application->map().refresh();
    EXPECT_EQ(redrawn, 1);
}

TEST_F(DesktopMapTest, ListenersHearOfAddedLayersOnce) {
    add_vector(shapefile(), "One");
    add_vector(shapefile(), "Two");
    EXPECT_THAT(listener.told, IsEmpty()) << "not before the change is complete";
    EXPECT_THAT(told(), ElementsAre("added"));
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DesktopMapTest, ListenersHearOfRemovedLayers) {
    QgsVectorLayer& layer = add_vector(shapefile(), "One");
    told();
    project().removeMapLayer(&layer);
    EXPECT_THAT(told(), ElementsAre("deleted"));
}

TEST_F(DesktopMapTest, ListenersHearOfMovedLayersAsOneChange) {
    add_vector(shapefile(), "One");
    told();
    QgsLayerTreeNode* moved = tree().children().last()->clone();
    tree().insertChildNode(0, moved);
    tree().removeChildNode(tree().children().last());
    EXPECT_THAT(told(), ElementsAre("reordered"));
}

TEST_F(DesktopMapTest, ListenersHearOfRenamedLayers) {
    QgsVectorLayer& layer = add_vector(shapefile(), "One");
    told();
    layer.setName("Another");
    EXPECT_THAT(told(), ElementsAre("reordered"));
}

TEST_F(DesktopMapTest, ListenersHearOfAnotherProjectAsOneChange) {
    add_vector(shapefile(), "One");
    const QString path = QString::fromStdString(world.folder / "project.qgz");
    ASSERT_TRUE(project().write(path));
    told();
    ASSERT_TRUE(project().read(path));
    EXPECT_THAT(told(), ElementsAre("document"));
    EXPECT_THAT(map_layers(), ElementsAre("cover", "One"));
    add_vector(shapefile(), "Two");
    EXPECT_THAT(told(), ElementsAre("added")) << "the tree of the new project is watched, too";
    project().clear();
    EXPECT_THAT(told(), ElementsAre("document"));
}

TEST_F(DesktopMapTest, WhatChangesNoLayersIsNotTold) {
    tree().findLayers().first()->setItemVisibilityChecked(false);
    tree().addGroup("Empty");
    EXPECT_THAT(told(), IsEmpty());
}

/// Leaves when it is told.
class LeavingListener final : public contracts::MapEvents {
  public:
    explicit LeavingListener(contracts::Map& map) : m_map(map) {}
    void layer_added() override {
        ++told;
        m_map.remove_listener(*this);
    }
    void layer_deleted() override {}
    void layers_reordered() override {}
    void document_opened() override {}
    int told = 0;

  private:
    contracts::Map& m_map;
};

TEST_F(DesktopMapTest, ListenerMayLeaveWhileItIsTold) {
    LeavingListener leaving(application->map());
    application->map().add_listener(leaving);
    add_vector(shapefile(), "One");
    settle();
    add_vector(shapefile(), "Two");
    settle();
    EXPECT_EQ(leaving.told, 1);
}

}  // namespace
}  // namespace kestrel::test

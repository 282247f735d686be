// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/desktop_application.h"

#include <qgsfeatureiterator.h>
#include <qgsgraduatedsymbolrenderer.h>
#include <qgslayertree.h>

#include "tests/apps/qgis/qgis_world.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Whole runs, in QGIS and without it.
class DesktopApplicationTest : public QgisWorld {
  protected:
    DesktopApplicationTest() { four_zones(); }

    /// The rows of a run without QGIS, with these features selected.
    std::vector<std::string> expected(std::vector<std::int64_t> selected) {
        SmallWorld other;
        other.land_cover("2 2 5 5\n2 2 5 5\n5 5 7 7\n5 5 7 7");
        other.layer("sheds", {integer_field("ID"), text_field("NAME")},
                    {{{{0, 2, 2, 4}}, {1, "north west"}},
                     {{{2, 2, 4, 4}}, {2, "north east"}},
                     {{{0, 0, 2, 2}}, {3, "south west"}},
                     {{{2, 0, 4, 2}}, {4, "south east"}}},
                    std::move(selected));
        EXPECT_TRUE(other.run());
        EXPECT_FALSE(other.rows().empty());
        return other.rows();
    }
};

TEST_F(DesktopApplicationTest, RunGivesTheFiguresOfARunWithoutADesktop) {
    add_vector(shapefile(), "sheds");
    EXPECT_EQ(run(), expected({}));
    EXPECT_THAT(world.said.call_stacks, IsEmpty());
    EXPECT_THAT(world.said.boxes, IsEmpty());
}

TEST_F(DesktopApplicationTest, SelectionInAShapefileCounts) {
    add_vector(shapefile(), "sheds").selectByIds({1, 2});
    EXPECT_EQ(run(), expected({1, 2}));
}

TEST_F(DesktopApplicationTest, SelectionInAMemoryLayerCounts) {
    const QgsVectorLayer original(QString::fromStdString(shapefile()), "sheds", "ogr");
    QgsVectorLayer& memory = add_memory_copy(original, "sheds");
    QgsFeatureIds wanted;
    QgsFeature feature;
    for (QgsFeatureIterator features = memory.getFeatures("ID in (2, 3)"); features.nextFeature(feature);) {
        wanted << feature.id();
    }
    memory.selectByIds(wanted);
    EXPECT_EQ(run(), expected({1, 2}));
    EXPECT_THAT(copies(), IsEmpty()) << "the run's end takes the copy away";
}

TEST_F(DesktopApplicationTest, LayerOfAGeoPackageWithSelectionCounts) {
    add_vector(geopackage() + "|layername=sheds", "sheds").selectByIds({2, 3});
    EXPECT_EQ(run(), expected({1, 2}));
}

TEST_F(DesktopApplicationTest, SubsetFilterCounts) {
    add_vector(shapefile() + "|subset=\"ID\" IN (2, 3)", "sheds");
    EXPECT_EQ(run(), expected({1, 2}));
}

TEST_F(DesktopApplicationTest, LayerInAGroupCounts) {
    add_vector(shapefile(), "sheds", "ogr", "Group").selectByIds({1, 2});
    EXPECT_EQ(run(), expected({1, 2}));
}

TEST_F(DesktopApplicationTest, OutputComesOnTopWithThreeClasses) {
    add_vector(shapefile(), "sheds");
    run();
    EXPECT_THAT(map_layers(), ElementsAre("Sheds IS", "cover", "sheds"));
    const auto* output = dynamic_cast<const QgsVectorLayer*>(project().layerTreeRoot()->findLayers().first()->layer());
    ASSERT_NE(output, nullptr);
    const auto* renderer = dynamic_cast<const QgsGraduatedSymbolRenderer*>(output->renderer());
    ASSERT_NE(renderer, nullptr);
    EXPECT_EQ(renderer->ranges().size(), 3);
    EXPECT_EQ(output->featureCount(), 4);
    EXPECT_GE(redrawn, 1);
}

TEST_F(DesktopApplicationTest, SecondRunReplacesTheOutputLayerOfTheFirst) {
    add_vector(shapefile(), "sheds");
    run();
    run();
    EXPECT_THAT(map_layers(), ElementsAre("Sheds IS", "cover", "sheds"));
}

TEST_F(DesktopApplicationTest, OtherLayersOnARewrittenFileShowItsNewFeatures) {
    QgsVectorLayer& sheds = add_vector(shapefile(), "sheds");
    run();
    QgsVectorLayer& old = add_vector(world.output_path(), "Kept");
    ASSERT_EQ(old.featureCount(), 4);
    sheds.selectByIds({1});
    run();
    EXPECT_EQ(old.featureCount(), 1);
}

TEST_F(DesktopApplicationTest, MissingLayerIsReportedAndTheRunEnds) {
    EXPECT_THAT(run(), IsEmpty());
    ASSERT_EQ(world.said.call_stacks.size(), 1U);
    EXPECT_THAT(world.said.call_stacks[0], HasSubstr("ExecuteModel clsISExecuteModel"));
    ASSERT_TRUE(result.has_value());
    EXPECT_FALSE(result->finished);
    EXPECT_THAT(map_layers(), ElementsAre("cover"));
}

TEST_F(DesktopApplicationTest, ExtensionsAreFoundByTheirRegisteredNames) {
    EXPECT_EQ(application->find_extension("esriCore.SAExtension.1"), &world.raster_analysis);
    EXPECT_EQ(application->find_extension("KESTREL_EXT.clsExtension"), nullptr);
}

}  // namespace
}  // namespace kestrel::test

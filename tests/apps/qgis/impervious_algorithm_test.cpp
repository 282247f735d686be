// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/impervious_algorithm.h"

#include <qgsapplication.h>
#include <qgsgraduatedsymbolrenderer.h>
#include <qgsprocessingalgrunnertask.h>
#include <qgsprocessingcontext.h>
#include <qgsprocessingfeedback.h>
#include <qgsprocessingregistry.h>
#include <qgsprocessingutils.h>
#include <qgstaskmanager.h>

#include <QTest>
#include <QThread>

#include "apps/qgis/kestrel_provider.h"
#include "base/files.h"
#include "coefficients/basUtil.h"
#include "coefficients/clsISLCDef.h"
#include "tests/apps/qgis/qgis_world.h"
#include "tests/coefficients/sets.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ImperviousAlgorithmTest : public QgisWorld {
  protected:
    ImperviousAlgorithmTest() {
        four_zones();
        base::create_folder(world.extension / "etc");
        clsISModelProperties props;
        add_set(props, "Town",
                {land_class(2, "Developed", 90, 80, 70), land_class(5, "Grassland", 3, 2, 1),
                 land_class(7, "Roads", 100, 100, 100)});
        add_set(props, "Poor", {land_class(2, "Developed", 90, 80, 70)});
        EXPECT_TRUE(
            basUtil::PutISModelProperties(props, CoefficientStore::in_extension_folder(world.extension.path())));
        QgsApplication::processingRegistry()->addProvider(new qgis::KestrelProvider(world.extension.path()));
        context.setProject(&project());
        parameters = {{"LAND_COVER", "cover"},
                      {"ZONES", "sheds"},
                      {"FIELD", "ID"},
                      {"SET", "Town"},
                      {"OPTION", 1},
                      {"LAYER_NAME", "Sheds IS"},
                      {"OUTPUT", QString::fromStdString(world.output_path())}};
    }
    ~ImperviousAlgorithmTest() override { QgsApplication::processingRegistry()->removeProvider("kestrel"); }

    static const QgsProcessingAlgorithm& algorithm() {
        return *QgsApplication::processingRegistry()->algorithmById("kestrel:impervioussurface");
    }
    /// The reason why the algorithm refuses; empty when it runs to its end.
    std::string run_algorithm() {
        try {
            QString reason;
            if (!algorithm().checkParameterValues(parameters, context, &reason)) {
                return reason.toStdString();
            }
            bool done = false;
            results = algorithm().run(parameters, context, &feedback, &done, QVariantMap(), false);
            return done ? "" : feedback.textLog().trimmed().section('\n', -1).toStdString();
        } catch (const QgsProcessingException& error) {
            return error.what().toStdString();
        }
    }
    /// Rows of the same run by the engine alone.
    std::vector<std::string> expected(std::vector<std::int64_t> selected = {}) {
        SmallWorld other;
        other.parameters = world.parameters;
        other.land_cover("2 2 5 5\n2 2 5 5\n5 5 7 7\n5 5 7 7");
        other.layer("sheds", {integer_field("ID"), text_field("NAME")},
                    {{{{0, 2, 2, 4}}, {1, "north west"}},
                     {{{2, 2, 4, 4}}, {2, "north east"}},
                     {{{0, 0, 2, 2}}, {3, "south west"}},
                     {{{2, 0, 4, 2}}, {4, "south east"}}},
                    std::move(selected));
        add_others(other);
        EXPECT_TRUE(other.run());
        return other.rows();
    }
    /// The density layer and the scenario of the tests that want them.
    static void add_others(SmallWorld& where) {
        where.layer("blocks", {real_field("POP")}, {{{{0, 0, 4, 2}}, {500.0}}, {{{0, 2, 4, 4}}, {10.0}}});
        where.layer("mall", {integer_field("N")}, {{{{2, 2, 4, 4}}, {1}}});
    }
    static QVariant selected_only(const QString& layer) {
        return QVariant::fromValue(QgsProcessingFeatureSourceDefinition(layer, true));
    }

    QVariantMap parameters;
    QVariantMap results;
    QgsProcessingContext context;
    QgsProcessingFeedback feedback{false};
};

TEST_F(ImperviousAlgorithmTest, GivesTheFiguresOfTheEngine) {
    add_vector(shapefile(), "sheds");
    EXPECT_EQ(run_algorithm(), "");
    EXPECT_EQ(world.rows(), expected());
    EXPECT_EQ(results.value("OUTPUT").toString().toStdString(), world.output_path());
    EXPECT_EQ(results.value("ZONE_COUNT").toInt(), 4);
    for (const char* file : {"REPORT", "METADATA", "LAYER_FILE"}) {
        EXPECT_TRUE(base::file_exists(results.value(file).toString().toStdString())) << file;
    }
}

TEST_F(ImperviousAlgorithmTest, TouchesNeitherMapNorBoxes) {
    add_vector(shapefile(), "sheds");
    run_algorithm();
    EXPECT_THAT(map_layers(), ElementsAre("cover", "sheds"));
    EXPECT_THAT(world.said.boxes, IsEmpty());
    EXPECT_THAT(copies(), IsEmpty());
}

TEST_F(ImperviousAlgorithmTest, TakesAllFeaturesUnlessToldToTakeTheSelectedOnes) {
    add_vector(shapefile(), "sheds").selectByIds({1, 2});
    EXPECT_EQ(run_algorithm(), "");
    EXPECT_EQ(world.rows(), expected());
    parameters["ZONES"] = selected_only("sheds");
    EXPECT_EQ(run_algorithm(), "");
    EXPECT_EQ(world.rows(), expected({1, 2})) << "and replaces an older output";
}

TEST_F(ImperviousAlgorithmTest, RefusesAnEmptySelection) {
    add_vector(shapefile(), "sheds");
    parameters["ZONES"] = selected_only("sheds");
    EXPECT_EQ(run_algorithm(), "No feature of the layer 'sheds' is selected.");
}

TEST_F(ImperviousAlgorithmTest, TakesAMemoryLayer) {
    const QgsVectorLayer original(QString::fromStdString(shapefile()), "sheds", "ogr");
    add_memory_copy(original, "sheds").selectByIds({2, 3});
    parameters["ZONES"] = selected_only("sheds");
    EXPECT_EQ(run_algorithm(), "");
    EXPECT_EQ(world.rows(), expected({1, 2}));
}

TEST_F(ImperviousAlgorithmTest, TakesFilesThatAreInNoProject) {
    parameters["ZONES"] = QString::fromStdString(geopackage() + "|layername=sheds");
    parameters["LAND_COVER"] = QString::fromStdString(world.folder / "cover.tif");
    EXPECT_EQ(run_algorithm(), "");
    EXPECT_EQ(world.rows(), expected());
}

TEST_F(ImperviousAlgorithmTest, ChoosesTheCoefficientByPopulationDensity) {
    add_others(world);
    add_vector(shapefile(), "sheds");
    add_vector(world.folder / "blocks.shp", "blocks");
    parameters["OPTION"] = 3;
    EXPECT_EQ(run_algorithm(),
              "The coefficient is chosen by population density, which needs: Population density layer.");
    parameters["DENSITY_LAYER"] = "blocks";
    parameters["DENSITY_FIELD"] = "POP";
    parameters["DENSITY_HIGH"] = 100;
    parameters["DENSITY_LOW"] = 100.5;
    EXPECT_EQ(run_algorithm(), "Population density \"Low\" value must be less than the \"High\" value.");
    parameters["DENSITY_LOW"] = 100;  // equal ones pass
    EXPECT_EQ(run_algorithm(), "");
    parameters["DENSITY_LOW"] = 20.5;
    EXPECT_EQ(run_algorithm(), "");
    world.parameters.option = "3";
    world.parameters.density_layer = "blocks";
    world.parameters.density_field = "POP";
    world.parameters.density_high = "100";
    world.parameters.density_low = "20.5";
    EXPECT_EQ(world.rows(), expected());
    EXPECT_THAT(base::read_file(world.output / "Sheds IS.prm"), HasSubstr("    Low <= 20.5\r\n"));
}

TEST_F(ImperviousAlgorithmTest, AppliesScenarios) {
    add_others(world);
    add_vector(shapefile(), "sheds");
    add_vector(world.folder / "mall.shp", "mall");
    parameters["SCENARIOS"] = QVariantList{"mall", "2", "", ""};
    EXPECT_EQ(run_algorithm(), "");
    world.parameters.scenarios = {"1#mall#Developed#2"};
    EXPECT_EQ(world.rows(), expected());
    EXPECT_THAT(base::read_file(world.output / "Sheds IS.prm"),
                HasSubstr("  Changed land cover classes within mall layer to Developed\r\n"));
}

TEST_F(ImperviousAlgorithmTest, RefusesScenariosThatAreNone) {
    add_vector(shapefile(), "sheds");
    parameters["SCENARIOS"] = QVariantList{"nowhere", "2"};
    EXPECT_EQ(run_algorithm(), "Scenario 1: there is no polygon layer 'nowhere'.");
    parameters["SCENARIOS"] = QVariantList{"sheds", "Developed"};
    EXPECT_EQ(run_algorithm(), "Scenario 1: 'Developed' is no class code.");
}

TEST_F(ImperviousAlgorithmTest, RefusesAFieldThatNamesNoZones) {
    add_others(world);
    add_vector(world.folder / "blocks.shp", "blocks");
    parameters["ZONES"] = "blocks";
    parameters["FIELD"] = "POP";
    EXPECT_EQ(run_algorithm(),
              "The field 'POP' of the analysis layer holds neither whole numbers nor text, so it cannot name the "
              "zones.");
}

TEST_F(ImperviousAlgorithmTest, RefusesASetThatTheStoreLacks) {
    add_vector(shapefile(), "sheds");
    parameters["SET"] = "City";
    EXPECT_EQ(run_algorithm(), "The coefficient store '" + (world.extension / "etc/isprops.xml") +
                                   "' holds no set 'City'. It holds: Town, Poor.");
}

TEST_F(ImperviousAlgorithmTest, RefusesOutputsThatAreNoShapefilesOrAnInput) {
    add_vector(shapefile(), "sheds");
    parameters["OUTPUT"] = QString::fromStdString(world.output / "out.gpkg");
    EXPECT_THAT(run_algorithm(), testing::Not(IsEmpty()));
    parameters["OUTPUT"] = QString::fromStdString(shapefile());
    EXPECT_THAT(run_algorithm(), HasSubstr("would replace"));
    EXPECT_TRUE(base::file_exists(shapefile()));
}

TEST_F(ImperviousAlgorithmTest, FailedRunRaisesWhatWasSaidAndLeavesNothing) {
    add_vector(shapefile(), "sheds");
    parameters["SET"] = "Poor";
    const std::string reason = run_algorithm();
    EXPECT_THAT(reason, HasSubstr("The run ended without an output. Classes without coefficients: 5 (8 cells), 7 (4 "
                                  "cells)"));
    EXPECT_THAT(names_in(world.output.path()), IsEmpty());
}

TEST_F(ImperviousAlgorithmTest, CancelledRunSaysSoAndLeavesNothing) {
    add_vector(shapefile(), "sheds");
    feedback.cancel();
    EXPECT_EQ(run_algorithm(), "The run was cancelled. Nothing has been changed.");
    EXPECT_THAT(names_in(world.output.path()), IsEmpty());
}

TEST_F(ImperviousAlgorithmTest, RunsInAThreadOfItsOwn) {
    add_vector(shapefile(), "sheds");
    bool ended = false;
    bool done = false;
    auto* task = new QgsProcessingAlgRunnerTask(&algorithm(), parameters, context, &feedback);
    QObject::connect(task, &QgsProcessingAlgRunnerTask::executed, [&](bool successful, const QVariantMap&) {
        ended = true;
        done = successful;
    });
    QgsApplication::taskManager()->addTask(task);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ended; }, 20000));
    EXPECT_TRUE(done) << feedback.textLog().toStdString();
    EXPECT_EQ(world.rows(), expected());
}

TEST_F(ImperviousAlgorithmTest, OutputIsAShapefileThatQgisLoadsWithItsClasses) {
    add_vector(shapefile(), "sheds");
    parameters["OUTPUT"] = QVariant::fromValue(QgsProcessingOutputLayerDefinition("TEMPORARY_OUTPUT", &project()));
    EXPECT_EQ(run_algorithm(), "");
    const QString path = results.value("OUTPUT").toString();
    EXPECT_TRUE(path.endsWith(".shp")) << path.toStdString();
    ASSERT_TRUE(context.willLoadLayerOnCompletion(path));
    const QgsVectorLayer loaded(path, "loaded", "ogr");
    EXPECT_NE(dynamic_cast<const QgsGraduatedSymbolRenderer*>(loaded.renderer()), nullptr);
}

TEST_F(ImperviousAlgorithmTest, OffersTheSetsOfTheStore) {
    const auto* set = algorithm().parameterDefinition("SET");
    EXPECT_EQ(set->defaultValue().toString(), "Town");
    const QStringList hints = set->metadata().value("widget_wrapper").toMap().value("value_hints").toStringList();
    EXPECT_EQ(hints, (QStringList{"Town", "Poor"}));
}

}  // namespace
}  // namespace kestrel::test

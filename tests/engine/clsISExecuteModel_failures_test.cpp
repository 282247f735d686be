// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "base/errors.h"
#include "base/files.h"
#include "engine/clsISExecuteModel.h"
#include "tests/support/small_world.h"
#include "tests/support/tiny_disk.h"

/// \file
/// Runs that end early: what they say, and that they leave nothing behind.
namespace kestrel {
namespace {

namespace fs = std::filesystem;

using reporting::Icon;
using reporting::MessageBox;
using test::Box;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class Failing : public testing::Test {
  protected:
    Failing() {
        world.land_cover("2 5 5\n");
        world.layer("sheds", {test::integer_field("ID")},
                    {{{Box{0, 0, 1, 1}}, {std::int64_t{1}}}, {{Box{1, 0, 3, 1}}, {std::int64_t{2}}}});
    }
    /// Nothing new is in the output folder and the map, and "temp" is empty.
    void expect_nothing_left() {
        EXPECT_FALSE(world.result().finished);
        EXPECT_THAT(test::names_in(world.output.path()), IsEmpty());
        EXPECT_THAT(world.temp(), IsEmpty());
        EXPECT_THAT(world.layer_names(), testing::Not(testing::Contains("Sheds IS")));
    }
    static auto report_of(const std::string& procedure_and_module) {
        return StartsWith("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\t" + procedure_and_module +
                          " ");
    }

    test::SmallWorld world;
};

TEST_F(Failing, AMissingParameterFileIsTold) {
    clsISExecuteModel model;
    model.ExecuteModel(&world.application, world.extension.path(), "model_params.txt", world.output.path(), "out.shp",
                       "Sheds IS");
    EXPECT_THAT(world.said.boxes,
                ElementsAre(MessageBox{"A 'model_params.txt' does not exist in " + world.extension.path() +
                                           "\\temp. \r This file is required to perform an Kestrel analysis.",
                                       "Missing: Model_Params File", Icon::critical}));
    EXPECT_THAT(world.said.call_stacks, IsEmpty());
    expect_nothing_left();
}

TEST_F(Failing, AnAnalysisLayerThatTheMapLacksIsReported) {
    world.parameters.analysis_layer = "lost";
    EXPECT_FALSE(world.run());
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("ExecuteModel clsISExecuteModel")));
    EXPECT_THAT(world.said.call_stacks,
                ElementsAre(HasSubstr("\t91\r\nDescription\r\n\tThe map has no polygon layer")));
    expect_nothing_left();
}

TEST_F(Failing, ALandCoverThatTheMapLacksIsReported) {
    world.application.map().remove_layer(world.application.map().layers().front());
    EXPECT_FALSE(world.run());
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("ExecuteModel clsISExecuteModel")));
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("The map has no raster layer \"cover\"")));
    expect_nothing_left();
}

TEST_F(Failing, AMissingAnalysisFieldIsTold) {
    world.parameters.analysis_field = "SHED";
    EXPECT_FALSE(world.run());
    EXPECT_THAT(world.said.boxes, ElementsAre(MessageBox{"Error reading analysis field name"}));
    EXPECT_THAT(world.said.call_stacks, IsEmpty());
    expect_nothing_left();
}

TEST_F(Failing, ASelectionThatCannotBeCopiedIsReported) {
    world.layer("gone", {test::integer_field("ID")}, {{{Box{0, 0, 1, 1}}, {std::int64_t{1}}}}, {0, 7});
    world.parameters.analysis_layer = "gone";
    EXPECT_FALSE(world.run());
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("CreateShapefile basUtil")));
    expect_nothing_left();
}

TEST_F(Failing, ALandCoverThatCannotBeReadIsAnErrorInTheCalculation) {
    base::write_file(world.folder / "cover.tif", "this is no raster");
    EXPECT_FALSE(world.run());
    EXPECT_THAT(
        world.said.boxes,
        ElementsAre(MessageBox{
            "An error occurred while calculating land area and impervious surface area. \rCheck that the Analysis Layer and the Land Cover Layer overlap.",
            "Error: Area Calculations", Icon::critical}));
    EXPECT_THAT(world.result().notices, ElementsAre(HasSubstr("cover.tif")));
    expect_nothing_left();
}

TEST_F(Failing, ClassesWithoutCoefficientsAreAllInTheResult) {
    world.parameters.classes = {"9#Barren#1#1#1"};
    EXPECT_FALSE(world.run());
    EXPECT_THAT(
        world.said.boxes,
        ElementsAre(MessageBox{"No coefficients defined in the selected Coefficient Set for the land cover class 2!",
                               "Invalid Coefficient", Icon::critical}));
    ASSERT_EQ(world.result().unknown_classes.size(), 2U);
    EXPECT_EQ(world.result().unknown_classes[1].code, 5);
    EXPECT_EQ(world.result().unknown_classes[1].cells, 2U);
    expect_nothing_left();
}

TEST_F(Failing, WithoutRasterAnalysisTheRunEnds) {
    world.raster_analysis.refuses = true;
    EXPECT_FALSE(world.run());
    EXPECT_THAT(world.said.boxes,
                ElementsAre(MessageBox{"Spatial Analyst extension is required.", "Error: Spatial Analyst Required"}));
    expect_nothing_left();
}

TEST_F(Failing, AMissingDensityLayerIsReportedAndTold) {
    world.parameters.option = "3";
    world.parameters.density_layer = "blocks";
    EXPECT_FALSE(world.run());
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("DensityCalculation clsPopulationDensity")));
    ASSERT_EQ(world.said.boxes.size(), 1U);
    EXPECT_EQ(world.said.boxes[0].title, "Population Density Calculation Error");
    expect_nothing_left();
}

TEST_F(Failing, AnOutputFolderThatIsMissingIsReported) {
    world.output_folder = world.output / "missing";
    EXPECT_FALSE(world.run());
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("DissolveAnalysisLayer clsISExecuteModel")));
    expect_nothing_left();
}

TEST_F(Failing, AFileInPlaceOfTheOutputFolderIsReported) {
    world.output_folder = world.folder / "file";
    base::write_file(world.output_folder, "no folder");
    EXPECT_FALSE(world.run());
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("DissolveAnalysisLayer clsISExecuteModel")));
    EXPECT_EQ(base::read_file(world.output_folder), "no folder");
    expect_nothing_left();
}

TEST_F(Failing, AFullDeviceIsReportedAndLeavesNothing) {
    const test::TinyDisk disk;
    if (!disk.mounted()) {
        GTEST_SKIP() << "a small file system can be mounted by root only: a full device is not tested";
    }
    fs::create_directory(disk / "output");
    disk.fill();
    world.output_folder = disk / "output";
    EXPECT_FALSE(world.run());
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("DissolveAnalysisLayer clsISExecuteModel")));
    EXPECT_THAT(test::names_in(disk / "output"), IsEmpty());
    expect_nothing_left();
}

TEST_F(Failing, ALegendThatCannotBeSavedIsReportedAndTheRunGoesOn) {
    fs::create_directory(world.output / "Sheds IS.lyr");
    EXPECT_TRUE(world.run());
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("isUpdateLegend clsISExecuteModel")));
    EXPECT_TRUE(base::file_exists(world.output / "Sheds IS.met"));
    EXPECT_EQ(world.layer_names().front(), "Sheds IS");
}

TEST_F(Failing, ARunReportThatCannotBeWrittenIsReportedAndTheOutputStays) {
    fs::create_directory(world.output / "Sheds IS.prm");
    EXPECT_TRUE(world.run());
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("isWriteMetadata clsISExecuteModel")));
    EXPECT_FALSE(base::file_exists(world.output / "Sheds IS.met"));
    EXPECT_EQ(world.rows().size(), 2U);
    EXPECT_THAT(world.temp(), IsEmpty());
}

TEST_F(Failing, ATempFolderThatIsALinkIsNotEmptiedAndReported) {
    fs::remove(world.extension / "temp");
    fs::create_directory(world.folder / "elsewhere");
    fs::create_directory_symlink(world.folder / "elsewhere", world.extension / "temp");
    EXPECT_TRUE(world.run());
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("isCleanUp clsISExecuteModel")));
    EXPECT_THAT(test::names_in(world.folder / "elsewhere"), ElementsAre("model_params.txt"));
}

TEST_F(Failing, WorkingDataThatCannotBeKeptAreReportedAndTheRunStillCleansUp) {
    base::write_file(world.folder / "file", "no folder");
    EXPECT_TRUE(world.run({.keep_temp_folder = world.folder / "file/kept"}));
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("ExecuteModel clsISExecuteModel")));
    EXPECT_THAT(world.temp(), IsEmpty());
}

TEST_F(Failing, CleanUpAlsoRemovesFoldersAndReadOnlyFiles) {
    fs::create_directories(world.extension / "temp/old/older");
    base::write_file(world.extension / "temp/old/file", "x");
    base::write_file(world.extension / "temp/readonly", "x");
    fs::permissions(world.extension / "temp/readonly", fs::perms::owner_read);
    EXPECT_TRUE(world.run());
    EXPECT_THAT(world.temp(), IsEmpty());
}

TEST_F(Failing, WithoutAnApplicationThereIsAReport) {
    clsISExecuteModel().ExecuteModel(nullptr, world.extension.path(), "model_params.txt", world.output.path(),
                                     "out.shp", "Sheds IS");
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("ExecuteModel clsISExecuteModel")));
}

/// The headless host, but it opens no layer on the output.
class BlindApplication final : public contracts::Application {
  public:
    explicit BlindApplication(hosting::HeadlessApplication& host) : m_host(host) {}
    contracts::Document& document() override { return m_host.document(); }
    contracts::IExtensionConfig* find_extension(std::string_view id) override { return m_host.find_extension(id); }
    std::shared_ptr<contracts::FeatureLayer> make_feature_layer(const std::string&, const std::string&) override {
        if (throws) {
            throw base::RuntimeError(base::kLibraryFailure, "no layer today");
        }
        return nullptr;
    }
    reporting::Interaction& interaction() override { return m_host.interaction(); }
    base::Progress& progress() override { return m_host.progress(); }
    void run_ended(contracts::RunResult result) override { m_host.run_ended(std::move(result)); }

    bool throws = false;

  private:
    hosting::HeadlessApplication& m_host;
};

TEST_F(Failing, AnOutputThatIsNoFeatureClassIsToldAndRemoved) {
    world.run();  // writes the parameter file, which the next run needs again
    const std::string parameters =
        "LCTHEME#cover\r\nLCUNITS#Meters\r\nANALYSISTHEME#sheds\r\nANALYSISUNIT#ID\r\nPOPDENSITY#1\r\n"
        "CLASS#2#Developed#90#80#70\r\nCLASS#5#Grassland#3#2#1\r\n";
    BlindApplication blind(world.application);
    for (const bool throws : {false, true}) {
        test::TemporaryFolder output;
        base::write_file(world.extension / "temp/model_params.txt", parameters);
        blind.throws = throws;
        clsISExecuteModel().ExecuteModel(&blind, world.extension.path(), "model_params.txt", output.path(), "out.shp",
                                         "other");
        EXPECT_FALSE(world.result().finished);
        EXPECT_THAT(test::names_in(output.path()), IsEmpty());
    }
    EXPECT_THAT(world.said.boxes, ElementsAre(MessageBox{"FeatureClass QI Failed"}));
    EXPECT_THAT(world.said.call_stacks, ElementsAre(report_of("DissolveAnalysisLayer clsISExecuteModel")));
}

/// Everything that can ask a question or show a message takes part.
void add_density_and_scenarios(test::SmallWorld& world) {
    world.layer("blocks", {test::real_field("POP")}, {{{Box{0, 0, 3, 1}}, {1.0}}});
    world.layer("far", {test::integer_field("N")}, {{{Box{50, 50, 51, 51}}, {std::int64_t{1}}}});
    world.layer("mall", {test::integer_field("N")}, {{{Box{1, 0, 2, 1}}, {std::int64_t{1}}}}, {0});
    world.parameters.option = "3";
    world.parameters.density_layer = "blocks";
    world.parameters.density_field = "POP";
    world.parameters.density_high = "1000";
    world.parameters.density_low = "200";
    world.parameters.scenarios = {"1#mall#Developed#2"};
}

TEST(Cancelled, AtEveryStageNothingIsLeftAndNothingSaid) {
    bool finished = false;
    int stopped_runs = 0;
    for (int allowed = 0; !finished && allowed < 1000; ++allowed) {
        test::SmallWorld world;
        world.land_cover("2 5 5\n");
        world.layer("sheds", {test::integer_field("ID")},
                    {{{Box{0, 0, 1, 1}}, {std::int64_t{1}}}, {{Box{1, 0, 3, 1}}, {std::int64_t{2}}}}, {0, 1});
        add_density_and_scenarios(world);
        world.progress.allowed = allowed;
        finished = world.run();
        EXPECT_THAT(world.temp(), IsEmpty()) << allowed;
        EXPECT_THAT(world.said.boxes, IsEmpty()) << allowed;
        EXPECT_THAT(world.said.call_stacks, IsEmpty()) << allowed;
        if (!finished) {
            ++stopped_runs;
            EXPECT_TRUE(world.result().cancelled) << allowed;
            EXPECT_THAT(test::names_in(world.output.path()), IsEmpty()) << allowed;
            EXPECT_THAT(world.layer_names(), testing::Not(testing::Contains("Sheds IS"))) << allowed;
        }
    }
    EXPECT_TRUE(finished);
    EXPECT_GE(stopped_runs, 8);  // every stage asks
}

TEST(Cancelled, AfterTheOutputIsThereTheRunFinishes) {
    test::SmallWorld counting;
    const auto prepare = [](test::SmallWorld& world) {
        world.land_cover("2 5 5\n");
        world.layer("sheds", {test::integer_field("ID")}, {{{Box{0, 0, 3, 1}}, {std::int64_t{1}}}});
    };
    prepare(counting);
    ASSERT_TRUE(counting.run());

    test::SmallWorld world;
    prepare(world);
    world.progress.allowed = counting.progress.asked() - 1;  // the last one tells that it is finished
    EXPECT_TRUE(world.run());
    EXPECT_FALSE(world.result().cancelled);
    EXPECT_TRUE(base::file_exists(world.output / "Sheds IS.met"));
}

}  // namespace
}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "base/files.h"
#include "tests/apps/cli/command_runner.h"
#include "tests/apps/cli/run_data.h"

namespace kestrel::test {
namespace {

namespace fs = std::filesystem;

class RunRefusals : public testing::Test {
  protected:
    /// What the command says when it refuses a run before it starts.
    std::string refusal(const Arguments& arguments) const {
        const CommandResult result = run_command(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(names_in(m_data / "out").empty()) << "nothing is written";
        return result.err;
    }
    bool starts(const std::string& text, const std::string& part) const { return text.starts_with("Kestrel: " + part); }
    Arguments by_density(const std::string& layer, const std::string& field) const {
        return more(m_data.with("--option", "density"),
                    {"--density-layer", layer, "--density-field", field, "--density-high", "10", "--density-low", "2"});
    }
    /// A layer of points, which are no zones.
    std::string points() const {
        const std::string path = m_data / "points.geojson";
        base::write_file(path, R"({"type":"FeatureCollection","features":[{"type":"Feature","properties":{"ID":1},)"
                               R"("geometry":{"type":"Point","coordinates":[0,0]}}]})");
        return path;
    }

    RunData m_data;
};

TEST_F(RunRefusals, ALandCoverThatIsMissingOrNoRaster) {
    const std::string missing = refusal(m_data.with("--land-cover", m_data / "none.tif"));
    EXPECT_TRUE(starts(missing, "The land cover (--land-cover) cannot be used. ")) << missing;
    EXPECT_NE(missing.find(m_data / "none.tif"), std::string::npos);
    const std::string no_raster = refusal(m_data.with("--land-cover", m_data / "sheds.shp"));
    EXPECT_TRUE(starts(no_raster, "The land cover (--land-cover) cannot be used. ")) << no_raster;
}

TEST_F(RunRefusals, ZonesThatCannotBeOpened) {
    EXPECT_EQ(refusal(m_data.with("--zones", m_data / "none.shp")),
              "Kestrel: The source of --zones cannot be opened. There is no file '" + (m_data / "none.shp") + "'.\n");
    const std::string raster = refusal(m_data.with("--zones", m_data / "lc.tif"));
    EXPECT_TRUE(starts(raster, "The source of --zones cannot be opened. ")) << raster;
}

TEST_F(RunRefusals, ALayerThatTheSourceDoesNotHave) {
    const std::string text = refusal(m_data.with("--zones", (m_data / "sheds.shp") + "|layername=parcels"));
    EXPECT_TRUE(starts(text, "The source of --zones cannot be opened. ")) << text;
    EXPECT_NE(text.find("parcels"), std::string::npos);
    EXPECT_NE(text.find("sheds"), std::string::npos) << "lists the layers that there are";
}

TEST_F(RunRefusals, ASourceOfSeveralLayersWithoutALayersName) {
    const std::string two_layers = m_data / "several";
    base::create_folder(two_layers);
    for (const char* name : {"east", "west"}) {
        for (const char* part : {".shp", ".shx", ".dbf", ".prj"}) {
            base::copy_file((m_data / "sheds") + part, two_layers + "/" + name + part);
        }
    }
    const std::string text = refusal(m_data.with("--zones", two_layers));
    EXPECT_TRUE(starts(text, "'" + two_layers + "' of --zones holds several layers: ")) << text;
    EXPECT_NE(text.find("Name one of them, as in '" + two_layers + "|layername="), std::string::npos) << text;
}

TEST_F(RunRefusals, LayersWithoutPolygons) {
    EXPECT_EQ(
        refusal(m_data.with("--zones", points())),
        "Kestrel: The layer 'points' of --zones holds no polygons, in '" + points() + "'. Give a polygon layer.\n");
    EXPECT_NE(refusal(by_density(points(), "ID")).find("of --density-layer holds no polygons"), std::string::npos);
    EXPECT_NE(refusal(m_data.with("--scenario", points() + ":24")).find("of --scenario holds no polygons"),
              std::string::npos);
}

TEST_F(RunRefusals, DensityAndScenarioSourcesThatCannotBeOpened) {
    EXPECT_TRUE(starts(refusal(by_density(m_data / "none.shp", "POP_DEN")),
                       "The source of --density-layer cannot be opened. "));
    EXPECT_TRUE(starts(refusal(m_data.with("--scenario", (m_data / "none.shp") + ":24")),
                       "The source of --scenario cannot be opened. "));
}

TEST_F(RunRefusals, AFieldThatTheZonesDoNotHave) {
    EXPECT_EQ(
        refusal(m_data.with("--field", "name")),
        "Kestrel: The layer 'sheds' has no field 'name' (--field). Its fields: ID, NAME, RATE. Names are compared "
        "exactly.\n");
}

TEST_F(RunRefusals, AnAnalysisFieldThatHoldsNeitherWholeNumbersNorText) {
    EXPECT_EQ(refusal(m_data.with("--field", "RATE")),
              "Kestrel: The field 'RATE' (--field) of the layer 'sheds' holds neither whole numbers nor text, so it "
              "cannot name the zones. Give another field: ID, NAME.\n");
}

TEST_F(RunRefusals, AFieldWhoseNameTheParametersCannotHold) {
    const std::string path = m_data / "odd.geojson";
    base::write_file(path, R"({"type":"FeatureCollection","features":[{"type":"Feature","properties":{"A#B":1},)"
                           R"("geometry":{"type":"Polygon","coordinates":[[[0,0],[1,0],[1,1],[0,0]]]}}]})");
    Arguments arguments = m_data.with("--zones", path);
    *(std::find(arguments.begin(), arguments.end(), "--field") + 1) = "A#B";
    EXPECT_EQ(refusal(arguments),
              "Kestrel: The field 'A#B' (--field) cannot be used: its name holds '#'. Rename it, or take a copy of the "
              "layer.\n");
}

TEST_F(RunRefusals, ADensityFieldThatIsMissingOrHoldsNoNumbers) {
    EXPECT_EQ(refusal(by_density(m_data / "blocks.shp", "DENSITY")),
              "Kestrel: The layer 'blocks' has no field 'DENSITY' (--density-field). Its fields: POP_DEN, KIND. Names "
              "are compared exactly.\n");
    EXPECT_EQ(refusal(by_density(m_data / "blocks.shp", "KIND")),
              "Kestrel: The field 'KIND' (--density-field) of the layer 'blocks' holds no numbers. Give another field: "
              "POP_DEN.\n");
}

TEST_F(RunRefusals, ASetThatTheStoreDoesNotHave) {
    EXPECT_EQ(refusal(m_data.with("--set", "Large")),
              "Kestrel: The coefficient store '" + (m_data / "store.xml") +
                  "' holds no set 'Large' (--set). It holds: 'Small'. Names are compared exactly.\n");
}

TEST_F(RunRefusals, NoSetWhenTheStoreHasSeveral) {
    write_store(m_data / "two.xml", {"A", "B"});
    EXPECT_EQ(refusal(m_data.with("--store", m_data / "two.xml")),
              "Kestrel: Which coefficient set? Give one with --set. The store '" + (m_data / "two.xml") +
                  "' holds: 'A', 'B'.\n");
}

TEST_F(RunRefusals, AStoreThatIsMissingEmptyOrNoStore) {
    EXPECT_EQ(refusal(m_data.with("--store", m_data / "none.xml")),
              "Kestrel: There is no coefficient store '" + (m_data / "none.xml") + "'. Give one with --store.\n");
    write_store(m_data / "empty.xml", {});
    EXPECT_EQ(refusal(m_data.with("--store", m_data / "empty.xml")),
              "Kestrel: The coefficient store '" + (m_data / "empty.xml") +
                  "' holds no coefficient sets. Give another with --store.\n");
    base::write_file(m_data / "broken.xml", "<ISModelProperties><ISLCDefs>");
    EXPECT_NE(refusal(m_data.with("--store", m_data / "broken.xml"))
                  .find("The coefficient store '" + (m_data / "broken.xml") + "' cannot be read: "),
              std::string::npos);
}

TEST_F(RunRefusals, ASelectionThatHoldsForNothing) {
    EXPECT_EQ(refusal(m_data.with("--where", "ID > 100")),
              "Kestrel: The selection (--where) holds for none of the features of the layer 'sheds': ID > 100. A run "
              "without a selection takes all of them; leave --where out for that.\n");
}

TEST_F(RunRefusals, ASelectionThatCannotBeUnderstood) {
    const std::string text = refusal(m_data.with("--where", "ID >"));
    EXPECT_TRUE(starts(text,
                       "The selection (--where) cannot be understood: ID >. The fields of the layer 'sheds': ID, NAME, "
                       "RATE. "))
        << text;
    EXPECT_NE(text.find("syntax error"), std::string::npos) << text;
}

TEST_F(RunRefusals, ARasterInDegrees) {
    write_plain_raster(m_data / "degrees.tif", "EPSG:4326", 0.01);
    EXPECT_EQ(refusal(m_data.with("--land-cover", m_data / "degrees.tif")),
              "Kestrel: The land cover '" + (m_data / "degrees.tif") +
                  "' is in degrees (WGS 84), so its cells have no areas. Project it to metres or feet first; or give "
                  "--allow-degrees and take the areas for what they are.\n");
    EXPECT_EQ(refusal(more(m_data.with("--land-cover", m_data / "degrees.tif"), {"--allow-degrees"})),
              "Kestrel: The land cover '" + (m_data / "degrees.tif") +
                  "' does not say that it is in metres or feet. Give --units Meters or --units Feet.\n");
}

TEST_F(RunRefusals, ARasterThatDoesNotTellItsUnits) {
    write_plain_raster(m_data / "plain.tif", "");
    EXPECT_EQ(refusal(m_data.with("--land-cover", m_data / "plain.tif")),
              "Kestrel: The land cover '" + (m_data / "plain.tif") +
                  "' does not say that it is in metres or feet. Give --units Meters or --units Feet.\n");
}

TEST_F(RunRefusals, AnOutputFolderThatIsMissing) {
    EXPECT_EQ(refusal(m_data.with("--output", m_data / "none/is.shp")),
              "Kestrel: The folder of the output does not exist: '" + (m_data / "none") +
                  "'. Make it, or give another --output.\n");
}

TEST_F(RunRefusals, AnOutputThatIsAnInputBeforeAnythingIsDeleted) {
    for (const char* input : {"sheds.shp", "lc.shp", "sheds"}) {
        const auto before = names_in(m_data.folder.path());
        const std::string text = refusal(more(m_data.with("--output", m_data / input), {"--overwrite"}));
        EXPECT_NE(text.find("would replace the input"), std::string::npos) << text;
        EXPECT_EQ(names_in(m_data.folder.path()), before);
    }
}

TEST_F(RunRefusals, AnExistingOutputWithoutOverwrite) {
    fs::create_directory(m_data / "old");
    base::write_file(m_data / "old/is.shp", "precious");
    EXPECT_EQ(refusal(m_data.with("--output", m_data / "old/is.shp")),
              "Kestrel: The output exists already: '" + (m_data / "old/is.shp") +
                  "'. Give --overwrite to replace it, or another --output.\n");
    EXPECT_EQ(base::read_file(m_data / "old/is.shp"), "precious");
}

TEST_F(RunRefusals, AFolderInThePlaceOfTheOutputIsNeverReplaced) {
    fs::create_directories(m_data / "old/is.shp");
    base::write_file(m_data / "old/is.shp/thesis.txt", "precious");
    EXPECT_EQ(refusal(more(m_data.with("--output", m_data / "old/is.shp"), {"--overwrite"})),
              "Kestrel: '" + (m_data / "old/is.shp") +
                  "' is a folder, where a file of the output would stand. Give another --output.\n");
    EXPECT_EQ(base::read_file(m_data / "old/is.shp/thesis.txt"), "precious");
}

TEST_F(RunRefusals, AFolderForTemporaryFilesThatCannotBeWritten) {
    const CommandResult result = run_command(m_data.arguments(), {"TMPDIR=/proc", "Temp=/proc", "Tmp=/proc"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(starts(result.err, "There is no room for the working data of a run in '/proc': ")) << result.err;
    EXPECT_TRUE(result.err.ends_with(". Set TMPDIR, or give --extension-folder.\n")) << result.err;
}

TEST_F(RunRefusals, IsOneJsonObjectWhenAsked) {
    const CommandResult result = run_command(more(m_data.with("--field", "RATES"), {"--json"}));
    EXPECT_EQ(result.status, 1);
    const nlohmann::json whole = nlohmann::json::parse(result.out);
    EXPECT_EQ(whole["finished"], false);
    EXPECT_EQ(whole["cancelled"], false);
    ASSERT_EQ(whole["messages"].size(), 1U);
    EXPECT_EQ(whole["messages"][0].get<std::string>() + "\n", result.err);
    EXPECT_EQ(result.err,
              "Kestrel: The layer 'sheds' has no field 'RATES' (--field). Its fields: ID, NAME, RATE. Names are "
              "compared exactly.\n");
}

TEST_F(RunRefusals, AnExtensionFolderThatIsMissing) {
    EXPECT_EQ(refusal(m_data.with("--extension-folder", m_data / "none")),
              "Kestrel: The extension folder does not exist: '" + (m_data / "none") +
                  "'. Make it, or leave --extension-folder out.\n");
}

TEST_F(RunRefusals, TheOutputIsLookedAtBeforeTheExtensionFolder) {
    const std::string text = refusal(
        more(m_data.without("--output"), {"--output", m_data / "none/is.shp", "--extension-folder", m_data / "none"}));
    EXPECT_TRUE(starts(text, "The folder of the output does not exist")) << text;
}

TEST_F(RunRefusals, AnExtensionFolderThatAnotherRunUses) {
    fs::create_directories(m_data / "ext/temp");
    base::write_file(m_data / "ext/temp/other_run.txt", "x");
    const base::FolderLock lock(m_data / "ext");
    const std::string text = refusal(m_data.with("--extension-folder", m_data / "ext"));
    EXPECT_TRUE(starts(text, "The extension folder cannot be used. Another run")) << text;
    EXPECT_NE(text.find("\"" + (m_data / "ext") + "\""), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with(". Give another --extension-folder, or none.\n")) << text;
    EXPECT_EQ(names_in(m_data / "ext/temp"), (std::vector<std::string>{"other_run.txt"})) << "nothing is touched";
}

}  // namespace
}  // namespace kestrel::test

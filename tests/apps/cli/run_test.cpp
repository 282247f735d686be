// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <utility>

#include "base/files.h"
#include "data/feature_class.h"
#include "tests/apps/cli/command_runner.h"
#include "tests/apps/cli/run_data.h"

namespace kestrel::test {
namespace {

namespace fs = std::filesystem;

/// Zones by value, as --json prints them.
std::map<std::string, nlohmann::json> zones_of(const CommandResult& result) {
    std::map<std::string, nlohmann::json> zones;
    EXPECT_EQ(result.status, 0) << result.err;
    const nlohmann::json whole = nlohmann::json::parse(result.out);
    for (const auto& zone : whole["zones"]) {
        zones[zone["value"]] = zone;
    }
    return zones;
}

class Run : public testing::Test {
  protected:
    CommandResult run(const Arguments& arguments) const {
        return run_command(arguments, {"TMPDIR=" + m_temporary.path(), "Temp=", "Tmp="});
    }
    std::vector<std::string> outputs() const { return names_in(m_data / "out"); }

    RunData m_data;
    TemporaryFolder m_temporary;
};

TEST_F(Run, EndsWithATableAndAnOutput) {
    const CommandResult result = run(m_data.arguments());
    EXPECT_EQ(result.status, 0) << result.err;
    const std::string out = m_data / "out/is.";
    std::string expected =
        "is: areas in hectares by NAME of sheds on lc\n"
        "\n"
        "NAME        Total area  Impervious area  Percent  Complete  Remarks\n"
        "East            4.4100           0.0441     1.00  N         touches NODATA\n"
        "West            4.5000           1.1250    25.00  Y\n"
        "Total of 2      8.9100           1.1691    13.12\n"
        "\n"
        "Zones in the classes of the legend\n"
        "  < 10%      1\n"
        "  10% - 25%  1\n"
        "  > 25%      0\n"
        "\n"
        "Files written\n";
    for (const char* extension : {"shp", "cpg", "dbf", "prj", "shx", "lyr", "qml", "prm", "met"}) {
        expected += "  " + out + extension + "\n";
    }
    EXPECT_EQ(result.out, expected);
    EXPECT_TRUE(result.err.starts_with("NODATA Cells!: Some of the (selected) polygons in the Analysis Layer \n"))
        << result.err;
    EXPECT_EQ(outputs().size(), 9U);
}

TEST_F(Run, LeavesNothingInTheFolderForTemporaryFiles) {
    EXPECT_EQ(run(m_data.arguments()).status, 0);
    EXPECT_EQ(names_in(m_temporary.path()), std::vector<std::string>{});
}

TEST_F(Run, PrintsOneJsonObjectWhenAsked) {
    const auto zones = zones_of(run(more(m_data.arguments(), {"--json"})));
    ASSERT_EQ(zones.size(), 2U);
    EXPECT_EQ(zones.at("West")["total_area"], 4.5);
    EXPECT_EQ(zones.at("West")["impervious_area"], 1.125);
    EXPECT_EQ(zones.at("West")["complete"], true);
    EXPECT_EQ(zones.at("East")["nodata_cells"], 1);
    EXPECT_EQ(zones.at("East")["touches_nodata"], true);
}

TEST_F(Run, TakesTheCoefficientsOfTheOption) {
    for (const auto& [option, percent] : {std::pair{"high", 35.0}, {"medium", 25.0}, {"low", 12.5}}) {
        const auto zones = zones_of(run(more(m_data.with("--option", option), {"--json", "--overwrite"})));
        EXPECT_EQ(zones.at("West")["percent"], percent) << option;
    }
}

TEST_F(Run, ChoosesCoefficientsByDensity) {
    const auto zones = zones_of(run(
        more(m_data.with("--option", "density"), {"--density-layer", m_data / "blocks.shp", "--density-field",
                                                  "POP_DEN", "--density-high", "10", "--density-low", "2", "--json"})));
    // The upper half is dense, the lower half is not.
    EXPECT_EQ(zones.at("West")["percent"], (35 + 12.5) / 2);
}

TEST_F(Run, AppliesScenarios) {
    const auto zones = zones_of(run(more(m_data.arguments(), {"--scenario", (m_data / "mall.shp") + ":24", "--json"})));
    // 4 of 50 cells turn from 25 to 80 percent.
    EXPECT_NEAR(double{zones.at("West")["percent"]}, (46 * 25 + 4 * 80) / 50.0, 0.005);
    const std::string report = base::read_file(m_data / "out/is.prm");
    EXPECT_TRUE(holds(report, "City")) << report;
}

TEST_F(Run, TakesTheSelectedZonesOnly) {
    const auto zones = zones_of(run(more(m_data.arguments(), {"--where", "ID = 1", "--json"})));
    ASSERT_EQ(zones.size(), 1U);
    EXPECT_TRUE(zones.contains("West"));
}

TEST_F(Run, ZonesThatAreAlsoTheScenarioKeepTheirSelection) {
    const auto zones = zones_of(
        run(more(m_data.arguments(), {"--where", "ID = 1", "--scenario", (m_data / "sheds.shp") + ":24", "--json"})));
    ASSERT_EQ(zones.size(), 1U);
    EXPECT_EQ(zones.at("West")["percent"], 80);
}

TEST_F(Run, GroupsByAnIntegerField) {
    Arguments arguments = m_data.with("--field", "ID");
    const auto zones = zones_of(run(more(arguments, {"--json"})));
    EXPECT_EQ(zones.at("1")["percent"], 25);
}

TEST_F(Run, UnitsThatContradictTheRasterDrawANotice) {
    const CommandResult result = run(more(m_data.with("--units", "Feet"), {"--json"}));
    EXPECT_EQ(nlohmann::json::parse(result.out)["area_unit"], "acres");
    EXPECT_EQ(nlohmann::json::parse(result.out)["notices"].size(), 1U);
    const std::string notice = nlohmann::json::parse(result.out)["notices"][0];
    const std::size_t first = result.err.find("Kestrel: " + notice + "\n");
    ASSERT_NE(first, std::string::npos) << result.err;
    EXPECT_EQ(result.err.find(notice, first + 10), std::string::npos) << "told once";
}

TEST_F(Run, QuietLeavesNoticesOut) {
    const CommandResult result = run(more(m_data.with("--units", "Feet"), {"--quiet"}));
    EXPECT_EQ(result.status, 0);
    EXPECT_FALSE(holds(result.err, "Kestrel: ")) << result.err;
}

TEST_F(Run, FeetAreTheRastersOwnUnits) {
    for (const char* system : {"EPSG:2264", "EPSG:2222"}) {  // US survey and international feet
        write_plain_raster(m_data / "feet.tif", system, 100);
        const Arguments arguments = more(m_data.with("--land-cover", m_data / "feet.tif"), {"--json", "--overwrite"});
        const CommandResult result = run(arguments);
        // The zones lie elsewhere: that the run got as far as counting tells that the units were found.
        EXPECT_FALSE(holds(result.err, "--units")) << result.err;
    }
}

TEST_F(Run, DegreesAreTakenWhenAllowed) {
    write_plain_raster(m_data / "degrees.tif", "EPSG:4326", 1);
    base::write_file(m_data / "deg.geojson",
                     R"({"type":"FeatureCollection","features":[{"type":"Feature","properties":{"NAME":"a"},)"
                     R"("geometry":{"type":"Polygon","coordinates":[[[-80,40],[-70,40],[-70,30],[-80,30],)"
                     R"([-80,40]]]}}]})");
    Arguments arguments = m_data.with("--land-cover", m_data / "degrees.tif");
    *(std::find(arguments.begin(), arguments.end(), "--zones") + 1) = m_data / "deg.geojson";
    const CommandResult result = run(more(arguments, {"--allow-degrees", "--units", "Meters", "--json"}));
    EXPECT_EQ(zones_of(result).at("a")["percent"], 25);
    EXPECT_TRUE(holds(result.err, "degrees")) << result.err;
}

TEST_F(Run, NamesTheLayerAndItsRecords) {
    EXPECT_EQ(run(more(m_data.arguments(), {"--layer-name", "Sheds IS"})).status, 0);
    EXPECT_TRUE(base::file_exists(m_data / "out/is.shp"));
    EXPECT_TRUE(base::file_exists(m_data / "out/Sheds IS.prm"));
    EXPECT_TRUE(base::file_exists(m_data / "out/Sheds IS.met"));
    EXPECT_TRUE(base::file_exists(m_data / "out/Sheds IS.lyr"));
    EXPECT_TRUE(base::file_exists(m_data / "out/is.qml"));
    EXPECT_EQ(run_command({"records", m_data / "out/is.shp", "--layer-name", "Sheds IS"}).status, 0);
}

TEST_F(Run, ItsReportCanBePrinted) {
    EXPECT_EQ(run(m_data.arguments()).status, 0);
    const CommandResult report = run_command({"records", m_data / "out/is.shp"});
    EXPECT_EQ(report.status, 0);
    EXPECT_TRUE(holds(report.out, "sheds")) << report.out;
    EXPECT_EQ(report.out.find('\r'), std::string::npos);
    EXPECT_TRUE(holds(run_command({"records", m_data / "out/is.shp", "--metadata"}).out, "Identification_Information"));
}

TEST_F(Run, ReplacesAnOlderOutputWhenToldTo) {
    EXPECT_EQ(run(m_data.arguments()).status, 0);
    EXPECT_EQ(run(m_data.arguments()).status, 1);
    EXPECT_EQ(run(more(m_data.with("--option", "high"), {"--overwrite"})).status, 0);
    EXPECT_EQ(outputs().size(), 9U);
    EXPECT_TRUE(holds(base::read_file(m_data / "out/is.dbf"), "35.00"));
}

TEST_F(Run, AFailedRunPutsTheOlderOutputBack) {
    EXPECT_EQ(run(m_data.arguments()).status, 0);
    const std::string before = base::read_file(m_data / "out/is.dbf");
    base::write_file(m_data / "bare.xml",
                     "<ISModelProperties><ISLCDefs><ISLCDef><LCType>Bare</LCType><LCClasses><LCClass ID=\"1\">"
                     "<LCName>x</LCName><LCHigh>1</LCHigh><LCMed>1</LCMed><LCLow>1</LCLow></LCClass></LCClasses>"
                     "</ISLCDef></ISLCDefs></ISModelProperties>");
    const CommandResult result = run(more(m_data.with("--store", m_data / "bare.xml"), {"--overwrite"}));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(holds(result.err,
                      "Kestrel: Classes without coefficients in the chosen set:\n  21  in 50 cells\n"
                      "  41  in 49 cells\nKestrel: The run"))
        << result.err;
    EXPECT_TRUE(result.err.ends_with("Kestrel: The run ended without an output.\n")) << result.err;
    EXPECT_EQ(outputs().size(), 9U);
    EXPECT_EQ(base::read_file(m_data / "out/is.dbf"), before);
    EXPECT_EQ(names_in(m_temporary.path()), std::vector<std::string>{});
}

TEST_F(Run, AFailedRunStillPrintsItsJson) {
    const CommandResult result = run(more(m_data.with("--scenario", (m_data / "mall.shp") + ":99"), {"--json"}));
    EXPECT_EQ(result.status, 1);
    const nlohmann::json whole = nlohmann::json::parse(result.out);
    EXPECT_EQ(whole["finished"], false);
    ASSERT_EQ(whole["messages"].size(), 2U) << whole;
    EXPECT_EQ(whole["messages"][1], "Kestrel: The run ended without an output.");
    EXPECT_TRUE(outputs().empty());
}

TEST_F(Run, UsesTheExtensionFolderThatIsNamed) {
    fs::create_directory(m_data / "ext");
    EXPECT_EQ(run(more(m_data.arguments(), {"--extension-folder", m_data / "ext"})).status, 0);
    EXPECT_TRUE(names_in(m_data / "ext/temp").empty()) << "emptied at the end";
    EXPECT_TRUE(base::folder_exists(m_data / "ext/output"));
    EXPECT_EQ(names_in(m_temporary.path()), std::vector<std::string>{});
}

TEST_F(Run, NeverRunsByAParameterFileThatItCouldNotWrite) {
    ASSERT_EQ(run(m_data.arguments()).status, 0);
    const std::string older = base::read_file(m_data / "out/is.dbf");
    fs::create_directories(m_data / "ext/temp");
    fs::create_symlink("/dev/full", m_data / "ext/temp/model_params.txt");
    const CommandResult result =
        run(more(m_data.with("--option", "high"), {"--overwrite", "--extension-folder", m_data / "ext"}));
    EXPECT_EQ(result.status, 1) << result.err;
    EXPECT_TRUE(holds(result.err, "The run ended without an output.")) << result.err;
    EXPECT_EQ(base::read_file(m_data / "out/is.dbf"), older);
}

TEST_F(Run, TakesTheStoreOfTheExtensionFolderThatIsNamed) {
    fs::create_directories(m_data / "ext/etc");
    write_store(m_data / "ext/etc/isprops.xml", {"Own"});
    EXPECT_EQ(run(more(m_data.without("--store"), {"--extension-folder", m_data / "ext", "--set", "Own"})).status, 0);
}

TEST_F(Run, KeepsItsWorkingDataWhenAsked) {
    const CommandResult result = run(more(m_data.arguments(), {"--keep-temp"}));
    EXPECT_EQ(result.status, 0);
    std::vector<std::string> kept = outputs();
    std::erase_if(kept, [](const std::string& name) { return !name.starts_with("is_temp_"); });
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_FALSE(names_in(m_data / ("out/" + kept.front())).empty());
    EXPECT_TRUE(holds(result.err,
                      "Kestrel: The working data of the run are kept in '" + (m_data / ("out/" + kept.front())) + "'."))
        << result.err;
}

TEST_F(Run, GivesTheSameFiguresWithAnyNumberOfThreads) {
    const CommandResult one = run(more(m_data.arguments(), {"--threads", "1", "--json"}));
    const CommandResult four = run(more(m_data.arguments(), {"--threads", "4", "--json", "--overwrite"}));
    EXPECT_EQ(one.out, four.out);
}

TEST_F(Run, ThatNobodyListensToReplacesTheOlderOutputAndLeavesNothingBehind) {
    EXPECT_EQ(run(m_data.arguments()).status, 0);
    base::write_file(m_data / "out/is.met", "old");
    run_command_unheard(more(m_data.arguments(), {"--overwrite"}), {"TMPDIR=" + m_temporary.path(), "Temp=", "Tmp="});
    EXPECT_EQ(outputs().size(), 9U);
    EXPECT_TRUE(base::read_file(m_data / "out/is.met").starts_with("Identification_Information:"));
    EXPECT_EQ(names_in(m_temporary.path()), std::vector<std::string>{});
}

/// Interrupts the process as soon as something is written.
class InterruptingStream final : public std::stringbuf {
  protected:
    int sync() override {
        if (!std::exchange(m_done, true)) {
            std::raise(SIGINT);
        }
        return std::stringbuf::sync();
    }

  private:
    bool m_done = false;
};

TEST_F(Run, AnInterruptEndsItWithStatus130AndPutsTheOlderOutputBack) {
    EXPECT_EQ(run(m_data.arguments()).status, 0);
    const std::string before = base::read_file(m_data / "out/is.dbf");
    cli::RunRequest request;
    request.land_cover = m_data / "lc.tif";
    request.zones = m_data / "sheds.shp";
    request.field = "NAME";
    request.store = m_data / "store.xml";
    request.option = CoefficientOption::high;
    request.output = m_data / "out/is.shp";
    request.overwrite = true;
    InterruptingStream buffer;
    std::ostream err(&buffer);
    std::ostringstream out;
    EXPECT_EQ(cli::run(request, out, err, true), 130);
    EXPECT_EQ(out.str(), "");
    EXPECT_TRUE(buffer.str().ends_with("Kestrel: The run was cancelled. Nothing has been changed.\n")) << buffer.str();
    EXPECT_EQ(outputs().size(), 9U);
    EXPECT_EQ(base::read_file(m_data / "out/is.dbf"), before);
}

}  // namespace
}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/apps/cli/command_runner.h"
#include "tests/real/comparison.h"

namespace kestrel::test {
namespace {

using nlohmann::json;

class RealRunOfTheCommand : public RealData {
  protected:
    std::string output() const { return m_folder / "result.shp"; }

    std::vector<std::string> arguments(const RunSettings& settings) const {
        const char* const options[] = {"high", "medium", "low", "density"};
        std::vector<std::string> result{"run",
                                        "--land-cover",
                                        settings.land_cover,
                                        "--units",
                                        settings.units,
                                        "--zones",
                                        settings.zones,
                                        "--field",
                                        settings.field,
                                        "--store",
                                        real_file("isprops.xml"),
                                        "--set",
                                        settings.set,
                                        "--option",
                                        options[static_cast<int>(settings.option)],
                                        "--output",
                                        output(),
                                        "--json"};
        if (settings.option == kByDensity) {
            result.insert(result.end(),
                          {"--density-layer", settings.density, "--density-field", settings.density_field,
                           "--density-high", settings.density_high, "--density-low", settings.density_low});
        }
        for (const RunSettings::Scenario& scenario : settings.scenarios) {
            result.insert(result.end(), {"--scenario", scenario.source + ":" + std::to_string(scenario.target)});
        }
        return result;
    }

    /// The command's output equals that of the run in this process, row by row and to the byte of the table.
    void expect_same_output(const WholeRun& run) const {
        const OutputFile by_command = read_output(output());
        const OutputFile in_process = read_output(run.output());
        EXPECT_EQ(by_command.field_names, in_process.field_names);
        ASSERT_EQ(by_command.rows.size(), in_process.rows.size());
        for (std::size_t i = 0; i < by_command.rows.size(); ++i) {
            const OutputRow& row = by_command.rows[i];
            EXPECT_EQ(row.value, in_process.rows[i].value);
            EXPECT_EQ(row.total_area, in_process.rows[i].total_area) << row.value;
            EXPECT_EQ(row.impervious_area, in_process.rows[i].impervious_area) << row.value;
            EXPECT_EQ(row.percent, in_process.rows[i].percent) << row.value;
            EXPECT_EQ(row.complete, in_process.rows[i].complete) << row.value;
            EXPECT_TRUE(by_command.shapes[i]->Equals(in_process.shapes[i].get())) << row.value;
        }
        EXPECT_EQ(table_bytes(output()), table_bytes(run.output()));
    }

    /// The JSON that was printed says what the shapefile and the count say.
    void expect_same_json(const json& printed, const ExpectedOutput& expected) const {
        const OutputFile file = read_output(output());
        EXPECT_EQ(printed.at("finished"), true);
        ASSERT_EQ(printed.at("zones").size(), file.rows.size());
        for (std::size_t i = 0; i < file.rows.size(); ++i) {
            const json& zone = printed.at("zones").at(i);
            const OutputRow& row = file.rows[i];
            const ExpectedZone& counted = expected.zones.at(row.value);
            EXPECT_EQ(zone.at("value"), row.value);
            EXPECT_EQ(zone.at("total_area"), row.total_area);
            EXPECT_EQ(zone.at("impervious_area"), row.impervious_area);
            EXPECT_EQ(zone.at("percent"), row.percent);
            EXPECT_EQ(zone.at("complete"), row.complete == "Y");
            EXPECT_EQ(zone.at("cells"), counted.cells);
            EXPECT_EQ(zone.at("nodata_cells"), counted.nodata_cells);
            EXPECT_EQ(zone.at("touches_nodata"), counted.touches_nodata);
            EXPECT_EQ(zone.at("beyond_raster"), counted.beyond_raster);
            EXPECT_EQ(zone.at("no_cell"), counted.cells + counted.nodata_cells == 0);
        }
        for (const json& path : printed.at("files")) {
            EXPECT_TRUE(std::filesystem::exists(path.get<std::string>())) << path;
        }
    }

    void expect_command_as_run(const RunSettings& settings) const {
        const CommandResult command = run_command(arguments(settings));
        ASSERT_EQ(command.status, 0) << command.err;
        const ExpectedOutput expected = expected_output(settings);
        expect_same_output(WholeRun(settings));
        expect_same_rows(read_output(output()), expected);
        expect_same_json(json::parse(command.out), expected);
    }

  private:
    TemporaryFolder m_folder;
};

TEST_F(RealRunOfTheCommand, OnTextZonesOfAGeoPackageIsTheRunOfTheEngine) {
    RunSettings settings;
    settings.zones = real_file("sheds.gpkg|layername=sheds");
    settings.field = "WATERSHED_DESCRIPTION";
    settings.option = kHigh;
    expect_command_as_run(settings);
}

TEST_F(RealRunOfTheCommand, ByDensityWithScenariosInFeetIsTheRunOfTheEngine) {
    RunSettings settings;
    settings.option = kByDensity;
    settings.units = "Feet";
    settings.scenarios = {{real_file("town_plan.shp"), 23}, {real_file("resort_wgs84.gpkg"), 22}};
    expect_command_as_run(settings);
}

TEST_F(RealRunOfTheCommand, WithAWhereIsTheRunOfTheSelectedZones) {
    RunSettings settings;
    settings.selected = {0, 1, 15};
    std::vector<std::string> words = arguments(settings);
    words.insert(words.end(), {"--where", "SHED_ID = 3"});
    const CommandResult command = run_command(words);
    ASSERT_EQ(command.status, 0) << command.err;
    expect_same_output(WholeRun(settings));
    expect_same_json(json::parse(command.out), expected_output(settings));
}

TEST_F(RealRunOfTheCommand, ForAClassWithoutCoefficientsListsItsCellsAndLeavesNoOutput) {
    RunSettings settings;
    settings.set = "NLCD without crops";
    const CommandResult command = run_command(arguments(settings));
    EXPECT_EQ(command.status, 1);
    EXPECT_THAT(command.err, ::testing::HasSubstr("Invalid Coefficient: No coefficients defined in the selected "
                                                  "Coefficient Set for the land cover class 82!"));
    std::uint64_t counted = 0;
    for (const auto& [place, cells] : expected_output(settings).cells) {
        counted += std::get<3>(place) == 82 ? cells : 0;
    }
    const json printed = json::parse(command.out);
    EXPECT_EQ(printed.at("finished"), false);
    EXPECT_EQ(printed.at("unknown_classes"), json::array({{{"code", 82}, {"cells", counted}}}));
    EXPECT_FALSE(std::filesystem::exists(output()));
}

}  // namespace
}  // namespace kestrel::test

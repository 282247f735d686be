// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <filesystem>

#include "base/files.h"
#include "tests/apps/cli/command_runner.h"
#include "tests/apps/cli/run_data.h"
#include "tests/support/test_files.h"

namespace kestrel::test {
namespace {

namespace fs = std::filesystem;

TEST(CommandLine, TellsItsVersion) {
    const CommandResult result = run_command({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "kestrel 0.1.0\n");
}

TEST(CommandLine, WithoutASubcommandIsWrong) {
    const CommandResult result = run_command({});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(holds(result.err, "A subcommand is required")) << result.err;
}

TEST(CommandLine, UnknownSubcommandsAndOptionsAreWrong) {
    EXPECT_EQ(run_command({"walk"}).status, 2);
    EXPECT_EQ(run_command({"run", "--fly"}).status, 2);
    EXPECT_EQ(run_command({"coefficients"}).status, 2);
    EXPECT_EQ(run_command({"records"}).status, 2);
    EXPECT_EQ(run_command({"demo"}).status, 2);
    EXPECT_EQ(run_command({"demo", "x", "--size", "huge"}).status, 2);
}

TEST(CommandLine, AnUnknownSubcommandOrOptionIsNamed) {
    EXPECT_EQ(run_command({"walk"}).err, "There is no command 'walk'\nRun with --help for more information.\n");
    EXPECT_EQ(run_command({"--fly"}).err, "There is no option '--fly'\nRun with --help for more information.\n");
    EXPECT_EQ(run_command({"coefficients", "walk"}).err,
              "There is no command 'walk'\nRun with --help for more information.\n");
}

TEST(CommandLine, AResultThatCannotBeWrittenIsAFailure) {
    const TemporaryFolder folder;
    base::write_file(folder / "is.prm", "report\r\n");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--version"}, {"run", "--help"}, {"records", folder / "is.shp"}}) {
        const CommandResult result = run_command_to("/dev/full", arguments);
        EXPECT_EQ(result.status, 1) << arguments.front();
        EXPECT_EQ(result.err, "Kestrel: The result could not be written to standard output.\n");
    }
}

TEST(CommandLine, EverySubcommandHasHelpWithAnExample) {
    const std::vector<std::vector<std::string>> commands{{"run"},
                                                         {"records"},
                                                         {"demo"},
                                                         {"coefficients"},
                                                         {"coefficients", "list"},
                                                         {"coefficients", "show"},
                                                         {"coefficients", "check"}};
    for (std::vector<std::string> command : commands) {
        command.emplace_back("--help");
        const CommandResult result = run_command(command);
        EXPECT_EQ(result.status, 0) << command.front();
        EXPECT_TRUE(holds(result.out, "Example:\n  kestrel " + command.front())) << result.out;
        EXPECT_EQ(result.err, "");
    }
}

class RunCommandLine : public testing::Test {
  protected:
    /// Runs with these arguments, which must be refused as a wrong command line.
    std::string wrong(const std::vector<std::string>& arguments) const {
        const CommandResult result = run_command(arguments);
        EXPECT_EQ(result.status, 2) << result.err;
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(names_in(m_data / "out").empty());
        return result.err;
    }
    std::vector<std::string> by_density() const {
        std::vector<std::string> arguments = m_data.with("--option", "density");
        arguments.insert(arguments.end(), {"--density-layer", m_data / "blocks.shp", "--density-field", "POP_DEN",
                                           "--density-high", "10", "--density-low", "2"});
        return arguments;
    }
    static std::vector<std::string> changed(std::vector<std::string> arguments, const std::string& option,
                                            const std::string& value) {
        *(std::find(arguments.begin(), arguments.end(), option) + 1) = value;
        return arguments;
    }
    static std::vector<std::string> cut(std::vector<std::string> arguments, const std::string& option) {
        const auto found = std::find(arguments.begin(), arguments.end(), option);
        arguments.erase(found, found + 2);
        return arguments;
    }

    RunData m_data;
};

TEST_F(RunCommandLine, MissingOptionsAreWrong) {
    for (const char* option : {"--land-cover", "--zones", "--field", "--option", "--output"}) {
        EXPECT_TRUE(holds(wrong(m_data.without(option)), std::string(option) + " is required")) << option;
    }
}

TEST_F(RunCommandLine, AnUnknownOptionValueIsWrong) {
    EXPECT_TRUE(holds(wrong(m_data.with("--option", "highest")), "--option"));
    EXPECT_TRUE(holds(wrong(m_data.with("--units", "Yards")), "--units"));
    EXPECT_TRUE(holds(wrong(m_data.with("--threads", "-1")), "--threads"));
}

TEST_F(RunCommandLine, DensityOptionsAreRequiredWithDensity) {
    for (const char* option : {"--density-layer", "--density-field", "--density-high", "--density-low"}) {
        EXPECT_TRUE(
            holds(wrong(cut(by_density(), option)), std::string(option) + ": is required with --option density"));
    }
}

TEST_F(RunCommandLine, DensityOptionsWithoutDensityAreWrong) {
    EXPECT_TRUE(holds(wrong(m_data.with("--density-high", "5")), "--density-high: is for --option density only"));
}

TEST_F(RunCommandLine, CutOffsThatAreNoNumbersAreWrong) {
    EXPECT_TRUE(holds(wrong(changed(by_density(), "--density-high", "ten")), "--density-high: 'ten' is no number"));
    EXPECT_TRUE(holds(wrong(changed(by_density(), "--density-low", "0x2")), "--density-low: '0x2' is no number"));
    EXPECT_TRUE(holds(wrong(changed(by_density(), "--density-low", "inf")), "--density-low: 'inf' is no number"));
}

TEST_F(RunCommandLine, AHighCutOffBelowTheLowOneIsWrong) {
    EXPECT_TRUE(holds(wrong(changed(by_density(), "--density-high", "1.5")),
                      "--density-high: is below --density-low: 1.5 < 2"));
}

TEST_F(RunCommandLine, AnEmptySelectionIsWrong) {
    for (const char* empty : {"", "  "}) {
        EXPECT_TRUE(holds(wrong(m_data.with("--where", empty)), "--where: is empty; leave it out to take all zones"));
    }
}

TEST_F(RunCommandLine, AScenarioWithoutAClassCodeIsWrong) {
    EXPECT_TRUE(holds(wrong(m_data.with("--scenario", m_data / "mall.shp")), "is no scenario: write SRC:CODE"));
    EXPECT_TRUE(holds(wrong(m_data.with("--scenario", (m_data / "mall.shp") + ":city")), "'city' in the scenario"));
}

TEST_F(RunCommandLine, AnOutputWithoutAFileNameIsWrong) {
    EXPECT_TRUE(holds(wrong(m_data.with("--output", (m_data / "out") + "/")), "has no file name"));
    EXPECT_TRUE(holds(wrong(m_data.with("--layer-name", "a/b")), "cannot be a layer's name"));
}

TEST(CoefficientsCommand, ListsShowsAndChecksAStore) {
    const RunData data;
    const std::string store = data / "store.xml";
    EXPECT_EQ(run_command({"coefficients", "list", "--store", store}).out,
              "Coefficient sets of " + store + "\n\nSet    Classes\nSmall        3\n");
    EXPECT_EQ(run_command({"coefficients", "show", "--store", store}).out,
              "Coefficients of the set 'Small', in percent\n\n"
              " Value  ClassName    High  Medium     Low\n"
              "    21  Developed      35      25    12.5\n"
              "    24  City           90      80      70\n"
              "    41  Forest          2       1     0.5\n");
    const CommandResult check = run_command({"coefficients", "check", "--store", store});
    EXPECT_EQ(check.status, 0);
    EXPECT_EQ(check.out, store + ": 0 errors, 0 notes.\n");
}

TEST(CoefficientsCommand, CheckFailsOnAStoreThatWouldBreakARun) {
    const RunData data;
    write_store(data / "two.xml", {"Same", "Same"});
    const CommandResult check = run_command({"coefficients", "check", "--store", data / "two.xml"});
    EXPECT_EQ(check.status, 1);
    EXPECT_EQ(check.out, "error: 2 sets are called 'Same'; a run takes the classes of all of them.\n" +
                             (data / "two.xml") + ": 1 errors, 0 notes.\n");
}

TEST(CoefficientsCommand, ASetThatIsNotThereIsRefused) {
    const RunData data;
    write_store(data / "two.xml", {"A", "B"});
    for (const char* command : {"show", "check"}) {
        const CommandResult result = run_command({"coefficients", command, "--store", data / "two.xml", "--set", "C"});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.err, "Kestrel: The coefficient store '" + (data / "two.xml") +
                                  "' holds no set 'C' (--set). It holds: 'A', 'B'. Names are compared exactly.\n");
    }
    EXPECT_EQ(run_command({"coefficients", "show", "--store", data / "two.xml"}).err,
              "Kestrel: Which coefficient set? Give one with --set. The store '" + (data / "two.xml") +
                  "' holds: 'A', 'B'.\n");
}

TEST(UserStore, IsMadeOnFirstUseFromTheOneThatCameWithTheProgram) {
    const TemporaryFolder home;
    const std::string own = home / "kestrel/etc/isprops.xml";
    const CommandResult result = run_command({"coefficients", "list"}, {"XDG_DATA_HOME=" + home.path()});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(holds(result.out, "Coefficient sets of " + own));
    EXPECT_EQ(base::read_file(own), base::read_file(std::string(KESTREL_SOURCE_DIR) + "/etc/isprops.xml"));
}

TEST(UserStore, ThatCannotBeMadeIsRefused) {
    const CommandResult result = run_command({"coefficients", "list"}, {"XDG_DATA_HOME=/proc/none"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.starts_with("Kestrel: There is no place for a coefficient store of your own: "))
        << result.err;
    EXPECT_TRUE(result.err.ends_with(". Give one with --store, or set XDG_DATA_HOME.\n")) << result.err;
}

TEST(UserStore, IsLeftAsItIsOnceItIsThere) {
    const TemporaryFolder home;
    fs::create_directories(home / "kestrel/etc");
    write_store(home / "kestrel/etc/isprops.xml", {"Mine"});
    const CommandResult result = run_command({"coefficients", "list"}, {"XDG_DATA_HOME=" + home.path()});
    EXPECT_TRUE(holds(result.out, "Mine")) << result.out;
}

TEST(RecordsCommand, RefusesWhenThereIsNoReport) {
    const TemporaryFolder folder;
    const CommandResult result = run_command({"records", folder / "is.shp"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "Kestrel: There is no run report 'is.prm' in the folder '" + folder.path() + "', nor any other.\n");
}

TEST(DemoCommand, MakesDataAndACommandThatRuns) {
    const TemporaryFolder home;
    const std::string folder = home / "my demo's";
    const std::vector<std::string> environment{"XDG_DATA_HOME=" + home.path()};
    const CommandResult made = run_command({"demo", folder, "--size", "200x160"}, environment);
    ASSERT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(names_in(folder),
              (std::vector<std::string>{
                  "census_blocks.cpg", "census_blocks.dbf", "census_blocks.prj", "census_blocks.shp",
                  "census_blocks.shx", "isprops.xml",       "land_cover.tif",    "land_cover.tif.aux.xml",
                  "new_mall.cpg",      "new_mall.dbf",      "new_mall.prj",      "new_mall.shp",
                  "new_mall.shx",      "run_demo.sh",       "subdivision.cpg",   "subdivision.dbf",
                  "subdivision.prj",   "subdivision.shp",   "subdivision.shx",   "watersheds.cpg",
                  "watersheds.dbf",    "watersheds.prj",    "watersheds.shp",    "watersheds.shx"}));
    const std::string script = base::read_file(folder + "/run_demo.sh");
    EXPECT_TRUE(script.starts_with("#!/bin/sh\nkestrel run --land-cover '")) << script;
    EXPECT_TRUE(holds(script, "my demo'\\''s/land_cover.tif'")) << script;
    const std::string command = script.substr(script.find('\n') + 1);
    ASSERT_TRUE(command.ends_with(" \"$@\"\n")) << "takes further options";
    EXPECT_TRUE(holds(made.out, command.substr(0, command.size() - 6) + "\n"));
}

TEST(DemoCommand, AFolderThatIsNotEmptyIsRefused) {
    const TemporaryFolder folder;
    base::write_file(folder / "mine.txt", "x");
    const CommandResult result = run_command({"demo", folder.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "Kestrel: '" + folder.path() +
                              "' exists and is no empty folder. Give a new folder for the demonstration.\n");
    EXPECT_EQ(names_in(folder.path()), (std::vector<std::string>{"mine.txt"}));
}

}  // namespace
}  // namespace kestrel::test

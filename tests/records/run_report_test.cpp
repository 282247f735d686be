// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "records/run_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "base/errors.h"
#include "base/files.h"
#include "tests/records/sample_run.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using base::read_file;
using base::split_lines;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class RunReport : public testing::Test {
  protected:
    std::string report_of(const RunRecord& run) const {
        write_run_report(m_path, run);
        return read_file(m_path);
    }

    /// The lines between "  Coefficient Option" and the next empty line.
    std::vector<std::string> option_lines(const RunRecord& run) const {
        const std::vector<std::string> lines = split_lines(report_of(run));
        const auto first = std::find(lines.begin(), lines.end(), "  Coefficient Option") + 1;
        return {first, std::find(first, lines.end(), "")};
    }

    test::TemporaryFolder m_folder;
    std::string m_path = m_folder / "is_out1.prm";
};

TEST_F(RunReport, MediumOptionWithoutScenariosMatchesTheFixture) {
    EXPECT_EQ(report_of(test::sample_run(CoefficientOption::medium)),
              read_file(test::fixture_path("records/medium.prm")));
}

TEST_F(RunReport, MediumOptionWithScenariosMatchesTheFixture) {
    RunRecord run = test::sample_run(CoefficientOption::medium);
    run.scenarios = test::sample_scenarios();
    EXPECT_EQ(report_of(run), read_file(test::fixture_path("records/medium_scenarios.prm")));
}

TEST_F(RunReport, DensityOptionWithoutScenariosMatchesTheFixture) {
    EXPECT_EQ(report_of(test::sample_run(CoefficientOption::by_density)),
              read_file(test::fixture_path("records/density.prm")));
}

TEST_F(RunReport, DensityOptionWithScenariosMatchesTheFixture) {
    RunRecord run = test::sample_run(CoefficientOption::by_density);
    run.scenarios = test::sample_scenarios();
    EXPECT_EQ(report_of(run), read_file(test::fixture_path("records/density_scenarios.prm")));
}

TEST_F(RunReport, ExistingReportOfTheSameNameIsOverwritten) {
    base::write_file(m_path, std::string(10000, 'x'));
    EXPECT_EQ(report_of(test::sample_run(CoefficientOption::medium)),
              read_file(test::fixture_path("records/medium.prm")));
}

TEST_F(RunReport, HighOptionYieldsOneLine) {
    EXPECT_THAT(option_lines(test::sample_run(CoefficientOption::high)),
                ElementsAre("  High population coefficient applied to all analysis"));
}

TEST_F(RunReport, MediumOptionYieldsOneLine) {
    EXPECT_THAT(option_lines(test::sample_run(CoefficientOption::medium)),
                ElementsAre("  Medium population coefficient applied to all analysis"));
}

TEST_F(RunReport, LowOptionYieldsOneLine) {
    EXPECT_THAT(option_lines(test::sample_run(CoefficientOption::low)),
                ElementsAre("  Low population coefficient applied to all analysis"));
}

TEST_F(RunReport, DensityOptionYieldsFiveLinesWithTheCutOffsAsTyped) {
    RunRecord run = test::sample_run(CoefficientOption::by_density);
    run.density_high = "1e3";
    run.density_low = " 200.50";
    EXPECT_THAT(option_lines(run), ElementsAre("  Population coefficient was identified using the value of the ",
                                               " POPDEN field within the blockgroups theme.", "    High >= 1e3",
                                               "    Medium between 1e3 and  200.50", "    Low <=  200.50"));
}

TEST_F(RunReport, UnknownOptionWithoutDensitySettingsYieldsTheFiveLinesAllTheSame) {
    EXPECT_THAT(option_lines(test::sample_run(std::nullopt)),
                ElementsAre("  Population coefficient was identified using the value of the ",
                            "  field within the  theme.", "    High >= ", "    Medium between  and ", "    Low <= "));
}

TEST_F(RunReport, WithoutScenariosTheFileEndsWithTheLastClassLine) {
    const std::string report = report_of(test::sample_run(CoefficientOption::medium));
    EXPECT_TRUE(report.ends_with("\r\n      11,Water, open,0,0,0\r\n"));
    EXPECT_THAT(report, Not(HasSubstr("Change Scenarios")));
}

TEST_F(RunReport, WithOneScenarioTheFileEndsWithItsLineWithoutAFullStop) {
    RunRecord run = test::sample_run(CoefficientOption::medium);
    run.scenarios = {{"newmall", "Grassland"}};
    EXPECT_TRUE(
        report_of(run).ends_with("\r\n      11,Water, open,0,0,0\r\n\r\n Change Scenarios\r\n"
                                 "  Changed land cover classes within newmall layer to Grassland\r\n"));
}

TEST_F(RunReport, WithoutClassesTheHeadingStandsAlone) {
    RunRecord run = test::sample_run(CoefficientOption::medium);
    run.classes.clear();
    EXPECT_TRUE(report_of(run).ends_with("\r\n\r\n  Coefficients:(Value,ClassName,High,Medium,Low)\r\n"));
}

TEST_F(RunReport, CommaInAClassNameIsWrittenAsItIs) {
    EXPECT_THAT(split_lines(report_of(test::sample_run(CoefficientOption::medium))),
                Contains("      11,Water, open,0,0,0"));
}

TEST_F(RunReport, ClassesKeepTheirGivenOrder) {
    RunRecord run = test::sample_run(CoefficientOption::medium);
    run.classes = {{"9", "b", "1", "2", "3"}, {"10", "a", "4", "5", "6"}, {"1", "c", "7", "8", "9"}};
    EXPECT_TRUE(report_of(run).ends_with("\r\n      9,b,1,2,3\r\n      10,a,4,5,6\r\n      1,c,7,8,9\r\n"));
}

TEST_F(RunReport, MissingFolderFailsAndIsLeftToTheCaller) {
    try {
        write_run_report(m_folder / "missing/is_out1.prm", test::sample_run(CoefficientOption::medium));
        FAIL() << "nothing was thrown";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 76);
    }
}

TEST_F(RunReport, FullDeviceFailsAndIsLeftToTheCaller) {
    try {
        write_run_report("/dev/full", test::sample_run(CoefficientOption::medium));
        FAIL() << "nothing was thrown";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 61);
    }
}

}  // namespace
}  // namespace kestrel

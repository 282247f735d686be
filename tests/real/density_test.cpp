// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "tests/real/comparison.h"

namespace kestrel::test {
namespace {

class RealRunByDensity : public RealData {
  protected:
    /// The blocks themselves as zones, so that each has a key of its own.
    static RunSettings blocks_by_themselves() {
        RunSettings settings;
        settings.zones = real_file("blockgroups.shp");
        settings.field = "BLOCK";
        settings.option = kByDensity;
        return settings;
    }

    static std::set<std::string> keys_of(const WholeRun& run) {
        std::set<std::string> keys;
        const data::Table& table = run.result.zone_tables.at(0);
        for (std::size_t row = 0; row < table.row_count(); ++row) {
            keys.insert(table.key(row));
        }
        return keys;
    }
};

// The densities are 0, 5.25, 20, 20.01, 62.5, 99.99, 100, 100, 150.75, 412, 12, 75, 20, 100.01, 19.99 and 33.
TEST_F(RealRunByDensity, PutsTheCutOffsThemselvesIntoHighAndLow) {
    const RunSettings settings = blocks_by_themselves();
    EXPECT_THAT(keys_of(WholeRun(settings)),
                ::testing::ElementsAre("1000#3", "1001#3", "1002#3", "1003#2", "1004#2", "1005#2", "1006#1", "1007#1",
                                       "1008#1", "1009#1", "1010#3", "1011#2", "1012#3", "1013#1", "1014#3", "1015#2"));
    expect_run_as_counted(settings);
}

TEST_F(RealRunByDensity, KnowsNoMediumWhenTheCutOffsAreEqual) {
    RunSettings settings = blocks_by_themselves();
    settings.density_low = "100";
    for (const std::string& key : keys_of(WholeRun(settings))) {
        EXPECT_NE(key.back(), '2') << key;
    }
    expect_run_as_counted(settings);
}

TEST_F(RealRunByDensity, ReadsCutOffsWithDecimals) {
    RunSettings settings = blocks_by_themselves();
    settings.density_high = "100.01";
    settings.density_low = "19.99";
    EXPECT_THAT(keys_of(WholeRun(settings)),
                ::testing::ElementsAre("1000#3", "1001#3", "1002#2", "1003#2", "1004#2", "1005#2", "1006#2", "1007#2",
                                       "1008#1", "1009#1", "1010#3", "1011#2", "1012#2", "1013#1", "1014#3", "1015#2"));
    expect_run_as_counted(settings);
}

// The zones have a field of the same name with other values.
TEST_F(RealRunByDensity, TakesTheDensityOfTheDensityLayerNotOfTheZones) {
    RunSettings settings;
    settings.option = kByDensity;
    settings.selected = {5};  // its own value, 2.88, would make it Low throughout
    const WholeRun run(settings);
    EXPECT_THAT(keys_of(run), ::testing::Not(::testing::ElementsAre("0#3")));
    expect_run_as_counted(settings);
}

TEST_F(RealRunByDensity, LeavesOutWhatNoBlockCoversAndTellsHowMuch) {
    RunSettings settings;
    settings.option = kByDensity;
    std::uint64_t uncovered = 0;
    for (const auto& [place, cells] : expected_output(settings).cells) {
        uncovered += std::get<1>(place) < 0 ? cells : 0;
    }
    ASSERT_GT(uncovered, 0U);
    const WholeRun run(settings);
    EXPECT_THAT(run.result.notices,
                ::testing::Contains(std::to_string(uncovered) +
                                    " cells of the zones lie outside of the population density layer \"blockgroups\" "
                                    "and count nowhere."));
}

}  // namespace
}  // namespace kestrel::test

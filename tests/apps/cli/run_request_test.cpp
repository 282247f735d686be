// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run_request.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kestrel::cli {
namespace {

TEST(ParseScenario, CutsAtTheLastColon) {
    EXPECT_EQ(parse_scenario("mall.shp:24").source, "mall.shp");
    EXPECT_EQ(parse_scenario("mall.shp:24").code, 24);
    EXPECT_EQ(parse_scenario("C:\\plans\\mall.shp:24").source, "C:\\plans\\mall.shp");
    EXPECT_EQ(parse_scenario("plans.gpkg|layername=a:b:22").source, "plans.gpkg|layername=a:b");
}

TEST(ParseScenario, TakesAnySignedCode) {
    EXPECT_EQ(parse_scenario("a.shp:-5").code, -5);
    EXPECT_EQ(parse_scenario("a.shp:+7").code, 7);
    EXPECT_EQ(parse_scenario("a.shp:0").code, 0);
    EXPECT_EQ(parse_scenario("a.shp:-2147483648").code, -2147483647 - 1);
}

TEST(ParseScenario, RefusesWhatIsNoScenario) {
    for (const char* text : {"", "mall.shp", ":24", "mall.shp:", "mall.shp:24.5", "mall.shp:2 4", "mall.shp:city",
                             "mall.shp:2147483648", "mall.shp:+-3", "mall.shp:+"}) {
        EXPECT_THROW(parse_scenario(text), std::invalid_argument) << text;
    }
}

}  // namespace
}  // namespace kestrel::cli

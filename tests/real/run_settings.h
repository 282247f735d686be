// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "coefficients/coefficient_option.h"
#include "tests/support/test_files.h"

namespace kestrel::test {

inline constexpr CoefficientOption kHigh = CoefficientOption::high;
inline constexpr CoefficientOption kMedium = CoefficientOption::medium;
inline constexpr CoefficientOption kLow = CoefficientOption::low;
inline constexpr CoefficientOption kByDensity = CoefficientOption::by_density;

/// Path of a file of the real test data; a source's "|layername=" may follow the name.
inline std::string real_file(const std::string& name) {
    return real_data_folder() + "/" + name;
}

/// What a whole run on the real data is asked for. Sources are paths, or `path|layername=NAME`.
struct RunSettings {
    std::string land_cover = real_file("nlcd2011.tif");
    std::string units = "Meters";
    std::string zones = real_file("sheds.shp");
    std::string field = "SHED_ID";
    /// Ids of the selected zones; all zones when empty.
    std::vector<std::int64_t> selected{};
    std::string set = "NLCD spread";
    CoefficientOption option = kMedium;
    // With kByDensity only.
    std::string density = real_file("blockgroups.shp");
    std::string density_field = "POP_DEN";
    std::string density_high = "100";
    std::string density_low = "20";

    struct Scenario {
        std::string source;
        std::int32_t target = 0;
        /// Ids of the selected polygons; all polygons when empty.
        std::vector<std::int64_t> selected{};
    };
    std::vector<Scenario> scenarios{};
    int threads = 2;
};

/// Tests on the real data, skipped where there is none.
class RealData : public ::testing::Test {
  protected:
    void SetUp() override {
        if (real_data_folder().empty()) {
            GTEST_SKIP() << "The folder of the real test data is missing, with nlcd2011.tif, sheds.shp, sheds.gpkg, "
                            "blockgroups.shp, blockgroups_wgs84.gpkg, town_plan.shp, resort_wgs84.gpkg and "
                            "isprops.xml. Name it in KESTREL_REAL_DATA.";
        }
    }
};

}  // namespace kestrel::test

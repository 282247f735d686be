// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/run_texts.h"

#include <gtest/gtest.h>

namespace kestrel::test {
namespace {

contracts::RunResult finished_run() {
    contracts::RunResult result;
    result.finished = true;
    result.layer_name = "Sheds IS";
    result.analysis_field = "ID";
    result.area_unit = "hectares";
    result.zones = {{.value = "1", .total_area = 4, .impervious_area = 0.5, .percent = 12.5, .cells = 4}};
    result.legend = {{"< 10%", 0}, {"10% - 25%", 1}};
    result.files = {"/data/out.shp", "/data/Sheds IS.prm"};
    return result;
}

TEST(run_texts, FinishedRunIsToldInASentence) {
    EXPECT_EQ(qgis::finished_text(finished_run()), "The layer \"Sheds IS\" shows the impervious surface of 1 zone.");
}

TEST(run_texts, IncompleteZonesAreCounted) {
    contracts::RunResult result = finished_run();
    result.zones.push_back({.value = "2", .touches_nodata = true});
    EXPECT_EQ(qgis::finished_text(result),
              "The layer \"Sheds IS\" shows the impervious surface of 2 zones. 1 of them is incomplete.");
    result.zones.push_back({.value = "3", .touches_nodata = true});
    EXPECT_EQ(qgis::finished_text(result),
              "The layer \"Sheds IS\" shows the impervious surface of 3 zones. 2 of them are incomplete.");
}

TEST(run_texts, DetailsGiveFiguresLegendAndFiles) {
    EXPECT_EQ(qgis::finished_details(finished_run()),
              "The layer \"Sheds IS\" shows the impervious surface of 1 zone.\n"
              "ID 1: 0.5 of 4 hectares, 12.5 %\n"
              "< 10%: 0 zones\n"
              "10% - 25%: 1 zone\n"
              "/data/out.shp\n"
              "/data/Sheds IS.prm");
}

TEST(run_texts, DetailsSayWhatIsWrongWithAZone) {
    contracts::RunResult result = finished_run();
    result.zones = {{.value = "7", .touches_nodata = true, .beyond_raster = true}};
    EXPECT_NE(qgis::finished_details(result).find(
                  "\nID 7: 0 of 0 hectares, 0 %, incomplete, reaches beyond the land cover, without any cell\n"),
              std::string::npos);
}

TEST(run_texts, RunWithoutAnOutputSaysWhy) {
    contracts::RunResult result;
    EXPECT_EQ(qgis::unfinished_text(result), "The run ended without an output.");
    result.unknown_classes = {{11, 1}, {255, 20}};
    EXPECT_EQ(qgis::unfinished_text(result),
              "The run ended without an output. Classes without coefficients: 11 (1 cell), 255 (20 cells)");
    result.cancelled = true;
    EXPECT_EQ(qgis::unfinished_text(result), "The run was cancelled. Nothing has been changed.");
}

}  // namespace
}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "apps/cli/result_json.h"
#include "apps/cli/result_table.h"
#include "hosting/run_totals.h"

namespace kestrel::cli {
namespace {

using contracts::RunResult;
using contracts::ZoneResult;

RunResult three_zones() {
    RunResult result;
    result.finished = true;
    result.layer_name = "Sheds IS";
    result.analysis_layer = "sheds";
    result.analysis_field = "NAME";
    result.land_cover_layer = "nlcd";
    result.area_unit = "hectares";
    result.zones = {{.value = "Mühlbach", .total_area = 100, .impervious_area = 12.5, .percent = 12.5, .cells = 1111},
                    {.value = "Elk Lick",
                     .total_area = 20.25,
                     .impervious_area = 0.125,
                     .percent = 0.62,
                     .cells = 225,
                     .nodata_cells = 3,
                     .touches_nodata = true,
                     .beyond_raster = true},
                    {.value = "", .total_area = 0, .impervious_area = 0, .percent = 0, .beyond_raster = true}};
    result.legend = {{"0 - 5 (Sensitive)", 2}, {"> 5", 1}};
    result.files = {"/out/sheds_is.shp", "/out/Sheds IS.prm"};
    return result;
}

TEST(ResultTable, ListsZonesTotalsLegendAndFiles) {
    EXPECT_EQ(result_table(three_zones(), false),
              "Sheds IS: areas in hectares by NAME of sheds on nlcd\n"
              "\n"
              "NAME        Total area  Impervious area  Percent  Complete  Remarks\n"
              "Mühlbach      100.0000          12.5000    12.50  Y\n"
              "Elk Lick       20.2500           0.1250     0.62  N         touches NODATA; reaches beyond the raster\n"
              "                0.0000           0.0000     0.00  Y         reaches beyond the raster; no cell\n"
              "Total of 3    120.2500          12.6250    10.50\n"
              "\n"
              "Zones in the classes of the legend\n"
              "  0 - 5 (Sensitive)  2\n"
              "  > 5                1\n"
              "\n"
              "Files written\n"
              "  /out/sheds_is.shp\n"
              "  /out/Sheds IS.prm\n");
}

RunResult many_zones(std::size_t count) {
    RunResult result;
    result.analysis_field = "ID";
    for (std::size_t i = 1; i <= count; ++i) {
        result.zones.push_back({.value = std::to_string(i), .total_area = 1, .cells = 1});
    }
    return result;
}

std::size_t lines_in(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST(ResultTable, ThirtyZonesAreAllListed) {
    EXPECT_EQ(lines_in(result_table(many_zones(30), false)), 2U + 1 + 30 + 1);
}

TEST(ResultTable, OfMoreThanThirtyZonesTheFirstAndLastTenAreListed) {
    const std::string table = result_table(many_zones(31), false);
    EXPECT_EQ(lines_in(table), 2U + 1 + 10 + 1 + 10 + 1);
    EXPECT_NE(table.find("\n10  "), std::string::npos);
    EXPECT_EQ(table.find("\n11  "), std::string::npos);
    EXPECT_NE(table.find("11 more\n"), std::string::npos);
    EXPECT_EQ(table.find("\n21  "), std::string::npos);
    EXPECT_NE(table.find("\n22  "), std::string::npos);
    EXPECT_NE(table.find("Total of 31"), std::string::npos);
}

TEST(ResultTable, ListsEveryZoneWhenTold) {
    const std::string table = result_table(many_zones(31), true);
    EXPECT_EQ(lines_in(table), 2U + 1 + 31 + 1);
    EXPECT_EQ(table.find("..."), std::string::npos);
}

TEST(ResultTable, ALineEndInAValueDoesNotTearTheTable) {
    RunResult result = many_zones(1);
    result.zones[0].value = "upper\nlower";
    EXPECT_NE(result_table(result, false).find("upper lower"), std::string::npos);
}

TEST(ResultTable, TotalsHaveTheSixDecimalsOfTheZones) {
    RunResult result;
    result.zones = {{.value = "a", .total_area = 0.1, .impervious_area = 0.1},
                    {.value = "b", .total_area = 0.2, .impervious_area = 0.2}};
    EXPECT_EQ(hosting::total_of(result).total_area, 0.3);
    EXPECT_EQ(hosting::total_of(result).impervious_area, 0.3);
}

TEST(ResultTable, NoAreaGivesNoPercent) {
    RunResult result;
    result.zones = {{.value = "1"}};
    EXPECT_EQ(hosting::total_of(result).percent, 0);
}

TEST(UnknownClasses, AreAllListedWithTheirCells) {
    RunResult result;
    result.unknown_classes = {{-3, 1}, {99, 1234}};
    EXPECT_EQ(unknown_classes_text(result),
              "Classes without coefficients in the chosen set:\n  -3  in 1 cell\n  99  in 1234 cells");
}

TEST(UnknownClasses, CodesThatLookLikeNodataDrawAHint) {
    RunResult result;
    result.unknown_classes = {{0, 5}, {99, 2}, {127, 6}, {250, 7}, {255, 8}};
    const std::string text = unknown_classes_text(result);
    EXPECT_TRUE(
        text.ends_with("0, 127, 250, 255 may stand for NODATA that the raster does not declare; if so, declare "
                       "it, for example with gdal_edit.py -a_nodata."))
        << text;
}

TEST(UnknownClasses, AreSilentWhenThereAreNone) {
    EXPECT_EQ(unknown_classes_text({}), "");
}

std::string json_of(const RunResult& result, const std::vector<std::string>& messages = {}) {
    std::ostringstream out;
    write_result_json(out, result, messages);
    return out.str();
}

TEST(ResultJson, HoldsTheWholeResult) {
    RunResult result = three_zones();
    result.zones.resize(1);
    result.notices = {"One polygon was repaired."};
    const std::string expected = R"json({
  "finished": true,
  "cancelled": false,
  "layer_name": "Sheds IS",
  "analysis_layer": "sheds",
  "analysis_field": "NAME",
  "land_cover_layer": "nlcd",
  "area_unit": "hectares",
  "zones": [
    {
      "value": "Mühlbach",
      "total_area": 100.0,
      "impervious_area": 12.5,
      "percent": 12.5,
      "complete": true,
      "cells": 1111,
      "nodata_cells": 0,
      "touches_nodata": false,
      "beyond_raster": false,
      "no_cell": false
    }
  ],
  "totals": {
    "zones": 1,
    "total_area": 100.0,
    "impervious_area": 12.5,
    "percent": 12.5,
    "cells": 1111,
    "nodata_cells": 0
  },
  "legend": [
    {
      "label": "0 - 5 (Sensitive)",
      "zones": 2
    },
    {
      "label": "> 5",
      "zones": 1
    }
  ],
  "unknown_classes": [],
  "messages": [
    "NODATA Cells!: Some of them"
  ],
  "notices": [
    "One polygon was repaired."
  ],
  "files": [
    "/out/sheds_is.shp",
    "/out/Sheds IS.prm"
  ]
}
)json";
    EXPECT_EQ(json_of(result, {"NODATA Cells!: Some of them"}), expected);
}

TEST(ResultJson, ValuesOfEveryKindReadBack) {
    RunResult result;
    std::mt19937_64 random(5);
    const std::vector<std::string> texts{"plain", "", "a \"quote\" \\", "tab\t line\r\n", "Łódź 川", "\x7f", "\x01"};
    for (int i = 0; i < 500; ++i) {
        const int exponent = static_cast<int>(random() % 40) - 20;
        const double number = std::ldexp(static_cast<double>(random() % 100000), exponent) * (i % 3 == 0 ? -1 : 1);
        result.zones.push_back({.value = texts[random() % texts.size()],
                                .total_area = number,
                                .impervious_area = number * 1e12,
                                .percent = std::round(number) * 1e-6,
                                .cells = random()});
    }
    result.zones[0].total_area = 0;
    result.zones[1].total_area = -0.0;
    const std::string text = json_of(result);
    const auto zones = nlohmann::json::parse(text)["zones"];
    ASSERT_EQ(zones.size(), result.zones.size());
    for (std::size_t i = 0; i < zones.size(); ++i) {
        const ZoneResult& zone = result.zones[i];
        EXPECT_EQ(zones[i]["value"], zone.value);
        EXPECT_EQ(zones[i]["total_area"].get<double>(), zone.total_area);
        EXPECT_EQ(zones[i]["impervious_area"].get<double>(), zone.impervious_area);
        EXPECT_EQ(zones[i]["percent"].get<double>(), zone.percent);
        EXPECT_EQ(zones[i]["cells"], zone.cells);
        EXPECT_TRUE(zones[i]["total_area"].is_number_float());
    }
    EXPECT_NE(text.find("\"total_area\": 0.0,"), std::string::npos);
    EXPECT_NE(text.find("\"total_area\": -0.0,"), std::string::npos);
}

/// The digits that a number is written with.
std::string number_in_json(double number) {
    RunResult result;
    result.zones = {{.value = "1", .total_area = number}};
    const std::string text = json_of(result);
    const std::string name = "\"total_area\": ";
    const std::size_t begin = text.find(name) + name.size();
    return text.substr(begin, text.find(",\n", begin) - begin);
}

TEST(ResultJson, NumbersHaveTheFewestDigitsThatReadBack) {
    EXPECT_EQ(number_in_json(0), "0.0");
    EXPECT_EQ(number_in_json(100), "100.0");
    EXPECT_EQ(number_in_json(0.1), "0.1");
    EXPECT_EQ(number_in_json(0.0001), "0.0001");
    EXPECT_EQ(number_in_json(0.000099), "9.9e-05");
    EXPECT_EQ(number_in_json(0.5000005), "0.5000005");
    EXPECT_EQ(number_in_json(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(number_in_json(999999999.999999), "999999999.999999");
    EXPECT_EQ(number_in_json(1e9), "1000000000.0");
    EXPECT_EQ(number_in_json(8388608.000001), "8388608.000001");
    EXPECT_EQ(number_in_json(-12.5), "-12.5");
    EXPECT_EQ(number_in_json(std::numeric_limits<double>::quiet_NaN()), "null");
    std::mt19937_64 random(6);
    for (int i = 0; i < 3000; ++i) {
        const double whole = std::ldexp(static_cast<double>(random() % (1ULL << 53)), -static_cast<int>(random() % 53));
        const double number = i % 2 == 0 ? std::floor(whole) / 1e6 : whole;
        if (number >= 1e-4 && number < 1e15) {
            const std::string digits = fmt::format("{}", number);
            const bool has_point = digits.find('.') != std::string::npos;
            EXPECT_EQ(number_in_json(number), has_point ? digits : digits + ".0");
        }
    }
}

TEST(ResultJson, OfAFailedRunNamesTheUnknownClasses) {
    RunResult result;
    result.unknown_classes = {{99, 12}};
    const std::string json = json_of(result);
    EXPECT_NE(json.find("\"finished\": false"), std::string::npos);
    EXPECT_NE(json.find("\"code\": 99,\n      \"cells\": 12"), std::string::npos) << json;
}

TEST(ResultJson, StaysReadableWhenAValueIsNoUtf8) {
    RunResult result;
    result.zones = {{.value = "M\xFChl"}};
    EXPECT_NE(json_of(result).find("M\xEF\xBF\xBDhl"), std::string::npos);
}

}  // namespace
}  // namespace kestrel::cli

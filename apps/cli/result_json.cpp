// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/result_json.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>

#include "apps/cli/result_table.h"

namespace kestrel::cli {

using nlohmann::ordered_json;
using platform::RunResult;
using platform::ZoneResult;

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 16;

constexpr std::uint64_t kMillion = 1000000;
constexpr double kMostMillionths = 1e15;  // a double holds any 15 digits

/// What the library makes of one value: any text or number at all.
std::string any_json(const ordered_json& value) {
    return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

/// Most texts stand as they are.
std::string json_of(const std::string& value) {
    const bool plain =
        std::all_of(value.begin(), value.end(), [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
    return plain ? '"' + value + '"' : any_json(value);
}

/// A number of whole millionths, as areas and percents are stored. Of so few digits no others read back as the same
/// number, so these are the shortest.
std::string json_of_millionths(std::uint64_t millionths) {
    std::string text = fmt::format_int(millionths / kMillion).str();
    const std::size_t point = text.size();
    text += fmt::format_int(kMillion + millionths % kMillion).str();
    text[point] = '.';  // in place of the 1 that kept the zeros behind it
    text.resize(std::max(text.find_last_not_of('0') + 1, point + 2));
    return text;
}

/// The shortest digits that read back as the same number. Most numbers need no exponent.
std::string json_of(double value) {
    const double magnitude = std::abs(value);
    if (value != 0 && !(magnitude >= 1e-4 && magnitude < 1e15)) {
        return any_json(value);
    }
    if (!std::signbit(value) && value < kMostMillionths / kMillion) {
        const auto millionths = static_cast<std::uint64_t>(value * kMillion + 0.5);
        if (static_cast<double>(millionths) / kMillion == value) {
            return json_of_millionths(millionths);
        }
    }
    std::array<char, 40> room;
    char* const end = std::to_chars(room.begin(), room.end(), value, std::chars_format::fixed).ptr;
    const std::string digits(room.data(), end);
    return digits.find('.') == std::string::npos ? digits + ".0" : digits;
}

void append_zone(fmt::memory_buffer& text, const ZoneResult& zone) {
    fmt::format_to(fmt::appender(text), FMT_COMPILE(R"(
    {{
      "value": {},
      "total_area": {},
      "impervious_area": {},
      "percent": {},
      "complete": {},
      "cells": {},
      "nodata_cells": {},
      "touches_nodata": {},
      "beyond_raster": {},
      "no_cell": {}
    }})"),
                   json_of(zone.value), json_of(zone.total_area), json_of(zone.impervious_area), json_of(zone.percent),
                   zone.complete(), zone.cells, zone.nodata_cells, zone.touches_nodata, zone.beyond_raster,
                   zone.without_cells());
}

/// Writes the members of the array, through a buffer of some kilobytes.
void write_zones(std::ostream& out, const std::vector<ZoneResult>& zones) {
    fmt::memory_buffer text;
    for (const ZoneResult& zone : zones) {
        if (text.size() >= kBufferSize) {
            out << std::string_view(text.data(), text.size());
            text.clear();
        }
        if (&zone != zones.data()) {
            text.push_back(',');
        }
        append_zone(text, zone);
    }
    out << std::string_view(text.data(), text.size()) << (zones.empty() ? "" : "\n  ");
}

ordered_json totals(const RunResult& result) {
    const ZoneResult total = total_of(result);
    return {
        {"zones", result.zones.size()}, {"total_area", total.total_area}, {"impervious_area", total.impervious_area},
        {"percent", total.percent},     {"cells", total.cells},           {"nodata_cells", total.nodata_cells}};
}

ordered_json legend_of(const RunResult& result) {
    ordered_json legend = ordered_json::array();
    for (const platform::LegendCount& count : result.legend) {
        legend.push_back({{"label", count.label}, {"zones", count.zones}});
    }
    return legend;
}

ordered_json unknown_classes_of(const RunResult& result) {
    ordered_json unknown_classes = ordered_json::array();
    for (const platform::UnknownClass& unknown : result.unknown_classes) {
        unknown_classes.push_back({{"code", unknown.code}, {"cells", unknown.cells}});
    }
    return unknown_classes;
}

}  // namespace

void write_result_json(std::ostream& out, const RunResult& result, const std::vector<std::string>& messages) {
    const ordered_json whole{{"finished", result.finished},
                             {"cancelled", result.cancelled},
                             {"layer_name", result.layer_name},
                             {"analysis_layer", result.analysis_layer},
                             {"analysis_field", result.analysis_field},
                             {"land_cover_layer", result.land_cover_layer},
                             {"area_unit", result.area_unit},
                             {"zones", ordered_json::array()},
                             {"totals", totals(result)},
                             {"legend", legend_of(result)},
                             {"unknown_classes", unknown_classes_of(result)},
                             {"messages", messages},
                             {"notices", result.notices},
                             {"files", result.files}};
    const std::string text = whole.dump(2, ' ', false, ordered_json::error_handler_t::replace);
    // Line ends stand only between members, so the array is found where it is.
    constexpr std::string_view kZones = "\n  \"zones\": [";
    const std::size_t at = text.find(kZones) + kZones.size();
    out << std::string_view(text).substr(0, at);
    write_zones(out, result.zones);
    out << std::string_view(text).substr(at) << '\n';
}

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/result_json.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string_view>

#include "apps/cli/result_table.h"

namespace kestrel::cli {

using nlohmann::ordered_json;
using platform::RunResult;
using platform::ZoneResult;

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 16;

/// What the library makes of one value: any text or number at all.
void append_any(std::string& text, const ordered_json& value) {
    text += value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

/// Most texts stand as they are.
void append(std::string& text, const std::string& value) {
    const bool plain =
        std::all_of(value.begin(), value.end(), [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
    if (plain) {
        text.append(1, '"').append(value).append(1, '"');
    } else {
        append_any(text, value);
    }
}

/// Most numbers need no exponent.
void append(std::string& text, double value) {
    const double magnitude = std::abs(value);
    if (!(magnitude >= 1e-4 && magnitude < 1e15)) {
        append_any(text, value);
        return;
    }
    std::array<char, 40> room{};
    const char* const end = std::to_chars(room.begin(), room.end(), value, std::chars_format::fixed).ptr;
    const std::string_view digits(room.data(), static_cast<std::size_t>(end - room.data()));
    text.append(digits).append(digits.find('.') == std::string_view::npos ? ".0" : "");
}

void append(std::string& text, std::uint64_t value) {
    fmt::format_to(std::back_inserter(text), "{}", value);
}

void append(std::string& text, bool value) {
    text += value ? "true" : "false";
}

template <typename Member>
void append_member(std::string& text, std::string_view name, const Member& value) {
    text.append(text.ends_with('{') ? "\n      \"" : ",\n      \"").append(name).append("\": ");
    append(text, value);
}

void append_zone(std::string& text, const ZoneResult& zone) {
    text += "\n    {";
    append_member(text, "value", zone.value);
    append_member(text, "total_area", zone.total_area);
    append_member(text, "impervious_area", zone.impervious_area);
    append_member(text, "percent", zone.percent);
    append_member(text, "complete", zone.complete());
    append_member(text, "cells", zone.cells);
    append_member(text, "nodata_cells", zone.nodata_cells);
    append_member(text, "touches_nodata", zone.touches_nodata);
    append_member(text, "beyond_raster", zone.beyond_raster);
    append_member(text, "no_cell", zone.without_cells());
    text += "\n    }";
}

/// Writes the members of the array, through a buffer of some kilobytes.
void write_zones(std::ostream& out, const std::vector<ZoneResult>& zones) {
    std::string text;
    for (const ZoneResult& zone : zones) {
        text += &zone == zones.data() ? "" : ",";
        append_zone(text, zone);
        if (text.size() >= kBufferSize) {
            out << text;
            text.clear();
        }
    }
    out << text << (zones.empty() ? "" : "\n  ");
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

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/result_json.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>

#include "hosting/run_totals.h"

namespace kestrel::cli {

using contracts::RunResult;
using contracts::ZoneResult;
using nlohmann::ordered_json;

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 16;

constexpr std::uint64_t kMillion = 1000000;
constexpr double kMostMillionths = 1e15;  // a double holds any 15 digits
constexpr std::size_t kLongestNumber = 32;

/// What the library makes of one value: any text or number at all.
std::string any_json(const ordered_json& value) {
    return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

/// Most texts stand as they are.
void append(std::string& text, const std::string& value) {
    const bool plain =
        std::all_of(value.begin(), value.end(), [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
    if (plain) {
        text.append(1, '"').append(value).append(1, '"');
    } else {
        text += any_json(value);
    }
}

// put() writes a value at a place and tells where it ends. All but texts are short, so there is room for a whole zone.

template <std::size_t size>
char* put(char* at, const char (&literal)[size]) {
    return std::copy_n(literal, size - 1, at);
}

char* put(char* at, std::uint64_t value) {
    return std::to_chars(at, at + kLongestNumber, value).ptr;
}

char* put(char* at, bool value) {
    return value ? put(at, "true") : put(at, "false");
}

/// A number of whole millionths, as areas and percents are stored. Of so few digits no others read back as the same
/// number, so these are the shortest.
char* put_millionths(char* at, std::uint64_t millionths) {
    char* const point = put(at, millionths / kMillion);
    char* end = put(point, kMillion + millionths % kMillion);
    *point = '.';  // in place of the 1 that kept the zeros behind it
    while (end[-1] == '0' && end - point > 2) {
        --end;
    }
    return end;
}

/// The shortest digits that read back as the same number. Most numbers need no exponent.
char* put(char* at, double value) {
    const double magnitude = std::abs(value);
    if (value != 0 && !(magnitude >= 1e-4 && magnitude < 1e15)) {
        const std::string text = any_json(value);
        return std::copy(text.begin(), text.end(), at);
    }
    if (!std::signbit(value) && value < kMostMillionths / kMillion) {
        const auto millionths = static_cast<std::uint64_t>(value * kMillion + 0.5);
        if (static_cast<double>(millionths) / kMillion == value) {
            return put_millionths(at, millionths);
        }
    }
    char* const end = std::to_chars(at, at + kLongestNumber, value, std::chars_format::fixed).ptr;
    return std::find(at, end, '.') == end ? put(end, ".0") : end;
}

void append_zone(std::string& text, const ZoneResult& zone) {
    text += "\n    {\n      \"value\": ";
    append(text, zone.value);
    std::array<char, 1024> room;
    char* at = room.data();
    at = put(put(at, ",\n      \"total_area\": "), zone.total_area);
    at = put(put(at, ",\n      \"impervious_area\": "), zone.impervious_area);
    at = put(put(at, ",\n      \"percent\": "), zone.percent);
    at = put(put(at, ",\n      \"complete\": "), zone.complete());
    at = put(put(at, ",\n      \"cells\": "), zone.cells);
    at = put(put(at, ",\n      \"nodata_cells\": "), zone.nodata_cells);
    at = put(put(at, ",\n      \"touches_nodata\": "), zone.touches_nodata);
    at = put(put(at, ",\n      \"beyond_raster\": "), zone.beyond_raster);
    at = put(put(at, ",\n      \"no_cell\": "), zone.without_cells());
    text.append(room.data(), put(at, "\n    }"));
}

/// Writes the members of the array, through a buffer of some kilobytes.
void write_zones(std::ostream& out, const std::vector<ZoneResult>& zones) {
    std::string text;
    for (const ZoneResult& zone : zones) {
        if (text.size() >= kBufferSize) {
            out << text;
            text.clear();
        }
        if (&zone != zones.data()) {
            text += ',';
        }
        append_zone(text, zone);
    }
    out << text << (zones.empty() ? "" : "\n  ");
}

ordered_json totals(const RunResult& result) {
    const ZoneResult total = hosting::total_of(result);
    return {
        {"zones", result.zones.size()}, {"total_area", total.total_area}, {"impervious_area", total.impervious_area},
        {"percent", total.percent},     {"cells", total.cells},           {"nodata_cells", total.nodata_cells}};
}

ordered_json legend_of(const RunResult& result) {
    ordered_json legend = ordered_json::array();
    for (const contracts::LegendCount& count : result.legend) {
        legend.push_back({{"label", count.label}, {"zones", count.zones}});
    }
    return legend;
}

ordered_json unknown_classes_of(const RunResult& result) {
    ordered_json unknown_classes = ordered_json::array();
    for (const contracts::UnknownClass& unknown : result.unknown_classes) {
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

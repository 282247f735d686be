// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/result_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <vector>

#include "apps/cli/text_width.h"
#include "base/conversions.h"
#include "hosting/run_totals.h"

namespace kestrel::cli {

using contracts::RunResult;
using contracts::ZoneResult;

namespace {

using Line = std::array<std::string, 6>;
enum Column : std::size_t { kValue, kTotal, kImpervious, kPercent, kComplete, kRemarks };

/// Values may hold anything; a line end in one would tear the table.
std::string on_one_line(std::string text) {
    const auto controls = [](char c) { return static_cast<unsigned char>(c) < 0x20; };
    std::replace_if(text.begin(), text.end(), controls, ' ');
    return text;
}

Line line_of(const ZoneResult& zone) {
    return {on_one_line(zone.value),
            fmt::format("{:.4f}", zone.total_area),
            fmt::format("{:.4f}", zone.impervious_area),
            fmt::format("{:.2f}", zone.percent),
            zone.complete() ? "Y" : "N",
            remarks_of(zone)};
}

Line total_line(const RunResult& result) {
    Line line = line_of(hosting::total_of(result));
    line[kValue] = fmt::format("Total of {}", result.zones.size());
    line[kComplete].clear();
    line[kRemarks].clear();
    return line;
}

std::vector<Line> zone_lines(const RunResult& result, bool every_zone) {
    const std::size_t count = result.zones.size();
    const bool shortened = !every_zone && count > kMostZonesInTable;
    std::vector<Line> lines;
    for (std::size_t i = 0; i < count; ++i) {
        if (shortened && i == kZonesAtEachEnd) {
            lines.push_back({"...", "", "", "", "", fmt::format("{} more", count - 2 * kZonesAtEachEnd)});
            i = count - kZonesAtEachEnd;
        }
        lines.push_back(line_of(result.zones[i]));
    }
    return lines;
}

/// Texts stand at the left of their column, figures at the right.
std::string aligned(const std::vector<Line>& lines) {
    std::array<int, 6> widths{};
    for (const Line& line : lines) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            widths[i] = std::max(widths[i], display_width(line[i]));
        }
    }
    std::string text;
    for (const Line& line : lines) {
        std::string row = padded_right(line[kValue], widths[kValue]);
        for (const std::size_t i : {kTotal, kImpervious, kPercent}) {
            row += "  " + padded_left(line[i], widths[i]);
        }
        row += "  " + padded_right(line[kComplete], widths[kComplete]) + "  " + line[kRemarks];
        row.erase(row.find_last_not_of(' ') + 1);
        text += row + "\n";
    }
    return text;
}

bool looks_like_nodata(std::int32_t code) {
    return code == 0 || code == 127 || code == 250 || code == 255;
}

}  // namespace

std::string remarks_of(const ZoneResult& zone) {
    std::vector<std::string> remarks;
    if (zone.touches_nodata) {
        remarks.emplace_back("touches NODATA");
    }
    if (zone.beyond_raster) {
        remarks.emplace_back("reaches beyond the raster");
    }
    if (zone.without_cells()) {
        remarks.emplace_back("no cell");
    }
    return fmt::format("{}", fmt::join(remarks, "; "));
}

std::string result_table(const RunResult& result, bool every_zone) {
    std::string text = fmt::format("{}: areas in {} by {} of {} on {}\n\n", result.layer_name, result.area_unit,
                                   result.analysis_field, result.analysis_layer, result.land_cover_layer);
    std::vector<Line> lines{
        {on_one_line(result.analysis_field), "Total area", "Impervious area", "Percent", "Complete", "Remarks"}};
    const std::vector<Line> zones = zone_lines(result, every_zone);
    lines.insert(lines.end(), zones.begin(), zones.end());
    lines.push_back(total_line(result));
    text += aligned(lines);

    if (!result.legend.empty()) {
        text += "\nZones in the classes of the legend\n";
        int width = 0;
        for (const contracts::LegendCount& count : result.legend) {
            width = std::max(width, display_width(count.label));
        }
        for (const contracts::LegendCount& count : result.legend) {
            text += fmt::format("  {}  {}\n", padded_right(count.label, width), count.zones);
        }
    }
    if (!result.files.empty()) {
        text += "\nFiles written\n";
        for (const std::string& file : result.files) {
            text += "  " + file + "\n";
        }
    }
    return text;
}

std::string unknown_classes_text(const RunResult& result) {
    if (result.unknown_classes.empty()) {
        return {};
    }
    std::string text = "Classes without coefficients in the chosen set:";
    std::string suspects;
    for (const contracts::UnknownClass& unknown : result.unknown_classes) {
        text += fmt::format("\n  {}  in {} {}", unknown.code, unknown.cells, unknown.cells == 1 ? "cell" : "cells");
        if (looks_like_nodata(unknown.code)) {
            suspects += (suspects.empty() ? "" : ", ") + std::to_string(unknown.code);
        }
    }
    if (!suspects.empty()) {
        text += fmt::format(
            "\n{} may stand for NODATA that the raster does not declare; if so, declare it, "
            "for example with gdal_edit.py -a_nodata.",
            suspects);
    }
    return text;
}

}  // namespace kestrel::cli

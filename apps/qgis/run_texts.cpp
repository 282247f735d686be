// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/run_texts.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/conversions.h"

namespace kestrel::qgis {

using contracts::ZoneResult;

std::string finished_text(const contracts::RunResult& result) {
    const auto incomplete = std::count_if(result.zones.begin(), result.zones.end(),
                                          [](const ZoneResult& zone) { return !zone.complete(); });
    std::string text = fmt::format("The layer \"{}\" shows the impervious surface of {} zone{}.", result.layer_name,
                                   result.zones.size(), result.zones.size() == 1 ? "" : "s");
    if (incomplete > 0) {
        text += fmt::format(" {} of them {} incomplete.", incomplete, incomplete == 1 ? "is" : "are");
    }
    return text;
}

std::string finished_details(const contracts::RunResult& result) {
    std::string text = finished_text(result);
    for (const ZoneResult& zone : result.zones) {
        text += fmt::format("\n{} {}: {} of {} {}, {} %", result.analysis_field, zone.value,
                            base::text_of(zone.impervious_area), base::text_of(zone.total_area), result.area_unit,
                            base::text_of(zone.percent));
        text += zone.complete() ? "" : ", incomplete";
        text += zone.beyond_raster ? ", reaches beyond the land cover" : "";
        text += zone.without_cells() ? ", without any cell" : "";
    }
    for (const contracts::LegendCount& entry : result.legend) {
        text += fmt::format("\n{}: {} zone{}", entry.label, entry.zones, entry.zones == 1 ? "" : "s");
    }
    for (const std::string& file : result.files) {
        text += "\n" + file;
    }
    return text;
}

std::string unfinished_text(const contracts::RunResult& result) {
    if (result.cancelled) {
        return "The run was cancelled. Nothing has been changed.";
    }
    std::string text = "The run ended without an output.";
    for (std::size_t i = 0; i < result.unknown_classes.size(); ++i) {
        const contracts::UnknownClass& unknown = result.unknown_classes[i];
        text += fmt::format("{} {} ({} cell{})", i == 0 ? " Classes without coefficients:" : ",", unknown.code,
                            unknown.cells, unknown.cells == 1 ? "" : "s");
    }
    return text;
}

}  // namespace kestrel::qgis

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/result_json.h"

#include <nlohmann/json.hpp>

#include "apps/cli/result_table.h"

namespace kestrel::cli {

using nlohmann::ordered_json;
using platform::RunResult;
using platform::ZoneResult;

namespace {

ordered_json json_of(const ZoneResult& zone) {
    return {{"value", zone.value},
            {"total_area", zone.total_area},
            {"impervious_area", zone.impervious_area},
            {"percent", zone.percent},
            {"complete", zone.complete()},
            {"cells", zone.cells},
            {"nodata_cells", zone.nodata_cells},
            {"touches_nodata", zone.touches_nodata},
            {"beyond_raster", zone.beyond_raster},
            {"no_cell", zone.without_cells()}};
}

ordered_json totals(const RunResult& result) {
    const ZoneResult total = total_of(result);
    return {
        {"zones", result.zones.size()}, {"total_area", total.total_area}, {"impervious_area", total.impervious_area},
        {"percent", total.percent},     {"cells", total.cells},           {"nodata_cells", total.nodata_cells}};
}

}  // namespace

std::string result_json(const RunResult& result, const std::vector<std::string>& messages) {
    ordered_json zones = ordered_json::array();
    for (const ZoneResult& zone : result.zones) {
        zones.push_back(json_of(zone));
    }
    ordered_json legend = ordered_json::array();
    for (const platform::LegendCount& count : result.legend) {
        legend.push_back({{"label", count.label}, {"zones", count.zones}});
    }
    ordered_json unknown_classes = ordered_json::array();
    for (const platform::UnknownClass& unknown : result.unknown_classes) {
        unknown_classes.push_back({{"code", unknown.code}, {"cells", unknown.cells}});
    }
    const ordered_json whole{{"finished", result.finished},
                             {"cancelled", result.cancelled},
                             {"layer_name", result.layer_name},
                             {"analysis_layer", result.analysis_layer},
                             {"analysis_field", result.analysis_field},
                             {"land_cover_layer", result.land_cover_layer},
                             {"area_unit", result.area_unit},
                             {"zones", zones},
                             {"totals", totals(result)},
                             {"legend", legend},
                             {"unknown_classes", unknown_classes},
                             {"messages", messages},
                             {"notices", result.notices},
                             {"files", result.files}};
    return whole.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace kestrel::cli

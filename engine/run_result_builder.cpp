// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include "base/files.h"
#include "data/shapefile_members.h"
#include "data/shapefile_writer.h"
#include "engine/basUtil.h"
#include "engine/engine_texts.h"
#include "engine/model_run.h"
#include "polygons/intersect.h"

namespace kestrel {

using contracts::RunResult;
using contracts::ZoneResult;
using counting::ZoneCounts;
using polygons::Envelope;

namespace {

/// Adds the cells of each piece to the zone that it belongs to. \return cells of zones that count nowhere.
std::uint64_t add_cells(const ModelRun& run, const ZoneCounts& counts, std::vector<ZoneResult>& zones) {
    std::uint64_t uncovered = 0;
    const auto zone_of = [&](const ZoneCounts::Row& row) -> ZoneResult* {
        return run.zones->keys.key(row.zone, row.overlay) == ZoneKeys::kNoKey ? nullptr
                                                                              : &zones[run.groups.group_of()[row.zone]];
    };
    for (const ZoneCounts::Row& row : counts.rows) {
        if (ZoneResult* zone = zone_of(row)) {
            zone->cells += row.cells;
        } else {
            uncovered += row.cells;
        }
    }
    for (const ZoneCounts::Row& row : counts.nodata_rows) {
        if (ZoneResult* zone = zone_of(row)) {
            zone->nodata_cells += row.cells;
        }
    }
    return uncovered;
}

/// Marks the zones that touch NODATA and those that reach beyond the land cover's edge.
void add_flags(const ModelRun& run, const ZoneCounts& counts, std::vector<ZoneResult>& zones) {
    const Envelope extent = run.raster ? run.raster->grid().extent() : Envelope();
    for (std::size_t i = 0; i < run.groups.group_of().size(); ++i) {
        ZoneResult& zone = zones[run.groups.group_of()[i]];
        zone.touches_nodata = zone.touches_nodata || counts.touches_nodata[i] != 0;
        zone.beyond_raster = zone.beyond_raster || !extent.contains(run.zones->zones->envelope(i));
    }
}

void add_legend(const ModelRun& run, RunResult& result) {
    const data::ClassBreaksRenderer legend = output_legend();
    for (const auto& legend_class : legend.classes) {
        result.legend.push_back({legend_class.label, 0});
    }
    for (const double percent : run.output.percent) {
        const int position = legend.class_of(percent);
        if (position >= 0) {
            ++result.legend[static_cast<std::size_t>(position)].zones;
        }
    }
}

/// Writes where zones and a scenario meet, with the analysis value of each piece.
void keep_scenario(const ModelRun& run, std::uint32_t position, const std::string& path) {
    const std::vector<data::Field> fields{
        basUtil::CreateFields("analyfld", "analyfld", data::FieldType::text, 254, 0, 0)};
    data::ShapefileWriter writer(path, fields, run.raster->spatial_reference());
    polygons::intersect(*run.zones->zones, *run.zones->scenarios[position],
                        [&](std::size_t zone, std::size_t, const polygons::PolygonSet& piece) {
                            const data::Value key = run.groups.text(run.groups.group_of()[zone]);
                            writer.insert(piece, 0, std::span(&key, 1));
                            return true;
                        });
    writer.close();
}

}  // namespace

void describe_result(ModelRun& run) {
    RunResult& result = run.result;
    result.analysis_layer = run.analysis_theme;
    result.analysis_field = run.analysis_field;
    result.land_cover_layer = run.land_cover_theme;
    result.area_unit = run.units == "Feet" ? "acres" : "hectares";
    result.zones.resize(run.groups.count());
    for (std::size_t i = 0; i < result.zones.size(); ++i) {
        result.zones[i].value = run.groups.text(i);
        result.zones[i].total_area = run.output.total_area[i];
        result.zones[i].impervious_area = run.output.impervious_area[i];
        result.zones[i].percent = run.output.percent[i];
    }
    result.counts = run.areas.counts()->take_counts();
    const std::uint64_t uncovered = add_cells(run, result.counts, result.zones);
    if (uncovered > 0) {
        run.notices.notice(engine_texts::uncovered_cells(uncovered, run.density_theme));
    }
    add_flags(run, result.counts, result.zones);
    add_legend(run, result);
}

void keep_working_data(ModelRun& run, const std::string& folder) {
    base::create_folders(folder);
    for (const data::Table& table : run.result.zone_tables) {
        data::write_dbf(table, base::join_path(folder, table.name() + ".dbf"));
    }
    if (run.selected) {
        for (const std::string& member : data::shapefile_members(run.selected->source().path)) {
            base::copy_file(member, base::join_path(folder, base::file_name_of(member)));
        }
    }
    if (!run.zones) {
        return;
    }
    for (std::size_t i = 0; i < run.scenarios.size(); ++i) {
        if (run.scenarios[i].position) {
            keep_scenario(run, *run.scenarios[i].position, base::join_path(folder, fmt::format("{}dsInt.shp", i + 2)));
        }
    }
    const auto density =
        std::dynamic_pointer_cast<contracts::FeatureLayer>(basUtil::FindLayer(run.density_theme, run.map()));
    if (run.zones->density && density) {
        const data::FeatureClass zones = run.selected ? *run.selected : run.analysis_layer->feature_class();
        const data::FeatureClass cut_by = density->feature_class();
        basUtil::Intersect(&zones, &cut_by, "popIntersect", folder);
    }
}

}  // namespace kestrel

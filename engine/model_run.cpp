// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/model_run.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/conversions.h"
#include "base/errors.h"
#include "base/files.h"
#include "base/part_of_progress.h"
#include "engine/basUtil.h"
#include "engine/engine_texts.h"
#include "reporting/interaction.h"

namespace kestrel {

using base::RuntimeError;
using data::SpatialReference;
using data::Value;

namespace {

template <typename Kind>
std::shared_ptr<Kind> find_layer(const ModelRun& run, const std::string& name, const char* kind) {
    auto layer = std::dynamic_pointer_cast<Kind>(basUtil::FindLayer(name, run.map()));
    if (!layer) {
        throw RuntimeError(base::kObjectVariableNotSet, fmt::format("The map has no {} layer \"{}\"", kind, name));
    }
    return layer;
}

/// Whole numbers that were kept as text while they were copied.
void restore_integers(std::vector<Value>& values) {
    for (Value& value : values) {
        if (const auto* text = std::get_if<std::string>(&value)) {
            value = text->empty() ? Value() : Value(std::int64_t{std::stoll(*text)});
        }
    }
}

/// A scenario's polygons in the analysis layer's coordinate system.
PolygonLayer read_scenario(ModelRun& run, const std::string& name, std::size_t number, ScenarioTheme& theme,
                           base::Progress& progress) {
    const auto layer = find_layer<contracts::FeatureLayer>(run, name, "polygon");
    std::optional<PolygonLayer> scenario;
    if (layer->selection().count() > 0) {
        const auto copied = basUtil::CreateShapefile({}, *layer, run.working_folder(), fmt::format("{}dsSel", number));
        if (!copied) {
            throw RuntimeError(base::kObjectVariableNotSet,
                               fmt::format("The selected features of \"{}\" could not be copied", name));
        }
        scenario = read_polygon_layer(*copied, name, {}, progress, run.threads);
    } else {
        scenario = read_polygon_layer(layer->feature_class(), name, {}, progress, run.threads);
    }
    const SpatialReference& target = run.analysis.reference;
    theme.same_projection = !scenario->reference.known() || !target.known() || scenario->reference.same(target) ||
                            scenario->reference.same_projection(target);
    if (theme.same_projection) {
        scenario->polygons = polygons_in(*scenario, target, run.analysis_theme);
        scenario->reference = target;
    }
    return std::move(*scenario);
}

/// Scenario i works under names that begin with i + 2, not with 0 or 1.
constexpr std::size_t kFirstScenarioNumber = 2;

void add_scenario(ModelRun& run, RunZones& zones, const std::string& name, base::Progress& progress) {
    ScenarioTheme theme{.name = name, .position = {}, .failure = {}};
    try {
        const std::size_t number = run.scenarios.size() + kFirstScenarioNumber;
        const PolygonLayer scenario = read_scenario(run, name, number, theme, progress);
        if (!run.cancelled() && theme.same_projection && run.raster) {
            theme.position = static_cast<std::uint32_t>(zones.scenarios.size());
            zones.scenarios.push_back(polygons_in(scenario, run.raster->spatial_reference(), run.land_cover_theme));
        }
    } catch (...) {
        theme.position.reset();
        theme.failure = std::current_exception();  // told when the scenario's turn comes
    }
    run.scenarios.push_back(std::move(theme));
}

}  // namespace

const std::string& ModelRun::working_folder() {
    if (m_working_folder.empty()) {
        m_working_folder = base::make_unique_folder(base::join_path(work_path, "temp"), "run-");
    }
    return m_working_folder;
}

bool read_settings(ModelRun& run, const std::string& file_name) {
    run.reader.ReadParameters(run.work_path, file_name);
    run.analysis_theme = run.reader.AnalysisTheme();
    run.analysis_field = run.reader.AnalysisFieldName();
    run.land_cover_theme = run.reader.lcTheme();
    run.units = run.reader.LCUnits();
    run.option = run.reader.coefficient_option();
    run.out_theme_name = run.reader.OutThemeName();
    run.density_theme = run.reader.PopDensityTheme();
    run.density_field = run.reader.PopDensityFldName();
    run.density_high = run.reader.PopDensityHigh();
    run.density_low = run.reader.PopDensityLow();
    run.classes = run.reader.LandClasses();
    run.scenario_choices = run.reader.DevScenarios();
    return !run.analysis_theme.empty() || !run.land_cover_theme.empty();
}

bool read_analysis_layer(ModelRun& run) {
    run.analysis_layer = find_layer<contracts::FeatureLayer>(run, run.analysis_theme, "polygon");
    run.land_cover = find_layer<contracts::RasterLayer>(run, run.land_cover_theme, "raster");
    const data::FeatureClass source = run.analysis_layer->feature_class();
    run.analysis_fields = source.fields();
    const int position = source.find_field(run.analysis_field);
    if (position < 0) {
        reporting::current_interaction().message_box(engine_texts::analysis_field_missing());
        return false;
    }
    base::PartOfProgress progress(run.app.progress(), 0, kAnalysisLayerRead);
    if (run.analysis_layer->selection().count() > 0) {
        const auto copied = basUtil::CreateShapefile(run.analysis_field, *run.analysis_layer, run.working_folder());
        if (!copied) {
            return false;
        }
        run.selected = *copied;
        run.analysis = read_polygon_layer(*copied, run.analysis_theme, "analyfld", progress, run.threads);
    } else {
        run.analysis = read_polygon_layer(source, run.analysis_theme, run.analysis_field, progress, run.threads);
    }
    if (run.cancelled()) {
        return false;
    }
    // Whatever the working copy calls it: the user sees the field that was chosen.
    run.analysis.field = run.analysis_fields.at(static_cast<std::size_t>(position));
    if (run.analysis.field.type == data::FieldType::big_integer) {
        restore_integers(run.analysis.values);
    }
    run.groups = ZoneGroups(run.analysis.values);
    run.output.reference = run.analysis.reference;
    return true;
}

void inspect_land_cover(ModelRun& run) {
    try {
        run.raster = data::RasterDataset::open(run.land_cover->source());
    } catch (const RuntimeError&) {
        return;  // the area stage fails on it in its turn, and tells
    }
    const SpatialReference& reference = run.raster->spatial_reference();
    const std::string& name = run.land_cover_theme;
    if (reference.known() && !run.analysis.reference.known()) {
        // From here on, so that density and scenarios are compared with what the zones are taken to be in.
        run.notices.notice(engine_texts::missing_system(run.analysis_theme, false, name));
        run.analysis.reference = reference;
    }
    const double metres = reference.metres_per_unit().value_or(0);
    const bool feet = metres > 0.3 && metres < 0.31;
    if (reference.known() && reference.geographic()) {
        run.notices.notice(engine_texts::degrees(name));
    } else if (reference.known() && ((run.units == "Feet" && !feet) || (run.units == "Meters" && metres != 1))) {
        run.notices.notice(engine_texts::units_contradict(name, run.units, reference.name()));
    }
    if (reference.known() && reference.web_mercator()) {
        run.notices.notice(engine_texts::web_mercator(name));
    }
    if (run.raster->data_band_count() > 1) {
        run.notices.notice(engine_texts::several_bands(name, run.raster->data_band_count()));
    }
}

void lay_out_zones(ModelRun& run, const PolygonLayer* density) {
    const SpatialReference target = run.raster ? run.raster->spatial_reference() : run.analysis.reference;
    RunZones zones{.zones = polygons_in(run.analysis, target, run.land_cover_theme),
                   .density = {},
                   .scenarios = {},
                   .keys = density != nullptr ? ZoneKeys(run.groups, run.density_digits) : ZoneKeys(run.groups)};
    if (density != nullptr) {
        zones.density = polygons_in(*density, target, run.land_cover_theme);
    }
    const auto scenario_count = static_cast<double>(std::max<std::size_t>(1, run.scenario_choices->size()));
    const double each = (kScenariosEnd - kScenariosBegin) / scenario_count;
    double begin = kScenariosBegin;
    for (const auto& [number, choice] : *run.scenario_choices) {
        base::PartOfProgress progress(run.app.progress(), begin, begin + each);
        add_scenario(run, zones, choice.Item(1), progress);
        begin += each;
    }
    run.zones = std::move(zones);
}

AreaTheme area_theme(const ModelRun& run) {
    return {.name = run.analysis_theme, .fields = run.analysis_fields, .zones = &*run.zones, .scenario = {}};
}

}  // namespace kestrel

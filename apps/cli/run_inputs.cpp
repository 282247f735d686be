// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run_inputs.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "apps/cli/chosen_store.h"
#include "apps/cli/refusal.h"
#include "base/conversions.h"
#include "data/raster.h"
#include "hosting/run_choices.h"
#include "parameters/basISModelUtil.h"

namespace kestrel::cli {

using base::RuntimeError;
using basISModelUtil::FieldMode;
using data::FeatureClass;
using data::FeatureSource;
using data::Field;
using data::RasterDataset;
using data::SpatialReference;

namespace {

RasterDataset open_land_cover(const std::string& source) {
    try {
        return RasterDataset::open(source);
    } catch (const RuntimeError& error) {
        refuse("The land cover (--land-cover) cannot be used. {}", error.description());
    }
}

FeatureClass open_polygons(std::string_view option, const FeatureSource& source) {
    std::optional<FeatureClass> opened;
    try {
        opened = FeatureClass::open(source);
    } catch (const RuntimeError& error) {
        if (error.number() == base::kFileNotFound) {
            refuse("The source of {} cannot be opened. There is no file '{}'.", option, source.path);
        }
        refuse("The source of {} cannot be opened. {}", option, error.description());
    }
    const std::vector<std::string> layers = opened->layers_in_source();
    if (source.layer_name.empty() && layers.size() > 1) {
        refuse("'{}' of {} holds several layers: {}. Name one of them, as in '{}|layername={}'.", source.path, option,
               fmt::join(layers, ", "), source.path, layers.front());
    }
    if (!opened->polygonal()) {
        refuse("The layer '{}' of {} holds no polygons, in '{}'. Give a polygon layer.", opened->layer_name(), option,
               source.path);
    }
    return *opened;
}

/// Names of the fields of the mode's types.
std::string names_of(const std::vector<Field>& fields, FieldMode mode = basISModelUtil::kAllFields) {
    std::string names;
    for (const Field& field : fields) {
        if (basISModelUtil::suits(field.type, mode)) {
            names += (names.empty() ? "" : ", ") + field.name;
        }
    }
    return names.empty() ? "it has none" : names;
}

const Field& field_of(const FeatureClass& features, std::string_view option, const std::string& name) {
    const int position = features.find_field(name);
    if (position < 0) {
        refuse("The layer '{}' has no field '{}' ({}). Its fields: {}. Names are compared exactly.",
               features.layer_name(), name, option, names_of(features.fields()));
    }
    if (name.find('#') != std::string::npos) {
        refuse("The field '{}' ({}) cannot be used: its name holds '#'. Rename it, or take a copy of the layer.", name,
               option);
    }
    return features.fields()[static_cast<std::size_t>(position)];
}

void check_analysis_field(const FeatureClass& zones, const std::string& name) {
    if (!basISModelUtil::suits(field_of(zones, "--field", name).type, basISModelUtil::kAnalysisFields)) {
        refuse(
            "The field '{}' (--field) of the layer '{}' holds neither whole numbers nor text, so it cannot name the "
            "zones. Give another field: {}.",
            name, zones.layer_name(), names_of(zones.fields(), basISModelUtil::kAnalysisFields));
    }
}

void check_density_field(const FeatureClass& blocks, const std::string& name) {
    if (!basISModelUtil::suits(field_of(blocks, "--density-field", name).type, basISModelUtil::kNumericFields)) {
        refuse("The field '{}' (--density-field) of the layer '{}' holds no numbers. Give another field: {}.", name,
               blocks.layer_name(), names_of(blocks.fields(), basISModelUtil::kNumericFields));
    }
}

std::string chosen_units(const RunRequest& request, const RasterDataset& land_cover) {
    const SpatialReference& reference = land_cover.spatial_reference();
    if (reference.known() && reference.geographic() && !request.allow_degrees) {
        refuse(
            "The land cover '{}' is in degrees ({}), so its cells have no areas. Project it to metres or feet "
            "first; or give --allow-degrees and take the areas for what they are.",
            request.land_cover, reference.name());
    }
    if (!request.units.empty()) {
        return request.units;
    }
    const std::string own = hosting::units_of(reference);
    if (own.empty()) {
        refuse("The land cover '{}' does not say that it is in metres or feet. Give --units Meters or --units Feet.",
               request.land_cover);
    }
    return own;
}

std::vector<std::int64_t> selected_zones(const FeatureClass& zones, const std::string& where) {
    if (where.empty()) {
        return {};
    }
    std::vector<std::int64_t> ids;
    try {
        ids = zones.ids_where(where);
    } catch (const RuntimeError& error) {
        // The description comes last: it may draw an arrow below a place of the selection.
        refuse("The selection (--where) cannot be understood: {}. The fields of the layer '{}': {}. {}", where,
               zones.layer_name(), names_of(zones.fields()), error.description());
    }
    if (ids.empty()) {
        refuse(
            "The selection (--where) holds for none of the features of the layer '{}': {}. A run without a "
            "selection takes all of them; leave --where out for that.",
            zones.layer_name(), where);
    }
    return ids;
}

void add_zones(RunInputs& inputs, const RunRequest& request) {
    const FeatureSource source = FeatureSource::parse(request.zones);
    const FeatureClass zones = open_polygons("--zones", source);
    check_analysis_field(zones, request.field);
    inputs.distance_units = hosting::distance_units_of(zones.spatial_reference());
    inputs.parameters.analysis_layer = inputs.layers.add_features(source, zones, selected_zones(zones, request.where));
    inputs.parameters.analysis_field = request.field;
}

void add_density(RunInputs& inputs, const RunRequest& request) {
    inputs.parameters.coefficient_option = request.option;
    if (!request.by_density()) {
        return;
    }
    const FeatureSource source = FeatureSource::parse(request.density_layer);
    const FeatureClass blocks = open_polygons("--density-layer", source);
    check_density_field(blocks, request.density_field);
    inputs.parameters.density_layer = inputs.layers.add_features(source, blocks);
    inputs.parameters.density_field = request.density_field;
    inputs.parameters.density_high = request.density_high;
    inputs.parameters.density_medium = {request.density_low, request.density_high};
    inputs.parameters.density_low = request.density_low;
}

void add_scenarios(RunInputs& inputs, const RunRequest& request) {
    std::int32_t number = 0;
    for (const ScenarioRequest& scenario : request.scenarios) {
        const FeatureSource source = FeatureSource::parse(scenario.source);
        const FeatureClass polygons = open_polygons("--scenario", source);
        inputs.parameters.scenarios.push_back({++number, inputs.layers.add_features(source, polygons),
                                               hosting::class_name(inputs.store, inputs.set_name, scenario.code),
                                               base::text_of(scenario.code)});
    }
}

}  // namespace

RunInputs checked_inputs(const RunRequest& request, const std::string& store_path) {
    RunInputs inputs;
    const RasterDataset land_cover = open_land_cover(request.land_cover);
    inputs.parameters.land_cover_units = chosen_units(request, land_cover);
    inputs.parameters.land_cover_layer = inputs.layers.add_raster(request.land_cover);
    load_store(store_path, inputs.store);
    inputs.set_name = chosen_set(inputs.store, store_path, request.set);
    add_zones(inputs, request);
    add_density(inputs, request);
    add_scenarios(inputs, request);
    return inputs;
}

}  // namespace kestrel::cli

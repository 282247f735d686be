// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/polygon_layer.h"

#include <fmt/format.h>

#include "base/errors.h"
#include "base/part_of_progress.h"
#include "engine/engine_texts.h"
#include "polygons/repair.h"
#include "reporting/interaction.h"

namespace kestrel {

using data::FeatureClass;
using data::SpatialReference;
using polygons::PolygonSet;
using polygons::SharedPolygons;

namespace {

/// The share of the work with a layer that reading it takes.
constexpr double kRead = 0.7;

}  // namespace

PolygonLayer read_polygon_layer(const FeatureClass& source, const std::string& layer_name,
                                const std::string& field_name, base::Progress& progress, int threads) {
    PolygonLayer layer;
    layer.name = layer_name;
    layer.reference = source.spatial_reference();
    std::vector<std::string> wanted;
    if (!field_name.empty()) {
        const int position = source.find_field(field_name);
        if (position < 0) {
            throw base::RuntimeError(base::kInvalidProcedureCall,
                                     fmt::format("The layer \"{}\" has no field \"{}\"", layer_name, field_name));
        }
        layer.field = source.fields()[static_cast<std::size_t>(position)];
        wanted.push_back(field_name);
    }
    base::PartOfProgress reading(progress, 0, kRead);
    data::PolygonFeatures features = source.read_polygons(wanted, reading, threads);
    if (!features.columns.empty()) {
        layer.values = std::move(features.columns.front());
    }
    base::PartOfProgress checking(progress, kRead, 1);
    const std::size_t repaired = progress.cancelled() ? 0 : polygons::repair(features.polygons, checking, threads);
    if (repaired > 0) {
        reporting::current_interaction().notice(engine_texts::repaired_polygons(repaired, layer_name));
    }
    layer.polygons = std::make_shared<const PolygonSet>(std::move(features.polygons));
    return layer;
}

SharedPolygons polygons_in(const PolygonLayer& layer, const SpatialReference& target, const std::string& target_name) {
    if (layer.reference.known() != target.known()) {
        reporting::current_interaction().notice(
            engine_texts::missing_system(layer.name, layer.reference.known(), target_name));
    } else if (layer.reference.known() && !layer.reference.same(target)) {
        PolygonSet moved = *layer.polygons;
        project(moved, layer.reference, target);
        return std::make_shared<const PolygonSet>(std::move(moved));
    }
    return layer.polygons;
}

}  // namespace kestrel

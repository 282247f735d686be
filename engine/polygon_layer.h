// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/progress.h"
#include "contracts/layer.h"
#include "data/feature_class.h"
#include "data/field.h"
#include "data/spatial_reference.h"
#include "polygons/polygons.h"

namespace kestrel {

/// A polygon layer of the map as a run works with it: read once, repaired, in its own coordinate system.
struct PolygonLayer {
    /// The name that the user knows.
    std::string name;
    data::SpatialReference reference;
    polygons::SharedPolygons polygons;
    /// The field that was asked for, as the source defines it; without a name when none was.
    data::Field field;
    /// Its value for every feature; empty when no field was asked for.
    std::vector<data::Value> values;
};

/// Reads all features of a feature class. Invalid polygons are repaired, which draws a notice with their count.
/// \param layer_name for messages.
/// \param field_name a field of the class, or empty for none.
/// \param progress when it answers stop, the layer is incomplete and must not be used.
/// \param threads that may be used; 0 for as many as there are cores.
/// \throws RuntimeError when the class has no such field or cannot be read.
PolygonLayer read_polygon_layer(const data::FeatureClass& source, const std::string& layer_name,
                                const std::string& field_name, base::Progress& progress, int threads);

/// The polygons of `layer` in the coordinate system `target`: its own ones where nothing has to be projected. A
/// coordinate system that is missing on one side is taken as the other's, which draws a notice. \param target_name what
/// the notice calls the other side.
polygons::SharedPolygons polygons_in(const PolygonLayer& layer, const data::SpatialReference& target,
                                     const std::string& target_name);

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/progress.h"
#include "data/feature_source.h"
#include "data/field.h"
#include "data/layer_reading.h"
#include "data/polygon_features.h"

class OGRFeature;

/// \file
/// Private to this room: features of OGR turned into polygons and columns of values.
namespace kestrel::data {

/// The fields of a layer, and the positions of those that are read.
struct FieldChoice {
    const std::vector<Field>& fields;
    std::vector<int> positions;
};

/// Appends the chosen values of a feature, one to each column.
void take_values(std::vector<std::vector<Value>>& columns, const OGRFeature& feature, const FieldChoice& choice);

/// Appends a feature. \param label what messages call the layer.
/// \throws RuntimeError 5 when it is no polygon or has a coordinate that is no finite number.
void take_polygons(PolygonFeatures& features, const OGRFeature& feature, const FieldChoice& choice,
                   const std::string& label);

/// Reads all features of a polygon layer in their order. A shapefile is read in several places at once, others from
/// beginning to end.
/// \param open the layer of `source`, which nobody else reads meanwhile.
/// \param progress hears the share of the features that is read; when it answers stop, the result is incomplete.
/// \param threads as thread_count() gives it; the result does not depend on it.
/// \throws RuntimeError as take_polygons() and LayerReading do, whatever comes first in the layer.
PolygonFeatures read_all_polygons(const OpenLayer& open, const FeatureSource& source, const FieldChoice& choice,
                                  base::Progress& progress, int threads);

}  // namespace kestrel::data

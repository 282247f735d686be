// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "data/class_breaks.h"
#include "data/spatial_reference.h"

namespace kestrel::data {

/// What a layer file says of a layer.
struct LayerDefinition {
    std::string layer_name;
    /// The shapefile, in the folder of the layer file.
    std::string shapefile_name;
    SpatialReference reference;
    ClassBreaksRenderer renderer;
};

/// Writes a QGIS layer definition with a relative path to the data, so that folder and layer can be moved together.
/// Replaces an existing file; nothing half-written stays.
void write_layer_file(const std::string& path, const LayerDefinition& definition);

/// Writes the symbols alone as a QGIS style, which QGIS applies to the shapefile of the same name.
void write_style_file(const std::string& path, const ClassBreaksRenderer& renderer);

}  // namespace kestrel::data

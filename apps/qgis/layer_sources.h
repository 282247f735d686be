// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <optional>
#include <string>

#include "contracts/map.h"
#include "data/feature_class.h"

class QgsCoordinateReferenceSystem;
class QgsRasterLayer;
class QgsVectorLayer;

/// \file
/// Where the layers of QGIS have their data, in terms of the libraries that the engine reads with.
namespace kestrel::qgis {

/// A text of Qt as the engine holds it.
std::string text_of(const QString& text);

/// The file, layer and filter from which OGR reads what the layer draws; nothing for a layer of another provider, and
/// for one whose source says more than these three can.
std::optional<data::FeatureSource> ogr_source(const QgsVectorLayer& layer);

/// Whether the layer shows more than its source holds: uncommitted edits, fields of its own, or a coordinate system
/// that was chosen for it.
bool shows_more_than_its_source(const QgsVectorLayer& layer);

/// The name by which GDAL opens the layer's raster; empty for a layer of another provider.
std::string gdal_source(const QgsRasterLayer& layer);

/// The distance units of a map in this coordinate system.
contracts::DistanceUnits units_of_map(const QgsCoordinateReferenceSystem& reference);

}  // namespace kestrel::qgis

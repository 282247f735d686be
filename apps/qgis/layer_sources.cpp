// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/layer_sources.h"

#include <qgsproviderregistry.h>
#include <qgsrasterdataprovider.h>
#include <qgsrasterlayer.h>
#include <qgsvectordataprovider.h>
#include <qgsvectorlayer.h>

#include <QFileInfo>

#include "apps/qgis/qgis_names.h"

namespace kestrel::qgis {

namespace {

/// Parts of a source beside path, layer and filter change what of it is shown, or how it is opened.
bool says_only(const QVariantMap& parts, const QStringList& known) {
    for (auto part = parts.begin(); part != parts.end(); ++part) {
        if (!known.contains(part.key()) && !part.value().toString().isEmpty()) {
            return false;
        }
    }
    return true;
}

/// QGIS takes whole statements for a filter, too.
bool is_statement(const QString& filter) {
    return filter.trimmed().startsWith("SELECT ", Qt::CaseInsensitive);
}

}  // namespace

std::string text_of(const QString& text) {
    return text.toStdString();
}

std::optional<data::FeatureSource> ogr_source(const QgsVectorLayer& layer) {
    if (layer.providerType() != "ogr" || is_statement(layer.subsetString())) {
        return std::nullopt;
    }
    const QVariantMap parts = QgsProviderRegistry::instance()->decodeUri("ogr", layer.source());
    const QString path = parts.value("path").toString();
    if (!says_only(parts, {"path", "layerName", "subset", "databaseName"}) || !QFileInfo::exists(path)) {
        return std::nullopt;
    }
    return data::FeatureSource{.path = text_of(path),
                               .layer_name = text_of(parts.value("layerName").toString()),
                               .subset = text_of(layer.subsetString())};
}

bool shows_more_than_its_source(const QgsVectorLayer& layer) {
    if (layer.isEditable() && layer.isModified()) {
        return true;
    }
    const QgsFields fields = layer.fields();
    for (int i = 0; i < fields.count(); ++i) {
        if (fields.fieldOrigin(i) != kFieldOfProvider) {
            return true;
        }
    }
    return layer.crs().isValid() && layer.dataProvider() != nullptr && layer.crs() != layer.dataProvider()->crs();
}

std::string gdal_source(const QgsRasterLayer& layer) {
    if (layer.providerType() != "gdal" || layer.dataProvider() == nullptr) {
        return {};
    }
    const QVariantMap parts = QgsProviderRegistry::instance()->decodeUri("gdal", layer.source());
    if (says_only(parts, {"path"})) {
        return text_of(parts.value("path").toString());
    }
    return text_of(layer.source());
}

contracts::DistanceUnits units_of_map(const QgsCoordinateReferenceSystem& reference) {
    const auto units = reference.mapUnits();
    if (units == kMapUnitsMeters) {
        return contracts::kMeters;
    }
    if (units == kMapUnitsFeet || units == kMapUnitsSurveyFeet) {
        return contracts::kFeet;
    }
    return units == kMapUnitsDegrees ? contracts::kDecimalDegrees : contracts::kUnknownUnits;
}

}  // namespace kestrel::qgis

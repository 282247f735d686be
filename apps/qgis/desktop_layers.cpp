// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/desktop_layers.h"

#include <qgsfeatureiterator.h>
#include <qgsrasterlayer.h>
#include <qgsrenderer.h>
#include <qgsvectorlayer.h>

#include <algorithm>

#include "apps/qgis/desktop_renderer.h"
#include "apps/qgis/layer_sources.h"
#include "apps/qgis/qgis_names.h"
#include "base/errors.h"

namespace kestrel::qgis {

using data::FeatureClass;
using data::FeatureSource;

namespace {

/// The layer behind a guarded pointer. \throws RuntimeError 91 when it is gone.
template <typename MapLayer>
MapLayer& living(const QPointer<MapLayer>& layer, int line = __builtin_LINE()) {
    if (layer.isNull()) {
        throw base::RuntimeError(base::kObjectVariableNotSet, "The layer has been removed from the map", "Kestrel",
                                 line);
    }
    return *layer;
}

}  // namespace

DesktopFeatureLayer::DesktopFeatureLayer(QgsVectorLayer& layer, std::shared_ptr<LayerCopies> copies)
    : m_layer(&layer), m_copies(std::move(copies)) {}

DesktopFeatureLayer::DesktopFeatureLayer(std::unique_ptr<QgsVectorLayer> layer, std::shared_ptr<LayerCopies> copies)
    : m_owned(std::move(layer)), m_layer(m_owned.get()), m_copies(std::move(copies)) {}

DesktopFeatureLayer::~DesktopFeatureLayer() = default;

QgsVectorLayer& DesktopFeatureLayer::layer() const {
    return living(m_layer);
}

QgsMapLayer* DesktopFeatureLayer::map_layer() const {
    return m_layer.data();
}

std::string DesktopFeatureLayer::name() const {
    return text_of(layer().name());
}

FeatureClass DesktopFeatureLayer::feature_class() const {
    return FeatureClass::open(LayerCopies::needed(layer()) ? m_copies->copy_of(layer()).source
                                                           : ogr_source(layer()).value());
}

FeatureSource DesktopFeatureLayer::source() const {
    return ogr_source(layer()).value_or(FeatureSource{});
}

std::vector<data::Field> DesktopFeatureLayer::fields() const {
    return LayerCopies::needed(layer()) ? fields_of_copy(layer()) : FeatureLayer::fields();
}

bool DesktopFeatureLayer::polygonal() const {
    if (!LayerCopies::needed(layer())) {
        return FeatureLayer::polygonal();
    }
    return layer().geometryType() == kPolygonGeometry || layer().wkbType() == kUnknownShapes ||
           layer().wkbType() == kCollectionShapes;
}

void DesktopFeatureLayer::set_renderer(const data::ClassBreaksRenderer& renderer) {
    layer().setRenderer(graduated_renderer(renderer).release());
    layer().triggerRepaint();
    layer().emitStyleChanged();
}

std::vector<std::int64_t> DesktopFeatureLayer::LayerSelection::ids() const {
    QgsVectorLayer& layer = m_layer.layer();
    if (layer.selectedFeatureCount() == 0) {
        return {};
    }
    // What is selected may be hidden by a filter that was set later, which QGIS heeds only when it looks at everything.
    const QgsFeatureIds selected = layer.selectedFeatureIds();
    QgsFeatureRequest request = layer.subsetString().isEmpty() ? QgsFeatureRequest(selected) : QgsFeatureRequest();
    request.setFlags(kWithoutGeometry).setNoAttributes();
    QgsFeatureIterator features = layer.getFeatures(request);
    const bool copied = LayerCopies::needed(layer);
    std::vector<std::int64_t> ids;
    QgsFeature feature;
    while (features.nextFeature(feature)) {
        if (selected.contains(feature.id())) {
            ids.push_back(copied ? m_layer.m_copies->copy_of(layer).ids.at(feature.id()) : feature.id());
        }
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

DesktopRasterLayer::DesktopRasterLayer(QgsRasterLayer& layer) : m_layer(&layer) {}

DesktopRasterLayer::~DesktopRasterLayer() = default;

QgsRasterLayer& DesktopRasterLayer::layer() const {
    return living(m_layer);
}

QgsMapLayer* DesktopRasterLayer::map_layer() const {
    return m_layer.data();
}

std::string DesktopRasterLayer::name() const {
    return text_of(layer().name());
}

std::string DesktopRasterLayer::source() const {
    return gdal_source(layer());
}

OtherDesktopLayer::OtherDesktopLayer(QgsMapLayer& layer) : m_layer(&layer) {}

OtherDesktopLayer::~OtherDesktopLayer() = default;

QgsMapLayer* OtherDesktopLayer::map_layer() const {
    return m_layer.data();
}

std::string OtherDesktopLayer::name() const {
    return text_of(living(m_layer).name());
}

std::shared_ptr<contracts::Layer> desktop_layer(QgsMapLayer& layer, const std::shared_ptr<LayerCopies>& copies) {
    if (layer.isValid()) {
        auto* const features = qobject_cast<QgsVectorLayer*>(&layer);
        if (features != nullptr && features->isSpatial()) {
            return std::make_shared<DesktopFeatureLayer>(*features, copies);
        }
        auto* const raster = qobject_cast<QgsRasterLayer*>(&layer);
        if (raster != nullptr && !gdal_source(*raster).empty()) {
            return std::make_shared<DesktopRasterLayer>(*raster);
        }
    }
    return std::make_shared<OtherDesktopLayer>(layer);
}

}  // namespace kestrel::qgis

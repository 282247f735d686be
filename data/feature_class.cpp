// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/feature_class.h"

#include <cpl_error.h>
#include <fmt/format.h>
#include <ogrsf_frmts.h>

#include <algorithm>

#include "base/errors.h"
#include "base/parallel.h"
#include "data/gdal_support.h"
#include "data/layer_reading.h"
#include "data/ogr_fields.h"
#include "data/polygon_reading.h"

namespace kestrel::data {

struct FeatureClass::Source {
    FeatureSource source;
    OpenLayer open;
    std::string layer_name;
    std::vector<Field> fields;
    SpatialReference reference;
};

namespace {

SpatialReference reference_of(OGRLayer& layer) {
    const OGRSpatialReference* const system = layer.GetSpatialRef();
    // GeoPackages name the lack of a system ("Undefined Cartesian SRS", "Undefined geographic SRS").
    if (system == nullptr || std::string_view(system->GetName()).starts_with("Undefined ")) {
        return {};
    }
    static const char* const kOptions[] = {"FORMAT=WKT2", "MULTILINE=NO", nullptr};
    char* text = nullptr;
    const OGRErr error = system->exportToWkt(&text, kOptions);
    const std::string wkt = text != nullptr ? text : "";
    CPLFree(text);
    if (error != OGRERR_NONE) {
        throw gdal_error(fmt::format("The coordinate system of {} cannot be read", layer.GetName()));
    }
    return SpatialReference::from(wkt);
}

bool may_hold_polygons(OGRwkbGeometryType type) {
    switch (wkbFlatten(type)) {
        case wkbPolygon:
        case wkbMultiPolygon:
        case wkbCurvePolygon:
        case wkbMultiSurface:
        case wkbSurface:
        case wkbTriangle:
        case wkbUnknown:
            return true;
        default:
            return false;
    }
}

/// Whether reading in order yields ascending ids, so that features fetched by ascending ids come in source order.
bool in_id_order(GDALDataset& dataset, const FeatureSource& source) {
    const std::string name = driver_name(dataset);
    return name == "ESRI Shapefile" || (name == "GPKG" && source.subset.empty());
}

/// Whether fetching these features one by one is quicker than reading all.
bool few(std::span<const std::int64_t> ids, OGRLayer& layer) {
    constexpr GIntBig kOneByOneCost = 8;
    return static_cast<GIntBig>(ids.size()) * kOneByOneCost < layer.GetFeatureCount(FALSE);
}

/// Asks for the features of `ids`, or all, and hands each to `take`.
/// \return how many there were.
template <typename Take>
std::size_t visit(LayerReading& reading, std::optional<std::span<const std::int64_t>> ids, bool by_id, Take take) {
    std::size_t count = 0;
    if (by_id) {
        for (const std::int64_t id : *ids) {
            if (const FeaturePointer feature = reading.at(id)) {
                take(*feature);
                ++count;
            }
        }
        return count;
    }
    while (const FeaturePointer feature = reading.next()) {
        if (!ids || std::binary_search(ids->begin(), ids->end(), std::int64_t{feature->GetFID()})) {
            take(*feature);
            ++count;
        }
    }
    return count;
}

}  // namespace

FeatureClass FeatureClass::open(const FeatureSource& source) {
    auto opened = std::make_shared<Source>();
    opened->source = source;
    opened->open = open_layer(source);
    opened->layer_name = opened->open.layer->GetName();
    opened->fields = fields_of(*opened->open.layer->GetLayerDefn());
    opened->reference = reference_of(*opened->open.layer);
    return FeatureClass(std::move(opened));
}

const FeatureSource& FeatureClass::source() const noexcept {
    return m_source->source;
}

std::vector<std::string> FeatureClass::layers_in_source() const {
    return layer_names(*m_source->open.dataset);
}

const std::string& FeatureClass::layer_name() const noexcept {
    return m_source->layer_name;
}

const std::vector<Field>& FeatureClass::fields() const noexcept {
    return m_source->fields;
}

int FeatureClass::find_field(std::string_view name) const noexcept {
    const auto& fields = m_source->fields;
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const Field& f) { return f.name == name; });
    return found == fields.end() ? -1 : static_cast<int>(found - fields.begin());
}

const SpatialReference& FeatureClass::spatial_reference() const noexcept {
    return m_source->reference;
}

bool FeatureClass::polygonal() const noexcept {
    return may_hold_polygons(m_source->open.layer->GetGeomType());
}

std::int64_t FeatureClass::feature_count() const {
    CPLErrorReset();
    const std::int64_t count = m_source->open.layer->GetFeatureCount(TRUE);
    if (count < 0 || gdal_failed()) {
        throw gdal_error(fmt::format("The features of {} cannot be counted", m_source->open.label));
    }
    return count;
}

polygons::Envelope FeatureClass::extent() const {
    polygons::Envelope result;
    if (feature_count() == 0) {
        return result;  // drivers give a point at the origin, or fail
    }
    CPLErrorReset();
    OGREnvelope found;
    if (m_source->open.layer->GetExtent(&found, TRUE) == OGRERR_NONE) {
        result.add({found.MinX, found.MinY});
        result.add({found.MaxX, found.MaxY});
    } else if (gdal_failed()) {
        throw gdal_error(fmt::format("The extent of {} cannot be read", m_source->open.label));
    }
    return result;
}

std::vector<std::int64_t> FeatureClass::ids_where(const std::string& where) const {
    LayerReading reading(m_source->open, m_source->source);
    reading.filter(where);
    std::vector<std::int64_t> ids;
    visit(reading, std::nullopt, false, [&](const OGRFeature& feature) { ids.push_back(feature.GetFID()); });
    std::sort(ids.begin(), ids.end());
    return ids;
}

namespace {

std::vector<int> positions_of(const FeatureClass& features, std::span<const std::string> names) {
    std::vector<int> positions;
    for (const std::string& name : names) {
        const int position = features.find_field(name);
        if (position < 0) {
            throw base::RuntimeError(base::kInvalidProcedureCall,
                                     fmt::format("{} has no field \"{}\"", features.source().path, name));
        }
        positions.push_back(position);
    }
    return positions;
}

}  // namespace

void FeatureClass::refuse_unless_polygonal() const {
    if (!polygonal()) {
        throw base::RuntimeError(base::kInvalidProcedureCall,
                                 fmt::format("{} is no layer of polygons", m_source->open.label));
    }
}

PolygonFeatures FeatureClass::read_polygons(std::span<const std::string> field_names,
                                            std::optional<std::span<const std::int64_t>> only) const {
    refuse_unless_polygonal();
    const FieldChoice choice{m_source->fields, positions_of(*this, field_names)};
    LayerReading reading(m_source->open, m_source->source);
    reading.keep_only(choice.fields, choice.positions, true);
    PolygonFeatures result;
    result.columns.resize(choice.positions.size());
    const bool by_id =
        only && in_id_order(*m_source->open.dataset, m_source->source) && few(*only, *m_source->open.layer);
    const std::size_t count = visit(reading, only, by_id, [&](const OGRFeature& feature) {
        take_polygons(result, feature, choice, m_source->open.label);
    });
    if (only && count != only->size()) {
        throw base::RuntimeError(
            base::kInvalidProcedureCall,
            fmt::format("{} holds only {} of the {} features asked for", m_source->open.label, count, only->size()));
    }
    return result;
}

PolygonFeatures FeatureClass::read_polygons(std::span<const std::string> field_names, base::Progress& progress,
                                            int threads) const {
    refuse_unless_polygonal();
    const FieldChoice choice{m_source->fields, positions_of(*this, field_names)};
    return read_all_polygons(m_source->open, m_source->source, choice, progress, base::thread_count(threads));
}

std::vector<std::vector<Value>> FeatureClass::read_columns(std::span<const std::string> field_names) const {
    const FieldChoice choice{m_source->fields, positions_of(*this, field_names)};
    LayerReading reading(m_source->open, m_source->source);
    reading.keep_only(choice.fields, choice.positions, false);
    std::vector<std::vector<Value>> result(choice.positions.size());
    visit(reading, std::nullopt, false, [&](const OGRFeature& feature) { take_values(result, feature, choice); });
    return result;
}

}  // namespace kestrel::data

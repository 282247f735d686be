// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/feature_class.h"

#include <cpl_error.h>
#include <cpl_string.h>
#include <fmt/format.h>
#include <ogrsf_frmts.h>

#include <algorithm>

#include "platform/errors.h"
#include "platform/files.h"
#include "platform/gdal_support.h"
#include "platform/ogr_fields.h"
#include "platform/ogr_polygons.h"

namespace kestrel::platform {

struct FeatureClass::Source {
    FeatureSource source;
    GDALDatasetUniquePtr dataset;
    OGRLayer* layer = nullptr;
    std::string layer_name;
    std::vector<Field> fields;
    SpatialReference reference;

    /// For messages: path, and layer where it is not the path's own.
    std::string label() const {
        return base_name_of(source.path) == layer_name ? source.path : source.path + "|layername=" + layer_name;
    }
};

namespace {

std::vector<std::string> layer_names(GDALDataset& dataset) {
    std::vector<std::string> names;
    for (OGRLayer* const layer : dataset.GetLayers()) {
        names.emplace_back(layer->GetName());
    }
    return names;
}

OGRLayer* find_layer(GDALDataset& dataset, const FeatureSource& source) {
    OGRLayer* const found =
        source.layer_name.empty() ? dataset.GetLayer(0) : dataset.GetLayerByName(source.layer_name.c_str());
    if (found != nullptr) {
        return found;
    }
    if (dataset.GetLayerCount() == 0) {
        throw RuntimeError(kLibraryFailure, fmt::format("{} holds no layer of features", source.path));
    }
    throw RuntimeError(kLibraryFailure, fmt::format("{} has no layer \"{}\"; its layers are: {}", source.path,
                                                    source.layer_name, fmt::join(layer_names(dataset), ", ")));
}

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

void set_subset(OGRLayer& layer, const std::string& subset, const std::string& label) {
    if (subset.empty()) {
        return;
    }
    const bool taken = layer.SetAttributeFilter(subset.c_str()) == OGRERR_NONE;
    // Databases look at the filter only when the first feature is asked for.
    const OGRFeatureUniquePtr first(taken ? layer.GetNextFeature() : nullptr);
    if (!taken || gdal_failed()) {
        throw gdal_error(fmt::format("The filter {} does not suit {}", subset, label));
    }
    layer.ResetReading();
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

/// One reading of a layer: what it needs, and the features in order. At its end the layer is as it was.
class Reading {
  public:
    Reading(OGRLayer& layer, const FeatureSource& source, std::string label)
        : m_layer(layer), m_source(source), m_label(std::move(label)) {
        CPLErrorReset();
        m_layer.ResetReading();
    }
    ~Reading() {
        m_layer.SetIgnoredFields(nullptr);
        if (m_filtered) {
            m_layer.SetAttributeFilter(m_source.subset.empty() ? nullptr : m_source.subset.c_str());
        }
        m_layer.ResetReading();
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    /// Lets the driver leave out what nobody asks for.
    void keep_only(const std::vector<Field>& fields, const std::vector<int>& kept, bool geometry) {
        if (m_layer.TestCapability(OLCIgnoreFields) == 0 || !m_source.subset.empty()) {
            return;  // a filter may look at any field
        }
        CPLStringList ignored;
        ignored.AddString("OGR_STYLE");
        if (!geometry) {
            ignored.AddString("OGR_GEOMETRY");
        }
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (std::find(kept.begin(), kept.end(), static_cast<int>(i)) == kept.end()) {
                ignored.AddString(fields[i].name.c_str());
            }
        }
        check(m_layer.SetIgnoredFields(const_cast<const char**>(ignored.List())) == OGRERR_NONE);
    }

    /// Lets only features pass that suit `where` besides the source's own filter.
    void filter(const std::string& where) {
        const std::string both = m_source.subset.empty() ? where : fmt::format("({}) AND ({})", m_source.subset, where);
        m_filtered = true;
        check(m_layer.SetAttributeFilter(both.c_str()) == OGRERR_NONE);
    }

    /// The next feature, nothing at the end. The driver says only through its error state why it stopped.
    OGRFeatureUniquePtr next() {
        OGRFeatureUniquePtr feature(m_layer.GetNextFeature());
        check(!gdal_failed());
        return feature;
    }

    /// The feature of that id, nothing when there is none.
    OGRFeatureUniquePtr at(std::int64_t id) {
        OGRFeatureUniquePtr feature(m_layer.GetFeature(id));
        if (feature == nullptr) {
            CPLErrorReset();
        }
        check(!gdal_failed());
        return feature;
    }

  private:
    void check(bool good) const {
        if (!good) {
            throw gdal_error(fmt::format("{} cannot be read", m_label));
        }
    }

    OGRLayer& m_layer;
    const FeatureSource& m_source;
    std::string m_label;
    bool m_filtered = false;
};

/// Whether reading in order yields ascending ids, so that features fetched by ascending ids come in source order.
bool in_id_order(GDALDataset& dataset, const FeatureSource& source) {
    const GDALDriver* const driver = dataset.GetDriver();
    const std::string name = driver != nullptr ? driver->GetDescription() : "";
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
std::size_t visit(Reading& reading, std::optional<std::span<const std::int64_t>> ids, bool by_id, Take take) {
    std::size_t count = 0;
    if (by_id) {
        for (const std::int64_t id : *ids) {
            if (const OGRFeatureUniquePtr feature = reading.at(id)) {
                take(*feature);
                ++count;
            }
        }
        return count;
    }
    while (const OGRFeatureUniquePtr feature = reading.next()) {
        if (!ids || std::binary_search(ids->begin(), ids->end(), std::int64_t{feature->GetFID()})) {
            take(*feature);
            ++count;
        }
    }
    return count;
}

}  // namespace

FeatureClass FeatureClass::open(const FeatureSource& source) {
    start_gdal();
    CPLErrorReset();
    auto opened = std::make_shared<Source>();
    opened->source = source;
    opened->dataset.reset(
        GDALDataset::Open(source.path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR));
    if (opened->dataset == nullptr) {
        throw gdal_open_error(fmt::format("{} cannot be opened", source.path), source.path);
    }
    opened->layer = find_layer(*opened->dataset, source);
    opened->layer_name = opened->layer->GetName();
    opened->fields = fields_of(*opened->layer->GetLayerDefn());
    opened->reference = reference_of(*opened->layer);
    set_subset(*opened->layer, source.subset, opened->label());
    return FeatureClass(std::move(opened));
}

const FeatureSource& FeatureClass::source() const noexcept {
    return m_source->source;
}

std::vector<std::string> FeatureClass::layers_in_source() const {
    return layer_names(*m_source->dataset);
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
    return may_hold_polygons(m_source->layer->GetGeomType());
}

std::int64_t FeatureClass::feature_count() const {
    CPLErrorReset();
    const std::int64_t count = m_source->layer->GetFeatureCount(TRUE);
    if (count < 0 || gdal_failed()) {
        throw gdal_error(fmt::format("The features of {} cannot be counted", m_source->label()));
    }
    return count;
}

Envelope FeatureClass::extent() const {
    Envelope result;
    if (feature_count() == 0) {
        return result;  // drivers give a point at the origin, or fail
    }
    CPLErrorReset();
    OGREnvelope found;
    if (m_source->layer->GetExtent(&found, TRUE) == OGRERR_NONE) {
        result.add({found.MinX, found.MinY});
        result.add({found.MaxX, found.MaxY});
    } else if (gdal_failed()) {
        throw gdal_error(fmt::format("The extent of {} cannot be read", m_source->label()));
    }
    return result;
}

std::vector<std::int64_t> FeatureClass::ids_where(const std::string& where) const {
    Reading reading(*m_source->layer, m_source->source, m_source->label());
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
            throw RuntimeError(kInvalidProcedureCall,
                               fmt::format("{} has no field \"{}\"", features.source().path, name));
        }
        positions.push_back(position);
    }
    return positions;
}

void refuse_unless_appended(AppendResult result, std::int64_t id, const std::string& label) {
    if (result == AppendResult::no_polygon) {
        throw RuntimeError(kInvalidProcedureCall, fmt::format("Feature {} of {} is no polygon", id, label));
    }
    if (result == AppendResult::not_finite) {
        throw RuntimeError(kInvalidProcedureCall,
                           fmt::format("Feature {} of {} has a coordinate that is no finite number", id, label));
    }
}

/// Fills one column for each field, feature by feature.
class Columns {
  public:
    Columns(const std::vector<Field>& fields, std::vector<int> positions, std::vector<std::vector<Value>>& columns)
        : m_fields(fields), m_positions(std::move(positions)), m_columns(columns) {
        m_columns.resize(m_positions.size());
    }
    void take(const OGRFeature& feature) {
        for (std::size_t i = 0; i < m_positions.size(); ++i) {
            const int position = m_positions[i];
            m_columns[i].push_back(value_of(feature, position, m_fields[static_cast<std::size_t>(position)].type));
        }
    }

  private:
    const std::vector<Field>& m_fields;
    std::vector<int> m_positions;
    std::vector<std::vector<Value>>& m_columns;
};

}  // namespace

PolygonFeatures FeatureClass::read_polygons(std::span<const std::string> field_names,
                                            std::optional<std::span<const std::int64_t>> only) const {
    if (!polygonal()) {
        throw RuntimeError(kInvalidProcedureCall, fmt::format("{} is no layer of polygons", m_source->label()));
    }
    const auto positions = positions_of(*this, field_names);
    Reading reading(*m_source->layer, m_source->source, m_source->label());
    reading.keep_only(m_source->fields, positions, true);
    PolygonFeatures result;
    Columns columns(m_source->fields, positions, result.columns);
    const bool by_id = only && in_id_order(*m_source->dataset, m_source->source) && few(*only, *m_source->layer);
    const std::size_t count = visit(reading, only, by_id, [&](const OGRFeature& feature) {
        refuse_unless_appended(append_feature(result.polygons, feature.GetGeometryRef()), feature.GetFID(),
                               m_source->label());
        result.ids.push_back(feature.GetFID());
        columns.take(feature);
    });
    if (only && count != only->size()) {
        throw RuntimeError(kInvalidProcedureCall, fmt::format("{} holds only {} of the {} features asked for",
                                                              m_source->label(), count, only->size()));
    }
    return result;
}

std::vector<std::vector<Value>> FeatureClass::read_columns(std::span<const std::string> field_names) const {
    const auto positions = positions_of(*this, field_names);
    Reading reading(*m_source->layer, m_source->source, m_source->label());
    reading.keep_only(m_source->fields, positions, false);
    std::vector<std::vector<Value>> result;
    Columns columns(m_source->fields, positions, result);
    visit(reading, std::nullopt, false, [&](const OGRFeature& feature) { columns.take(feature); });
    return result;
}

}  // namespace kestrel::platform

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/layer_reading.h"

#include <cpl_error.h>
#include <cpl_string.h>
#include <fmt/format.h>
#include <ogrsf_frmts.h>

#include <algorithm>

#include "base/errors.h"
#include "base/files.h"
#include "data/gdal_support.h"

namespace kestrel::data {

void DeleteFeature::operator()(OGRFeature* feature) const {
    OGRFeature::DestroyFeature(feature);
}

std::string driver_name(GDALDataset& dataset) {
    const GDALDriver* const driver = dataset.GetDriver();
    return driver != nullptr ? driver->GetDescription() : "";
}

std::vector<std::string> layer_names(GDALDataset& dataset) {
    std::vector<std::string> names;
    for (OGRLayer* const layer : dataset.GetLayers()) {
        names.emplace_back(layer->GetName());
    }
    return names;
}

namespace {

OGRLayer* find_layer(GDALDataset& dataset, const FeatureSource& source) {
    OGRLayer* const found =
        source.layer_name.empty() ? dataset.GetLayer(0) : dataset.GetLayerByName(source.layer_name.c_str());
    if (found != nullptr) {
        return found;
    }
    if (dataset.GetLayerCount() == 0) {
        throw base::RuntimeError(base::kLibraryFailure, fmt::format("{} holds no layer of features", source.path));
    }
    throw base::RuntimeError(base::kLibraryFailure,
                             fmt::format("{} has no layer \"{}\"; its layers are: {}", source.path, source.layer_name,
                                         fmt::join(layer_names(dataset), ", ")));
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

}  // namespace

OpenLayer open_layer(const FeatureSource& source) {
    start_gdal();
    CPLErrorReset();
    OpenLayer open;
    open.dataset = GDALDatasetUniquePtr(
        GDALDataset::Open(source.path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR));
    if (open.dataset == nullptr) {
        throw gdal_open_error(fmt::format("{} cannot be opened", source.path), source.path);
    }
    open.layer = find_layer(*open.dataset, source);
    const std::string name = open.layer->GetName();
    open.label = base::base_name_of(source.path) == name ? source.path : source.path + "|layername=" + name;
    set_subset(*open.layer, source.subset, open.label);
    return open;
}

LayerReading::LayerReading(const OpenLayer& open, const FeatureSource& source)
    : m_layer(*open.layer), m_source(source), m_label(open.label) {
    CPLErrorReset();
    m_layer.ResetReading();
}

LayerReading::~LayerReading() {
    m_layer.SetIgnoredFields(nullptr);
    if (m_filtered) {
        m_layer.SetAttributeFilter(m_source.subset.empty() ? nullptr : m_source.subset.c_str());
    }
    m_layer.ResetReading();
}

void LayerReading::keep_only(const std::vector<Field>& fields, const std::vector<int>& kept, bool geometry) {
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

void LayerReading::filter(const std::string& where) {
    const std::string both = m_source.subset.empty() ? where : fmt::format("({}) AND ({})", m_source.subset, where);
    m_filtered = true;
    check(m_layer.SetAttributeFilter(both.c_str()) == OGRERR_NONE);
}

void LayerReading::go_to(std::int64_t position) {
    check(m_layer.SetNextByIndex(position) == OGRERR_NONE);
}

/// The driver says only through its error state why it stopped.
FeaturePointer LayerReading::next() {
    FeaturePointer feature(m_layer.GetNextFeature());
    check(!gdal_failed());
    return feature;
}

FeaturePointer LayerReading::at(std::int64_t id) {
    FeaturePointer feature(m_layer.GetFeature(id));
    if (feature == nullptr) {
        CPLErrorReset();
    }
    check(!gdal_failed());
    return feature;
}

void LayerReading::check(bool good) const {
    if (!good) {
        throw gdal_error(fmt::format("{} cannot be read", m_label));
    }
}

}  // namespace kestrel::data

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "data/feature_source.h"
#include "data/field.h"

class GDALDataset;
class OGRFeature;
class OGRLayer;

/// \file
/// Private to this room: layers of features as OGR reads them.
namespace kestrel::data {

/// A layer, the dataset that it lies in, and what to call it in messages; used on one thread at a time.
struct OpenLayer {
    std::shared_ptr<GDALDataset> dataset;
    OGRLayer* layer = nullptr;
    /// The path, and the layer's name where it is not the path's own.
    std::string label;
};

struct DeleteFeature {
    void operator()(OGRFeature* feature) const;
};
using FeaturePointer = std::unique_ptr<OGRFeature, DeleteFeature>;

/// Opens the layer of a source, with its filter set. \throws RuntimeError as FeatureClass::open() does.
OpenLayer open_layer(const FeatureSource& source);

/// Name of the driver that a dataset was opened with.
std::string driver_name(GDALDataset& dataset);

/// Names of all layers of a dataset, in order.
std::vector<std::string> layer_names(GDALDataset& dataset);

/// One reading of a layer, on one thread: what it needs, and the features in order. At its end the layer is as it was.
///
/// All functions throw RuntimeError (library failure) when the layer cannot be read.
class LayerReading {
  public:
    LayerReading(const OpenLayer& open, const FeatureSource& source);
    ~LayerReading();
    LayerReading(const LayerReading&) = delete;
    LayerReading& operator=(const LayerReading&) = delete;

    /// Lets the driver leave out what nobody asks for. \param kept positions in `fields`, which are the layer's.
    void keep_only(const std::vector<Field>& fields, const std::vector<int>& kept, bool geometry);
    /// Lets only features pass that suit `where` besides the source's own filter.
    void filter(const std::string& where);
    /// Goes on at the record of that number, deleted ones counted; for a layer that numbers its records from 0.
    void go_to(std::int64_t position);
    /// The next feature, nothing at the end.
    FeaturePointer next();
    /// The feature of that id, nothing when there is none.
    FeaturePointer at(std::int64_t id);

  private:
    void check(bool good) const;

    OGRLayer& m_layer;
    const FeatureSource& m_source;
    const std::string& m_label;
    bool m_filtered = false;
};

}  // namespace kestrel::data

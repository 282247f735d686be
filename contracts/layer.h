// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "data/class_breaks.h"
#include "data/feature_class.h"

/// \file
/// Layers as a host shows them. What a layer draws from is reached as data (FeatureClass, a raster's path); how it is
/// named, selected and drawn is the host's.
namespace kestrel::contracts {

class Layer {
  public:
    virtual ~Layer() = default;
    virtual std::string name() const = 0;
};

class GroupLayer : public Layer {
  public:
    virtual std::vector<std::shared_ptr<Layer>> members() const = 0;
};

/// The selected features of a feature layer.
class Selection {
  public:
    virtual ~Selection() = default;
    /// Feature ids of the layer's source, ascending.
    virtual std::vector<std::int64_t> ids() const = 0;
    std::size_t count() const { return ids().size(); }
};

class FeatureLayer : public Layer {
  public:
    /// The source that the layer draws from, with its subset filter.
    /// \throws RuntimeError when the source cannot be opened.
    virtual data::FeatureClass feature_class() const = 0;
    /// Where the layer's own data lie, found out without opening them. Its path is empty when they are in no file that
    /// OGR opens: feature_class() then reads a copy.
    virtual data::FeatureSource source() const = 0;
    /// Attribute fields and geometry type as feature_class() has them, for which a host need not copy any data.
    virtual std::vector<data::Field> fields() const { return feature_class().fields(); }
    virtual bool polygonal() const { return feature_class().polygonal(); }
    virtual const Selection& selection() const = 0;
    virtual void set_renderer(const data::ClassBreaksRenderer& renderer) = 0;
};

class RasterLayer : public Layer {
  public:
    /// What GDAL opens: a path or a dataset name.
    virtual std::string source() const = 0;
};

}  // namespace kestrel::contracts

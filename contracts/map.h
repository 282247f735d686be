// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "contracts/layer.h"

namespace kestrel::contracts {

/// The host's codes of map distance units.
enum DistanceUnits : int { kUnknownUnits = 0, kFeet = 3, kMeters = 9, kDecimalDegrees = 11 };

/// Who is told when a map changes.
class MapEvents {
  public:
    virtual ~MapEvents() = default;
    virtual void layer_added() = 0;
    virtual void layer_deleted() = 0;
    virtual void layers_reordered() = 0;
    /// Another document was opened; the map's layers are new.
    virtual void document_opened() = 0;
};

class Map {
  public:
    virtual ~Map() = default;

    /// Top-level layers in the order in which the user sees them; groups hold their members.
    virtual std::vector<std::shared_ptr<Layer>> layers() const = 0;
    /// Puts `layer` on top.
    virtual void add_layer(std::shared_ptr<Layer> layer) = 0;
    virtual void remove_layer(const std::shared_ptr<Layer>& layer) = 0;
    virtual DistanceUnits distance_units() const = 0;
    /// Redraws the map and its table of contents.
    virtual void refresh() = 0;

    /// `listener` is told of changes until it is removed; the map does not own it.
    virtual void add_listener(MapEvents& listener) = 0;
    virtual void remove_listener(MapEvents& listener) = 0;
};

}  // namespace kestrel::contracts

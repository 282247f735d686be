// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/headless/headless_map.h"

#include <algorithm>
#include <cmath>

namespace kestrel::platform {

HeadlessFeatureLayer::HeadlessFeatureLayer(std::string name, FeatureSource source, std::vector<std::int64_t> selected)
    : m_name(std::move(name)), m_source(std::move(source)), m_selection(std::move(selected)) {}

FeatureClass HeadlessFeatureLayer::feature_class() const {
    return FeatureClass::open(m_source);
}

void HeadlessMap::add_layer(std::shared_ptr<Layer> layer) {
    m_layers.insert(m_layers.begin(), std::move(layer));
    for (MapEvents* listener : m_listeners) {
        listener->layer_added();
    }
}

void HeadlessMap::append_layer(std::shared_ptr<Layer> layer) {
    m_layers.push_back(std::move(layer));
    for (MapEvents* listener : m_listeners) {
        listener->layer_added();
    }
}

void HeadlessMap::remove_layer(const std::shared_ptr<Layer>& layer) {
    const auto found = std::find(m_layers.begin(), m_layers.end(), layer);
    if (found == m_layers.end()) {
        return;
    }
    m_layers.erase(found);
    for (MapEvents* listener : m_listeners) {
        listener->layer_deleted();
    }
}

void HeadlessMap::move_layer(std::size_t from, std::size_t to) {
    std::shared_ptr<Layer> moved = m_layers.at(from);
    m_layers.erase(m_layers.begin() + static_cast<std::ptrdiff_t>(from));
    m_layers.insert(m_layers.begin() + static_cast<std::ptrdiff_t>(to), std::move(moved));
    for (MapEvents* listener : m_listeners) {
        listener->layers_reordered();
    }
}

void HeadlessMap::remove_listener(MapEvents& listener) {
    std::erase(m_listeners, &listener);
}

DistanceUnits distance_units_of(const SpatialReference& reference) {
    if (!reference.known()) {
        return kUnknownUnits;
    }
    if (reference.geographic()) {
        return kDecimalDegrees;
    }
    const double metres = reference.metres_per_unit().value_or(0);
    if (std::abs(metres - 1) < 1e-9) {
        return kMeters;
    }
    // International and US survey feet are told apart by areas, not by the host's codes.
    return std::abs(metres - 0.3048) < 1e-5 ? kFeet : kUnknownUnits;
}

}  // namespace kestrel::platform

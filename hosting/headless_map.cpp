// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "hosting/headless_map.h"

#include <algorithm>
#include <cmath>

namespace kestrel::hosting {

HeadlessFeatureLayer::HeadlessFeatureLayer(std::string name, data::FeatureSource source,
                                           std::vector<std::int64_t> selected)
    : m_name(std::move(name)), m_source(std::move(source)), m_selection(std::move(selected)) {}

data::FeatureClass HeadlessFeatureLayer::feature_class() const {
    return data::FeatureClass::open(m_source);
}

void HeadlessMap::add_layer(std::shared_ptr<contracts::Layer> layer) {
    m_layers.insert(m_layers.begin(), std::move(layer));
    tell(&contracts::MapEvents::layer_added);
}

void HeadlessMap::append_layer(std::shared_ptr<contracts::Layer> layer) {
    m_layers.push_back(std::move(layer));
    tell(&contracts::MapEvents::layer_added);
}

void HeadlessMap::remove_layer(const std::shared_ptr<contracts::Layer>& layer) {
    bool removed = std::erase(m_layers, layer) > 0;
    for (const auto& other : m_layers) {
        auto* group = dynamic_cast<HeadlessGroupLayer*>(other.get());
        removed = (group != nullptr && group->remove(layer)) || removed;
    }
    if (removed) {
        tell(&contracts::MapEvents::layer_deleted);
    }
}

void HeadlessMap::move_layer(std::size_t from, std::size_t to) {
    std::shared_ptr<contracts::Layer> moved = m_layers.at(from);
    m_layers.erase(m_layers.begin() + static_cast<std::ptrdiff_t>(from));
    to = std::min(to, m_layers.size());
    m_layers.insert(m_layers.begin() + static_cast<std::ptrdiff_t>(to), std::move(moved));
    tell(&contracts::MapEvents::layers_reordered);
}

void HeadlessMap::open_document(std::vector<std::shared_ptr<contracts::Layer>> layers) {
    m_layers = std::move(layers);
    tell(&contracts::MapEvents::document_opened);
}

void HeadlessMap::remove_listener(contracts::MapEvents& listener) {
    std::erase(m_listeners, &listener);
}

void HeadlessMap::tell(void (contracts::MapEvents::*event)()) {
    // A listener may leave, or make another one leave, while it is told.
    const std::vector<contracts::MapEvents*> listeners = m_listeners;
    for (contracts::MapEvents* listener : listeners) {
        if (std::find(m_listeners.begin(), m_listeners.end(), listener) != m_listeners.end()) {
            (listener->*event)();
        }
    }
}

contracts::DistanceUnits distance_units_of(const data::SpatialReference& reference) {
    if (!reference.known()) {
        return contracts::kUnknownUnits;
    }
    if (reference.geographic()) {
        return contracts::kDecimalDegrees;
    }
    const double metres = reference.metres_per_unit().value_or(0);
    if (std::abs(metres - 1) < 1e-9) {
        return contracts::kMeters;
    }
    // International and US survey feet are told apart by areas, not by the host's codes.
    return std::abs(metres - 0.3048) < 1e-5 ? contracts::kFeet : contracts::kUnknownUnits;
}

}  // namespace kestrel::hosting

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "contracts/map.h"

/// \file
/// A map without a screen: the layers that somebody put into it, in order.
namespace kestrel::hosting {

class HeadlessSelection final : public contracts::Selection {
  public:
    explicit HeadlessSelection(std::vector<std::int64_t> ids) : m_ids(std::move(ids)) {}
    std::vector<std::int64_t> ids() const override { return m_ids; }

  private:
    std::vector<std::int64_t> m_ids;
};

class HeadlessFeatureLayer final : public contracts::FeatureLayer {
  public:
    /// \param selected ids of the selected features, ascending.
    HeadlessFeatureLayer(std::string name, data::FeatureSource source, std::vector<std::int64_t> selected = {});

    std::string name() const override { return m_name; }
    data::FeatureClass feature_class() const override;
    data::FeatureSource source() const override { return m_source; }
    const contracts::Selection& selection() const override { return m_selection; }
    void set_renderer(const data::ClassBreaksRenderer& renderer) override { m_renderer = renderer; }
    /// The renderer that was set; nothing before.
    const std::optional<data::ClassBreaksRenderer>& renderer() const noexcept { return m_renderer; }

  private:
    std::string m_name;
    data::FeatureSource m_source;
    HeadlessSelection m_selection;
    std::optional<data::ClassBreaksRenderer> m_renderer;
};

class HeadlessRasterLayer final : public contracts::RasterLayer {
  public:
    HeadlessRasterLayer(std::string name, std::string source) : m_name(std::move(name)), m_source(std::move(source)) {}
    std::string name() const override { return m_name; }
    std::string source() const override { return m_source; }

  private:
    std::string m_name;
    std::string m_source;
};

class HeadlessGroupLayer final : public contracts::GroupLayer {
  public:
    HeadlessGroupLayer(std::string name, std::vector<std::shared_ptr<contracts::Layer>> members)
        : m_name(std::move(name)), m_members(std::move(members)) {}
    std::string name() const override { return m_name; }
    std::vector<std::shared_ptr<contracts::Layer>> members() const override { return m_members; }
    /// \return whether the layer was a member.
    bool remove(const std::shared_ptr<contracts::Layer>& layer) { return std::erase(m_members, layer) > 0; }

  private:
    std::string m_name;
    std::vector<std::shared_ptr<contracts::Layer>> m_members;
};

class HeadlessMap final : public contracts::Map {
  public:
    std::vector<std::shared_ptr<contracts::Layer>> layers() const override { return m_layers; }
    void add_layer(std::shared_ptr<contracts::Layer> layer) override;
    void remove_layer(const std::shared_ptr<contracts::Layer>& layer) override;
    contracts::DistanceUnits distance_units() const override { return m_units; }
    void refresh() override { ++m_refresh_count; }
    void add_listener(contracts::MapEvents& listener) override { m_listeners.push_back(&listener); }
    void remove_listener(contracts::MapEvents& listener) override;

    /// Puts `layer` below the others, so that layers stand in the order in which they are named.
    void append_layer(std::shared_ptr<contracts::Layer> layer);
    /// Moves the layer at one position to another and tells the listeners.
    void move_layer(std::size_t from, std::size_t to);
    /// Puts these layers in the place of all others, as opening another document does, and tells the listeners.
    void open_document(std::vector<std::shared_ptr<contracts::Layer>> layers);
    void set_distance_units(contracts::DistanceUnits units) { m_units = units; }
    int refresh_count() const noexcept { return m_refresh_count; }

  private:
    void tell(void (contracts::MapEvents::*event)());

    std::vector<std::shared_ptr<contracts::Layer>> m_layers;
    std::vector<contracts::MapEvents*> m_listeners;
    contracts::DistanceUnits m_units = contracts::kUnknownUnits;
    int m_refresh_count = 0;
};

/// The distance units of a coordinate system as the host would code them.
contracts::DistanceUnits distance_units_of(const data::SpatialReference& reference);

}  // namespace kestrel::hosting

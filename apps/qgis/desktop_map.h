// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "apps/qgis/layer_copies.h"
#include "contracts/map.h"

class QgsLayerTreeGroup;
class QgsProject;

namespace kestrel::qgis {

/// The project's layers, in the order of its layer tree.
///
/// Listeners are told of changes once the event in hand is dealt with, and only of what then differs: QGIS moves a
/// layer by adding it anew, and loads a project in many steps.
class DesktopMap final : public QObject, public contracts::Map {
    Q_OBJECT
  public:
    /// \param redraw draws the canvas anew.
    DesktopMap(QgsProject& project, std::shared_ptr<LayerCopies> copies, std::function<void()> redraw);
    ~DesktopMap() override;

    std::vector<std::shared_ptr<contracts::Layer>> layers() const override;
    /// Takes a layer that make_layer() made, and shows its legend.
    void add_layer(std::shared_ptr<contracts::Layer> layer) override;
    void remove_layer(const std::shared_ptr<contracts::Layer>& layer) override;
    contracts::DistanceUnits distance_units() const override;
    void refresh() override;
    void add_listener(contracts::MapEvents& listener) override { m_listeners.push_back(&listener); }
    void remove_listener(contracts::MapEvents& listener) override;

    /// A layer on a shapefile that is not in the project; nothing when QGIS cannot open it.
    std::shared_ptr<contracts::FeatureLayer> make_layer(const std::string& path, const std::string& name) const;

  private:
    enum class Document { as_told, cleared, read };

    void document_cleared();
    void document_read();
    void tree_changed();
    void tell_later();
    void tell_changes();
    void tell(void (contracts::MapEvents::*happening)());

    QgsProject& m_project;
    std::shared_ptr<LayerCopies> m_copies;
    std::function<void()> m_redraw;
    std::vector<contracts::MapEvents*> m_listeners;
    /// The tree as the listeners know it: ids, each with the layer's name.
    QStringList m_told;
    Document m_document = Document::as_told;
    bool m_telling_pending = false;
};

}  // namespace kestrel::qgis

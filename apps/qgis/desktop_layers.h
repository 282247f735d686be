// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <memory>
#include <string>
#include <vector>

#include "apps/qgis/layer_copies.h"
#include "contracts/layer.h"

class QgsMapLayer;
class QgsRasterLayer;
class QgsVectorLayer;

/// \file
/// Layers of a QGIS project by the contracts. An object stays valid when its layer leaves the project; what
/// needs the layer then throws RuntimeError 91.
namespace kestrel::qgis {

/// What every layer of the desktop is, whatever it draws.
class DesktopLayer {
  public:
    virtual ~DesktopLayer() = default;
    /// Nothing once QGIS has deleted it.
    virtual QgsMapLayer* map_layer() const = 0;
};

class DesktopFeatureLayer final : public contracts::FeatureLayer, public DesktopLayer {
  public:
    /// A layer that is in the project.
    DesktopFeatureLayer(QgsVectorLayer& layer, std::shared_ptr<LayerCopies> copies);
    /// A layer that is in no project yet, and belongs to this object until it is.
    DesktopFeatureLayer(std::unique_ptr<QgsVectorLayer> layer, std::shared_ptr<LayerCopies> copies);
    ~DesktopFeatureLayer() override;

    std::string name() const override;
    data::FeatureClass feature_class() const override;
    data::FeatureSource source() const override;
    std::vector<data::Field> fields() const override;
    bool polygonal() const override;
    const contracts::Selection& selection() const override { return m_selection; }
    void set_renderer(const data::ClassBreaksRenderer& renderer) override;

    QgsMapLayer* map_layer() const override;
    /// Gives a layer that is in no project away.
    std::unique_ptr<QgsVectorLayer> release() { return std::move(m_owned); }

  private:
    class LayerSelection final : public contracts::Selection {
      public:
        explicit LayerSelection(const DesktopFeatureLayer& layer) : m_layer(layer) {}
        std::vector<std::int64_t> ids() const override;

      private:
        const DesktopFeatureLayer& m_layer;
    };

    QgsVectorLayer& layer() const;

    std::unique_ptr<QgsVectorLayer> m_owned;
    QPointer<QgsVectorLayer> m_layer;
    std::shared_ptr<LayerCopies> m_copies;
    LayerSelection m_selection{*this};
};

class DesktopRasterLayer final : public contracts::RasterLayer, public DesktopLayer {
  public:
    explicit DesktopRasterLayer(QgsRasterLayer& layer);
    ~DesktopRasterLayer() override;

    std::string name() const override;
    std::string source() const override;
    QgsMapLayer* map_layer() const override;

  private:
    QgsRasterLayer& layer() const;

    QPointer<QgsRasterLayer> m_layer;
};

/// A layer that no part of the system can use, such as a web map or one whose file is gone.
class OtherDesktopLayer final : public contracts::Layer, public DesktopLayer {
  public:
    explicit OtherDesktopLayer(QgsMapLayer& layer);
    ~OtherDesktopLayer() override;

    std::string name() const override;
    QgsMapLayer* map_layer() const override;

  private:
    QPointer<QgsMapLayer> m_layer;
};

/// A group of the layer tree, with all layers in it, those of groups in the group included.
class DesktopGroupLayer final : public contracts::GroupLayer {
  public:
    DesktopGroupLayer(std::string name, std::vector<std::shared_ptr<contracts::Layer>> members)
        : m_name(std::move(name)), m_members(std::move(members)) {}
    std::string name() const override { return m_name; }
    std::vector<std::shared_ptr<contracts::Layer>> members() const override { return m_members; }

  private:
    std::string m_name;
    std::vector<std::shared_ptr<contracts::Layer>> m_members;
};

/// The layer by the contract that fits it.
std::shared_ptr<contracts::Layer> desktop_layer(QgsMapLayer& layer, const std::shared_ptr<LayerCopies>& copies);

}  // namespace kestrel::qgis

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/desktop_map.h"

#include <qgslayertree.h>
#include <qgslayertreegroup.h>
#include <qgslayertreelayer.h>
#include <qgsproject.h>
#include <qgsvectorlayer.h>

#include <QSet>
#include <algorithm>

#include "apps/qgis/desktop_layers.h"
#include "apps/qgis/layer_sources.h"
#include "base/errors.h"

namespace kestrel::qgis {

using contracts::Layer;
using contracts::MapEvents;

namespace {

constexpr QChar kBeforeName = QLatin1Char('\n');

/// The tree's layers from the top, each as its id and name.
QStringList outline(const QgsProject& project) {
    QStringList entries;
    for (const QgsLayerTreeLayer* node : project.layerTreeRoot()->findLayers()) {
        if (node->layer() != nullptr) {
            entries << node->layerId() + kBeforeName + node->name();
        }
    }
    return entries;
}

QSet<QString> ids_of(const QStringList& outline) {
    QSet<QString> ids;
    for (const QString& entry : outline) {
        ids << entry.section(kBeforeName, 0, 0);
    }
    return ids;
}

std::vector<std::shared_ptr<Layer>> layers_below(const QgsLayerTreeGroup& group,
                                                 const std::shared_ptr<LayerCopies>& copies) {
    std::vector<std::shared_ptr<Layer>> layers;
    for (const QgsLayerTreeLayer* node : group.findLayers()) {
        if (node->layer() != nullptr) {
            layers.push_back(desktop_layer(*node->layer(), copies));
        }
    }
    return layers;
}

/// An open legend shows what the layer's colours mean.
void show_legend(QgsLayerTreeLayer& node) {
    node.setExpanded(false);
    node.setExpanded(true);
}

}  // namespace

DesktopMap::DesktopMap(QgsProject& project, std::shared_ptr<LayerCopies> copies, std::function<void()> redraw)
    : m_project(project), m_copies(std::move(copies)), m_redraw(std::move(redraw)), m_told(outline(project)) {
    connect(&project, &QgsProject::readProject, this, &DesktopMap::document_read);
    connect(&project, &QgsProject::cleared, this, &DesktopMap::document_cleared);
    connect(&project, &QgsProject::layersAdded, this, &DesktopMap::tree_changed);
    connect(&project, &QgsProject::layersRemoved, this, &DesktopMap::tree_changed);
    const QgsLayerTree* tree = project.layerTreeRoot();
    connect(tree, &QgsLayerTree::addedChildren, this, &DesktopMap::tree_changed);
    connect(tree, &QgsLayerTree::removedChildren, this, &DesktopMap::tree_changed);
    connect(tree, &QgsLayerTree::nameChanged, this, &DesktopMap::tree_changed);
}

DesktopMap::~DesktopMap() = default;

std::vector<std::shared_ptr<Layer>> DesktopMap::layers() const {
    std::vector<std::shared_ptr<Layer>> layers;
    for (const QgsLayerTreeNode* child : m_project.layerTreeRoot()->children()) {
        if (const auto* group = qobject_cast<const QgsLayerTreeGroup*>(child)) {
            layers.push_back(
                std::make_shared<DesktopGroupLayer>(text_of(group->name()), layers_below(*group, m_copies)));
        } else if (const auto* node = qobject_cast<const QgsLayerTreeLayer*>(child); node && node->layer()) {
            layers.push_back(desktop_layer(*node->layer(), m_copies));
        }
    }
    return layers;
}

void DesktopMap::add_layer(std::shared_ptr<Layer> layer) {
    auto* const made = dynamic_cast<DesktopFeatureLayer*>(layer.get());
    std::unique_ptr<QgsVectorLayer> owned = made == nullptr ? nullptr : made->release();
    if (!owned) {
        throw base::RuntimeError(base::kInvalidProcedureCall, "Only a new layer can be added to the map");
    }
    QgsVectorLayer* const added = owned.release();
    m_project.addMapLayer(added, false);
    show_legend(*m_project.layerTreeRoot()->insertLayer(0, added));
}

void DesktopMap::remove_layer(const std::shared_ptr<Layer>& layer) {
    const auto* const known = dynamic_cast<DesktopLayer*>(layer.get());
    if (known != nullptr && known->map_layer() != nullptr) {
        m_project.removeMapLayer(known->map_layer());
    }
}

contracts::DistanceUnits DesktopMap::distance_units() const {
    return units_of_map(m_project.crs());
}

void DesktopMap::refresh() {
    // A changed legend folds up.
    const QList<QgsLayerTreeLayer*> nodes = m_project.layerTreeRoot()->findLayers();
    if (!nodes.isEmpty() && nodes.front()->isExpanded()) {
        show_legend(*nodes.front());
    }
    if (m_redraw) {
        m_redraw();
    }
}

void DesktopMap::remove_listener(MapEvents& listener) {
    m_listeners.erase(std::remove(m_listeners.begin(), m_listeners.end(), &listener), m_listeners.end());
}

std::shared_ptr<contracts::FeatureLayer> DesktopMap::make_layer(const std::string& path,
                                                                const std::string& name) const {
    auto layer = std::make_unique<QgsVectorLayer>(QString::fromStdString(path), QString::fromStdString(name),
                                                  QStringLiteral("ogr"));
    if (!layer->isValid()) {
        return nullptr;
    }
    return std::make_shared<DesktopFeatureLayer>(std::move(layer), m_copies);
}

void DesktopMap::document_cleared() {
    m_document = Document::cleared;
    tell_later();
}

void DesktopMap::document_read() {
    m_document = Document::read;
    tell_later();
}

void DesktopMap::tree_changed() {
    tell_later();
}

void DesktopMap::tell_later() {
    if (!m_telling_pending) {
        m_telling_pending = true;
        QMetaObject::invokeMethod(this, &DesktopMap::tell_changes, Qt::QueuedConnection);
    }
}

void DesktopMap::tell_changes() {
    m_telling_pending = false;
    if (m_document == Document::cleared && !m_project.fileName().isEmpty()) {
        return;  // QGIS deals with events while it reads a project, once that is cleared and has its file name
    }
    const QStringList before = std::exchange(m_told, outline(m_project));
    if (std::exchange(m_document, Document::as_told) != Document::as_told) {
        tell(&MapEvents::document_opened);
        return;
    }
    const QSet<QString> old_ids = ids_of(before);
    const QSet<QString> new_ids = ids_of(m_told);
    if (!(new_ids - old_ids).isEmpty()) {
        tell(&MapEvents::layer_added);
    }
    if (!(old_ids - new_ids).isEmpty()) {
        tell(&MapEvents::layer_deleted);
    }
    if (old_ids == new_ids && before != m_told) {
        tell(&MapEvents::layers_reordered);
    }
}

void DesktopMap::tell(void (MapEvents::*happening)()) {
    // A listener may leave, or make another one leave, while it is told.
    const std::vector<MapEvents*> listeners = m_listeners;
    for (MapEvents* listener : listeners) {
        if (std::find(m_listeners.begin(), m_listeners.end(), listener) != m_listeners.end()) {
            (listener->*happening)();
        }
    }
}

}  // namespace kestrel::qgis

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/desktop_application.h"

#include <qgsproject.h>
#include <qgsvectordataprovider.h>
#include <qgsvectorlayer.h>

#include "apps/qgis/layer_sources.h"

namespace kestrel::qgis {

DesktopApplication::DesktopApplication(QgsProject& project, Desktop desktop)
    : m_project(project),
      m_desktop(std::move(desktop)),
      m_map(project, std::make_shared<LayerCopies>(m_desktop.copies_folder), m_desktop.redraw) {}

DesktopApplication::~DesktopApplication() = default;

contracts::IExtensionConfig* DesktopApplication::find_extension(std::string_view class_id) {
    const auto found = m_extensions.find(class_id);
    return found == m_extensions.end() ? nullptr : found->second;
}

std::shared_ptr<contracts::FeatureLayer> DesktopApplication::make_feature_layer(const std::string& path,
                                                                                const std::string& name) {
    return m_map.make_layer(path, name);
}

void DesktopApplication::run_ended(contracts::RunResult result) {
    reload_rewritten_layers(result);
    if (m_desktop.run_ended) {
        m_desktop.run_ended(result);
    }
}

/// Layers on an older output of the same file go on reading what is gone.
void DesktopApplication::reload_rewritten_layers(const contracts::RunResult& result) const {
    if (!result.finished || result.files.empty()) {
        return;
    }
    for (QgsVectorLayer* layer : m_project.layers<QgsVectorLayer*>()) {
        const auto source = ogr_source(*layer);
        if (source && source->path == result.files.front()) {
            layer->dataProvider()->reloadData();
            layer->updateFields();
            layer->triggerRepaint();
        }
    }
}

void DesktopApplication::register_extension(std::string class_id, contracts::IExtensionConfig& extension) {
    m_extensions.insert_or_assign(std::move(class_id), &extension);
}

}  // namespace kestrel::qgis

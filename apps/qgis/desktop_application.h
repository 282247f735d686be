// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "apps/qgis/desktop_map.h"
#include "contracts/application.h"

class QgsProject;

namespace kestrel::qgis {

/// QGIS as the extension knows it.
class DesktopApplication final : public contracts::Application {
  public:
    /// What the windows of QGIS do for it.
    struct Desktop {
        reporting::Interaction& interaction;
        /// The progress of the run in hand.
        std::function<base::Progress&()> progress;
        /// Draws the canvas anew.
        std::function<void()> redraw;
        /// Tells the user how a run ended.
        std::function<void(const contracts::RunResult&)> run_ended;
        /// The folder for copies of layers.
        std::function<std::string()> copies_folder;
    };

    DesktopApplication(QgsProject& project, Desktop desktop);
    ~DesktopApplication() override;

    contracts::Document& document() override { return m_document; }
    DesktopMap& map() { return m_map; }
    contracts::IExtensionConfig* find_extension(std::string_view class_id) override;
    std::shared_ptr<contracts::FeatureLayer> make_feature_layer(const std::string& path,
                                                                const std::string& name) override;
    reporting::Interaction& interaction() override { return m_desktop.interaction; }
    base::Progress& progress() override { return m_desktop.progress(); }
    void run_ended(contracts::RunResult result) override;

    /// Makes an extension findable; it outlives the application.
    void register_extension(std::string class_id, contracts::IExtensionConfig& extension);

  private:
    class ProjectDocument final : public contracts::Document {
      public:
        explicit ProjectDocument(contracts::Map& map) : m_map(map) {}
        contracts::Map& focus_map() override { return m_map; }

      private:
        contracts::Map& m_map;
    };

    void reload_rewritten_layers(const contracts::RunResult& result) const;

    QgsProject& m_project;
    Desktop m_desktop;
    DesktopMap m_map;
    ProjectDocument m_document{m_map};
    std::map<std::string, contracts::IExtensionConfig*, std::less<>> m_extensions;
};

}  // namespace kestrel::qgis

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/plugin.h"

#include <qgis.h>
#include <qgisinterface.h>
#include <qgsapplication.h>
#include <qgsmapcanvas.h>
#include <qgsprocessingregistry.h>
#include <qgsproject.h>

#include <QAction>
#include <QMainWindow>
#include <QPointer>

#include "apps/qgis/command_bar.h"
#include "apps/qgis/desktop_application.h"
#include "apps/qgis/desktop_interaction.h"
#include "apps/qgis/extension_list.h"
#include "apps/qgis/extensions_window.h"
#include "apps/qgis/kestrel_provider.h"
#include "base/files.h"
#include "extension/extension_folder.h"
#include "hosting/hosted_extension.h"
#include "hosting/raster_analysis.h"

namespace kestrel::qgis {

namespace {

constexpr const char* kLibrary = "libkestrel_ext.so";

/// The folder of the extension library: the plugin's own, or where an installation for all users has it, since QGIS
/// takes every library in its own folder for a plugin.
std::string library_folder() {
    std::string folder = loaded_library_folder();
    if (!base::file_exists(base::join_path(folder, kLibrary))) {
        folder = base::join_path(folder, KESTREL_FOLDER_FROM_PLUGIN);
    }
    return base::real_path(folder);
}

/// The folder that the extension takes for its own.
std::string used_extension_folder() {
    return extension_folder(library_folder(), user_data_folder());
}

std::string working_folder() {
    return base::join_path(used_extension_folder(), "temp");
}

/// Kestrel among the providers of Processing, unless it is there already.
QgsProcessingProvider* add_provider() {
    auto provider = std::make_unique<KestrelProvider>(used_extension_folder());
    QgsProcessingProvider* const added = provider.get();
    // The registry deletes one that it does not take.
    return QgsApplication::processingRegistry()->addProvider(provider.release()) ? added : nullptr;
}

}  // namespace

/// Members are taken down from the last to the first: the user's way in, then the extension, then what it stands on.
struct KestrelPlugin::Running {
    explicit Running(QgisInterface& iface)
        : interaction(iface),
          application(*QgsProject::instance(),
                      {.interaction = interaction,
                       .progress = [this]() -> base::Progress& { return interaction.progress(); },
                       .redraw = [&iface] { iface.mapCanvas()->refresh(); },
                       .run_ended = [this](const contracts::RunResult& result) { interaction.run_ended(result); },
                       .copies_folder = working_folder}),
          kestrel(base::join_path(library_folder(), kLibrary)) {
        application.register_extension(contracts::kKestrelExtension, kestrel.config());
        application.register_extension(contracts::kRasterAnalysisExtension, raster_analysis);
        kestrel.start(application);
        extensions.add(contracts::kKestrelExtension, kestrel.config());
        extensions.add(contracts::kRasterAnalysisExtension, raster_analysis);
        commands = std::make_unique<CommandBar>(iface, kestrel,
                                                [this](const std::string& failure) { interaction.failure(failure); });
        provider = add_provider();
    }

    ~Running() {
        if (provider) {
            QgsApplication::processingRegistry()->removeProvider(provider);
        }
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    DesktopInteraction interaction;
    reporting::ScopedInteraction scope{interaction};
    hosting::RasterAnalysis raster_analysis;
    DesktopApplication application;
    ExtensionList extensions;
    hosting::HostedExtension kestrel;
    std::unique_ptr<CommandBar> commands;
    QPointer<QgsProcessingProvider> provider;
    std::unique_ptr<ExtensionsWindow> extensions_window;
};

KestrelPlugin::KestrelPlugin(QgisInterface& iface) : m_iface(iface) {}

KestrelPlugin::~KestrelPlugin() {
    KestrelPlugin::unload();
}

void KestrelPlugin::initGui() try {
    m_running = std::make_unique<Running>(m_iface);
    QAction& action = m_running->commands->add_plugins_entry("Extensions...");
    action.setObjectName("kestrelShowExtensions");
    action.setStatusTip("Switch extensions on and off");
    connect(&action, &QAction::triggered, this, &KestrelPlugin::show_extensions);
} catch (const std::exception& error) {
    m_running.reset();
    DesktopInteraction(m_iface).failure(std::string("The Kestrel Tools cannot be loaded. ") + error.what());
}

void KestrelPlugin::unload() {
    m_running.reset();
}

void KestrelPlugin::show_extensions() try {
    Running& running = *m_running;
    if (!running.extensions_window) {
        running.extensions_window = std::make_unique<ExtensionsWindow>(running.extensions, m_iface.mainWindow());
        connect(running.extensions_window.get(), &ExtensionsWindow::states_changed, running.commands.get(),
                &CommandBar::poll);
    }
    running.extensions_window->show();
    running.extensions_window->raise();
    running.extensions_window->activateWindow();
} catch (const std::exception& error) {
    m_running->interaction.failure(error.what());
}

}  // namespace kestrel::qgis

namespace {

const QString kName = QStringLiteral("Kestrel");
const QString kDescription = QStringLiteral("Estimates the area of imperviousness of polygons from land cover");
const QString kCategory = QStringLiteral("Analysis");
const QString kVersion = QStringLiteral(KESTREL_VERSION);

}  // namespace

// What QGIS asks a plugin library for. Without one of these it is passed over in silence.
QGISEXTERN QgisPlugin* classFactory(QgisInterface* iface) {
    return new kestrel::qgis::KestrelPlugin(*iface);
}
QGISEXTERN const QString* name() {
    return &kName;
}
QGISEXTERN const QString* description() {
    return &kDescription;
}
QGISEXTERN const QString* category() {
    return &kCategory;
}
QGISEXTERN const QString* version() {
    return &kVersion;
}
QGISEXTERN int type() {
    return QgisPlugin::UI;
}
QGISEXTERN void unload(QgisPlugin* plugin) {
    delete plugin;
}

/// Adds Kestrel to Processing where no desktop loads the plugin, as in qgis_process.
/// \return whether it was added.
extern "C" Q_DECL_EXPORT bool kestrel_add_processing_provider() try {
    QgsProcessingRegistry& registry = *QgsApplication::processingRegistry();
    return registry.providerById("kestrel") == nullptr && kestrel::qgis::add_provider() != nullptr;
} catch (const std::exception&) {
    return false;
}

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "hosting/headless_run.h"

#include "base/errors.h"
#include "base/files.h"
#include "extension/clsExtension.h"
#include "hosting/headless_application.h"
#include "hosting/raster_analysis.h"

namespace kestrel::hosting {

using base::RuntimeError;

namespace {

void fill_map(HeadlessApplication& application, const HeadlessMapContents& map) {
    for (const auto& layer : map.layers) {
        application.map().append_layer(layer);
    }
    application.map().set_distance_units(map.distance_units);
}

std::string new_folder(const std::string& parent) {
    try {
        return base::make_unique_folder(parent, "kestrel-");
    } catch (const RuntimeError& error) {
        throw RuntimeError(error.number(), "There is no room for the working data of a run in '" + parent +
                                               "': " + error.description());
    }
}

}  // namespace

HeadlessEnding carry_out_headless(const HeadlessMapContents& map, running::RunOrder order,
                                  const std::string& extension_folder, base::Progress& progress) {
    HeadlessApplication application(progress);
    fill_map(application, map);
    clsExtension extension(extension_folder);
    RasterAnalysis raster_analysis;
    application.register_extension(contracts::kKestrelExtension, extension);
    application.register_extension(contracts::kRasterAnalysisExtension, raster_analysis);
    order.begins = [&] {
        extension.IExtension_Startup(&application);
        extension.IExtensionConfig_State(contracts::kExtensionEnabled);
        extension.IExtensionConfig_State();  // makes the working folders
        return true;
    };
    order.parameters.output_path = order.output.path();
    order.parameters.layer_name = order.output.layer_name;
    HeadlessEnding ending{.run = running::carry_out_run(application, extension_folder, order)};
    ending.result = application.take_result().value_or(contracts::RunResult{});
    return ending;
}

PrivateRunFolder::PrivateRunFolder(const std::string& contact_file) {
    const std::string parent = base::temporary_folder();
    if (parent.empty()) {
        throw RuntimeError(base::kPathNotFound, "There is no folder for temporary files");
    }
    m_path = new_folder(parent);
    if (base::file_exists(contact_file)) {
        base::create_folder(base::join_path(m_path, "etc"));
        base::copy_file(contact_file, base::join_path(m_path, "etc/contact.ini"));
    }
}

PrivateRunFolder::~PrivateRunFolder() {
    try {
        base::remove_folder(m_path);
    } catch (const RuntimeError&) {
        // What stays behind lies in the system's folder for temporary files; the run's own end matters more.
    }
}

}  // namespace kestrel::hosting

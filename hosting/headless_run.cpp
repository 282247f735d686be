// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "hosting/headless_run.h"

#include "base/errors.h"
#include "base/files.h"
#include "data/output_files.h"
#include "engine/clsISExecuteModel.h"
#include "extension/clsExtension.h"
#include "hosting/headless_application.h"
#include "hosting/raster_analysis.h"

namespace kestrel {

using base::RuntimeError;
using hosting::HeadlessApplication;

namespace {

constexpr const char* kParameterFile = "model_params.txt";

void fill_map(HeadlessApplication& application, const HeadlessRun& run) {
    for (const auto& layer : run.layers) {
        application.map().append_layer(layer);
    }
    application.map().set_distance_units(run.distance_units);
}

std::string kept_folder(const HeadlessRun& run) {
    const RunOutput& output = run.output;
    return run.keep_temp ? base::make_unique_folder(output.folder, output.layer_name + "_temp_") : "";
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

HeadlessEnding execute(const HeadlessRun& run, const std::string& extension_folder, base::Progress& progress) {
    HeadlessApplication application(progress);
    clsExtension extension(extension_folder);
    application.register_extension(contracts::kKestrelExtension, extension);
    RasterAnalysis raster_analysis;
    application.register_extension(contracts::kRasterAnalysisExtension, raster_analysis);
    extension.IExtension_Startup(&application);
    extension.IExtensionConfig_State(contracts::kExtensionEnabled);
    extension.IExtensionConfig_State();  // makes the working folders
    fill_map(application, run);
    const RunOutput& output = run.output;
    ModelParameters parameters = run.parameters;
    parameters.output_path = output.path();
    parameters.layer_name = output.layer_name;
    if (!write_model_parameters(base::join_path(extension_folder, "temp"), kParameterFile, parameters, run.store,
                                run.set_name, "")) {
        return {};
    }
    data::SetAsideOutput older(output.path(), output.records());
    const std::string kept = kept_folder(run);
    clsISExecuteModel model({.threads = run.threads, .keep_temp_folder = kept});
    model.ExecuteModel(&application, extension_folder, kParameterFile, output.folder, output.file_name,
                       output.layer_name);
    HeadlessEnding ending{application.take_result().value_or(contracts::RunResult{}), kept};
    if (ending.result.finished) {
        older.discard();
    }
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

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "running/carry_out_run.h"

#include <memory>
#include <utility>

#include "base/errors.h"
#include "base/files.h"
#include "data/output_files.h"
#include "engine/clsISExecuteModel.h"
#include "parameters/basISModelUtil.h"

namespace kestrel::running {

namespace {

constexpr const char* kParameterFile = "model_params.txt";

/// The host, and a listener to how a run ends.
class RunWatch final : public contracts::Application {
  public:
    explicit RunWatch(contracts::Application& app) : m_app(app) {}

    contracts::Document& document() override { return m_app.document(); }
    contracts::IExtensionConfig* find_extension(std::string_view class_id) override {
        return m_app.find_extension(class_id);
    }
    std::shared_ptr<contracts::FeatureLayer> make_feature_layer(const std::string& path,
                                                                const std::string& name) override {
        return m_app.make_feature_layer(path, name);
    }
    reporting::Interaction& interaction() override { return m_app.interaction(); }
    base::Progress& progress() override { return m_app.progress(); }
    void run_ended(contracts::RunResult result) override {
        m_finished = result.finished;
        m_app.run_ended(std::move(result));
    }

    bool finished() const noexcept { return m_finished; }

  private:
    contracts::Application& m_app;
    bool m_finished = false;
};

/// \return nothing when the folder is in use or cannot be locked; `refusal` then says why.
std::unique_ptr<base::FolderLock> locked(const std::string& folder, std::optional<RunRefusal>& refusal) {
    try {
        return std::make_unique<base::FolderLock>(folder);
    } catch (const base::RuntimeError& error) {
        refusal = {RunRefusal::Cause::extension_folder, error.description()};
        return nullptr;
    }
}

/// Writes the parameter file. \return whether the one that is there, if any, is this run's: what an earlier run left,
/// or what was cut by a full device, would give figures that nobody asked for.
bool has_parameter_file(const std::string& extension_folder, const RunOrder& order) {
    const std::string folder = base::join_path(extension_folder, "temp");
    if (write_model_parameters(folder, kParameterFile, order.parameters, order.store, order.set_name, "")) {
        return true;
    }
    const std::string path = base::join_path(folder, kParameterFile);
    try {
        if (base::file_exists(path)) {
            base::remove_file(path);
        }
        return true;
    } catch (const base::RuntimeError&) {
        return false;  // why it cannot be written was told
    }
}

/// Carries the run out, once all is checked and locked.
void execute(contracts::Application& app, const std::string& extension_folder, const RunOrder& order,
             RunEnding& ending) {
    const RunOutput& output = order.output;
    const bool replaces = !existing_files(output).empty();
    data::SetAsideOutput older(output.path(), output.records());
    if (order.keep_temp) {
        ending.kept_folder = base::make_unique_folder(output.folder, output.layer_name + "_temp_");
    }
    RunWatch watch(app);
    clsISExecuteModel model({.threads = order.threads, .keep_temp_folder = ending.kept_folder});
    model.ExecuteModel(&watch, extension_folder, kParameterFile, output.folder, output.file_name, output.layer_name);
    ending.finished = watch.finished();
    if (ending.finished) {
        older.discard();
        if (replaces) {
            basISModelUtil::remove_other_layers_of(output.path(), app.document().focus_map());
        }
    }
}

}  // namespace

RunEnding carry_out_run(contracts::Application& app, const std::string& extension_folder, const RunOrder& order) {
    RunEnding ending{.refusal = first_reason_against(order.output, order.inputs, order.replacing)};
    if (ending.refusal) {
        return ending;
    }
    const auto lock = locked(extension_folder, ending.refusal);
    if (!lock || !order.begins()) {
        return ending;
    }
    // Where it cannot be written the run goes on, and says itself that there is no file to read. Intended.
    if (has_parameter_file(extension_folder, order)) {
        execute(app, extension_folder, order, ending);
    }
    return ending;
}

}  // namespace kestrel::running

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "coefficients/clsISModelProperties.h"
#include "contracts/application.h"
#include "parameters/model_parameters.h"
#include "parameters/run_output.h"
#include "running/output_check.h"
#include "running/run_refusal.h"

namespace kestrel::running {

/// One run, as a host asks for it.
struct RunOrder {
    /// What the parameter file hands on. The host's map holds the layers that it names.
    ModelParameters parameters{};
    RunOutput output;
    /// Where the coefficients are taken from, and the name of the set.
    const clsISModelProperties& store;
    std::string set_name;
    /// Files that the run reads, and that its output may therefore not replace.
    std::vector<std::string> inputs{};
    Replacing replacing = Replacing::forbidden;
    /// Threads that the run may use; 0 for as many as there are cores.
    int threads = 0;
    /// Keeps the working data in a folder beside the output.
    bool keep_temp = false;
    /// Called once nothing stands against the run, before anything is written; it ends the run by false.
    std::function<bool()> begins = [] { return true; };
};

/// How a run ended. What it made was handed to the application.
struct RunEnding {
    /// Why the run did not begin; nothing when it did.
    std::optional<RunRefusal> refusal{};
    /// Whether there is an output.
    bool finished = false;
    /// Where the working data are kept; empty when they are not.
    std::string kept_folder{};
};

/// Carries a run out: checks its output, locks the extension folder, writes the parameter file and executes the model.
/// At the end an older output is gone or back in its place, and layers that drew from it have left the map.
///
/// What happens within the run is told to the user through the thread's interaction, and handed to `app` as a
/// RunResult. The working folder of the extension exists once `begins` was called.
/// \throws RuntimeError when an older output cannot be set aside or removed.
RunEnding carry_out_run(contracts::Application& app, const std::string& extension_folder, const RunOrder& order);

}  // namespace kestrel::running

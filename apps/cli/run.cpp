// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run.h"

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "apps/cli/console_interaction.h"
#include "apps/cli/console_progress.h"
#include "apps/cli/refusal.h"
#include "apps/cli/result_json.h"
#include "apps/cli/result_table.h"
#include "apps/cli/run_folder.h"
#include "apps/cli/run_inputs.h"
#include "apps/cli/run_output.h"
#include "apps/cli/user_files.h"
#include "base/files.h"
#include "hosting/headless_run.h"
#include "running/output_check.h"

namespace kestrel::cli {

using contracts::RunResult;

namespace {

/// The store of the extension folder that was named, or the user's own.
std::string store_path(const RunRequest& request) {
    if (!request.store.empty()) {
        return request.store;
    }
    const std::string own = base::join_path(request.extension_folder, "etc/isprops.xml");
    return !request.extension_folder.empty() && base::file_exists(own) ? own : user_store();
}

/// A run that ended early may have kept nothing.
void tell_kept(const std::string& folder, reporting::Interaction& console) {
    std::error_code not_empty;
    if (!folder.empty() && !std::filesystem::remove(folder, not_empty)) {
        console.notice("The working data of the run are kept in '" + folder + "'.");
    }
}

/// What is left to tell once a run has cleaned up.
struct Ending {
    RunResult result;
    bool stopped = false;
    std::string kept_folder;
};

/// Carries a run out. At its end an older output is back or gone and the working folder removed, so that nothing that
/// happens while the result is told, such as a reader who has heard enough, leaves anything behind.
Ending execute(const RunRequest& request, ConsoleProgress& progress) {
    const StopSignals signals;
    const std::string store = store_path(request);
    const RunInputs inputs = checked_inputs(request, store);
    const RunOutput output = output_of(request.output, request.layer_name);
    std::vector<std::string> files = inputs.layers.files();
    files.push_back(store);
    const auto replacing = request.overwrite ? running::Replacing::allowed : running::Replacing::forbidden;
    // Asked once more by the run itself; but what is wrong with the output is told before a folder is made.
    if (const auto refusal = running::first_reason_against(output, files, replacing)) {
        refuse("{}", refusal_text(*refusal));
    }
    const RunFolder folder(request.extension_folder, user_contact_file());
    hosting::HeadlessEnding ending =
        hosting::carry_out_headless({.layers = inputs.layers.layers(), .distance_units = inputs.distance_units},
                                    {.parameters = inputs.parameters,
                                     .output = output,
                                     .store = inputs.store,
                                     .set_name = inputs.set_name,
                                     .inputs = std::move(files),
                                     .replacing = replacing,
                                     .threads = request.threads,
                                     .keep_temp = request.keep_temp},
                                    folder.path(), progress);
    if (ending.run.refusal) {
        refuse("{}", refusal_text(*ending.run.refusal));
    }
    return {std::move(ending.result), progress.cancelled(), std::move(ending.run.kept_folder)};
}

int tell_result(const RunRequest& request, const Ending& ending, std::ostream& out, ConsoleInteraction& console) {
    const RunResult& result = ending.result;
    for (const std::string& notice : result.notices) {
        result.finished ? console.notice(notice) : console.explain(notice);
    }
    if (const std::string unknown = unknown_classes_text(result); !unknown.empty()) {
        console.message_box({unknown});
    }
    const bool cancelled = result.cancelled || ending.stopped;
    if (!result.finished) {
        console.message_box(
            {cancelled ? "The run was cancelled. Nothing has been changed." : "The run ended without an output."});
    }
    if (request.json) {
        write_result_json(out, result, console.messages());
    } else if (result.finished) {
        out << result_table(result, request.quiet);
    }
    out.flush();
    if (result.finished) {
        return kDone;
    }
    return cancelled ? kCancelled : kRefused;
}

}  // namespace

int run(const RunRequest& request, std::ostream& out, std::ostream& err, bool on_terminal) {
    ConsoleProgress progress(err, on_terminal && !request.quiet);
    ConsoleInteraction console(err, progress, {request.yes, request.quiet});
    const reporting::ScopedInteraction scope(console);
    try {
        const Ending ending = execute(request, progress);
        progress.clear_line();
        tell_kept(ending.kept_folder, console);
        return tell_result(request, ending, out, console);
    } catch (const base::RuntimeError& refusal) {
        if (!request.json) {
            throw;
        }
        console.message_box({refusal.description()});
        write_result_json(out, {}, console.messages());
        out.flush();
        return kRefused;
    }
}

}  // namespace kestrel::cli

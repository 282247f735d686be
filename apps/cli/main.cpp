// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "apps/cli/coefficients_command.h"
#include "apps/cli/demo/demo_command.h"
#include "apps/cli/records_command.h"
#include "apps/cli/refusal.h"
#include "apps/cli/run_command.h"

namespace {

using namespace kestrel::cli;

/// The word that stands where a subcommand is missing; empty when there is none, or no subcommand is missing.
std::string unknown_word(const CLI::App& app) {
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
    }
    const std::vector<std::string> words = command->remaining();
    return command->get_require_subcommand_min() == 0 || words.empty() ? "" : words.front();
}

/// The exit status of a command line that asks for nothing more than help or the version, or is wrong.
int end_of_parsing(const CLI::App& app, const CLI::ParseError& error) {
    const std::string word = unknown_word(app);
    if (error.get_exit_code() != 0 && !word.empty()) {
        std::cerr << "There is no " << (word.front() == '-' ? "option" : "command") << " '" << word
                  << "'\nRun with --help for more information." << std::endl;
        return kWrongCommandLine;
    }
    return app.exit(error, std::cout, std::cerr) == 0 ? kDone : kWrongCommandLine;
}

int carry_out(const Action& action) {
    try {
        return action();
    } catch (const std::exception& error) {
        std::cerr << "Kestrel: " << error.what() << std::endl;
        return kRefused;
    }
}

int answer(int argc, char** argv) {
    CLI::App app("Kestrel estimates how much of watersheds, districts or parcels is impervious surface.", "kestrel");
    app.set_version_flag("--version", "kestrel " KESTREL_VERSION);
    app.require_subcommand(1);
    app.footer("Example:\n  kestrel demo try_kestrel");

    Action action;
    add_run_command(app, action);
    add_coefficients_command(app, action);
    add_records_command(app, action);
    add_demo_command(app, action);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return end_of_parsing(app, error);
    }
    return carry_out(action);
}

}  // namespace

int main(int argc, char** argv) {
    const int status = answer(argc, argv);
    std::cout.flush();
    if (!std::cout && status == kDone) {
        std::cerr << "Kestrel: The result could not be written to standard output." << std::endl;
        return kRefused;
    }
    return status;
}

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "apps/cli/coefficients_command.h"
#include "apps/cli/demo_command.h"
#include "apps/cli/records_command.h"
#include "apps/cli/refusal.h"
#include "apps/cli/run_command.h"

namespace {

using namespace kestrel::cli;

/// The exit status of a command line that asks for nothing more than help or the version, or is wrong.
int end_of_parsing(const CLI::App& app, const CLI::ParseError& error) {
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

}  // namespace

int main(int argc, char** argv) {
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

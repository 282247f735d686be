// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "apps/cli/run_command.h"
#include "coefficients/clsISModelProperties.h"

/// \file
/// What the subcommands of `kestrel coefficients` have in common.
namespace kestrel::cli {

struct CoefficientsOptions {
    std::string store{};
    std::string set{};
    std::string file{};
    std::string name{};
    bool overwrite = false;
};

struct CoefficientsSubcommand {
    const char* name;
    const char* description;
    const char* example;
    /// \return the exit status.
    int (*act)(const CoefficientsOptions&);
};

/// Adds the subcommand with what all of them have; the caller adds options of its own.
CLI::App* add_coefficients_subcommand(CLI::App& parent, const CoefficientsSubcommand& subcommand,
                                      const std::shared_ptr<CoefficientsOptions>& options, Action& action);

/// Adds --set to a subcommand.
void add_set_option(CLI::App& subcommand, CoefficientsOptions& options);

/// Loads the store that was named, or the user's own. \return its path.
std::string load_chosen_store(const CoefficientsOptions& options, clsISModelProperties& store);

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "apps/cli/run_command.h"
#include "coefficients/clsISModelProperties.h"

namespace kestrel::cli {

/// Adds `kestrel coefficients` with all that it can do to `app`; parsing one of its commands sets `action`.
void add_coefficients_command(CLI::App& app, Action& action);

/// The sets of a store with the number of their classes.
std::string sets_table(const clsISModelProperties& store);

/// The classes of a set with their coefficients.
std::string classes_table(const clsISLCDef& set);

/// What is wrong with a store, and what is merely odd.
struct StoreFindings {
    /// Break a run, or make its figures wrong.
    std::vector<std::string> errors;
    std::vector<std::string> notes;
};

/// \param set_name looks at the sets of this name only; at all when empty.
StoreFindings check_store(const clsISModelProperties& store, const std::string& set_name);

}  // namespace kestrel::cli

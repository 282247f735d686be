// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/cli/run_command.h"

namespace kestrel::cli {

/// Adds import, export and merge to `kestrel coefficients`: sets go between stores and text files.
void add_exchange_commands(CLI::App& parent, Action& action);

}  // namespace kestrel::cli

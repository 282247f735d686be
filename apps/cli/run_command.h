// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <functional>

namespace kestrel::cli {

/// What a command line asks for; its result is the exit status.
using Action = std::function<int()>;

/// Adds `kestrel run` to `app`; parsing it sets `action`.
void add_run_command(CLI::App& app, Action& action);

}  // namespace kestrel::cli

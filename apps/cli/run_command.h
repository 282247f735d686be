// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

// The parser takes seconds to compile; its users include it.
namespace CLI {
class App;
}

namespace kestrel::cli {

/// What a command line asks for; its result is the exit status.
using Action = std::function<int()>;

/// Adds `kestrel run` to `app`; parsing it sets `action`.
void add_run_command(CLI::App& app, Action& action);

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <ostream>
#include <string>

#include "apps/cli/demo/demo_data.h"
#include "apps/cli/run_command.h"

namespace kestrel::cli {

/// Adds `kestrel demo` to `app`; parsing it sets `action`.
void add_demo_command(CLI::App& app, Action& action);

/// "small", "medium" or "COLSxROWS", such as "600x400"; nothing for anything else.
std::optional<DemoSize> demo_size_from(const std::string& text);

/// Makes the demonstration in `folder`, which is made when it is missing and must be empty otherwise, and prints what
/// to do with it.
int make_demo(const std::string& folder, const DemoSize& size, std::ostream& out);

}  // namespace kestrel::cli

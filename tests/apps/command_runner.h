// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace kestrel::test {

/// What a finished process left.
struct CommandResult {
    int status = -1;
    std::string out;
    std::string err;
};

/// Runs `kestrel` with these arguments and waits for its end.
/// \param environment further variables, "NAME=value".
CommandResult run_command(const std::vector<std::string>& arguments, const std::vector<std::string>& environment = {});

}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace kestrel::test {

using Arguments = std::vector<std::string>;

/// The arguments, and those added after them.
Arguments more(Arguments arguments, const Arguments& added);

/// Whether `part` occurs in `text`.
bool holds(const std::string& text, const std::string& part);

/// What a finished process left.
struct CommandResult {
    int status = -1;
    std::string out;
    std::string err;
};

/// Runs `kestrel` with these arguments and waits for its end.
/// \param environment further variables, "NAME=value".
CommandResult run_command(const std::vector<std::string>& arguments, const std::vector<std::string>& environment = {});

/// The same with standard output going to a file, and so not in the result.
CommandResult run_command_to(const std::string& file, const std::vector<std::string>& arguments);

/// The same with both streams going to a pipe that nobody reads any more.
/// \return the exit status; -1 when a signal ended the process.
int run_command_unheard(const std::vector<std::string>& arguments, const std::vector<std::string>& environment = {});

}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/apps/cli/command_runner.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "base/files.h"
#include "tests/support/test_files.h"

namespace kestrel::test {

namespace {

std::vector<char*> pointers_to(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// Starts `kestrel`, waits for its end, and returns its exit status.
int status_of(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
              const posix_spawn_file_actions_t& actions) {
    std::vector<std::string> words{KESTREL_COMMAND};
    words.insert(words.end(), arguments.begin(), arguments.end());
    // The first of two variables of a name counts.
    std::vector<std::string> variables = environment;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    std::vector<char*> word_pointers = pointers_to(words);
    std::vector<char*> variable_pointers = pointers_to(variables);
    pid_t process = 0;
    if (::posix_spawn(&process, KESTREL_COMMAND, &actions, nullptr, word_pointers.data(), variable_pointers.data()) !=
        0) {
        throw std::runtime_error("cannot start " KESTREL_COMMAND);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Runs with standard output going to `out`, which is not read.
CommandResult run_into(const std::string& out, const std::vector<std::string>& arguments,
                       const std::vector<std::string>& environment) {
    const TemporaryFolder folder;
    const std::string err = folder / "err";
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT, 0600);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT, 0600);
    const int status = status_of(arguments, environment, actions);
    ::posix_spawn_file_actions_destroy(&actions);
    return {status, "", base::read_file(err)};
}

}  // namespace

Arguments more(Arguments arguments, const Arguments& added) {
    arguments.insert(arguments.end(), added.begin(), added.end());
    return arguments;
}

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

CommandResult run_command(const std::vector<std::string>& arguments, const std::vector<std::string>& environment) {
    const TemporaryFolder folder;
    CommandResult result = run_into(folder / "out", arguments, environment);
    result.out = base::read_file(folder / "out");
    return result;
}

CommandResult run_command_to(const std::string& file, const std::vector<std::string>& arguments) {
    return run_into(file, arguments, {});
}

int run_command_unheard(const std::vector<std::string>& arguments, const std::vector<std::string>& environment) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("cannot make a pipe");
    }
    ::close(ends[0]);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    const int status = status_of(arguments, environment, actions);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    return status;
}

}  // namespace kestrel::test

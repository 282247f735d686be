// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/apps/command_runner.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "platform/files.h"
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

}  // namespace

CommandResult run_command(const std::vector<std::string>& arguments, const std::vector<std::string>& environment) {
    const TemporaryFolder folder;
    std::vector<std::string> words{KESTREL_COMMAND};
    words.insert(words.end(), arguments.begin(), arguments.end());
    // The first of two variables of a name counts.
    std::vector<std::string> variables = environment;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    std::vector<char*> word_pointers = pointers_to(words);
    std::vector<char*> variable_pointers = pointers_to(variables);

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    const std::string out = folder / "out";
    const std::string err = folder / "err";
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT, 0600);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT, 0600);
    pid_t process = 0;
    const int error =
        ::posix_spawn(&process, KESTREL_COMMAND, &actions, nullptr, word_pointers.data(), variable_pointers.data());
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error("cannot start " KESTREL_COMMAND);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, platform::read_file(out), platform::read_file(err)};
}

}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace kestrel::test {

/// Whether permissions do not bind this process.
inline bool superuser() {
    return ::geteuid() == 0;
}

/// A user without any rights of its own.
inline constexpr uid_t kNobody = 65534;

/// Runs `body` in a child process that permissions bind. \return whether it gave true and did not throw.
template <typename Body>
bool succeeds_unprivileged(Body body) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (superuser() && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) {
            ::_exit(2);
        }
        try {
            ::_exit(body() ? 0 : 1);
        } catch (...) {
            ::_exit(3);
        }
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace kestrel::test

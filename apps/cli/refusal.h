// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <fmt/format.h>

#include <string>
#include <utility>

#include "base/errors.h"

namespace kestrel::cli {

/// Exit status of the command.
enum ExitStatus : int { kDone = 0, kRefused = 1, kWrongCommandLine = 2, kCancelled = 130 };

/// Ends the command with status 1 and a message that says what is wrong, where, and what to do.
template <typename... Values>
[[noreturn]] void refuse(fmt::format_string<Values...> text, Values&&... values) {
    throw base::RuntimeError(base::kInvalidProcedureCall, fmt::format(text, std::forward<Values>(values)...));
}

}  // namespace kestrel::cli

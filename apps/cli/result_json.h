// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "platform/run_result.h"

namespace kestrel::cli {

/// A run as one JSON object, indented, with a line end. Bytes that are no UTF-8 are replaced by U+FFFD.
/// \param messages what the user was told, such as why there is no output.
std::string result_json(const platform::RunResult& result, const std::vector<std::string>& messages = {});

}  // namespace kestrel::cli

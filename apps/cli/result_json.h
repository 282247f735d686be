// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "contracts/run_result.h"

namespace kestrel::cli {

/// Writes a run as one JSON object, indented, with a line end. Bytes that are no UTF-8 are replaced by U+FFFD. The
/// zones are written one by one: there may be hundreds of thousands.
/// \param messages what the user was told, such as why there is no output.
void write_result_json(std::ostream& out, const contracts::RunResult& result,
                       const std::vector<std::string>& messages = {});

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "parameters/run_output.h"
#include "running/run_refusal.h"

/// \file
/// Whether the output of a run can be written where it is to go.
namespace kestrel::running {

/// Whether an output of the same name may be replaced.
enum class Replacing { forbidden, allowed };

/// Files of the output that exist already.
std::vector<std::string> existing_files(const RunOutput& output);

/// Why one of the names cannot be that of a file: it is too long, or a layer name that holds a separator or line end.
/// Without a full stop; nothing when they can.
std::optional<std::string> wrong_name(const RunOutput& output);

/// The first reason against writing an output: a name that no file can have; a folder that is missing, cannot be
/// written to, or has folders where the files of the output would stand; an input that the output is, or whose files it
/// would replace; an output that is there already and may not be replaced. Nothing when there is none.
/// \param inputs paths; what is no path of a file or folder is passed over.
std::optional<RunRefusal> first_reason_against(const RunOutput& output, const std::vector<std::string>& inputs,
                                               Replacing replacing);

}  // namespace kestrel::running

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "parameters/run_output.h"
#include "running/run_refusal.h"

namespace kestrel::cli {

/// \param text what the user gave: a name without ".shp" gets it, one without a folder means the present folder.
/// \param layer_name the output's base name when empty.
/// \throws std::invalid_argument with the reason when there is no name, it is that of a folder, or one of the names is
///         no file name.
RunOutput output_of(const std::string& text, const std::string& layer_name);

/// What is told of a run that cannot begin, with what can be done on the command line.
std::string refusal_text(const running::RunRefusal& refusal);

}  // namespace kestrel::cli

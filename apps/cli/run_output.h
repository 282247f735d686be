// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "parameters/run_output.h"

namespace kestrel::cli {

/// \param text what the user gave: a name without ".shp" gets it, one without a folder means the present folder.
/// \param layer_name the output's base name when empty.
/// \throws std::invalid_argument with the reason when there is no name, it is that of a folder, or one of the names is
///         no file name.
RunOutput output_of(const std::string& text, const std::string& layer_name);

/// Refuses a folder that is missing, cannot be written to, or has folders where the files of the output would stand.
void check_folder(const RunOutput& output);

/// Refuses an output that is one of the inputs, or whose files would replace files that belong to one.
/// \param inputs paths; what is no path of a file or folder is passed over.
void check_not_an_input(const RunOutput& output, const std::vector<std::string>& inputs);

/// Refuses to replace an output that exists already, unless that is wanted.
void check_replacement(const RunOutput& output, bool overwrite);

}  // namespace kestrel::cli

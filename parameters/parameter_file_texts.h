// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <fmt/format.h>

#include <string>

#include "reporting/interaction.h"

/// \file
/// What the writer and the reader of the model parameter file say to the user.
namespace kestrel::parameter_file_texts {

inline reporting::MessageBox missing_folder(const std::string& folder) {
    return {fmt::format("Working directory ({}) defined in ArcView project does not exist.", folder)};
}

// The folder stands before "\temp" as it is, whatever its separators.
inline reporting::MessageBox missing_file(const std::string& extension_folder, const std::string& file_name) {
    return {fmt::format(
                "A '{}' does not exist in {}\\temp. \r This file is required to perform an Kestrel analysis.",  // sic
                file_name, extension_folder),
            "Missing: Model_Params File", reporting::Icon::critical, reporting::Buttons::ok};
}

}  // namespace kestrel::parameter_file_texts

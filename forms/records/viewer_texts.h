// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "reporting/interaction.h"

/// \file
/// What the viewer of run reports and metadata says.
namespace kestrel::viewer_texts {

inline bool is_report(const std::string& file_type) {
    return file_type == "prm";
}

inline reporting::MessageBox no_files(const std::string& file_type) {
    if (is_report(file_type)) {
        return {"There are no layers with an associated \"Parameters\" file.", "No Parameter Files"};
    }
    return {"There are no layers with an associated \"Metadata\" file.", "No Metadata Files"};
}

/// The window's title while no file is shown.
inline constexpr const char* kNoFile = "Kestrel";

/// The window's title. The ending stands there whatever format the layer has.
inline std::string caption(const std::string& file_type, const std::string& layer) {
    return (is_report(file_type) ? "Kestrel Parameters for " : "Kestrel Metadata for ") + layer + ".shp";
}

/// What the find bar tells.
inline constexpr const char* kNotFound = "Not found";
inline constexpr const char* kFromTheBeginning = "Continued from the beginning";
inline constexpr const char* kFromTheEnd = "Continued from the end";

}  // namespace kestrel::viewer_texts

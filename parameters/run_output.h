// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// Where the output of a run goes.
struct RunOutput {
    /// Without a separator at its end.
    std::string folder;
    /// Ends in ".shp", in whatever letter case.
    std::string file_name;
    /// Name in the map, and of the records beside the shapefile.
    std::string layer_name;

    std::string path() const;
    /// Run report, metadata, layer file and style.
    std::vector<std::string> records() const;
};

/// Files of the output that exist already.
std::vector<std::string> existing_files(const RunOutput& output);

/// Why one of the names cannot be that of a file: it is too long, or a layer name that holds a separator or line end.
/// Nothing when they can.
std::optional<std::string> wrong_name(const RunOutput& output);

/// Why the folder cannot take the output: it is missing, cannot be written to, or has folders where the files of the
/// output would stand. A sentence; nothing when it can.
std::optional<std::string> unusable_folder(const RunOutput& output);

/// That the output is one of the inputs, or that its files would replace files that belong to one. A sentence; nothing
/// when all inputs are safe.
/// \param inputs paths; what is no path of a file or folder is passed over.
std::optional<std::string> replaced_input(const RunOutput& output, const std::vector<std::string>& inputs);

/// Whether two paths name one file, links followed.
bool same_file(const std::string& one, const std::string& other);

}  // namespace kestrel

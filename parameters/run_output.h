// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

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

}  // namespace kestrel

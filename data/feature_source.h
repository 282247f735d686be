// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kestrel::data {

/// Where features are read from.
struct FeatureSource {
    /// A file, folder or dataset name that OGR opens.
    std::string path;
    /// Layer inside the source; the first when empty.
    std::string layer_name{};
    /// Attribute filter in OGR's SQL; all features when empty.
    std::string subset{};

    /// A source as QGIS writes it: `path`, `path|layername=NAME`, `path|layername=NAME|subset=FILTER`. The filter goes
    /// to the end of the text; `geometrytype` and `option:` parts are passed over. \throws RuntimeError 5 for a layer
    /// given by its number.
    static FeatureSource parse(std::string_view text);
    /// The file that the features lie in: the path, or in a folder of shapefiles the one of the layer.
    std::string file() const;
    friend bool operator==(const FeatureSource&, const FeatureSource&) = default;
};

}  // namespace kestrel::data

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "contracts/map.h"

/// \file
/// Where the run report or the metadata file of a layer is looked for.
namespace kestrel {

/// The feature layers of the map from the top; groups are looked into one level deep, in place, as the engine finds
/// its layers.
std::vector<std::shared_ptr<contracts::FeatureLayer>> feature_layers(const contracts::Map& map);

/// The folder that holds a source, with a separator at its end; empty when the source names none.
std::string source_folder(const data::FeatureSource& source);

/// The name, without its ending, of the record that belongs to `layer`: the data source's name, or else the layer's
/// own, whichever has a file first.
/// \param folder as source_folder() gives it.
/// \param ending "prm" or "met".
/// \return nothing when neither file is there.
std::optional<std::string> record_name(const contracts::FeatureLayer& layer, const std::string& folder,
                                       const std::string& ending);

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "data/feature_class.h"
#include "hosting/headless_map.h"

namespace kestrel::hosting {

/// The layers of a run without a desktop, each with the name by which the map and the parameter file know it.
///
/// A layer that is given no name is named after the layer inside its source when that was given, else after its file.
/// Different sources never share a name: the second is "sheds (2)". The same source named twice is one layer, unless
/// other features of it are selected.
class RunLayers {
  public:
    /// \return the layer's name.
    std::string add_raster(const std::string& source, const std::string& name = {});
    /// \param source as given.
    /// \param opened the same, opened.
    /// \param selected ids of the selected features, ascending.
    std::string add_features(const data::FeatureSource& source, const data::FeatureClass& opened,
                             std::vector<std::int64_t> selected = {}, const std::string& name = {});

    /// In the order in which they were added.
    const std::vector<std::shared_ptr<contracts::Layer>>& layers() const noexcept { return m_layers; }
    /// Files and folders that the layers draw from, for comparing with the output.
    const std::vector<std::string>& files() const noexcept { return m_files; }

  private:
    std::string distinct_name(const std::string& wanted) const;

    std::vector<std::shared_ptr<contracts::Layer>> m_layers;
    std::vector<std::string> m_identities;  // of the layers
    std::vector<std::string> m_files;
};

/// A name as it can stand in the parameter file: "#", which would cut it, and control characters become "_".
std::string layer_name_from(const std::string& wanted);

}  // namespace kestrel::hosting

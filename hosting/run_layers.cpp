// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "hosting/run_layers.h"

#include <algorithm>

#include "base/conversions.h"
#include "base/files.h"

namespace kestrel::hosting {

namespace {

/// One text for all names of a file or folder; other sources are known by the text that names them.
std::string identity_of(const std::string& source) {
    return base::file_exists(source) || base::folder_exists(source) ? base::real_path(source) : source;
}

}  // namespace

std::string layer_name_from(const std::string& wanted) {
    std::string name = base::to_utf8(wanted);
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '#' || static_cast<unsigned char>(c) < 0x20; }, '_');
    return name;
}

std::string RunLayers::distinct_name(const std::string& wanted) const {
    const auto taken = [this](const std::string& name) {
        return std::any_of(m_layers.begin(), m_layers.end(), [&](const auto& layer) { return layer->name() == name; });
    };
    std::string name = wanted;
    for (std::int32_t number = 2; taken(name); ++number) {
        name = wanted + " (" + base::text_of(number) + ")";
    }
    return name;
}

std::string RunLayers::add_raster(const std::string& source, const std::string& name) {
    const std::string base = name.empty() ? base::base_name_of(base::file_name_of(source)) : name;
    const std::string given = distinct_name(layer_name_from(base.empty() ? source : base));
    m_layers.push_back(std::make_shared<HeadlessRasterLayer>(given, source));
    m_identities.push_back("raster\n" + identity_of(source));
    m_files.push_back(source);
    return given;
}

std::string RunLayers::add_features(const data::FeatureSource& source, const data::FeatureClass& opened,
                                    std::vector<std::int64_t> selected, const std::string& name) {
    std::string identity = "features\n" + identity_of(source.path) + "\n" + opened.layer_name() + "\n" + source.subset;
    for (const std::int64_t id : selected) {
        identity += "\n" + base::text_of(id);
    }
    const auto known = std::find(m_identities.begin(), m_identities.end(), identity);
    if (known != m_identities.end()) {
        return m_layers[static_cast<std::size_t>(known - m_identities.begin())]->name();
    }
    std::string base = name.empty() ? source.layer_name : name;
    if (base.empty()) {
        base = base::base_name_of(base::file_name_of(source.path));
    }
    const std::string given = distinct_name(layer_name_from(base.empty() ? opened.layer_name() : base));
    m_layers.push_back(std::make_shared<HeadlessFeatureLayer>(given, source, std::move(selected)));
    m_identities.push_back(std::move(identity));
    m_files.push_back(data::FeatureSource{.path = source.path, .layer_name = opened.layer_name()}.file());
    return given;
}

}  // namespace kestrel::hosting

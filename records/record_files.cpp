// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "records/record_files.h"

#include "base/files.h"

namespace kestrel {

using contracts::FeatureLayer;

namespace {

void take_feature_layer(const std::shared_ptr<contracts::Layer>& layer,
                        std::vector<std::shared_ptr<FeatureLayer>>& taken) {
    if (auto features = std::dynamic_pointer_cast<FeatureLayer>(layer)) {
        taken.push_back(std::move(features));
    }
}

std::string source_name(const data::FeatureSource& source) {
    return source.layer_name.empty() ? base::base_name_of(source.path) : source.layer_name;
}

bool has_record(const std::string& folder, const std::string& name, const std::string& ending) {
    return !name.empty() && base::file_exists(folder + name + "." + ending);
}

}  // namespace

std::vector<std::shared_ptr<FeatureLayer>> feature_layers(const contracts::Map& map) {
    std::vector<std::shared_ptr<FeatureLayer>> found;
    for (const auto& layer : map.layers()) {
        take_feature_layer(layer, found);
        if (const auto* group = dynamic_cast<const contracts::GroupLayer*>(layer.get())) {
            for (const auto& member : group->members()) {
                take_feature_layer(member, found);
            }
        }
    }
    return found;
}

std::string source_folder(const data::FeatureSource& source) {
    if (source.path.empty()) {
        return {};
    }
    // A folder of shapefiles is a source of several layers.
    std::string folder = base::folder_exists(source.path) ? source.path : base::folder_of(source.path);
    if (folder.empty()) {
        return "./";
    }
    return folder.back() == '/' ? folder : folder + "/";
}

std::optional<std::string> record_name(const FeatureLayer& layer, const std::string& folder,
                                       const std::string& ending) {
    if (folder.empty()) {
        return std::nullopt;
    }
    for (const std::string& name : {source_name(layer.source()), layer.name()}) {
        if (has_record(folder, name, ending)) {
            return name;
        }
    }
    return std::nullopt;
}

}  // namespace kestrel

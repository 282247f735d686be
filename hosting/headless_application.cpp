// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "hosting/headless_application.h"

namespace kestrel::hosting {

contracts::IExtensionConfig* HeadlessApplication::find_extension(std::string_view class_id) {
    const auto found = m_extensions.find(class_id);
    return found == m_extensions.end() ? nullptr : found->second;
}

std::shared_ptr<contracts::FeatureLayer> HeadlessApplication::make_feature_layer(const std::string& path,
                                                                                 const std::string& name) {
    return std::make_shared<HeadlessFeatureLayer>(name, data::FeatureSource{.path = path});
}

void HeadlessApplication::register_extension(std::string class_id, contracts::IExtensionConfig& extension) {
    m_extensions.insert_or_assign(std::move(class_id), &extension);
}

}  // namespace kestrel::hosting

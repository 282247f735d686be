// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "extension/clsExtension.h"

#include <utility>

#include "base/files.h"

namespace kestrel {

clsExtension::clsExtension(std::string extension_folder, std::unique_ptr<ExtensionWindows> windows)
    : m_extension_folder(std::move(extension_folder)), m_windows(std::move(windows)) {}

clsExtension::~clsExtension() {
    clsExtension::IExtension_Shutdown();
}

std::string clsExtension::IExtension_Name() const {
    return "Kestrel";
}

void clsExtension::IExtension_Startup(contracts::Application* initializationData) {
    m_application = initializationData;
    if (m_windows && m_application != nullptr) {
        m_windows->start(*m_application);
    }
}

void clsExtension::IExtension_Shutdown() {
    if (m_windows) {
        m_windows->stop();
    }
    m_application = nullptr;
}

std::string clsExtension::IExtensionConfig_ProductName() const {
    return "Kestrel Tools";
}

std::string clsExtension::IExtensionConfig_Description() const {
    return "Extension for estimating area of imperviousness based on land cover.";
}

std::int32_t clsExtension::IExtensionConfig_State() {
    if (m_state == contracts::kExtensionEnabled) {
        ensure_working_folders();
    }
    return m_state;
}

void clsExtension::IExtensionConfig_State(std::int32_t state) {
    m_state = state;
}

void clsExtension::ensure_working_folders() const {
    for (const char* name : {"temp", "output"}) {
        const std::string folder = base::join_path(m_extension_folder, name);
        if (!base::folder_exists(folder)) {
            base::create_folder(folder);
        }
    }
}

}  // namespace kestrel

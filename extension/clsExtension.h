// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "contracts/extension.h"
#include "contracts/extension_object.h"
#include "extension/extension_windows.h"

namespace kestrel {

/// The program as its host knows it: what it is called, whether it is switched on, its working folders, and its windows
/// where there is a desktop.
///
/// It has no error handlers: what goes wrong in a state read passes to the host.
class clsExtension final : public contracts::ExtensionObject,
                           public contracts::IExtension,
                           public contracts::IExtensionConfig {
  public:
    /// \param extension_folder in which `temp` and `output` are made. Nothing is done there before the state is read.
    /// \param windows nothing where there is no desktop.
    explicit clsExtension(std::string extension_folder, std::unique_ptr<ExtensionWindows> windows = nullptr);
    /// Shuts down, if the host has not.
    ~clsExtension() override;
    clsExtension(const clsExtension&) = delete;
    clsExtension& operator=(const clsExtension&) = delete;

    std::string IExtension_Name() const override;
    void IExtension_Startup(contracts::Application* initializationData) override;
    void IExtension_Shutdown() override;

    std::string IExtensionConfig_ProductName() const override;
    std::string IExtensionConfig_Description() const override;
    /// While the state is enabled, every read makes `temp` and `output` where they are missing, so that a user who
    /// deletes one gets it back.
    /// \throws RuntimeError when one of them cannot be made.
    std::int32_t IExtensionConfig_State() override;
    void IExtensionConfig_State(std::int32_t state) override;

    const std::string& extension_folder() const noexcept { return m_extension_folder; }
    /// The host application between start-up and shut-down, else nothing.
    contracts::Application* application() const noexcept { return m_application; }
    /// Nothing where there is no desktop.
    ExtensionWindows* windows() const noexcept { return m_windows.get(); }

  private:
    void ensure_working_folders() const;

    std::string m_extension_folder;
    std::unique_ptr<ExtensionWindows> m_windows;
    contracts::Application* m_application = nullptr;
    std::int32_t m_state = 0;
};

}  // namespace kestrel

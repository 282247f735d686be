// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "contracts/command.h"
#include "contracts/extension.h"
#include "hosting/extension_library.h"

namespace kestrel::hosting {

/// What stands at one place of a toolbar or menu, made and ready: a command, or a menu with items of its own.
struct HostedItem {
    contracts::ItemDef def;
    std::unique_ptr<contracts::ExtensionObject> object;
    /// Nothing for a menu.
    contracts::ICommand* command = nullptr;
    /// Nothing for a command.
    const contracts::IMenuDef* menu = nullptr;
    std::vector<HostedItem> items{};
};

/// An extension in a host: its library, its extension object, and its toolbar with all that is on it. How that is shown
/// is the host's affair.
///
///     HostedExtension kestrel(path);
///     ...                                                 // make kestrel.config() findable as kKestrelExtension
///     kestrel.start(application);
///     kestrel.config().IExtensionConfig_State(kExtensionEnabled);
///     for (const HostedItem& item : kestrel.items()) ...
class HostedExtension {
  public:
    /// Loads the library and makes its extension object. \throws RuntimeError as ExtensionLibrary does.
    explicit HostedExtension(const std::string& library_path);
    /// Stops.
    ~HostedExtension();
    HostedExtension(const HostedExtension&) = delete;
    HostedExtension& operator=(const HostedExtension&) = delete;

    /// Starts the extension up, and makes its toolbar. Commands look for the extension then, so `application` must find
    /// it by now.
    /// \param application outlives the time until stop().
    void start(contracts::Application& application);
    /// Takes the toolbar apart and shuts the extension down, which closes its windows. May be called twice.
    void stop();

    contracts::IExtension& extension() { return contract<contracts::IExtension>(*m_extension); }
    contracts::IExtensionConfig& config() { return contract<contracts::IExtensionConfig>(*m_extension); }
    /// Between start() and stop() only.
    const contracts::IToolBarDef& toolbar() const { return contract<contracts::IToolBarDef>(*m_toolbar); }
    /// What is on the toolbar; empty outside start() and stop().
    const std::vector<HostedItem>& items() const noexcept { return m_items; }

  private:
    HostedItem make_item(const contracts::ItemDef& def, contracts::Application& application) const;

    ExtensionLibrary m_library;
    std::unique_ptr<contracts::ExtensionObject> m_extension;
    std::unique_ptr<contracts::ExtensionObject> m_toolbar;
    std::vector<HostedItem> m_items;
    bool m_started = false;
};

}  // namespace kestrel::hosting

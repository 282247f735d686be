// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "extension/extension_windows.h"
#include "reporting/interaction.h"

class QWidget;

namespace kestrel {

/// The one owner of the extension's windows. They stand on their own, modeless and without an owner window.
/// Needs a QApplication from the first window to stop().
class SharedWindows final : public ExtensionWindows {
  public:
    explicit SharedWindows(std::string extension_folder);
    ~SharedWindows() override;

    void start(contracts::Application& application) override;
    void stop() override;
    void open(CommandKind command, contracts::Application& application) override;

    void show_help();

  private:
    struct Forms;
    class HostInteraction;

    QWidget& form_of(CommandKind command, contracts::Application& application);
    QWidget& viewer_of(const char* file_type, contracts::Application& application);

    std::string m_extension_folder;
    std::unique_ptr<HostInteraction> m_interaction;
    /// From start() to stop() the extension's code speaks through m_interaction.
    std::unique_ptr<reporting::ScopedInteraction> m_scope;
    std::unique_ptr<Forms> m_forms;
};

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "reporting/interaction.h"

namespace kestrel {

/// How a desktop speaks with the user: message boxes, input boxes, file dialogs and windows of Qt. Needs a
/// QApplication; everything is called on its thread. Boxes belong to the window that is active.
class QtInteraction final : public reporting::Interaction {
  public:
    struct Hooks {
        /// Takes notices; without one they go to standard error.
        std::function<void(std::string_view)> notice{};
        /// Opens the help window; without one the user is told that there is none.
        std::function<void()> show_help{};
        /// Makes what shows the progress of a waiting window beside it; it lives as long as that window.
        std::function<std::unique_ptr<base::Progress>()> beside_waiting_window{};
    };

    QtInteraction() = default;
    explicit QtInteraction(Hooks hooks) : m_hooks(std::move(hooks)) {}

    reporting::Answer message_box(const reporting::MessageBox& box) override;
    std::string input_box(const reporting::InputBox& box) override;
    std::optional<std::string> file_dialog(const reporting::FileDialog& dialog) override;
    void show_call_stack(std::string_view text) override;
    std::unique_ptr<reporting::WaitingWindow> waiting_window(std::string_view text) override;
    void show_help() override;
    void notice(std::string_view text) override;
    void beep() override;

    /// The progress of the waiting window that was opened last and is still there; without one, progress that nobody
    /// watches and that never stops. What a host's Application::progress() gives back.
    base::Progress& progress();

  private:
    Hooks m_hooks;
    base::NoProgress m_no_progress;
    /// Shared with the windows, which may be closed later than this ends.
    std::shared_ptr<std::vector<base::Progress*>> m_waiting = std::make_shared<std::vector<base::Progress*>>();
};

/// A filter of reporting::FileDialog as Qt writes it: "Text(*.txt;*.csv)|*.txt;*.csv" gives "Text (*.txt *.csv)".
QString qt_name_filter(std::string_view filter);

}  // namespace kestrel

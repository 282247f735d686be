// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "reporting/interaction.h"

namespace kestrel::reporting {

/// Passes everything on to another interaction: the base of those that change a part of what is said.
class ForwardingInteraction : public Interaction {
  public:
    /// \param next which outlives this.
    explicit ForwardingInteraction(Interaction& next) : m_next(next) {}

    Answer message_box(const MessageBox& box) override { return m_next.message_box(box); }
    std::string input_box(const InputBox& box) override { return m_next.input_box(box); }
    std::optional<std::string> file_dialog(const FileDialog& dialog) override { return m_next.file_dialog(dialog); }
    void show_call_stack(std::string_view text) override { m_next.show_call_stack(text); }
    std::unique_ptr<WaitingWindow> waiting_window(std::string_view text) override {
        return m_next.waiting_window(text);
    }
    void show_help() override { m_next.show_help(); }
    void notice(std::string_view text) override { m_next.notice(text); }
    void beep() override { m_next.beep(); }

  private:
    Interaction& m_next;
};

}  // namespace kestrel::reporting

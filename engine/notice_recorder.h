// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "reporting/interaction.h"

namespace kestrel {

/// Passes everything on to the interaction that was current before, and keeps the notices for the run's result.
class NoticeRecorder final : public reporting::Interaction {
  public:
    NoticeRecorder() : m_next(reporting::interaction()), m_scope(*this) {}

    reporting::Answer message_box(const reporting::MessageBox& box) override { return m_next.message_box(box); }
    std::string input_box(const reporting::InputBox& box) override { return m_next.input_box(box); }
    std::optional<std::string> file_dialog(const reporting::FileDialog& dialog) override {
        return m_next.file_dialog(dialog);
    }
    void show_call_stack(std::string_view text) override { m_next.show_call_stack(text); }
    std::unique_ptr<reporting::WaitingWindow> waiting_window(std::string_view text) override {
        return m_next.waiting_window(text);
    }
    void show_help() override { m_next.show_help(); }
    void notice(std::string_view text) override {
        m_notices.emplace_back(text);
        m_next.notice(text);
    }
    void beep() override { m_next.beep(); }

    std::vector<std::string> take_notices() { return std::exchange(m_notices, {}); }

  private:
    reporting::Interaction& m_next;
    reporting::ScopedInteraction m_scope;
    std::vector<std::string> m_notices;
};

}  // namespace kestrel

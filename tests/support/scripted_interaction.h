// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel::test {

/// Records everything that is said to the user, in order, and answers from a script. An answer that a test did not
/// script is the one that Cancel, No or the only button gives.
class ScriptedInteraction final : public reporting::Interaction {
  public:
    ScriptedInteraction() { reset_reporting_flag(); }
    ~ScriptedInteraction() override { reset_reporting_flag(); }

    reporting::Answer message_box(const reporting::MessageBox& box) override;
    std::string input_box(const reporting::InputBox& box) override;
    std::optional<std::string> file_dialog(const reporting::FileDialog& dialog) override;
    void show_call_stack(std::string_view text) override { call_stacks.emplace_back(text); }
    std::unique_ptr<reporting::WaitingWindow> waiting_window(std::string_view text) override;
    void show_help() override { ++help_requests; }
    void notice(std::string_view text) override { notices.emplace_back(text); }
    void beep() override { ++beeps; }

    // The script, used up from the front.
    std::deque<reporting::Answer> answers;
    std::deque<std::string> inputs;
    std::deque<std::optional<std::string>> chosen_files;

    // What was said.
    std::vector<reporting::MessageBox> boxes;
    std::vector<std::string> call_stacks;
    std::vector<std::string> notices;
    std::vector<reporting::InputBox> input_boxes;
    std::vector<reporting::FileDialog> file_dialogs;
    std::vector<std::string> waiting_texts;
    int help_requests = 0;
    int beeps = 0;

  private:
    reporting::ScopedInteraction m_scope{*this};
};

}  // namespace kestrel::test

namespace kestrel::reporting {
/// So that a failed comparison prints the box.
void PrintTo(const MessageBox& box, std::ostream* stream);
}  // namespace kestrel::reporting

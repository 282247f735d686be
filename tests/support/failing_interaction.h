// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "reporting/interaction.h"
#include "tests/support/failure.h"

namespace kestrel::test {

/// A user with whom nothing goes well: whatever is asked or shown fails. Reports of errors are kept.
class FailingInteraction : public reporting::Interaction {
  public:
    reporting::Answer message_box(const reporting::MessageBox&) override {
        if (boxes_fail) fail_denied();
        return reporting::Answer::ok;
    }
    std::string input_box(const reporting::InputBox&) override { fail_denied(); }
    std::optional<std::string> file_dialog(const reporting::FileDialog&) override { fail_denied(); }
    void show_call_stack(std::string_view text) override {
        call_stacks.emplace_back(text);
        if (reports_that_fail > 0) {
            --reports_that_fail;
            fail_denied();
        }
    }
    std::unique_ptr<reporting::WaitingWindow> waiting_window(std::string_view) override { fail_denied(); }
    void show_help() override { fail_denied(); }
    void notice(std::string_view) override {
        if (notices_fail) fail_denied();
    }
    void beep() override {}

    std::vector<std::string> call_stacks;
    bool boxes_fail = true;
    bool notices_fail = false;
    /// So many reports from now on fail: their errors come to the procedures above those that reported.
    int reports_that_fail = 0;

  private:
    reporting::ScopedInteraction m_scope{*this};
};

}  // namespace kestrel::test

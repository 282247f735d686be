// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "platform/contracts/interaction.h"
#include "platform/errors.h"

namespace kestrel::test {

/// A user with whom nothing goes well: whatever is asked or shown fails. Reports of errors are kept.
class FailingInteraction : public platform::Interaction {
  public:
    platform::Answer message_box(const platform::MessageBox&) override { fail(); }
    std::string input_box(const platform::InputBox&) override { fail(); }
    std::optional<std::string> file_dialog(const platform::FileDialog&) override { fail(); }
    void show_call_stack(std::string_view text) override { call_stacks.emplace_back(text); }
    std::unique_ptr<platform::WaitingWindow> waiting_window(std::string_view) override { fail(); }
    void show_help() override { fail(); }
    void notice(std::string_view) override {
        if (notices_fail) fail();
    }
    void beep() override {}

    std::vector<std::string> call_stacks;
    bool notices_fail = false;

  private:
    [[noreturn]] static void fail() { throw platform::RuntimeError(70, "Permission denied", "Kestrel", 45); }
    platform::ScopedInteraction m_scope{*this};
};

}  // namespace kestrel::test

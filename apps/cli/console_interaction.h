// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "apps/cli/console_progress.h"
#include "reporting/interaction.h"

namespace kestrel::cli {

struct ConsoleOptions {
    /// Questions are answered OK or Yes instead of Cancel or No.
    bool yes = false;
    /// Notices are left out.
    bool quiet = false;
};

/// Speaks with the user through a stream of text, without ever waiting for an answer.
class ConsoleInteraction final : public reporting::Interaction {
  public:
    /// \param progress its line is taken away before something is written.
    ConsoleInteraction(std::ostream& stream, ConsoleProgress& progress, ConsoleOptions options)
        : m_stream(stream), m_progress(progress), m_options(options) {}

    /// Writes "title: text". A question also says how it was answered, since nobody can answer it.
    reporting::Answer message_box(const reporting::MessageBox& box) override;
    std::string input_box(const reporting::InputBox&) override { return {}; }
    std::optional<std::string> file_dialog(const reporting::FileDialog&) override { return std::nullopt; }
    void show_call_stack(std::string_view text) override;
    std::unique_ptr<reporting::WaitingWindow> waiting_window(std::string_view text) override;
    void show_help() override;
    /// Writes a notice once, however often it is given.
    void notice(std::string_view text) override;
    /// Writes a notice once although notices are left out: it says why a run failed.
    void explain(std::string_view text);
    void beep() override {}

    /// The boxes and call stacks so far, as they were written.
    const std::vector<std::string>& messages() const noexcept { return m_messages; }

  private:
    void write(std::string_view text);

    std::ostream& m_stream;
    ConsoleProgress& m_progress;
    ConsoleOptions m_options;
    std::set<std::string, std::less<>> m_notices;
    std::vector<std::string> m_messages;
};

/// `text` with the line ends CR and CR LF as LF.
std::string with_line_feeds(std::string_view text);

}  // namespace kestrel::cli

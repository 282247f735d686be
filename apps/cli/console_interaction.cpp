// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/console_interaction.h"

namespace kestrel::cli {

using reporting::Answer;
using reporting::Buttons;
using reporting::Icon;

namespace {

/// Not every box with a Cancel button asks something: a critical one with OK and Cancel is only closed.
bool asks(const reporting::MessageBox& box) {
    return box.buttons == Buttons::yes_no || box.buttons == Buttons::yes_no_cancel ||
           (box.buttons == Buttons::ok_cancel && box.icon != Icon::critical);
}

Answer answer_to(const reporting::MessageBox& box, bool yes) {
    switch (box.buttons) {
        case Buttons::yes_no:
        case Buttons::yes_no_cancel:
            return yes ? Answer::yes : Answer::no;
        case Buttons::ok_cancel:
            return yes ? Answer::ok : Answer::cancel;
        case Buttons::ok:
            break;
    }
    return Answer::ok;
}

std::string_view answer_text(Answer answer) {
    switch (answer) {
        case Answer::ok:
            return "OK";
        case Answer::yes:
            return "Yes";
        case Answer::no:
            return "No";
        case Answer::cancel:
            break;
    }
    return "Cancel";
}

class ConsoleWaitingWindow final : public reporting::WaitingWindow {
  public:
    explicit ConsoleWaitingWindow(ConsoleProgress& progress) : m_progress(progress) {}
    ~ConsoleWaitingWindow() override { m_progress.clear_line(); }
    bool report(double fraction, std::string_view text) override { return m_progress.report(fraction, text); }
    bool cancelled() const override { return m_progress.cancelled(); }

  private:
    ConsoleProgress& m_progress;
};

}  // namespace

std::string with_line_feeds(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r') {
            result += text[i];
        } else if (i + 1 == text.size() || text[i + 1] != '\n') {
            result += '\n';
        }
    }
    return result;
}

void ConsoleInteraction::write(std::string_view text) {
    m_progress.clear_line();
    m_stream << with_line_feeds(text) << std::endl;
}

Answer ConsoleInteraction::message_box(const reporting::MessageBox& box) {
    m_messages.push_back(with_line_feeds((box.title.empty() ? "Kestrel" : box.title) + ": " + box.text));
    write(m_messages.back());
    const Answer answer = answer_to(box, m_options.yes);
    if (asks(box)) {
        write("(answered " + std::string(answer_text(answer)) + (m_options.yes ? ")" : "; give --yes to agree)"));
    }
    return answer;
}

void ConsoleInteraction::show_call_stack(std::string_view text) {
    m_messages.push_back(with_line_feeds(text));
    write(text);
}

std::unique_ptr<reporting::WaitingWindow> ConsoleInteraction::waiting_window(std::string_view) {
    return std::make_unique<ConsoleWaitingWindow>(m_progress);
}

void ConsoleInteraction::show_help() {
    write("Kestrel: see kestrel --help");
}

void ConsoleInteraction::notice(std::string_view text) {
    if (!m_options.quiet) {
        explain(text);
    }
}

void ConsoleInteraction::explain(std::string_view text) {
    if (m_notices.emplace(text).second) {
        write("Kestrel: " + std::string(text));
    }
}

}  // namespace kestrel::cli

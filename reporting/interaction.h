// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/progress.h"

/// \file
/// The contract through which everything below the hosts speaks with the user.
///
/// No other code opens a message box, an input box, a file dialog or a window of text, so a test sees every message
/// with its text, title, icon and buttons, in order, and the command can answer without a screen.
namespace kestrel::reporting {

enum class Icon { none, critical, question, exclamation, information };
enum class Buttons { ok, ok_cancel, yes_no, yes_no_cancel };
enum class Answer { ok, cancel, yes, no };

/// A modal message box. An empty title means the application's own.
struct MessageBox {
    std::string text;
    std::string title{};
    Icon icon = Icon::none;
    Buttons buttons = Buttons::ok;

    friend bool operator==(const MessageBox&, const MessageBox&) = default;
};

struct InputBox {
    std::string prompt;
    std::string title;
};

/// A file dialog. `filter` is "Description|pattern;pattern".
struct FileDialog {
    enum class Kind { open, save };
    Kind kind = Kind::open;
    std::string title;
    std::string filter;
    /// Appended, with its point, to a saved name without an extension; may be empty.
    std::string default_extension{};
};

/// The window shown while a run works. It is the run's progress too: it takes fraction and text, and its Cancel
/// button is what makes report() answer "stop". It closes when destroyed.
class WaitingWindow : public base::Progress {};

class Interaction {
  public:
    virtual ~Interaction() = default;

    virtual Answer message_box(const MessageBox& box) = 0;

    /// \return what the user typed; empty when the box was cancelled.
    virtual std::string input_box(const InputBox& box) = 0;

    /// \return the chosen path; nothing when the dialog was cancelled.
    virtual std::optional<std::string> file_dialog(const FileDialog& dialog) = 0;

    /// Shows the text of a call-stack report so that the user can read and copy it.
    virtual void show_call_stack(std::string_view text) = 0;

    /// \param text the fixed text of the window.
    virtual std::unique_ptr<WaitingWindow> waiting_window(std::string_view text) = 0;

    /// Opens the help window.
    virtual void show_help() = 0;

    /// Tells a warning that needs no answer: never a box.
    virtual void notice(std::string_view text) = 0;

    virtual void beep() = 0;
};

/// The interaction of the calling thread, as the innermost living ScopedInteraction set it.
/// \throws RuntimeError 91 when the thread has none.
Interaction& current_interaction();

/// Makes `current` the calling thread's interaction for its own lifetime; the one before returns afterwards.
/// Hosts hold one; a run on a worker thread holds one of its own. They may end in any order, on the thread that they
/// began on: one that ends early leaves those that began later in charge.
class ScopedInteraction {
  public:
    explicit ScopedInteraction(Interaction& current);
    ~ScopedInteraction();
    ScopedInteraction(const ScopedInteraction&) = delete;
    ScopedInteraction& operator=(const ScopedInteraction&) = delete;

  private:
    friend Interaction& current_interaction();

    Interaction* m_current;
    ScopedInteraction* m_outer;
};

}  // namespace kestrel::reporting

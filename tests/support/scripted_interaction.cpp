// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/support/scripted_interaction.h"

#include <ostream>

namespace kestrel::test {

namespace {

template <typename T>
T take_front(std::deque<T>& script, T otherwise) {
    if (script.empty()) {
        return otherwise;
    }
    T result = std::move(script.front());
    script.pop_front();
    return result;
}

reporting::Answer negative(reporting::Buttons buttons) {
    switch (buttons) {
        case reporting::Buttons::ok:
            return reporting::Answer::ok;
        case reporting::Buttons::yes_no:
            return reporting::Answer::no;
        default:
            return reporting::Answer::cancel;
    }
}

class SilentWindow final : public reporting::WaitingWindow {
  public:
    bool report(double, std::string_view) override { return true; }
    bool cancelled() const override { return false; }
};

}  // namespace

reporting::Answer ScriptedInteraction::message_box(const reporting::MessageBox& box) {
    boxes.push_back(box);
    return take_front(answers, negative(box.buttons));
}

std::string ScriptedInteraction::input_box(const reporting::InputBox& box) {
    input_boxes.push_back(box);
    return take_front(inputs, std::string());
}

std::optional<std::string> ScriptedInteraction::file_dialog(const reporting::FileDialog& dialog) {
    file_dialogs.push_back(dialog);
    return take_front(chosen_files, std::optional<std::string>());
}

std::unique_ptr<reporting::WaitingWindow> ScriptedInteraction::waiting_window(std::string_view text) {
    waiting_texts.emplace_back(text);
    return std::make_unique<SilentWindow>();
}

}  // namespace kestrel::test

namespace kestrel::reporting {

void PrintTo(const MessageBox& box, std::ostream* stream) {
    *stream << "{text \"" << box.text << "\", title \"" << box.title << "\", icon " << static_cast<int>(box.icon)
            << ", buttons " << static_cast<int>(box.buttons) << "}";
}

}  // namespace kestrel::reporting

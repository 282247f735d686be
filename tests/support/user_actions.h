// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <QWidget>
#include <stdexcept>
#include <string>

/// \file
/// What a user does with a window, as real events.
namespace kestrel::test {

/// The control of that object name in a window. \throws std::runtime_error when there is none.
template <typename Control>
Control& control_in(const QWidget& window, const std::string& name) {
    auto* found = window.findChild<Control*>(QString::fromStdString(name));
    if (found == nullptr) throw std::runtime_error("no control " + name);
    return *found;
}

/// Clicks a button, a check box or an option, and lets happen what it leaves for after its click.
void press(const QWidget& window, const std::string& button);

/// Chooses an entry of a list by its text, with the keyboard. A list that lacks it is a failure of the test.
void choose_entry(QComboBox& list, const std::string& text);

}  // namespace kestrel::test

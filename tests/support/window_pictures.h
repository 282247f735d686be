// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <string>

/// \file
/// Pictures of windows for the user guide, taken from a screen that has no desktop.
namespace kestrel::test {

/// Gives the windows the look that the pictures have everywhere.
void use_picture_style();

/// Lets the windows draw themselves.
void wait_for_paint();

/// What the screen shows of a window, with everything that lies over it; title bars are drawn around it and around
/// dialogs that are open, as a desktop would. Ends the program when the file cannot be written.
/// \param path of a PNG file.
void take_picture(const QWidget& window, const std::string& path);

}  // namespace kestrel::test

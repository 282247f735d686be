// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>

namespace kestrel {

/// Whether letters of the font are as wide as each other. This is measured: files of some such fonts do not tell.
bool is_of_one_width(const QFont& font);

/// The desktop's font for text in columns. Where the desktop names none that is of one width, the system's, in the same
/// size.
QFont fixed_font();
/// The same for a desktop that names this font.
QFont fixed_font(const QFont& of_desktop);

}  // namespace kestrel

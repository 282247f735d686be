// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kestrel::cli {

/// Columns that a UTF-8 text takes on a terminal: none for combining marks, two for East Asian wide characters and
/// pictographs, one for everything else, a stray byte included.
int display_width(std::string_view text);

/// `text` with blanks at its end, or in front of it, up to `width` columns.
std::string padded_right(std::string_view text, int width);
std::string padded_left(std::string_view text, int width);

}  // namespace kestrel::cli

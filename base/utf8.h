// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kestrel::base {

/// Whether `text` is valid UTF-8 as a whole: no overlong forms, no surrogates, nothing beyond the last code point. A
/// leading byte-order mark is a character like any other.
bool valid_utf8(std::string_view text);

}  // namespace kestrel::base

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// \file
/// Texts in UTF-8. Letters are those of ASCII, in any locale.

namespace kestrel::base {

/// Whether `text` is valid UTF-8 as a whole: no overlong forms, no surrogates, nothing beyond the last code point. A
/// leading byte-order mark is a character like any other.
bool valid_utf8(std::string_view text);

/// How many characters valid UTF-8 has.
std::size_t character_count(std::string_view utf8);

/// The longest beginning of `utf8` of at most `bytes` bytes that does not end within a character.
std::string_view first_bytes(std::string_view utf8, std::size_t bytes);

/// `text` without the characters of `blanks` at its ends.
std::string_view trimmed(std::string_view text, std::string_view blanks = " \t");

/// `text` without any space.
std::string without_spaces(std::string_view text);

/// `text` with its letters in lower case.
std::string lower_case(std::string_view text);

/// Whether two texts are the same but for the case of letters.
bool same_but_for_case(std::string_view one, std::string_view other);

}  // namespace kestrel::base

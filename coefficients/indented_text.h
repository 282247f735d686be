// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kestrel {

/// The longest flat text, in characters, that a store holds.
inline constexpr std::size_t kMaxStoreCharacters = 32767;

/// A flat XML text laid out one tag or one value a line, each line ended by CR LF.
struct IndentedText {
    std::string text;
    /// Whether that is all of it: false when the flat text is longer than kMaxStoreCharacters. Then `text` ends with
    /// the last tag or value that ends within them.
    bool whole = true;
};

/// Lays out `flat`, a well-formed XML text in UTF-8.
IndentedText indented(std::string_view flat);

}  // namespace kestrel

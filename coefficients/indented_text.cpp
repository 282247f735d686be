// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "coefficients/indented_text.h"

#include "base/text.h"

namespace kestrel {

namespace {

/// The tag or the text at the start of `flat`.
std::string_view first_piece(std::string_view flat) {
    const bool is_tag = flat.starts_with('<');
    const std::size_t end = flat.find(is_tag ? '>' : '<');
    return end == std::string_view::npos ? flat : flat.substr(0, is_tag ? end + 1 : end);
}

}  // namespace

IndentedText indented(std::string_view flat) {
    IndentedText result;
    std::string indent;
    std::size_t position = 0;
    while (!flat.empty()) {
        const std::string_view piece = first_piece(flat);
        // Characters, not bytes: how many classes a store can hold must not depend on the letters of their names.
        position += base::character_count(piece);
        if (position > kMaxStoreCharacters) {
            result.whole = false;
            break;
        }
        const bool is_closing = piece.starts_with("</");
        if (!is_closing) {
            indent += "  ";
        }
        result.text.append(indent).append(piece).append("\r\n");
        // A self-closing tag counts as an opening one, so all that follows it stands deeper. Intended; do not "fix".
        if (is_closing || !piece.starts_with('<')) {
            indent.resize(indent.size() - 2);
        }
        flat.remove_prefix(piece.size());
    }
    return result;
}

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/text_width.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace kestrel::cli {

namespace {

struct CodeRange {
    char32_t first;
    char32_t last;
};

constexpr std::array kCombining{CodeRange{0x0300, 0x036F}, CodeRange{0x1AB0, 0x1AFF}, CodeRange{0x1DC0, 0x1DFF},
                                CodeRange{0x200B, 0x200F}, CodeRange{0x20D0, 0x20FF}, CodeRange{0xFE00, 0xFE0F},
                                CodeRange{0xFE20, 0xFE2F}};
constexpr std::array kWide{CodeRange{0x1100, 0x115F},   CodeRange{0x2E80, 0x303E},  CodeRange{0x3041, 0xA4CF},
                           CodeRange{0xAC00, 0xD7A3},   CodeRange{0xF900, 0xFAFF},  CodeRange{0xFE30, 0xFE6F},
                           CodeRange{0xFF00, 0xFF60},   CodeRange{0xFFE0, 0xFFE6},  CodeRange{0x1F300, 0x1F64F},
                           CodeRange{0x1F900, 0x1F9FF}, CodeRange{0x20000, 0x3FFFD}};

template <std::size_t Count>
bool within(const std::array<CodeRange, Count>& ranges, char32_t code) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [code](const CodeRange& range) { return range.first <= code && code <= range.last; });
}

int trailing_bytes(unsigned char lead) {
    if (lead >= 0xF0 && lead <= 0xF4) {
        return 3;
    }
    if (lead >= 0xE0) {
        return lead < 0xF0 ? 2 : 0;
    }
    return lead >= 0xC2 ? 1 : 0;
}

/// The character that starts at `position`, which moves behind it. A byte that starts none stands for itself.
char32_t next_character(std::string_view text, std::size_t& position) {
    const auto lead = static_cast<unsigned char>(text[position++]);
    const int more = trailing_bytes(lead);
    if (more == 0 || position + static_cast<std::size_t>(more) > text.size()) {
        return lead;
    }
    char32_t code = static_cast<char32_t>(lead & (0x3F >> more));
    for (int i = 0; i < more; ++i) {
        const auto byte = static_cast<unsigned char>(text[position + static_cast<std::size_t>(i)]);
        if ((byte & 0xC0) != 0x80) {
            return lead;
        }
        code = (code << 6) | (byte & 0x3F);
    }
    position += static_cast<std::size_t>(more);
    return code;
}

std::string blanks_up_to(std::string_view text, int width) {
    return std::string(static_cast<std::size_t>(std::max(0, width - display_width(text))), ' ');
}

}  // namespace

int display_width(std::string_view text) {
    int width = 0;
    for (std::size_t position = 0; position < text.size();) {
        const char32_t code = next_character(text, position);
        if (!within(kCombining, code)) {
            width += within(kWide, code) ? 2 : 1;
        }
    }
    return width;
}

std::string padded_right(std::string_view text, int width) {
    return std::string(text) + blanks_up_to(text, width);
}

std::string padded_left(std::string_view text, int width) {
    return blanks_up_to(text, width) + std::string(text);
}

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/text_width.h"

#include <gtest/gtest.h>

namespace kestrel::cli {
namespace {

TEST(TextWidth, LettersTakeOneColumnWhateverTheirBytes) {
    EXPECT_EQ(display_width(""), 0);
    EXPECT_EQ(display_width("Mill Creek"), 10);
    EXPECT_EQ(display_width("Mühlbach"), 8);
    EXPECT_EQ(display_width("Řeka"), 4);
}

TEST(TextWidth, EastAsianCharactersTakeTwoColumns) {
    EXPECT_EQ(display_width("流域"), 4);
    EXPECT_EQ(display_width("유역"), 4);
}

TEST(TextWidth, CombiningMarksTakeNone) {
    EXPECT_EQ(display_width("Mu\xCC\x88hlbach"), 8);
}

TEST(TextWidth, StrayBytesTakeOneColumnEach) {
    EXPECT_EQ(display_width("M\xFChl"), 4);
    EXPECT_EQ(display_width("cut \xE6\xB5"), 6);
}

TEST(TextWidth, PaddingCountsColumnsNotBytes) {
    EXPECT_EQ(padded_right("流域", 6), "流域  ");
    EXPECT_EQ(padded_left("Fluß", 6), "  Fluß");
    EXPECT_EQ(padded_right("too long", 3), "too long");
}

}  // namespace
}  // namespace kestrel::cli

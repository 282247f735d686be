// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/desktop/fixed_font.h"

#include <gtest/gtest.h>

#include <QFontInfo>
#include <QFontMetricsF>

namespace kestrel {
namespace {

void expect_one_width(const QFont& font) {
    const QFontMetricsF metrics(font);
    for (const char letter : {'W', '.', ' ', '0'}) {
        EXPECT_DOUBLE_EQ(metrics.horizontalAdvance('i'), metrics.horizontalAdvance(letter)) << "'" << letter << "'";
    }
}

// Run once more where no font tells that it is of one width; see CMakeLists.txt.
TEST(FixedFont, OfTheDesktopStays) {
    const QString family = QFontInfo(QFont("monospace")).family();
    const QFont chosen = fixed_font(QFont(family, 17));
    EXPECT_EQ(chosen.family(), family);
    EXPECT_EQ(chosen.pointSize(), 17);
    expect_one_width(chosen);
}

TEST(FixedFont, StandsInForAnyOtherInItsSize) {
    for (const char* const family : {"sans-serif", "serif", "no such family"}) {
        const QFont chosen = fixed_font(QFont(family, 17));
        EXPECT_EQ(chosen.pointSize(), 17);
        expect_one_width(chosen);
    }
}

TEST(FixedFont, IsThereWhateverTheDesktopNames) {
    expect_one_width(fixed_font());
}

}  // namespace
}  // namespace kestrel

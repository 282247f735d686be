// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "coefficients/indented_text.h"

#include <gtest/gtest.h>

namespace kestrel {
namespace {

/// A well-formed text of this many characters, with a name made of `letter` in it.
std::string flat_text(std::size_t characters, const std::string& letter) {
    std::string text = "<a><b>";
    for (std::size_t i = 0; i < characters - 14; ++i)
        text += letter;
    return text + "</b></a>";
}

TEST(indented, EveryTagAndEveryValueStandsOnALineOfItsOwn) {
    EXPECT_EQ(indented("<a><b>value</b><c x=\"1\"><d>2</d></c></a>").text,
              "  <a>\r\n"
              "    <b>\r\n"
              "      value\r\n"
              "    </b>\r\n"
              "    <c x=\"1\">\r\n"
              "      <d>\r\n"
              "        2\r\n"
              "      </d>\r\n"
              "    </c>\r\n"
              "  </a>\r\n");
}

TEST(indented, EverythingAfterASelfClosingTagStandsTwoDeeper) {
    EXPECT_EQ(indented("<a><b/><c/><d>v</d></a>").text,
              "  <a>\r\n"
              "    <b/>\r\n"
              "      <c/>\r\n"
              "        <d>\r\n"
              "          v\r\n"
              "        </d>\r\n"
              "      </a>\r\n");
}

TEST(indented, SlashElsewhereInAnOpeningTagOrAValueDoesNotCloseIt) {
    EXPECT_EQ(indented("<a x=\"/\"><b>/ and/or</b></a>").text,
              "  <a x=\"/\">\r\n"
              "    <b>\r\n"
              "      / and/or\r\n"
              "    </b>\r\n"
              "  </a>\r\n");
}

TEST(indented, LastPositionThatFitsIs32767) {
    const IndentedText whole = indented(flat_text(32767, "x"));
    EXPECT_TRUE(whole.whole);
    EXPECT_TRUE(whole.text.ends_with("    </b>\r\n  </a>\r\n"));
}

TEST(indented, TextOfOneCharacterMoreIsCutBeforeThePieceThatOverflows) {
    const IndentedText cut = indented(flat_text(32768, "x"));
    EXPECT_FALSE(cut.whole);
    EXPECT_TRUE(cut.text.ends_with("x\r\n    </b>\r\n"));
}

TEST(indented, PieceThatEndsAt32767IsWrittenEvenWhereMoreFollows) {
    // Without its last tag the text is as long as can be.
    EXPECT_TRUE(indented(flat_text(32767 + 4, "x")).text.ends_with("x\r\n    </b>\r\n"));
    EXPECT_TRUE(indented(flat_text(32767 + 5, "x")).text.ends_with("x\r\n"));
    EXPECT_FALSE(indented(flat_text(32767 + 5, "x")).text.ends_with("</b>\r\n"));
}

TEST(indented, ValueThatOverflowsIsNotWrittenAtAll) {
    EXPECT_EQ(indented(flat_text(40000, "x")).text, "  <a>\r\n    <b>\r\n");
}

TEST(indented, PositionsCountCharactersAndNotBytes) {
    EXPECT_TRUE(indented(flat_text(32767, "\u00e9")).whole);
    EXPECT_FALSE(indented(flat_text(32768, "\u00e9")).whole);
    EXPECT_TRUE(indented(flat_text(32767, "\u20ac")).whole);
    EXPECT_TRUE(indented(flat_text(32767, "\U0001F33F")).whole);
    EXPECT_FALSE(indented(flat_text(32768, "\U0001F33F")).whole);
}

TEST(indented, EmptyTextGivesNoLine) {
    EXPECT_EQ(indented("").text, "");
    EXPECT_TRUE(indented("").whole);
}

}  // namespace
}  // namespace kestrel

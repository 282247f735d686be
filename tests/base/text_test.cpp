// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/text.h"

#include <gtest/gtest.h>

namespace kestrel::base {
namespace {

TEST(ValidUtf8, TakesCharactersOfOneToFourBytesAndTheirExtremes) {
    for (const char* text : {"", "a", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
                             "\xEF\xBF\xBD", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "a\xC3\xA9\xE2\x82\xACz"}) {
        EXPECT_TRUE(valid_utf8(text)) << testing::PrintToString(text);
    }
    EXPECT_TRUE(valid_utf8(std::string_view("a\0b", 3)));
}

TEST(ValidUtf8, TakesAByteOrderMarkAnywhere) {
    EXPECT_TRUE(valid_utf8("\xEF\xBB\xBFname"));
    EXPECT_TRUE(valid_utf8("na\xEF\xBB\xBFme"));
}

TEST(ValidUtf8, RefusesStrayCutOverlongAndForbiddenForms) {
    for (const char* text : {"\x80",
                             "\xBF",
                             "\xC0\x80",
                             "\xC1\xBF",
                             "\xC3",
                             "\xC3z",
                             "\xE0\x9F\xBF",
                             "\xE2\x82",
                             "\xE2z\xAC",
                             "\xE2\x82z",
                             "\xED\xA0\x80",
                             "\xED\xBF\xBF",
                             "\xF0\x8F\xBF\xBF",
                             "\xF0\x9F\x8C",
                             "\xF4\x90\x80\x80",
                             "\xF5\x80\x80\x80",
                             "\xFE",
                             "\xFF",
                             "a\xE9z",
                             "\xEF\xBB\xBF\xE9"}) {
        EXPECT_FALSE(valid_utf8(text)) << testing::PrintToString(text);
    }
}

TEST(CharacterCount, CountsCharactersNotBytes) {
    EXPECT_EQ(character_count(""), 0U);
    EXPECT_EQ(character_count("abc"), 3U);
    EXPECT_EQ(character_count("h\u00e4user \u20ac \U0001F30D"), 10U);
}

TEST(FirstBytes, NeverEndsWithinACharacter) {
    EXPECT_EQ(first_bytes("abc", 3), "abc");
    EXPECT_EQ(first_bytes("abc", 2), "ab");
    EXPECT_EQ(first_bytes("a\u20ac", 4), "a\u20ac");
    EXPECT_EQ(first_bytes("a\u20ac", 3), "a");
    EXPECT_EQ(first_bytes("a\u20ac", 2), "a");
    EXPECT_EQ(first_bytes("\u20ac", 2), "");
    EXPECT_EQ(first_bytes("", 5), "");
}

TEST(Trimmed, TakesTheGivenBlanksFromBothEndsOnly) {
    EXPECT_EQ(trimmed(" \t a b\t "), "a b");
    EXPECT_EQ(trimmed("\ta ", " "), "\ta");
    EXPECT_EQ(trimmed("a\n"), "a\n");
    EXPECT_EQ(trimmed(" \t"), "");
    EXPECT_EQ(trimmed(""), "");
}

TEST(WithoutSpaces, LeavesOtherBlanks) {
    EXPECT_EQ(without_spaces(" 1 2\t3 "), "12\t3");
}

TEST(LowerCase, ChangesLettersOfAsciiAlone) {
    EXPECT_EQ(lower_case("AbZ09_@[`{"), "abz09_@[`{");
    EXPECT_EQ(lower_case("\u00c4"), "\u00c4");
}

TEST(SameButForCase, ComparesLettersWithoutTheirCase) {
    EXPECT_TRUE(same_but_for_case("Shed_ID", "SHED_id"));
    EXPECT_TRUE(same_but_for_case("", ""));
    EXPECT_FALSE(same_but_for_case("shed", "sheds"));
    EXPECT_FALSE(same_but_for_case("@", "`"));
    EXPECT_FALSE(same_but_for_case("\u00c4", "\u00e4"));
}

}  // namespace
}  // namespace kestrel::base

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/utf8.h"

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

}  // namespace
}  // namespace kestrel::base

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/field.h"

#include <gtest/gtest.h>

#include "tests/support/error_of.h"

namespace kestrel::data {

namespace {

using test::error_of;

TEST(FieldTypes, WholeNumbersOfAnyWidthCountAsIntegers) {
    EXPECT_TRUE(integral(FieldType::small_integer));
    EXPECT_TRUE(integral(FieldType::integer));
    EXPECT_TRUE(integral(FieldType::big_integer));
    for (const FieldType type : {FieldType::oid, FieldType::single, FieldType::real, FieldType::text,
                                 FieldType::boolean, FieldType::geometry, FieldType::other}) {
        EXPECT_FALSE(integral(type));
    }
}

TEST(TextOfValue, NullIsEmptyAndNumbersAreConverted) {
    EXPECT_EQ(text_of(Value{}), "");
    EXPECT_EQ(text_of(Value{std::int64_t{12}}), "12");
    EXPECT_EQ(text_of(Value{12.0}), "12");
    EXPECT_EQ(text_of(Value{std::string(" a'b%_ ")}), " a'b%_ ");
}

TEST(NumberOfValue, NullCountsAsZero) {
    EXPECT_EQ(number_of(Value{}), 0);
    EXPECT_EQ(number_of(Value{std::int64_t{-7}}), -7);
    EXPECT_EQ(number_of(Value{2.5}), 2.5);
    EXPECT_EQ(number_of(Value{std::string("2.5")}), 2.5);
}

TEST(NumberOfValue, TextThatIsNotNumericIsATypeMismatch) {
    EXPECT_EQ(error_of([] { number_of(Value{std::string("high")}); }).number(), 13);
    EXPECT_EQ(error_of([] { number_of(Value{std::string()}); }).number(), 13);
}

}  // namespace

}  // namespace kestrel::data

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/conversions.h"

#include <gtest/gtest.h>

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <random>

#include "base/errors.h"
#include "tests/support/error_of.h"

namespace kestrel::base {

namespace {

using test::error_of;

TEST(TextOfInteger, CoversTheWholeRangeOf32And64Bits) {
    EXPECT_EQ(text_of(std::int32_t{0}), "0");
    EXPECT_EQ(text_of(std::numeric_limits<std::int32_t>::min()), "-2147483648");
    EXPECT_EQ(text_of(std::numeric_limits<std::int32_t>::max()), "2147483647");
    EXPECT_EQ(text_of(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(TextOfSingle, IsTheShortestTextThatReadsBack) {
    EXPECT_EQ(text_of(33.3F), "33.3");
    EXPECT_EQ(text_of(12.5F), "12.5");
    EXPECT_EQ(text_of(0.1F), "0.1");
    EXPECT_EQ(text_of(100.0F), "100");
    EXPECT_EQ(text_of(16777216.0F), "16777216");
    EXPECT_EQ(text_of(1e20F), "1e+20");
    EXPECT_EQ(text_of(-9999.0F), "-9999");
}

TEST(TextOfSingle, ReadsBackForAnyBitPattern) {
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        const auto bits = static_cast<std::uint32_t>(random());
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value)) {
            EXPECT_EQ(to_single(text_of(value)), value) << text_of(value);
        }
    }
}

TEST(TextOfSingle, ZeroHasNoSign) {
    EXPECT_EQ(text_of(-0.0F), "0");
    EXPECT_EQ(text_of(0.0F), "0");
}

TEST(TextOfDouble, EverydayNumbersHaveNoExponent) {
    EXPECT_EQ(text_of(0.0), "0");
    EXPECT_EQ(text_of(1.0), "1");
    EXPECT_EQ(text_of(-1.5), "-1.5");
    EXPECT_EQ(text_of(100000.0), "100000");
    EXPECT_EQ(text_of(1000000.0), "1000000");
    EXPECT_EQ(text_of(123456.789), "123456.789");
    EXPECT_EQ(text_of(987654321.123456), "987654321.123456");
    EXPECT_EQ(text_of(100000000000000.0), "100000000000000");
    EXPECT_EQ(text_of(123456789012345.0), "123456789012345");
    EXPECT_EQ(text_of(0.0001), "0.0001");
    EXPECT_EQ(text_of(0.000123), "0.000123");
    EXPECT_EQ(text_of(0.01), "0.01");
}

TEST(TextOfDouble, VeryLargeAndVerySmallNumbersHaveAnExponent) {
    EXPECT_EQ(text_of(1e15), "1e+15");
    EXPECT_EQ(text_of(1e22), "1e+22");
    EXPECT_EQ(text_of(2.2956e-05), "2.2956e-05");
    EXPECT_EQ(text_of(1e-300), "1e-300");
}

TEST(TextOfDouble, HasAtMostFifteenSignificantDigits) {
    EXPECT_EQ(text_of(0.1 + 0.2), "0.3");
    EXPECT_EQ(text_of(1.0 / 3), "0.333333333333333");
    EXPECT_EQ(text_of(2.0 / 3), "0.666666666666667");
    EXPECT_EQ(text_of(1e15 / 3), "333333333333333");
    EXPECT_EQ(text_of(1234567890123456.0), "1.23456789012346e+15");
}

TEST(TextOfDouble, KeepsEveryDecimalOfUpToFifteenDigits) {
    std::mt19937_64 random(2);
    std::uniform_int_distribution<std::int64_t> digits(-999'999'999'999'999, 999'999'999'999'999);
    for (int i = 0; i < 20000; ++i) {
        const double value = static_cast<double>(digits(random)) / 1e6;
        EXPECT_EQ(to_double(text_of(value)), value) << text_of(value);
    }
}

TEST(TextOfDouble, ZeroHasNoSign) {
    EXPECT_EQ(text_of(-0.0), "0");
}

TEST(Numeric, TakesSignPointExponentAndSurroundingBlanks) {
    for (const char* text : {"0", "7", "-7", "+7", "7.", ".5", "-.5", " -.5 ", "\t1\t", "1e3", "1E+3", "1.5e-3", "007",
                             "12345678901234567890123"}) {
        EXPECT_TRUE(numeric(text)) << text;
    }
}

TEST(Numeric, RefusesEverythingElse) {
    for (const char* text :
         {"",     " ",   ".",    "-",   "+",   "-.", "e3", ".e3", "1e",  "1e+",   "1 2", "1,000",        "1,5", "0x10",
          "&H10", "inf", "-inf", "nan", "1d3", "$1", "1%", "--1", "+-1", "1.2.3", "1f",  "\xC2\xA0\x31", "1\n"}) {
        EXPECT_FALSE(numeric(text)) << text;
    }
    EXPECT_FALSE(numeric(std::string_view("1\0", 2)));
}

TEST(ToDouble, ReadsWhatNumericAccepts) {
    EXPECT_EQ(to_double(" -.5 "), -0.5);
    EXPECT_EQ(to_double("+7."), 7);
    EXPECT_EQ(to_double("1e3"), 1000);
    EXPECT_EQ(to_double("1.5E-3"), 0.0015);
    EXPECT_EQ(to_double("0.1"), 0.1);
}

TEST(ToDouble, WhatIsNotNumericIsATypeMismatchAndNamesTheText) {
    try {
        to_double("12 acres");
        FAIL() << "nothing was thrown";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 13);
        EXPECT_NE(error.description().find("12 acres"), std::string::npos);
        EXPECT_EQ(error.line(), __LINE__ - 5);
    }
}

TEST(ToDouble, TooLargeIsAnOverflowWhateverItsForm) {
    EXPECT_EQ(error_of([] { to_double("1e309"); }).number(), 6);
    EXPECT_EQ(error_of([] { to_double("-1e309"); }).number(), 6);
    EXPECT_EQ(error_of([] { to_double("1e99999999999999999999"); }).number(), 6);
    EXPECT_EQ(error_of([] { to_double("0.001e400"); }).number(), 6);
    EXPECT_EQ(error_of([] { to_double("1" + std::string(6000, '0') + "e-10"); }).number(), 6);
}

TEST(ToDouble, TooSmallIsZeroWhateverItsForm) {
    EXPECT_EQ(to_double("1e-400"), 0);
    EXPECT_EQ(to_double("-1e-400"), 0);
    EXPECT_EQ(to_double("1e-99999999999999999999"), 0);
    EXPECT_EQ(to_double("1000e-6000"), 0);
    EXPECT_EQ(to_double("0." + std::string(6000, '0') + "1"), 0);
    EXPECT_EQ(to_double("0e999999"), 0);
}

TEST(ToDouble, SubnormalNumbersAreKept) {
    EXPECT_EQ(to_double("5e-324"), 5e-324);
    EXPECT_EQ(to_double("1e-310"), 1e-310);
}

TEST(ToSingle, GivesTheNearestSingle) {
    EXPECT_EQ(to_single("33.3"), 33.3F);
    EXPECT_EQ(to_single("16777217"), 16777216.0F);
    // Rounded once, from the text: by way of a double it would be the next single above.
    EXPECT_EQ(to_single("1.00000005960464477540"), std::nextafter(1.0F, 2.0F));
    EXPECT_EQ(to_single("1.00000005960464477538"), 1.0F);
}

TEST(ToSingle, BeyondASingleIsAnOverflow) {
    EXPECT_EQ(error_of([] { to_single("1e39"); }).number(), 6);
    EXPECT_EQ(error_of([] { to_single("abc"); }).number(), 13);
    EXPECT_EQ(to_single("1e-60"), 0);
}

TEST(ToInteger, RoundsHalfToEven) {
    EXPECT_EQ(to_integer("0.5"), 0);
    EXPECT_EQ(to_integer("1.5"), 2);
    EXPECT_EQ(to_integer("2.5"), 2);
    EXPECT_EQ(to_integer("3.5"), 4);
    EXPECT_EQ(to_integer("-0.5"), 0);
    EXPECT_EQ(to_integer("-1.5"), -2);
    EXPECT_EQ(to_integer("-2.5"), -2);
    EXPECT_EQ(to_integer("2.51"), 3);
    EXPECT_EQ(to_integer(" 1e3 "), 1000);
}

TEST(ToInteger, OverflowsAtTheEdgesOf32Bits) {
    EXPECT_EQ(to_integer("2147483647"), 2147483647);
    EXPECT_EQ(to_integer("-2147483648"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(to_integer("2147483647.4"), 2147483647);
    EXPECT_EQ(to_integer("-2147483648.5"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(error_of([] { to_integer("2147483647.5"); }).number(), 6);
    EXPECT_EQ(error_of([] { to_integer("2147483648"); }).number(), 6);
    EXPECT_EQ(error_of([] { to_integer("-2147483649"); }).number(), 6);
    EXPECT_EQ(error_of([] { to_integer("1e400"); }).number(), 6);
    EXPECT_EQ(error_of([] { to_integer("eleven"); }).number(), 13);
    EXPECT_EQ(error_of([] { to_integer(""); }).number(), 13);
}

TEST(RoundToScale, StoresWhatADbaseFieldOfThatScaleWouldStore) {
    EXPECT_EQ(round_to_scale(1.23456789, 6), 1.234568);
    EXPECT_EQ(round_to_scale(1.23456749, 6), 1.234567);
    EXPECT_EQ(round_to_scale(-1.23456789, 6), -1.234568);
    EXPECT_EQ(round_to_scale(12.345, 0), 12);
    EXPECT_EQ(round_to_scale(33.333333333, 2), 33.33);
    EXPECT_EQ(round_to_scale(0.0000004, 6), 0);
}

TEST(RoundToScale, AHalfIsDecidedOnTheBinaryValue) {
    // 0.125 and 0.375 are true halves; the others lie a little below or above theirs as binary numbers.
    EXPECT_EQ(round_to_scale(0.125, 2), 0.12);
    EXPECT_EQ(round_to_scale(0.375, 2), 0.38);
    EXPECT_EQ(round_to_scale(1.005, 2), 1.0);
    EXPECT_EQ(round_to_scale(1.015, 2), 1.01);
    EXPECT_EQ(round_to_scale(1.025, 2), 1.02);
    EXPECT_EQ(round_to_scale(8.345, 2), 8.35);
}

TEST(RoundToScale, AgreesWithThePrintedDecimalForAnyNumber) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> mantissa(-1, 1);
    std::uniform_int_distribution<int> exponent(-8, 13);
    std::uniform_int_distribution<int> scale(0, 15);
    for (int i = 0; i < 50000; ++i) {
        const double value = mantissa(random) * std::pow(10, exponent(random));
        const int decimals = scale(random);
        char text[64];
        std::snprintf(text, sizeof text, "%.*f", decimals, value);
        EXPECT_EQ(round_to_scale(value, decimals), to_double(text)) << text << " from " << text_of(value);
    }
}

TEST(RoundToScale, AgreesWithThePrintedDecimalCloseToHalves) {
    for (int i = -20000; i < 20000; ++i) {
        const double half = (i + 0.5) / 1e3;
        for (const double value : {half, std::nextafter(half, 100.0), std::nextafter(half, -100.0)}) {
            char text[64];
            std::snprintf(text, sizeof text, "%.3f", value);
            ASSERT_EQ(round_to_scale(value, 3), to_double(text)) << text << " from " << text_of(value);
        }
    }
}

TEST(RoundToScale, KeepsWhatHasNoDecimalsLeft) {
    EXPECT_EQ(round_to_scale(1e300, 6), 1e300);
    EXPECT_EQ(round_to_scale(123456789012345680.0, 6), 123456789012345680.0);
    EXPECT_TRUE(std::isinf(round_to_scale(std::numeric_limits<double>::infinity(), 6)));
    EXPECT_TRUE(std::isnan(round_to_scale(std::numeric_limits<double>::quiet_NaN(), 6)));
}

TEST(RoundToScale, TakesMoreDecimalsThanADoubleHas) {
    EXPECT_EQ(round_to_scale(0.1, 18), 0.1);
    EXPECT_EQ(round_to_scale(1e-20, 18), 0);
}

TEST(RoundHalfEven3, HalvesOfTheDecimalNumberGoToTheEvenNeighbour) {
    EXPECT_EQ(round_half_even_3(0.0005), 0);
    EXPECT_EQ(round_half_even_3(0.0015), 0.002);
    EXPECT_EQ(round_half_even_3(0.0025), 0.002);
    EXPECT_EQ(round_half_even_3(1.0005), 1.0);
    EXPECT_EQ(round_half_even_3(1.0015), 1.002);
    EXPECT_EQ(round_half_even_3(2.0025), 2.002);
    EXPECT_EQ(round_half_even_3(-0.0015), -0.002);
    EXPECT_EQ(round_half_even_3(-0.0025), -0.002);
}

TEST(RoundHalfEven3, TheDecimalNumberCountsAndNotItsBinaryNeighbour) {
    // Every such half in turn: what the binary number is closer to must not matter.
    for (int thousandths = 0; thousandths < 20000; ++thousandths) {
        const double half = (thousandths * 1000 + 500) / 1e6;
        const int even = thousandths % 2 == 0 ? thousandths : thousandths + 1;
        ASSERT_EQ(round_half_even_3(half), even / 1e3) << text_of(half);
    }
}

TEST(RoundHalfEven3, OthersGoToTheNearest) {
    EXPECT_EQ(round_half_even_3(0.000499), 0);
    EXPECT_EQ(round_half_even_3(0.000501), 0.001);
    EXPECT_EQ(round_half_even_3(1234.567499), 1234.567);
    EXPECT_EQ(round_half_even_3(1234.567501), 1234.568);
    EXPECT_EQ(round_half_even_3(-1234.567501), -1234.568);
    EXPECT_EQ(round_half_even_3(1e17), 1e17);
}

TEST(DoubleOfSingle, IsTheDoubleThatTheSinglesTextNames) {
    EXPECT_EQ(double_of_single(33.3F), 33.3);
    EXPECT_NE(double_of_single(33.3F), static_cast<double>(33.3F));
    EXPECT_EQ(double_of_single(0), 0);
    EXPECT_EQ(double_of_single(-9999), -9999);
}

/// A locale with a decimal comma and grouping, as far as the C++ library is concerned.
class CommaPunctuation final : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(Conversions, DoNotDependOnTheLocaleOfTheProcess) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new CommaPunctuation));
    const char* c_locale = std::setlocale(LC_ALL, "de_DE.UTF-8");  // where it is installed
    EXPECT_EQ(text_of(1234567.5), "1234567.5");
    EXPECT_EQ(text_of(1.0 / 3), "0.333333333333333");
    EXPECT_EQ(text_of(1234.5F), "1234.5");
    EXPECT_EQ(text_of(std::int32_t{1234567}), "1234567");
    EXPECT_EQ(to_double("1234.5"), 1234.5);
    EXPECT_EQ(error_of([] { to_double("1234,5"); }).number(), 13);
    EXPECT_EQ(round_to_scale(0.125, 2), 0.12);
    std::locale::global(before);
    if (c_locale != nullptr) {
        std::setlocale(LC_ALL, "C");
    }
}

}  // namespace

}  // namespace kestrel::base

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/conversions.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

#include "base/errors.h"

namespace kestrel::base {

namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view without_blanks(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    return text;
}

/// Moves `position` over digits; how many there were.
std::size_t skip_digits(std::string_view text, std::size_t& position) {
    const std::size_t start = position;
    while (position < text.size() && is_digit(text[position])) {
        ++position;
    }
    return position - start;
}

void skip_sign(std::string_view text, std::size_t& position) {
    if (position < text.size() && (text[position] == '+' || text[position] == '-')) {
        ++position;
    }
}

/// Text in the form that std::from_chars takes: no blanks, no plus sign.
std::string_view number_text(std::string_view text, int line) {
    if (!numeric(text)) {
        throw RuntimeError(kTypeMismatch, fmt::format("Type mismatch: \"{}\" is not a number", text), "Kestrel", line);
    }
    text = without_blanks(text);
    if (text.front() == '+') {
        text.remove_prefix(1);
    }
    return text;
}

/// Whether a number (in the form of number_text()) is closer to 0 than 1 is: 0.5 and 12e-5, but not 0.5e3.
bool below_one(std::string_view text) {
    const std::size_t exponent_mark = std::min(text.find_first_of("eE"), text.size());
    std::string_view mantissa = text.substr(0, exponent_mark);
    const std::size_t first_digit = std::min(mantissa.find_first_of("123456789"), mantissa.size());
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    // Places that the first digit stands before the point, negative behind it.
    const double places = static_cast<double>(point) - static_cast<double>(first_digit);

    double exponent = 0;  // may have more digits than an integer holds
    std::string_view digits = text.substr(std::min(exponent_mark + 1, text.size()));
    const bool negative = digits.starts_with('-');
    digits.remove_prefix(negative || digits.starts_with('+') ? 1 : 0);
    for (const char digit : digits) {
        exponent = exponent * 10 + (digit - '0');
    }
    return places + (negative ? -exponent : exponent) <= 0;
}

/// A number too small to tell from 0 is 0; one too large is an overflow.
template <typename Float>
Float parse(std::string_view text, int line) {
    const std::string_view trimmed = number_text(text, line);
    Float value = 0;
    const auto result = std::from_chars(trimmed.data(), trimmed.data() + trimmed.size(), value);
    if (result.ec != std::errc::result_out_of_range) {
        return value;
    }
    // The library says the same of too large and too small.
    if (below_one(trimmed)) {
        return 0;
    }
    throw RuntimeError(kOverflow, fmt::format("Overflow: \"{}\" is too large", text), "Kestrel", line);
}

}  // namespace

std::string text_of(std::int32_t value) {
    return fmt::format("{}", value);
}
std::string text_of(std::int64_t value) {
    return fmt::format("{}", value);
}

std::string text_of(float value) {
    if (value == 0) {
        return "0";  // also for the zero with a minus sign
    }
    return fmt::format("{}", value);
}

std::string text_of(double value) {
    if (value == 0) {
        return "0";
    }
    const std::string shortest = fmt::format("{}", value);
    const std::string limited = fmt::format("{:.15g}", value);
    // fmt and printf differ in when they turn to exponents; the shortest form is preferred where it is exact enough.
    double reread = 0;
    std::from_chars(limited.data(), limited.data() + limited.size(), reread);
    return reread == value && shortest.size() <= limited.size() ? shortest : limited;
}

bool numeric(std::string_view text) {
    text = without_blanks(text);
    std::size_t position = 0;
    skip_sign(text, position);
    std::size_t digits = skip_digits(text, position);
    if (position < text.size() && text[position] == '.') {
        ++position;
        digits += skip_digits(text, position);
    }
    if (digits == 0) {
        return false;
    }
    if (position < text.size() && (text[position] == 'e' || text[position] == 'E')) {
        ++position;
        skip_sign(text, position);
        if (skip_digits(text, position) == 0) {
            return false;
        }
    }
    return position == text.size();
}

double to_double(std::string_view text, int line) {
    return parse<double>(text, line);
}

float to_single(std::string_view text, int line) {
    return parse<float>(text, line);
}

std::int32_t to_integer(std::string_view text, int line) {
    const double rounded = std::nearbyint(to_double(text, line));
    if (rounded < std::numeric_limits<std::int32_t>::min() || rounded > std::numeric_limits<std::int32_t>::max()) {
        throw RuntimeError(kOverflow, fmt::format("Overflow: {} is no 32-bit integer", text), "Kestrel", line);
    }
    return static_cast<std::int32_t>(rounded);
}

double round_to_scale(double value, int decimals) {
    static constexpr double kPowers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                         1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const bool short_way = decimals >= 0 && decimals < static_cast<int>(std::size(kPowers));
    const double power = short_way ? kPowers[decimals] : 1;
    const double scaled = value * power;
    const double nearest = std::nearbyint(scaled);
    // Away from the middle between two decimals, and where whole numbers are exact, the short way is the exact one:
    // the quotient of two exact numbers is the double nearest to the decimal.
    if (short_way && std::abs(scaled) < 1e12 && std::abs(std::abs(scaled - nearest) - 0.5) > 1e-3) {
        return nearest / power;
    }
    const std::string text = fmt::format("{:.{}f}", value, decimals);
    double result = value;
    std::from_chars(text.data(), text.data() + text.size(), result);
    return result;
}

double round_half_even_3(double value) {
    const double millionths = std::nearbyint(value * 1e6);
    if (!(std::abs(millionths) < 9e15)) {
        return value;  // no decimals are left to round
    }
    const auto whole = static_cast<std::int64_t>(millionths);
    std::int64_t thousandths = whole / 1000;
    const std::int64_t rest = whole % 1000;
    const std::int64_t magnitude = rest < 0 ? -rest : rest;
    if (magnitude > 500 || (magnitude == 500 && thousandths % 2 != 0)) {
        thousandths += whole < 0 ? -1 : 1;
    }
    return static_cast<double>(thousandths) / 1000;
}

double double_of_single(float value) {
    return to_double(text_of(value));
}

}  // namespace kestrel::base

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// \file
/// The only conversions between numbers and text: always with "." as decimal point, never with grouping, whatever
/// the locale of the process.
namespace kestrel::base {

std::string text_of(std::int32_t value);
std::string text_of(std::int64_t value);

/// The shortest decimal text that reads back to the same single: 12.5, 0, 100, 1e+20.
std::string text_of(float value);

/// The shortest decimal text that reads back to the same double, with at most 15 significant digits. Exponents appear
/// from 1e+15 on and below 0.0001.
std::string text_of(double value);

/// Whether `text` is a decimal number: optional surrounding blanks, optional sign, digits with an optional decimal
/// point, optional exponent, and nothing else. "1e3", " -.5 " and "7." are; "", ".", "0x10", "inf", "nan", "1,000"
/// are not.
bool numeric(std::string_view text);

/// \return the number that `text` names.
/// \throws RuntimeError 13 when `text` is not numeric(), 6 when the number is beyond a double.
double to_double(std::string_view text, int line = __builtin_LINE());

/// The number that `text` names, to the nearest single.
/// \throws RuntimeError 13 when `text` is not numeric(), 6 when the number is beyond a single.
float to_single(std::string_view text, int line = __builtin_LINE());

/// The number that `text` names, rounded half to even.
/// \throws RuntimeError 13 when `text` is not numeric(), 6 when the result is no signed 32-bit integer.
std::int32_t to_integer(std::string_view text, int line = __builtin_LINE());

/// `value` to `decimals` places (0 or more), as a dBASE number field of that scale stores it: the nearest decimal,
/// decided on the exact binary value.
double round_to_scale(double value, int decimals);

/// `value`, a number of 6 decimals, rounded to 3 decimals, half to even on the decimal number and not on its binary
/// neighbour: 0.0005 gives 0, 0.0015 gives 0.002.
double round_half_even_3(double value);

/// The double that the decimal text of a single names: 33.3 for the single nearest to 33.3, not 33.29999924.
double double_of_single(float value);

}  // namespace kestrel::base

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace kestrel::data {

/// Field types as the host's dialogs and tables tell them apart. `big_integer` counts as an integer; `boolean` does
/// not.
enum class FieldType { oid, geometry, small_integer, integer, big_integer, single, real, text, boolean, other };

/// A field of a feature class or table. Length, precision and scale are dBASE ones: length in characters (0 when
/// unlimited), precision in digits, scale in decimals.
struct Field {
    std::string name;
    std::string alias{};
    FieldType type = FieldType::other;
    int length = 0;
    int precision = 0;
    int scale = 0;

    friend bool operator==(const Field&, const Field&) = default;
};

/// Whether the type is a whole number of 16, 32 or 64 bits.
constexpr bool integral(FieldType type) {
    return type == FieldType::small_integer || type == FieldType::integer || type == FieldType::big_integer;
}

/// A value of a field: nothing (NULL), a whole number, a number, or text.
using Value = std::variant<std::monostate, std::int64_t, double, std::string>;

/// The value as text: empty for NULL, otherwise by the conversions of base/conversions.h.
std::string text_of(const Value& value);

/// The value as a number: 0 for NULL.
/// \throws RuntimeError 13 for text that is not numeric.
double number_of(const Value& value);

}  // namespace kestrel::data

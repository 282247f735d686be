// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "coefficients/clsISLCDef.h"

/// \file
/// A coefficient set as comma-separated text: a header line, then a line per class with its value, its name and the
/// coefficients High, Medium and Low. Nothing is quoted, so a name cannot hold a comma.
namespace kestrel {

/// The first thing that is wrong with a line.
enum class TextFault {
    /// Not exactly five fields.
    field_count,
    /// No number where one must be, or a name that is no text.
    format,
    /// Negative, fractional, or no 32-bit integer.
    class_id,
    /// Not within 0 to 100.
    coefficient
};

/// A larger file is not read to its end. Hardly any byte of a text is left out of the store, which holds no more than
/// kMaxStoreCharacters, so this is ample.
inline constexpr std::size_t kMaxCoefficientTextBytes = std::size_t{1024} * 1024;

/// Appends the classes of the text file at `path` to `classes`, up to the first line that is wrong. Lines whose first
/// field is "Value", in any letter case, are skipped wherever they stand. Needs bounded memory, whatever the file.
/// \return what is wrong; nothing when all is right.
/// \throws RuntimeError of read_file(), or 6 when the file is larger than kMaxCoefficientTextBytes and no line in that
///         much of it is wrong.
std::optional<TextFault> read_coefficient_text(const std::string& path, clsLCClasses& classes);

/// The text of `set`, each line ended by CR LF; the header line alone when `set` is nothing.
std::string coefficient_text(const clsISLCDef* set);

}  // namespace kestrel

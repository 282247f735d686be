// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "coefficients/coefficient_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

#include "base/conversions.h"
#include "base/errors.h"
#include "base/files.h"
#include "base/text.h"
#include "coefficients/indented_text.h"

namespace kestrel {

namespace {

enum Column : std::size_t { kValue, kClassName, kHigh, kMedium, kLow, kColumns };
using Fields = std::array<std::string_view, kColumns>;

/// Nothing when there are not exactly five.
std::optional<Fields> fields_of(std::string_view line) {
    line = base::trimmed(line, " ");  // other white space is part of the fields
    if (std::count(line.begin(), line.end(), ',') != kColumns - 1) {
        return std::nullopt;
    }
    Fields fields;
    for (std::string_view& field : fields) {
        const std::size_t comma = std::min(line.find(','), line.size());
        field = line.substr(0, comma);
        line.remove_prefix(std::min(comma + 1, line.size()));
    }
    return fields;
}

bool is_header(const Fields& fields) {
    constexpr std::string_view kHeading = "VALUE";
    const auto same_letter = [](char c, char upper) { return c == upper || c == upper + ('a' - 'A'); };
    const std::string_view first = fields[kValue];
    return std::equal(first.begin(), first.end(), kHeading.begin(), kHeading.end(), same_letter);
}

/// Infinity for a number, of either sign, that no double holds.
double number_in(std::string_view numeric_text) {
    try {
        return base::to_double(numeric_text);
    } catch (const base::RuntimeError&) {
        return std::numeric_limits<double>::infinity();  // out of every range, which is what the caller asks
    }
}

bool is_class_id(double value) {
    return value >= 0 && value <= std::numeric_limits<std::int32_t>::max() && std::trunc(value) == value;
}

/// Whether the store cannot hold the name: a file with such characters is no text.
bool holds_control_character(std::string_view name) {
    return std::any_of(name.begin(), name.end(),
                       [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t'; });
}

std::optional<TextFault> fault_of(const Fields& fields) {
    if (!base::numeric(fields[kValue])) {
        return TextFault::format;
    }
    if (!is_class_id(number_in(fields[kValue]))) {
        return TextFault::class_id;
    }
    for (const Column column : {kHigh, kMedium, kLow}) {
        if (!base::numeric(fields[column])) {
            return TextFault::format;
        }
        const double value = number_in(fields[column]);
        if (value < 0 || value > 100) {
            return TextFault::coefficient;
        }
    }
    if (holds_control_character(fields[kClassName])) {
        return TextFault::format;
    }
    return std::nullopt;
}

std::shared_ptr<clsLCClass> class_of(const Fields& fields) {
    auto land_class = std::make_shared<clsLCClass>();
    land_class->ID = base::to_integer(fields[kValue]);
    land_class->LCName = fields[kClassName];
    land_class->LCHigh = base::to_single(fields[kHigh]);
    land_class->LCMed = base::to_single(fields[kMedium]);
    land_class->LCLow = base::to_single(fields[kLow]);
    return land_class;
}

std::optional<TextFault> add_line(std::string_view line, clsLCClasses& classes) {
    const std::optional<Fields> fields = fields_of(line);
    if (!fields) {
        return TextFault::field_count;
    }
    if (is_header(*fields)) {
        return std::nullopt;
    }
    const std::optional<TextFault> fault = fault_of(*fields);
    if (!fault) {
        classes.Add(class_of(*fields));
    }
    return fault;
}

/// What to say of a file of which only the start was read, and of this line the beginning. Only a line that the store
/// could not hold, of four bytes to a character at most, is wrong by itself.
TextFault fault_of_cut_line(std::string_view line, const std::string& path) {
    if (line.size() > 4 * kMaxStoreCharacters) {
        return TextFault::field_count;
    }
    throw base::RuntimeError(
        base::kOverflow, fmt::format("Overflow: \"{}\" is larger than {} bytes, more than a coefficient store holds",
                                     path, kMaxCoefficientTextBytes));
}

}  // namespace

std::optional<TextFault> read_coefficient_text(const std::string& path, clsLCClasses& classes) {
    // Which encoding it is shows only in the whole, so the file is not read line by line.
    const std::string bytes = base::read_file_start(path, kMaxCoefficientTextBytes + 1);
    std::vector<std::string> lines = base::split_lines(base::to_utf8(bytes));
    std::string cut_line;
    const bool cut = bytes.size() > kMaxCoefficientTextBytes;
    if (cut) {
        cut_line = std::move(lines.back());
        lines.pop_back();
    }
    for (const std::string& line : lines) {
        if (const std::optional<TextFault> fault = add_line(line, classes)) {
            return fault;
        }
    }
    return cut ? std::optional(fault_of_cut_line(cut_line, path)) : std::nullopt;
}

std::string coefficient_text(const clsISLCDef* set) {
    std::string text = "Value,ClassName,High,Medium,Low\r\n";
    if (set == nullptr) {
        return text;
    }
    for (const auto& land_class : set->LCClasses) {
        text += fmt::format("{},{},{},{},{}\r\n", base::text_of(land_class->ID), land_class->LCName,
                            base::text_of(land_class->LCHigh), base::text_of(land_class->LCMed),
                            base::text_of(land_class->LCLow));
    }
    return text;
}

}  // namespace kestrel

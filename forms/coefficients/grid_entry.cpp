// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/coefficients/grid_entry.h"

#include <algorithm>
#include <limits>

#include "base/conversions.h"
#include "base/errors.h"
#include "base/files.h"
#include "base/text.h"
#include "forms/coefficients/editor_texts.h"

namespace kestrel::basISModelPropsUtil {

namespace {

std::vector<std::string> fields_of(std::string_view line) {
    std::vector<std::string> fields;
    for (std::size_t tab = line.find('\t'); tab != std::string_view::npos; tab = line.find('\t')) {
        fields.emplace_back(line.substr(0, tab));
        line.remove_prefix(tab + 1);
    }
    fields.emplace_back(line);
    return fields;
}

bool names_the_columns(const std::vector<std::string>& fields) {
    return base::same_but_for_case(base::trimmed(fields.front(), " "), "VALUE");
}

/// The number of a numeric text; one beyond a double counts as infinite, which is out of every range.
double number_of(std::string_view text) {
    try {
        return base::to_double(text);
    } catch (const base::RuntimeError&) {
        return std::numeric_limits<double>::infinity();
    }
}

bool class_value(std::string_view text) {
    if (!base::numeric(text) || text.find('.') != std::string_view::npos) {
        return false;
    }
    const double value = number_of(text);
    return value >= 0 && value <= std::numeric_limits<std::int32_t>::max() && value == static_cast<std::int32_t>(value);
}

/// Gathers refusals.
void refuse(PasteResult& result, const std::string& reason) {
    ++result.refused;
    if (std::find(result.reasons.begin(), result.reasons.end(), reason) == result.reasons.end()) {
        result.reasons.push_back(reason);
    }
}

void paste_row(GridRow& row, int column, const std::vector<std::string>& fields, PasteResult& result) {
    for (const std::string& field : fields) {
        ++result.cells;
        if (column > kLastColumn) {
            refuse(result, editor_texts::kNoSuchColumn);
            continue;
        }
        const std::string text = column == kNameColumn ? field : std::string(base::trimmed(field, " "));
        if (const auto fault = text_fault(column, text)) {
            refuse(result, fault->text);
        } else {
            row[static_cast<std::size_t>(column)] = text;
        }
        ++column;
    }
}

}  // namespace

GridCell next_cell(GridCell from, int rows) {
    if (from.column < kLastColumn) {
        return {from.row, from.column + 1};
    }
    return from.row < rows ? GridCell{from.row + 1, kFirstDataColumn} : from;
}

GridCell cell_before(GridCell from) {
    if (from.column > kFirstDataColumn) {
        return {from.row, from.column - 1};
    }
    return from.row > kFirstDataRow ? GridCell{from.row - 1, kLastColumn} : from;
}

GridCell cell_above(GridCell from) {
    return from.row > kFirstDataRow ? GridCell{from.row - 1, from.column} : from;
}

GridCell cell_below(GridCell from, int rows) {
    return from.row < rows ? GridCell{from.row + 1, from.column} : from;
}

std::optional<reporting::MessageBox> entry_fault(int column, std::string_view text, std::string_view key) {
    if (column == kNameColumn) {
        return std::nullopt;
    }
    if (column == kValueColumn) {
        return key != "." && base::numeric(text) ? std::nullopt : std::optional(editor_texts::value_no_integer());
    }
    if (!base::numeric(text)) {
        return editor_texts::coefficient_not_numeric();
    }
    const double value = number_of(text);
    return value >= 0 && value <= 100 ? std::nullopt : std::optional(editor_texts::coefficient_out_of_range());
}

std::optional<reporting::MessageBox> text_fault(int column, std::string_view text) {
    if (column == kValueColumn) {
        return class_value(text) ? std::nullopt : std::optional(editor_texts::value_no_integer());
    }
    return entry_fault(column, text, {});
}

std::string text_on_leaving(int column, const std::string& text) {
    return column != kNameColumn && base::without_spaces(text).empty() ? "0" : text;
}

PasteResult paste_block(GridContents& grid, GridCell at, std::string_view block) {
    PasteResult result;
    std::size_t row = static_cast<std::size_t>(at.row - kFirstDataRow);
    bool first = true;
    for (const std::string& line : base::split_lines(block)) {
        const std::vector<std::string> fields = fields_of(line);
        const bool skipped = first && at.column == kValueColumn && names_the_columns(fields);
        first = false;
        if (skipped) {
            continue;
        }
        if (row == grid.rows.size()) {
            grid.rows.push_back(fresh_row());
        }
        paste_row(grid.rows[row], at.column, fields, result);
        ++row;
    }
    number_rows(grid);
    return result;
}

}  // namespace kestrel::basISModelPropsUtil

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "forms/coefficients/grid_rows.h"
#include "reporting/interaction.h"

/// \file
/// What decides while cells of the coefficient grid are filled in: which texts are taken, and where a move leads.
namespace kestrel::basISModelPropsUtil {

/// A place in the grid: row 0 is the header row, column 0 the one that numbers the rows.
struct GridCell {
    int row = 0;
    int column = 0;

    friend bool operator==(const GridCell&, const GridCell&) = default;
};

inline constexpr int kFirstDataRow = 1;
inline constexpr int kFirstDataColumn = kValueColumn;
inline constexpr int kLastColumn = kGridColumns - 1;

// Where the moves lead in a grid of `rows` data rows; `from` itself where there is nothing in that direction.

/// The next cell: one to the right, else the first of the row below.
GridCell next_cell(GridCell from, int rows);
/// One to the left, else the last of the row above.
GridCell cell_before(GridCell from);
GridCell cell_above(GridCell from);
GridCell cell_below(GridCell from, int rows);

/// What is wrong with a cell that is being typed in; nothing when it will do.
/// \param text the cell as it would be after the key.
/// \param key what was typed.
std::optional<reporting::MessageBox> entry_fault(int column, std::string_view text, std::string_view key);

/// What is wrong with a whole text that was not typed key by key, such as a pasted one. Stricter than entry_fault() for
/// class values: no sign and nothing beyond 32 bits gets past the keys one by one either, or fails when saved.
std::optional<reporting::MessageBox> text_fault(int column, std::string_view text);

/// The text that a cell is left with: "0" for a value or coefficient that is blank.
std::string text_on_leaving(int column, const std::string& text);

/// How many cells of a pasted block were refused, and why.
struct PasteResult {
    int cells = 0;
    int refused = 0;
    /// The reasons, without repetition, in the order in which they came up.
    std::vector<std::string> reasons;
};

/// Puts a block of cells, lines with tabs between the cells as spreadsheets hand them over, into the grid with its
/// first cell at `at`. Rows are added as needed. A refused cell keeps its text. A first line that names the columns is
/// left out.
PasteResult paste_block(GridContents& grid, GridCell at, std::string_view block);

}  // namespace kestrel::basISModelPropsUtil

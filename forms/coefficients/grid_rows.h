// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "coefficients/clsISModelProperties.h"

/// \file
/// The rows of the coefficient grid as plain texts, and what is done with all of them.
namespace kestrel::basISModelPropsUtil {

/// Columns of the grid. The first is fixed and numbers the rows.
enum GridColumn : int {
    kNumberColumn,
    kValueColumn,
    kNameColumn,
    kHighColumn,
    kMediumColumn,
    kLowColumn,
    kGridColumns,
};

struct GridHeader {
    std::string text;
    /// In twips: twentieths of a point.
    int width = 0;
};

/// The texts of a row, by GridColumn.
using GridRow = std::array<std::string, kGridColumns>;

struct GridContents {
    /// The fixed header row; empty until SetLCGridHeaders() has laid it out.
    std::vector<GridHeader> headers;
    /// The data rows: rows[0] is the grid's row 1.
    std::vector<GridRow> rows;
};

/// Lays out the header row and empties the grid down to it.
void SetLCGridHeaders(GridContents& grid);

/// Fills the grid with the classes of the first set called `setName`, one row a class; with none when there is no such
/// set.
void LoadLCGrid(GridContents& grid, std::string_view setName, const clsISModelProperties& props);

/// Removes the rows whose data cells are all empty. A row of zeros stays.
void RemoveEmptyGridRows(GridContents& grid);

/// Writes the rows, without the empty ones, into the first set called `setName`, which is added when there is none.
/// \return false, with `props` as it was, when a cell is no number (reported).
bool SaveModelPropUpdates(GridContents& grid, const std::string& setName, clsISModelProperties& props);

/// A row as the user gets it to fill in: zeros, and no name.
GridRow fresh_row();

/// Whether a data cell of the row holds anything but blanks and "0".
bool has_data(const GridRow& row);

/// Puts each row's position into its first column.
void number_rows(GridContents& grid);

}  // namespace kestrel::basISModelPropsUtil

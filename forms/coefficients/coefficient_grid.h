// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTableWidget>

#include "forms/coefficients/grid_entry.h"
#include "forms/coefficients/grid_rows.h"

namespace kestrel {

/// The grid of land-cover classes: a fixed header row, a fixed column that numbers the rows, and cells that nothing but
/// the code changes. Places are counted as in GridCell; what is fixed are the headers of the Qt table.
class CoefficientGrid final : public QTableWidget {
    Q_OBJECT
  public:
    using GridCell = basISModelPropsUtil::GridCell;
    using GridContents = basISModelPropsUtil::GridContents;

    explicit CoefficientGrid(QWidget* parent = nullptr);

    /// Shows the rows, and makes the first data cell the current one. Nothing is said of the cell that was. Columns
    /// that the user has made wider stay so.
    void set_contents(const GridContents& contents);
    GridContents contents() const;
    /// Changes the texts to these, and adds rows as needed; the current cell stays.
    void put_rows(const std::vector<basISModelPropsUtil::GridRow>& texts);

    /// Number of data rows.
    int rows() const { return rowCount(); }
    /// Inserts a row to be filled in as row `row`; later rows move down.
    void insert_fresh_row(int row);

    /// The current cell; in row 0, the header row, when no data cell is.
    GridCell current() const { return {currentRow() + 1, currentColumn() + 1}; }
    void go_to(GridCell cell) { setCurrentCell(cell.row - 1, cell.column - 1); }
    /// go_to() for the mouse: nothing scrolls away under it.
    void pick(GridCell cell);
    bool is_data_cell(GridCell cell) const;

    /// \throws RuntimeError 9 when there is no such data cell.
    QString text(GridCell cell, int line = __builtin_LINE()) const;
    void set_text(GridCell cell, const QString& text, int line = __builtin_LINE());
    /// Paints the cell as the one that is being worked on, or as any other.
    void highlight(GridCell cell, bool on, int line = __builtin_LINE());

    /// Where the cell lies on the viewport.
    QRect place_of(GridCell cell) const { return visualRect(model()->index(cell.row - 1, cell.column - 1)); }
    /// Scrolls as little as is needed.
    void scroll_to(GridCell cell) { scrollTo(model()->index(cell.row - 1, cell.column - 1)); }

    static Qt::Alignment alignment_of(int column);
    /// Light yellow. Text on it is black, also where the system's is white.
    static QColor current_cell_colour();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  private:
    QTableWidgetItem& item_at(GridCell cell, int line) const;
    void fill_row(int row, const basISModelPropsUtil::GridRow& texts);
    void lay_out_headers(const std::vector<basISModelPropsUtil::GridHeader>& headers);
    /// Width in which no column is narrower than it was laid out.
    int least_width() const;

    int m_width_of_columns = 0;
};

}  // namespace kestrel

namespace kestrel::basISModelPropsUtil {

// The routines of the same names, on the grid that the user sees.
void SetLCGridHeaders(CoefficientGrid& grid);
void LoadLCGrid(CoefficientGrid& grid, const QString& setName, const clsISModelProperties& props);

}  // namespace kestrel::basISModelPropsUtil

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/coefficients/coefficient_grid.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "base/errors.h"

namespace kestrel {

using namespace basISModelPropsUtil;

namespace {

constexpr double kTwipsPerInch = 1440;
constexpr int kShownRows = 14;

int pixels(int twips, int dots_per_inch) {
    return static_cast<int>(std::lround(twips * dots_per_inch / kTwipsPerInch));
}

/// Paints the cells without a frame or tint of the style's own: the current cell is known by its background.
class PlainCells final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Tells the whole text of a cell that shows a part of it only.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
        const bool whole = sizeHint(option, index).width() <= view->visualRect(index).width();
        QToolTip::showText(event->globalPos(), whole ? QString() : index.data().toString(), view);
        return true;
    }

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->state &= ~(QStyle::State_HasFocus | QStyle::State_MouseOver);
    }
};

}  // namespace

CoefficientGrid::CoefficientGrid(QWidget* parent) : QTableWidget(parent) {
    setColumnCount(kLastColumn);
    setItemDelegate(new PlainCells(this));
    setEditTriggers(NoEditTriggers);
    setSelectionMode(NoSelection);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setWordWrap(false);
    // Always there, so that columns keep their widths when rows come and go.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    for (QHeaderView* header : {horizontalHeader(), verticalHeader()}) {
        header->setSectionsClickable(false);
        header->setHighlightSections(false);
    }
    horizontalHeader()->setMinimumSectionSize(2 * fontMetrics().height());
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + fontMetrics().height() / 2);
    GridContents empty;
    SetLCGridHeaders(empty);
    lay_out_headers(empty.headers);
}

QColor CoefficientGrid::current_cell_colour() {
    return {255, 255, 192};
}

Qt::Alignment CoefficientGrid::alignment_of(int column) {
    return Qt::AlignVCenter | (column == kNameColumn ? Qt::AlignLeft : Qt::AlignRight);
}

void CoefficientGrid::lay_out_headers(const std::vector<GridHeader>& headers) {
    const int dots = logicalDpiX();
    // The widths are the given ones, but for what would be cut off: numbers of many digits, captions in large letters.
    verticalHeader()->setMinimumWidth(pixels(headers.front().width, dots));
    m_width_of_columns = 0;
    for (int column = kFirstDataColumn; column < static_cast<int>(headers.size()); ++column) {
        const GridHeader& header = headers[static_cast<std::size_t>(column)];
        auto* label = new QTableWidgetItem(QString::fromStdString(header.text));
        label->setData(Qt::TextAlignmentRole, static_cast<int>(alignment_of(column)));
        setHorizontalHeaderItem(column - 1, label);
        const int width = std::max(pixels(header.width, dots), horizontalHeader()->sectionSizeHint(column - 1));
        setColumnWidth(column - 1, width);
        m_width_of_columns += width;
    }
    // A window that is made wider shows more of the names.
    horizontalHeader()->setSectionResizeMode(kNameColumn - 1, QHeaderView::Stretch);
}

void CoefficientGrid::set_contents(const GridContents& contents) {
    {
        const QSignalBlocker silence(this);
        setRowCount(0);
        setRowCount(static_cast<int>(contents.rows.size()));
        for (int row = 0; row < rowCount(); ++row) {
            fill_row(row, contents.rows[static_cast<std::size_t>(row)]);
        }
    }
    if (rowCount() > 0) {
        go_to({kFirstDataRow, kFirstDataColumn});
    }
}

void CoefficientGrid::fill_row(int row, const GridRow& texts) {
    for (int column = kFirstDataColumn; column <= kLastColumn; ++column) {
        auto* cell = new QTableWidgetItem(QString::fromStdString(texts[static_cast<std::size_t>(column)]));
        cell->setData(Qt::TextAlignmentRole, static_cast<int>(alignment_of(column)));
        setItem(row, column - 1, cell);
    }
}

GridContents CoefficientGrid::contents() const {
    GridContents contents;
    SetLCGridHeaders(contents);
    for (int row = kFirstDataRow; row <= rows(); ++row) {
        GridRow texts;
        for (int column = kFirstDataColumn; column <= kLastColumn; ++column) {
            texts[static_cast<std::size_t>(column)] = text({row, column}).toStdString();
        }
        contents.rows.push_back(std::move(texts));
    }
    number_rows(contents);
    return contents;
}

void CoefficientGrid::put_rows(const std::vector<GridRow>& texts) {
    for (int row = kFirstDataRow; row <= static_cast<int>(texts.size()); ++row) {
        if (row > rows()) {
            insert_fresh_row(row);
        }
        const GridRow& cells = texts[static_cast<std::size_t>(row - kFirstDataRow)];
        for (int column = kFirstDataColumn; column <= kLastColumn; ++column) {
            set_text({row, column}, QString::fromStdString(cells[static_cast<std::size_t>(column)]));
        }
    }
}

void CoefficientGrid::pick(GridCell cell) {
    const bool scrolls = hasAutoScroll();
    setAutoScroll(false);
    go_to(cell);
    setAutoScroll(scrolls);
}

bool CoefficientGrid::is_data_cell(GridCell cell) const {
    return cell.row >= kFirstDataRow && cell.row <= rows() && cell.column >= kFirstDataColumn &&
           cell.column <= kLastColumn;
}

void CoefficientGrid::insert_fresh_row(int row) {
    insertRow(row - 1);
    fill_row(row - 1, fresh_row());
}

QTableWidgetItem& CoefficientGrid::item_at(GridCell cell, int line) const {
    QTableWidgetItem* found = item(cell.row - 1, cell.column - 1);
    if (found == nullptr) {
        throw base::RuntimeError(base::kSubscriptOutOfRange, "Subscript out of range", "Kestrel", line);
    }
    return *found;
}

QString CoefficientGrid::text(GridCell cell, int line) const {
    return item_at(cell, line).text();
}

void CoefficientGrid::set_text(GridCell cell, const QString& text, int line) {
    item_at(cell, line).setText(text);
}

void CoefficientGrid::highlight(GridCell cell, bool on, int line) {
    QTableWidgetItem& painted = item_at(cell, line);
    // Without a brush of its own a cell has the system's window colour.
    painted.setBackground(on ? QBrush(current_cell_colour()) : QBrush());
    painted.setForeground(on ? QBrush(Qt::black) : QBrush());
}

int CoefficientGrid::least_width() const {
    return 2 * frameWidth() + verticalScrollBar()->sizeHint().width() +
           std::max(verticalHeader()->sizeHint().width(), verticalHeader()->minimumWidth()) + m_width_of_columns;
}

QSize CoefficientGrid::sizeHint() const {
    return {least_width(), horizontalHeader()->sizeHint().height() + 2 * frameWidth() +
                               kShownRows * verticalHeader()->defaultSectionSize()};
}

QSize CoefficientGrid::minimumSizeHint() const {
    return {least_width(), sizeHint().height() / 2};
}

}  // namespace kestrel

namespace kestrel::basISModelPropsUtil {

void SetLCGridHeaders(CoefficientGrid& grid) {
    GridContents contents;
    SetLCGridHeaders(contents);
    grid.set_contents(contents);
}

void LoadLCGrid(CoefficientGrid& grid, const QString& setName, const clsISModelProperties& props) {
    GridContents contents;
    LoadLCGrid(contents, setName.toStdString(), props);
    grid.set_contents(contents);
}

}  // namespace kestrel::basISModelPropsUtil

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QClipboard>
#include <QGuiApplication>

#include "forms/coefficients/editor_texts.h"
#include "forms/coefficients/frmISModelProps.h"
#include "reporting/error_report.h"

/// \file
/// The coefficient editor's grid: moving, the overlay, the row menu, the clipboard.
namespace kestrel {

using namespace basISModelPropsUtil;
using reporting::current_interaction;

namespace {
constexpr const char* kModule = "ISModelProps";
}

// Moving.

void frmISModelProps::grdLCDef_CurrentCellChanged(int row, int column, int previous_row, int previous_column) {
    const GridCell left = {previous_row + 1, previous_column + 1};
    const GridCell entered = {row + 1, column + 1};
    if (grdLCDef->is_data_cell(left)) {
        grdLCDef_LeaveCell(left);
    }
    if (grdLCDef->is_data_cell(entered)) {
        grdLCDef_EnterCell(entered);
    }
}

void frmISModelProps::grdLCDef_EnterCell(GridCell cell) try {
    hide_overlay();
    m_text_on_entering = grdLCDef->text(cell);
    grdLCDef->highlight(cell, true);
} catch (...) {
    report_current({"grdLCDef_EnterCell", kModule});
}

void frmISModelProps::grdLCDef_LeaveCell(GridCell cell) try {
    grdLCDef->highlight(cell, false);
    const std::string text = grdLCDef->text(cell).toStdString();
    const std::string left = text_on_leaving(cell.column, text);
    if (left != text) {
        grdLCDef->set_text(cell, QString::fromStdString(left));
        set_overlay(QString::fromStdString(left));
    }
} catch (...) {
    report_current({"grdLCDef_LeaveCell", kModule});
}

void frmISModelProps::INCR_CELL() try {
    if (grdLCDef->is_data_cell(grdLCDef->current())) {
        grdLCDef->go_to(next_cell(grdLCDef->current(), grdLCDef->rows()));
        IsCellVisible();
    }
} catch (...) {
    report_current({"INCR_CELL", kModule, Show::no});
}

bool frmISModelProps::IsCellVisible() try {
    const GridCell cell = grdLCDef->current();
    const bool visible = grdLCDef->viewport()->rect().contains(grdLCDef->place_of(cell));
    if (!visible) {
        grdLCDef->scroll_to(cell);
    }
    return visible;
} catch (...) {
    return reported<bool>({"IsCellVisible", kModule, Show::no});
}

// The overlay.

void frmISModelProps::Set_TextBox() try {
    const GridCell cell = grdLCDef->current();
    const QString text = grdLCDef->text(cell);
    IsCellVisible();
    txtActiveCell->setFont(grdLCDef->font());
    txtActiveCell->setAlignment(CoefficientGrid::alignment_of(cell.column));
    txtActiveCell->setGeometry(grdLCDef->place_of(cell));
    set_overlay(text);
    txtActiveCell->show();
    txtActiveCell->end(false);
    txtActiveCell->setFocus();
    // Starting an edit counts as a change, whether or not the text is then changed. Intended; do not "fix".
    mark_changed();
} catch (...) {
    report_current({"Set_TextBox", kModule, Show::no});
}

bool frmISModelProps::ValidateEntry(const QString& key) try {
    const GridCell cell = grdLCDef->current();
    if (cell.row < kFirstDataRow) {
        return true;
    }
    const auto fault = entry_fault(cell.column, grdLCDef->text(cell).toStdString(), key.toStdString());
    if (fault) {
        current_interaction().message_box(*fault);
    }
    return !fault;
} catch (...) {
    return reported<bool>({"ValidateEntry", kModule, Show::no});
}

void frmISModelProps::start_typing(const QString& character) {
    const GridCell cell = grdLCDef->current();
    grdLCDef->set_text(cell, character);
    Set_TextBox();
    if (!ValidateEntry(character)) {
        grdLCDef->set_text(cell, QString());
        set_overlay(QString());
    }
}

void frmISModelProps::type_on(const QString& character) {
    const GridCell cell = grdLCDef->current();
    QString text = txtActiveCell->text();
    if (txtActiveCell->hasSelectedText()) {
        text.remove(txtActiveCell->selectionStart(), txtActiveCell->selectionLength());
    }
    // Checked, and put into the cell, at the end wherever the caret stands. Intended; do not "fix".
    grdLCDef->set_text(cell, text + character);
    if (!ValidateEntry(character)) {
        grdLCDef->set_text(cell, txtActiveCell->text());
        return;
    }
    const QSignalBlocker silence(txtActiveCell);
    txtActiveCell->insert(character);
    m_overlay_text = txtActiveCell->text();
}

void frmISModelProps::txtActiveCell_Change(const QString& text) try {
    // Whatever did not come key by key: pasted, cut, composed.
    const GridCell cell = grdLCDef->current();
    const auto fault = text.isEmpty() ? std::nullopt : text_fault(cell.column, text.toStdString());
    if (fault) {
        current_interaction().message_box(*fault);
        set_overlay(m_overlay_text);
        return;
    }
    m_overlay_text = text;
    grdLCDef->set_text(cell, text);
} catch (...) {
    report_current({"txtActiveCell_Change", kModule});
}

void frmISModelProps::set_overlay(const QString& text) {
    txtActiveCell->setText(text);
    m_overlay_text = text;
}

void frmISModelProps::write_overlay_into_cell() {
    m_overlay_text = txtActiveCell->text();
    grdLCDef->set_text(grdLCDef->current(), m_overlay_text);
}

void frmISModelProps::hide_overlay() {
    // A control that is hidden hands the focus to the next one; it belongs to the grid.
    if (focusWidget() == txtActiveCell) {
        grdLCDef->setFocus();
    }
    txtActiveCell->hide();
}

void frmISModelProps::move_overlay(GridCell to) {
    if (to != grdLCDef->current()) {
        grdLCDef->go_to(to);
        Set_TextBox();
    }
}

void frmISModelProps::take_off_last_character() {
    hide_overlay();  // Tab leaves it shown over what changes here
    const GridCell cell = grdLCDef->current();
    QString text = grdLCDef->text(cell);
    if (!text.isEmpty()) {
        text.chop(text.at(text.size() - 1).isLowSurrogate() ? 2 : 1);
        grdLCDef->set_text(cell, text);
        mark_changed();
    }
}

void frmISModelProps::empty_cell() {
    hide_overlay();
    grdLCDef->set_text(grdLCDef->current(), QString());
    mark_changed();
}

// The row menu.

void frmISModelProps::MnuFGridAddRow_Click() try {
    hide_overlay();
    const int row = grdLCDef->rows() + 1;
    grdLCDef->insert_fresh_row(row);
    grdLCDef->go_to({row, kFirstDataColumn});
    IsCellVisible();
    mark_changed();
} catch (...) {
    report_current({"MnuFGridAddRow_Click", kModule});
}

void frmISModelProps::MnuFGridInsRow_Click() try {
    const GridCell cell = grdLCDef->current();
    if (!grdLCDef->is_data_cell(cell)) {
        MnuFGridAddRow_Click();
        return;
    }
    hide_overlay();
    grdLCDef->insert_fresh_row(cell.row);
    grdLCDef->go_to(cell);
    IsCellVisible();
    mark_changed();
} catch (...) {
    report_current({"MnuFGridInsRow_Click", kModule});
}

void frmISModelProps::MnuFGridDelRow_Click() try {
    const GridCell cell = grdLCDef->current();
    if (!grdLCDef->is_data_cell(cell)) {
        return;
    }
    hide_overlay();
    const GridContents grid = grdLCDef->contents();
    if (has_data(grid.rows[static_cast<std::size_t>(cell.row - kFirstDataRow)]) &&
        current_interaction().message_box(editor_texts::row_has_data(cell.row)) != reporting::Answer::yes) {
        return;
    }
    grdLCDef->removeRow(cell.row - 1);
    mark_changed();
} catch (...) {
    report_current({"MnuFGridDelRow_Click", kModule});
}

void frmISModelProps::show_row_menu(QPoint on_screen) {
    MnuFGridDelRow->setEnabled(grdLCDef->is_data_cell(grdLCDef->current()));
    MnuFGridRows->popup(on_screen);
}

QPoint frmISModelProps::menu_place() const {
    const GridCell cell = grdLCDef->current();
    const QRect place = grdLCDef->is_data_cell(cell) ? grdLCDef->place_of(cell) : QRect();
    return grdLCDef->viewport()->mapToGlobal(place.bottomLeft());
}

// The clipboard.

void frmISModelProps::grdLCDef_Copy() try {
    if (grdLCDef->is_data_cell(grdLCDef->current())) {
        QGuiApplication::clipboard()->setText(grdLCDef->text(grdLCDef->current()));
    }
} catch (...) {
    report_current({"grdLCDef_Copy", kModule});
}

void frmISModelProps::grdLCDef_Paste() try {
    QString text = QGuiApplication::clipboard()->text();
    while (text.endsWith('\n') || text.endsWith('\r')) {
        text.chop(1);
    }
    const bool single = !text.contains('\t') && !text.contains('\n');
    if (single && txtActiveCell->isVisible()) {
        txtActiveCell->insert(text);
        return;
    }
    hide_overlay();
    const GridCell current = grdLCDef->current();
    const GridCell first = grdLCDef->is_data_cell(current) ? current : GridCell{grdLCDef->rows() + 1, kFirstDataColumn};
    GridContents grid = grdLCDef->contents();
    const PasteResult result = paste_block(grid, first, text.toStdString());
    grdLCDef->put_rows(grid.rows);
    if (result.cells > 0) {
        grdLCDef->go_to(first);
        mark_changed();
    }
    if (result.refused > 0) {
        current_interaction().message_box(
            editor_texts::pasted_cells_refused(result.refused, result.cells, result.reasons));
    }
} catch (...) {
    report_current({"grdLCDef_Paste", kModule});
}

}  // namespace kestrel

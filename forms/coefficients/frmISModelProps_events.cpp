// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

#include "forms/coefficients/frmISModelProps.h"
#include "reporting/error_report.h"

/// \file
/// What keys and mouse do on the coefficient editor's grid and on its overlay.
namespace kestrel {

using namespace basISModelPropsUtil;

namespace {

constexpr const char* kModule = "ISModelProps";

bool is_enter(const QKeyEvent& key) {
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

bool opens_menu(const QKeyEvent& key) {
    return key.key() == Qt::Key_Menu || (key.key() == Qt::Key_F10 && key.modifiers() == Qt::ShiftModifier);
}

bool plain(const QKeyEvent& key) {
    return (key.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier)) == Qt::NoModifier;
}

bool printable(const QKeyEvent& key) {
    const bool control = key.modifiers().testFlag(Qt::ControlModifier);
    const bool alt = key.modifiers().testFlag(Qt::AltModifier);
    // Both together are how some systems tell AltGr.
    const bool command = control != alt || key.modifiers().testFlag(Qt::MetaModifier);
    const QString text = key.text();
    return !command && !text.isEmpty() && (text.front().isPrint() || text.front().isSurrogate());
}

}  // namespace

bool frmISModelProps::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress:
            return key_event(watched, *static_cast<QKeyEvent*>(event));
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            return mouse_event(watched, *static_cast<QMouseEvent*>(event));
        case QEvent::ContextMenu:
            return menu_event(watched, *static_cast<QContextMenuEvent*>(event));
        default:
            return false;
    }
}

void frmISModelProps::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QDialog::keyPressEvent(event);
    } else if (auto* button = qobject_cast<QPushButton*>(focusWidget())) {
        button->click();
    }
}

bool frmISModelProps::key_event(const QObject* watched, const QKeyEvent& event) {
    if (watched == txtActiveCell) {
        return txtActiveCell_KeyDown(event) || txtActiveCell_KeyPress(event);
    }
    return watched == grdLCDef && (grdLCDef_KeyDown(event) || grdLCDef_KeyPress(event));
}

bool frmISModelProps::mouse_event(const QObject* watched, const QMouseEvent& event) {
    const auto* surface = qobject_cast<const QWidget*>(watched);
    if (watched == txtActiveCell || watched == grdLCDef || surface == nullptr) {
        return false;
    }
    const GridCell cell = cell_under(watched, event.pos());
    if (event.type() == QEvent::MouseButtonDblClick && event.button() == Qt::LeftButton) {
        if (watched == grdLCDef->viewport() && grdLCDef->indexAt(event.pos()).isValid()) {
            grdLCDef_DblClick(cell);
        }
    } else {
        grdLCDef_MouseDown(cell, event.button(), surface->mapToGlobal(event.pos()));
    }
    // The headers go on to resize columns; on the cells everything has been done.
    return watched == grdLCDef->viewport();
}

bool frmISModelProps::menu_event(const QObject* watched, const QContextMenuEvent& event) {
    // The mouse has opened the menu on the grid by its button; over the overlay it is asked for here.
    if (event.reason() != QContextMenuEvent::Mouse || watched == txtActiveCell) {
        show_row_menu(event.reason() == QContextMenuEvent::Mouse ? event.globalPos() : menu_place());
    }
    return true;
}

frmISModelProps::GridCell frmISModelProps::cell_under(const QObject* watched, QPoint position) const {
    const GridCell current = grdLCDef->current();
    if (watched == grdLCDef->horizontalHeader()->viewport()) {
        return {0, grdLCDef->horizontalHeader()->logicalIndexAt(position) + 1};
    }
    if (watched == grdLCDef->verticalHeader()->viewport()) {
        const int row = grdLCDef->verticalHeader()->logicalIndexAt(position) + 1;
        return row > 0 ? GridCell{row, std::max(current.column, kFirstDataColumn)} : current;
    }
    const QModelIndex index = grdLCDef->indexAt(position);
    return index.isValid() ? GridCell{index.row() + 1, index.column() + 1} : current;
}

void frmISModelProps::grdLCDef_MouseDown(GridCell cell, Qt::MouseButton button, QPoint on_screen) try {
    hide_overlay();
    grdLCDef->setFocus();
    // The header row becomes the current one for its menu only, not when its columns are dragged.
    if (grdLCDef->is_data_cell(cell) || button == Qt::RightButton) {
        grdLCDef->pick(grdLCDef->is_data_cell(cell) ? cell : GridCell{0, 0});
    }
    if (button == Qt::RightButton) {
        show_row_menu(on_screen);
    }
} catch (...) {
    report_current({"grdLCDef_MouseDown", kModule});
}

void frmISModelProps::grdLCDef_DblClick(GridCell cell) try {
    grdLCDef->pick(cell);
    Set_TextBox();
} catch (...) {
    report_current({"grdLCDef_DblClick", kModule});
}

void frmISModelProps::grdLCDef_Scroll() try {
    // What is laid over a cell goes with it.
    if (!txtActiveCell->isHidden()) {
        txtActiveCell->setGeometry(grdLCDef->place_of(grdLCDef->current()));
    }
} catch (...) {
    report_current({"grdLCDef_Scroll", kModule});
}

bool frmISModelProps::grdLCDef_KeyDown(const QKeyEvent& key) try {
    if (opens_menu(key)) {
        show_row_menu(menu_place());
    } else if (key.matches(QKeySequence::Copy)) {
        grdLCDef_Copy();
    } else if (key.matches(QKeySequence::Paste)) {
        grdLCDef_Paste();
    } else if (!grdLCDef->is_data_cell(grdLCDef->current()) || !plain(key)) {
        return false;
    } else if (key.key() == Qt::Key_F2) {
        Set_TextBox();
    } else if (key.key() == Qt::Key_Delete) {
        empty_cell();
    } else {
        return false;
    }
    return true;
} catch (...) {
    report_current({"grdLCDef_KeyDown", kModule});
    return true;
}

bool frmISModelProps::grdLCDef_KeyPress(const QKeyEvent& key) try {
    if (key.key() == Qt::Key_Escape) {
        return true;
    }
    if (!grdLCDef->is_data_cell(grdLCDef->current())) {
        return is_enter(key);
    }
    if (is_enter(key)) {
        INCR_CELL();
    } else if (key.key() == Qt::Key_Backspace) {
        take_off_last_character();
    } else if (printable(key)) {
        start_typing(key.text());
    } else {
        return false;
    }
    return true;
} catch (...) {
    report_current({"grdLCDef_KeyPress", kModule});
    return true;
}

bool frmISModelProps::txtActiveCell_KeyDown(const QKeyEvent& key) try {
    if (opens_menu(key)) {
        show_row_menu(menu_place());
        return true;
    }
    if (key.matches(QKeySequence::Paste)) {
        grdLCDef_Paste();
        return true;
    }
    if (!plain(key)) {
        return false;
    }
    const GridCell cell = grdLCDef->current();
    const bool selecting = txtActiveCell->hasSelectedText();
    const int caret = txtActiveCell->cursorPosition();
    if (key.key() == Qt::Key_Up) {
        move_overlay(cell_above(cell));
    } else if (key.key() == Qt::Key_Down) {
        move_overlay(cell_below(cell, grdLCDef->rows()));
    } else if (key.key() == Qt::Key_Left && caret == 0 && !selecting) {
        move_overlay(cell_before(cell));
    } else if (key.key() == Qt::Key_Right && caret == txtActiveCell->text().size() && !selecting) {
        move_overlay(next_cell(cell, grdLCDef->rows()));
    } else if (key.key() == Qt::Key_Delete) {
        const QSignalBlocker silence(txtActiveCell);
        txtActiveCell->del();
        write_overlay_into_cell();
    } else {
        return false;
    }
    return true;
} catch (...) {
    report_current({"txtActiveCell_KeyDown", kModule});
    return true;
}

bool frmISModelProps::txtActiveCell_KeyPress(const QKeyEvent& key) try {
    if (is_enter(key)) {
        write_overlay_into_cell();
        hide_overlay();
        INCR_CELL();
    } else if (key.key() == Qt::Key_Escape) {
        set_overlay(m_text_on_entering);
    } else if (key.key() == Qt::Key_Backspace && plain(key)) {
        const QSignalBlocker silence(txtActiveCell);
        txtActiveCell->backspace();
        write_overlay_into_cell();
    } else if (printable(key)) {
        type_on(key.text());
    } else {
        return false;
    }
    return true;
} catch (...) {
    report_current({"txtActiveCell_KeyPress", kModule});
    return true;
}

}  // namespace kestrel

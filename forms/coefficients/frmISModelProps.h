// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

#include "coefficients/clsISModelProperties.h"
#include "coefficients/coefficient_store.h"
#include "forms/coefficients/coefficient_grid.h"
#include "reporting/interaction.h"

class QContextMenuEvent;
class QKeyEvent;
class QMouseEvent;

namespace kestrel {

/// The coefficient editor: shows one coefficient set at a time in an editable grid. Loads the store whenever it is
/// opened; writes it on Apply, import and merge.
///
/// Text is typed into an overlay, `txtActiveCell`, which lies over the current cell. While it is shown its text is the
/// cell's pending value.
class frmISModelProps final : public QDialog {
    Q_OBJECT
  public:
    /// \param store what is edited.
    explicit frmISModelProps(CoefficientStore store, QWidget* parent = nullptr);

    /// Showing a window that is not open loads the store; it stays closed when that fails.
    void setVisible(bool visible) override;
    /// Esc and the close button ask what Quit asks.
    void reject() override { cmdQuit_Click(); }

    /// For a host that ends: asks whether to save changes, and saves them when told to. The window may go afterwards,
    /// whatever the answer was.
    void Form_QueryUnload();

    const clsISModelProperties& properties() const { return m_props; }

  protected:
    /// Routes what happens on grid and overlay to the procedures below.
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    using GridCell = basISModelPropsUtil::GridCell;

    // The window.
    void build_controls();
    void build_buttons();
    void build_row_menu();
    void build_layout();
    void connect_controls();
    /// \return whether there is something to show.
    bool Form_Load();
    void cmdQuit_Click();
    void cmdApply_click();
    void cmdNew_Click();
    void cmdImport_Click();
    void cmdExport_Click();
    void cmdMerge_Click();
    void cmdHelp_Click();
    void cboLCType_Click(int position);

    /// Saves the set on screen to the store. Says itself what fails.
    bool save();
    /// Asks when there are changes, and saves them when told to. \return whether to go on.
    bool may_proceed(const reporting::MessageBox& question);
    void show_set(int position);
    void add_to_list(const std::string& name) { cboLCType->addItem(QString::fromStdString(name)); }
    void mark_changed();
    void mark_saved();
    void enable_apply(bool enable);
    void show_title();

    // The grid.
    void grdLCDef_CurrentCellChanged(int row, int column, int previous_row, int previous_column);
    void grdLCDef_EnterCell(GridCell cell);
    void grdLCDef_LeaveCell(GridCell cell);
    void grdLCDef_DblClick(GridCell cell);
    /// The key procedures tell whether the key is dealt with.
    bool grdLCDef_KeyDown(const QKeyEvent& key);
    bool grdLCDef_KeyPress(const QKeyEvent& key);
    void grdLCDef_MouseDown(GridCell cell, Qt::MouseButton button, QPoint on_screen);
    void grdLCDef_Scroll();
    void grdLCDef_Copy();
    void grdLCDef_Paste();
    bool txtActiveCell_KeyDown(const QKeyEvent& key);
    bool txtActiveCell_KeyPress(const QKeyEvent& key);
    void txtActiveCell_Change(const QString& text);
    void MnuFGridAddRow_Click();
    void MnuFGridInsRow_Click();
    void MnuFGridDelRow_Click();
    void INCR_CELL();
    void Set_TextBox();
    /// Scrolls the current cell into view. \return whether it was there before.
    bool IsCellVisible();
    /// Checks the text of the current cell, and says what is wrong with it. \param key what was typed.
    bool ValidateEntry(const QString& key);

    bool mouse_event(const QObject* watched, const QMouseEvent& event);
    bool menu_event(const QObject* watched, const QContextMenuEvent& event);
    bool key_event(const QObject* watched, const QKeyEvent& event);
    /// The cell at a place on the grid's viewport or on one of its headers; the current one where there is none.
    GridCell cell_under(const QObject* watched, QPoint position) const;
    void start_typing(const QString& character);
    void type_on(const QString& character);
    void take_off_last_character();
    void empty_cell();
    void write_overlay_into_cell();
    /// Changes the overlay's text as the code's own doing.
    void set_overlay(const QString& text);
    void hide_overlay();
    void move_overlay(GridCell to);
    void show_row_menu(QPoint on_screen);
    /// Where the row menu opens by keyboard: below the current cell.
    QPoint menu_place() const;

    CoefficientStore m_store;
    clsISModelProperties m_props;
    bool m_changed = false;
    /// List position of the set on screen; -1 when there is none.
    int m_position = -1;
    /// What the current cell held when it was entered, for Esc.
    QString m_text_on_entering;
    /// The overlay's text after the last key that was taken.
    QString m_overlay_text;

    QComboBox* cboLCType;
    CoefficientGrid* grdLCDef;
    QLineEdit* txtActiveCell;
    QPushButton* cmdApply;
    QPushButton* cmdQuit;
    QPushButton* cmdNew;
    QPushButton* CmdImport;
    QPushButton* CmdExport;
    QPushButton* CmdMerge;
    QPushButton* cmdHelp;
    QMenu* MnuFGridRows;
    QAction* MnuFGridAddRow;
    QAction* MnuFGridInsRow;
    QAction* MnuFGridDelRow;
};

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTest>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/files.h"
#include "forms/coefficients/frmISModelProps.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel::test {

/// The coefficient editor on a store of its own, driven by real keys and mouse buttons. Places are counted as the
/// editor does: the first class is row 1, "Value" is column 1.
class EditorTest : public testing::Test {
  protected:
    /// Writes a store of two sets: "Default" (21 and 41) and "Town" (1, 2 and 3).
    EditorTest();

    /// Shows the editor and waits until it is the active window.
    void open();
    void activate();

    std::string store_path() const { return m_folder / "etc/isprops.xml"; }
    std::string store_text() const;
    /// The sets of the store file, each as "name: id id ...".
    std::vector<std::string> stored() const;

    CoefficientGrid& grid() { return *m_form->findChild<CoefficientGrid*>("grdLCDef"); }
    QLineEdit& overlay() { return *m_form->findChild<QLineEdit*>("txtActiveCell"); }
    QComboBox& list() { return *m_form->findChild<QComboBox*>("cboLCType", Qt::FindDirectChildrenOnly); }
    QPushButton& button(const char* name) { return *m_form->findChild<QPushButton*>(name); }
    QMenu& menu() { return *m_form->findChild<QMenu*>("MnuFGridRows"); }
    QAction& action(const char* name) { return *m_form->findChild<QAction*>(name); }
    std::vector<std::string> list_entries();

    std::string cell(int row, int column) { return grid().text({row, column}).toStdString(); }
    /// The data cells of a row, with commas between them.
    std::string row(int number);
    basISModelPropsUtil::GridCell current() { return grid().current(); }
    /// Colour of the cell as it is painted.
    QColor colour(int row, int column);

    // What the user does.
    void click(const char* name);
    void click_cell(int row, int column, Qt::MouseButton button = Qt::LeftButton);
    void double_click_cell(int row, int column);
    /// Goes to the cell as if by mouse, and starts to edit it.
    void edit(int row, int column);
    /// Keys go to whatever has the focus.
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const char* text);
    void select_set(int position);
    /// Runs `act` on the dialog that opens next, once it is there.
    void in_dialog(std::function<void(QDialog&)> act);

    bool editing() { return overlay().isVisible(); }
    bool apply_enabled() { return button("cmdApply").isEnabled(); }
    /// An edit that leaves every text as it was.
    void change_nothing() {
        click_cell(1, 2);
        key(Qt::Key_F2);
    }

    reporting::MessageBox save_failure() const {
        return {
            "Failed To Save XML - verify the permissions to write to file '" + m_folder.path() + "\\etc\\isprops.xml'.",
            "", reporting::Icon::critical, reporting::Buttons::ok_cancel};
    }
    /// Makes every save fail while it lives.
    std::unique_ptr<base::FolderLock> no_saving() const { return std::make_unique<base::FolderLock>(m_folder.path()); }

    TemporaryFolder m_folder;
    ScriptedInteraction m_user;
    std::unique_ptr<frmISModelProps> m_form;
};

inline const reporting::MessageBox kQuitPrompt = {
    "Changes to the coefficient set have not been saved. \r\n Click 'Yes' to save changes, 'No' to quit, or 'Cancel' to return.",
    "", reporting::Icon::none, reporting::Buttons::yes_no_cancel};

}  // namespace kestrel::test

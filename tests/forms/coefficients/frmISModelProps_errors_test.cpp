// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>

#include "base/errors.h"
#include "base/files.h"
#include "tests/forms/coefficients/editor_fixture.h"
#include "tests/support/failing_interaction.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// Entries of a report, from the outermost procedure in, without their lines; then number and description.
std::string outline_of(const std::string& report) {
    std::string outline;
    for (const std::string& line : base::split_lines(report)) {
        if (line.starts_with('\t'))
            outline += (outline.empty() ? "" : " < ") + line.substr(1, line.find(" Line : ") - 1);
    }
    return outline;
}

class EditorErrors : public EditorTest {
  protected:
    void SetUp() override { open(); }

    void lose_cell(int row, int column) { delete grid().takeItem(row - 1, column - 1); }
    std::vector<std::string> reports() const {
        std::vector<std::string> outlines;
        for (const std::string& report : m_user.call_stacks)
            outlines.push_back(outline_of(report));
        return outlines;
    }
};

class FailingButton : public EditorErrors, public testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(FailingButton, IsReportedUnderItsProcedure) {
    change_nothing();
    FailingInteraction nobody;
    click(GetParam().first);
    ASSERT_THAT(nobody.call_stacks, SizeIs(1));
    EXPECT_EQ(nobody.call_stacks.front(),
              std::string("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\t") + GetParam().second +
                  " ISModelProps Line : 45\r\n\r\nError Number \r\n\t70\r\nDescription\r\n\tPermission denied\r\n\r\n");
    EXPECT_TRUE(m_form->isVisible());
}

INSTANTIATE_TEST_SUITE_P(frmISModelProps, FailingButton,
                         testing::Values(std::pair("cmdQuit", "cmdQuit_Click"), std::pair("cmdNew", "cmdNew_Click"),
                                         std::pair("CmdImport", "cmdImport_Click"),
                                         std::pair("CmdExport", "cmdExport_Click"),
                                         std::pair("CmdMerge", "cmdMerge_Click"),
                                         std::pair("cmdHelp", "cmdHelp_Click")),
                         [](const auto& tested) { return std::string(tested.param.first); });

TEST_F(EditorErrors, FailingApplyIsReportedUnderItsProcedure) {
    change_nothing();
    const base::FolderLock lock(m_folder.path());
    FailingInteraction nobody;
    click("cmdApply");
    ASSERT_THAT(nobody.call_stacks, SizeIs(2)) << "the store first";
    EXPECT_EQ(outline_of(nobody.call_stacks.back()), "cmdApply_click ISModelProps < 70 < Permission denied");
}

TEST_F(EditorErrors, FailingLoadIsReportedAndTheWindowStaysClosed) {
    m_form->close();
    base::remove_file(store_path());
    FailingInteraction nobody;
    m_form->show();
    EXPECT_FALSE(m_form->isVisible());
    ASSERT_THAT(nobody.call_stacks, SizeIs(1));
    EXPECT_EQ(outline_of(nobody.call_stacks.front()), "Form_Load ISModelProps < 70 < Permission denied");
}

TEST_F(EditorErrors, FailingSelectionIsReported) {
    change_nothing();
    FailingInteraction nobody;
    select_set(1);
    ASSERT_THAT(nobody.call_stacks, SizeIs(1));
    EXPECT_EQ(outline_of(nobody.call_stacks.front()), "cboLCType_Click ISModelProps < 70 < Permission denied");
}

TEST_F(EditorErrors, FailingCheckIsReportedThroughTheKeyThatAskedForIt) {
    click_cell(1, 3);
    FailingInteraction nobody;
    type("x");
    ASSERT_THAT(nobody.call_stacks, SizeIs(1));
    EXPECT_EQ(outline_of(nobody.call_stacks.front()),
              "grdLCDef_KeyPress ISModelProps  < ValidateEntry ISModelProps < 70 < Permission denied");
}

TEST_F(EditorErrors, FailingCheckInTheOverlayIsReported) {
    edit(1, 3);
    FailingInteraction nobody;
    type("x");
    ASSERT_THAT(nobody.call_stacks, SizeIs(1));
    EXPECT_EQ(outline_of(nobody.call_stacks.front()),
              "txtActiveCell_KeyPress ISModelProps  < ValidateEntry ISModelProps < 70 < Permission denied");
}

TEST_F(EditorErrors, LostCellIsReportedByEveryProcedureThatNeedsIt) {
    lose_cell(2, 3);
    click_cell(2, 3);
    EXPECT_THAT(reports(), ElementsAre("grdLCDef_EnterCell ISModelProps < 9 < Subscript out of range"));
    m_user.call_stacks.clear();
    key(Qt::Key_F2);
    EXPECT_THAT(reports(),
                ElementsAre("grdLCDef_KeyDown ISModelProps  < Set_TextBox ISModelProps < 9 < Subscript out of range"));
    m_user.call_stacks.clear();
    key(Qt::Key_Backspace);
    EXPECT_THAT(reports(), ElementsAre("grdLCDef_KeyPress ISModelProps < 9 < Subscript out of range"));
    m_user.call_stacks.clear();
    QTest::mouseDClick(grid().viewport(), Qt::LeftButton, Qt::NoModifier, grid().place_of({2, 3}).center());
    EXPECT_THAT(reports(),
                ElementsAre("grdLCDef_DblClick ISModelProps  < Set_TextBox ISModelProps < 9 < Subscript out of range"));
    m_user.call_stacks.clear();
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_THAT(reports(), ElementsAre("grdLCDef_Copy ISModelProps < 9 < Subscript out of range"));
    m_user.call_stacks.clear();
    key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_THAT(reports(), ElementsAre("grdLCDef_Paste ISModelProps < 9 < Subscript out of range"));
    m_user.call_stacks.clear();
    action("MnuFGridDelRow").trigger();
    EXPECT_THAT(reports(), ElementsAre("MnuFGridDelRow_Click ISModelProps < 9 < Subscript out of range"));
    m_user.call_stacks.clear();
    key(Qt::Key_Up);
    EXPECT_THAT(reports(), ElementsAre("grdLCDef_LeaveCell ISModelProps < 9 < Subscript out of range"));
}

TEST_F(EditorErrors, LostCellIsReportedByTheOverlaysKeys) {
    edit(1, 3);
    lose_cell(2, 3);
    key(Qt::Key_Down);
    EXPECT_THAT(
        reports(),
        ElementsAre("grdLCDef_EnterCell ISModelProps < 9 < Subscript out of range",
                    "txtActiveCell_KeyDown ISModelProps  < Set_TextBox ISModelProps < 9 < Subscript out of range"));
}

TEST_F(EditorErrors, LostCellIsReportedWhenTheOverlaysTextIsPasted) {
    edit(1, 3);
    lose_cell(1, 3);
    overlay().selectAll();
    overlay().cut();
    EXPECT_THAT(reports(), ElementsAre("txtActiveCell_Change ISModelProps < 9 < Subscript out of range"));
}

TEST_F(EditorErrors, FailingQuestionAtTheEndOfTheHostIsReported) {
    change_nothing();
    FailingInteraction nobody;
    m_form->Form_QueryUnload();
    ASSERT_THAT(nobody.call_stacks, SizeIs(1));
    EXPECT_EQ(outline_of(nobody.call_stacks.front()), "Form_QueryUnload ISModelProps < 70 < Permission denied");
}

TEST_F(EditorErrors, ReportedErrorsLeaveTheEditorWorking) {
    {
        FailingInteraction nobody;
        click("cmdHelp");
    }
    click("cmdHelp");
    EXPECT_EQ(m_user.help_requests, 1);
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
}

TEST_F(EditorErrors, FailingNewSetDialogIsReportedUnderItsModule) {
    FailingInteraction nobody;
    in_dialog([](QDialog& dialog) {
        QTest::keyClicks(dialog.findChild<QLineEdit*>("txtLCType"), "town");
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
    });
    click("cmdNew");
    ASSERT_THAT(nobody.call_stacks, SizeIs(1));
    EXPECT_EQ(outline_of(nobody.call_stacks.front()), "cmdOK_Click ISAddLCType < 70 < Permission denied");
}

}  // namespace
}  // namespace kestrel::test

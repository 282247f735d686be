// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <ostream>

#include "tests/forms/coefficients/editor_fixture.h"

namespace kestrel::test {
namespace {

using reporting::Answer;
using reporting::Buttons;
using reporting::Icon;
using reporting::MessageBox;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class UnsavedChangesTest : public EditorTest {};

// Closing.

TEST_F(UnsavedChangesTest, ClosingWithoutChangesAsksNothing) {
    open();
    click("cmdQuit");
    EXPECT_FALSE(m_form->isVisible());
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

class QuittingWay : public UnsavedChangesTest, public testing::WithParamInterface<const char*> {
  protected:
    void quit() {
        const std::string way = GetParam();
        if (way == "CloseButton") {
            m_form->close();
        } else if (way == "Escape") {
            list().setFocus();
            key(Qt::Key_Escape);
        } else {
            click("cmdQuit");
        }
    }
};

TEST_P(QuittingWay, AsksOnceAnEditWasStartedThoughNothingWasChanged) {
    open();
    change_nothing();
    m_user.answers = {Answer::cancel};
    quit();
    EXPECT_THAT(m_user.boxes, ElementsAre(kQuitPrompt));
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_TRUE(apply_enabled());
}

TEST_P(QuittingWay, YesSavesAndCloses) {
    open();
    click_cell(1, 2);
    type("x");
    m_user.answers = {Answer::yes};
    quit();
    EXPECT_FALSE(m_form->isVisible());
    EXPECT_THAT(store_text(), HasSubstr("\r\n              x\r\n"));
    EXPECT_THAT(m_user.boxes, SizeIs(1));
}

TEST_P(QuittingWay, NoClosesWithoutSaving) {
    open();
    const std::string before = store_text();
    click_cell(1, 2);
    type("x");
    m_user.answers = {Answer::no};
    quit();
    EXPECT_FALSE(m_form->isVisible());
    EXPECT_EQ(store_text(), before);
}

TEST_P(QuittingWay, FailedSaveIsToldAndTheWindowStays) {
    open();
    change_nothing();
    const auto lock = no_saving();
    m_user.answers = {Answer::yes};
    quit();
    EXPECT_THAT(m_user.boxes, ElementsAre(kQuitPrompt, save_failure()));
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_TRUE(apply_enabled());
}

INSTANTIATE_TEST_SUITE_P(frmISModelProps, QuittingWay, testing::Values("QuitButton", "CloseButton", "Escape"),
                         [](const auto& tested) { return std::string(tested.param); });

// The end of the host, which nobody can call off.

const MessageBox kEndPrompt = {
    "Changes to the coefficient set have not been saved. \r\n Click 'Yes' to save changes, or 'No' to give them up.",
    "", Icon::none, Buttons::yes_no};

TEST_F(UnsavedChangesTest, EndOfTheHostWithoutChangesAsksNothing) {
    open();
    m_form->Form_QueryUnload();
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(UnsavedChangesTest, EndOfTheHostSavesWithYes) {
    open();
    click_cell(1, 2);
    type("x");
    m_user.answers = {Answer::yes};
    m_form->Form_QueryUnload();
    EXPECT_THAT(m_user.boxes, ElementsAre(kEndPrompt));
    EXPECT_THAT(store_text(), HasSubstr("\r\n              x\r\n"));
}

TEST_F(UnsavedChangesTest, EndOfTheHostGivesChangesUpWithNoAndAsksOnce) {
    open();
    const std::string before = store_text();
    click_cell(1, 2);
    type("x");
    m_form->Form_QueryUnload();
    m_form->Form_QueryUnload();
    EXPECT_THAT(m_user.boxes, ElementsAre(kEndPrompt));
    EXPECT_EQ(store_text(), before);
}

TEST_F(UnsavedChangesTest, EndOfTheHostTellsAFailedSave) {
    open();
    change_nothing();
    const auto lock = no_saving();
    m_user.answers = {Answer::yes};
    m_form->Form_QueryUnload();
    EXPECT_THAT(m_user.boxes, ElementsAre(kEndPrompt, save_failure()));
}

class StartedEdit : public UnsavedChangesTest, public testing::WithParamInterface<const char*> {};

TEST_P(StartedEdit, MakesClosingAskThoughNothingWasChanged) {
    open();
    click_cell(1, 3);
    const std::string way = GetParam();
    if (way == "F2") {
        key(Qt::Key_F2);
    } else if (way == "RefusedKey") {
        type("x");
        m_user.boxes.clear();
    } else {
        double_click_cell(1, 3);
    }
    ASSERT_TRUE(editing());
    m_user.answers = {Answer::no};
    click("cmdQuit");
    EXPECT_THAT(m_user.boxes, ElementsAre(kQuitPrompt));
}

INSTANTIATE_TEST_SUITE_P(frmISModelProps, StartedEdit, testing::Values("F2", "RefusedKey", "ClickTwice"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST_F(UnsavedChangesTest, CellThatCannotBeSavedKeepsTheWindowOpenAndItsSetShown) {
    open();
    const std::string before = store_text();
    edit(2, 3);
    key(Qt::Key_Backspace);
    m_user.answers = {Answer::yes, Answer::yes};
    click("cmdQuit");
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_THAT(m_user.call_stacks, SizeIs(1));
    select_set(1);
    EXPECT_THAT(m_user.call_stacks, SizeIs(2));
    EXPECT_EQ(list().currentIndex(), 0);
    EXPECT_EQ(cell(2, 3), "");
    EXPECT_TRUE(apply_enabled());
    EXPECT_EQ(store_text(), before);
}

// The other prompts.

struct Prompted {
    const char* button;
    const char* text;
};

void PrintTo(const Prompted& prompted, std::ostream* stream) {
    *stream << prompted.button;
}

class UnsavedChanges : public UnsavedChangesTest, public testing::WithParamInterface<Prompted> {
  protected:
    /// How often the button's work was begun.
    std::size_t times_done() const { return m_user.file_dialogs.size() + static_cast<std::size_t>(m_dialogs); }
    void press() {
        if (std::string(GetParam().button) == "cmdNew")
            in_dialog([this](QDialog& dialog) {
                ++m_dialogs;
                dialog.reject();
            });
        click(GetParam().button);
    }
    MessageBox prompt() const { return {GetParam().text, "", Icon::none, Buttons::yes_no}; }
    int m_dialogs = 0;
};

TEST_P(UnsavedChanges, AreNotAskedAboutWhenThereAreNone) {
    open();
    press();
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_EQ(times_done(), 1U);
}

TEST_P(UnsavedChanges, NoStays) {
    open();
    change_nothing();
    const std::string before = store_text();
    m_user.answers = {Answer::no};
    click(GetParam().button);
    EXPECT_THAT(m_user.boxes, ElementsAre(prompt()));
    EXPECT_EQ(times_done(), 0U);
    EXPECT_TRUE(apply_enabled());
    EXPECT_EQ(store_text(), before);
}

TEST_P(UnsavedChanges, YesSavesAndProceeds) {
    open();
    click_cell(1, 2);
    type("x");
    m_user.answers = {Answer::yes};
    press();
    EXPECT_THAT(m_user.boxes, ElementsAre(prompt()));
    EXPECT_THAT(store_text(), HasSubstr("\r\n              x\r\n"));
    EXPECT_EQ(times_done(), 1U);
    EXPECT_FALSE(apply_enabled());
}

TEST_P(UnsavedChanges, FailedSaveIsToldAndDoesNotProceed) {
    open();
    change_nothing();
    const auto lock = no_saving();
    m_user.answers = {Answer::yes};
    click(GetParam().button);
    EXPECT_THAT(m_user.boxes, ElementsAre(prompt(), save_failure()));
    EXPECT_EQ(times_done(), 0U);
    EXPECT_TRUE(apply_enabled());
}

INSTANTIATE_TEST_SUITE_P(
    frmISModelProps, UnsavedChanges,
    testing::Values(
        Prompted{
            "cmdNew",
            "Changes to the current coefficient set must be saved before adding a new coefficient set. \r\n Click 'Yes' to save changes and proceed, or 'No' to return."},
        Prompted{
            "CmdImport",
            "Changes to the current coefficient set must be saved before importng a new coefficient set. \r\n Click 'Yes' to save changes and proceed, or 'No' to return."},
        Prompted{
            "CmdExport",
            "Changes to the current coefficient set must be saved before export a new coefficient set. \r\n Click 'Yes' to save changes and proceed, or 'No' to return."},
        Prompted{
            "CmdMerge",
            "Changes to the current coefficient set must be saved before adding new coefficient sets. \r\n Click 'Yes' to save changes and proceed, or 'No' to return."}),
    [](const auto& tested) { return std::string(tested.param.button); });

// Selecting a set.

TEST_F(UnsavedChangesTest, SelectingASetShowsIt) {
    open();
    select_set(1);
    EXPECT_EQ(grid().rows(), 3);
    EXPECT_EQ(row(1), "1,Roof,90,80,70");
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

const MessageBox kLeavingDefault = {
    "Changes to the current coefficient set must be saved before displaying another coefficient set. \r\n Click 'Yes' to save changes to Default and proceed, or 'No' to return.",
    "", Icon::none, Buttons::yes_no};

TEST_F(UnsavedChangesTest, SelectingAnotherSetAndAnsweringNoKeepsTheEditedOneWithItsChanges) {
    open();
    click_cell(1, 2);
    type("x");
    m_user.answers = {Answer::no};
    select_set(1);
    EXPECT_THAT(m_user.boxes, ElementsAre(kLeavingDefault)) << "putting the selection back asks nothing";
    EXPECT_EQ(list().currentIndex(), 0);
    EXPECT_EQ(cell(1, 2), "x");
    EXPECT_TRUE(apply_enabled());
}

TEST_F(UnsavedChangesTest, SelectingAnotherSetAndAnsweringYesSavesTheOneBeingLeft) {
    open();
    click_cell(1, 1);
    type("7");
    m_user.answers = {Answer::yes};
    select_set(1);
    EXPECT_THAT(m_user.boxes, ElementsAre(kLeavingDefault));
    EXPECT_THAT(stored(), ElementsAre("Default: 7 41", "Town: 1 2 3"));
    EXPECT_EQ(list().currentIndex(), 1);
    EXPECT_EQ(grid().rows(), 3);
    EXPECT_FALSE(apply_enabled());
}

TEST_F(UnsavedChangesTest, SelectingAnotherSetWhileSavingFailsStays) {
    open();
    change_nothing();
    const auto lock = no_saving();
    m_user.answers = {Answer::yes};
    select_set(1);
    EXPECT_THAT(m_user.boxes, ElementsAre(kLeavingDefault, save_failure()));
    EXPECT_EQ(list().currentIndex(), 0);
    EXPECT_EQ(grid().rows(), 2);
}

TEST_F(UnsavedChangesTest, SelectingTheShownSetDoesNothing) {
    open();
    click_cell(1, 2);
    type("x");
    list().setCurrentIndex(0);
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_EQ(cell(1, 2), "x");
}

}  // namespace
}  // namespace kestrel::test

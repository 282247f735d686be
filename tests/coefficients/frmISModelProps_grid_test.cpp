// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QHelpEvent>
#include <QScrollBar>
#include <QToolTip>

#include "tests/coefficients/editor_fixture.h"

namespace kestrel::test {
namespace {

using platform::Answer;
using platform::Buttons;
using platform::Icon;
using platform::MessageBox;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using GridCell = basISModelPropsUtil::GridCell;

const MessageBox kNoInteger = {"Invalid value entered - Class Value must be an integer.", "", Icon::exclamation,
                               Buttons::ok};
const MessageBox kNotNumeric = {"Invalid value entered - Coefficients must be numeric.", "", Icon::exclamation,
                                Buttons::ok};
const MessageBox kOutOfRange = {"Invalid value entered - Coefficients must be between 0-100.", "", Icon::exclamation,
                                Buttons::ok};

/// On the set "Town": rows "1,Roof,90,80,70", "2,Park,10,5,1" and "3,Pond,0,0,0".
class GridTest : public EditorTest {
  protected:
    void SetUp() override {
        open();
        select_set(1);
        grid().setFocus();
    }
    std::string overlay_text() { return overlay().text().toStdString(); }
    /// Makes the grid so low that rows are out of view.
    void fill_rows(int count) {
        while (grid().rows() < count)
            grid().insert_fresh_row(grid().rows() + 1);
    }
    bool in_view(GridCell cell) { return grid().viewport()->rect().contains(grid().place_of(cell)); }
};

// Keys on the grid.

TEST_F(GridTest, F2StartsEditingTheCurrentCell) {
    click_cell(2, 2);
    key(Qt::Key_F2);
    EXPECT_TRUE(editing());
    EXPECT_EQ(overlay_text(), "Park");
    EXPECT_EQ(QApplication::focusWidget(), &overlay());
    EXPECT_EQ(overlay().cursorPosition(), 4);
    EXPECT_EQ(overlay().geometry(), grid().place_of({2, 2}));
    EXPECT_EQ(overlay().font(), grid().font());
    EXPECT_TRUE(apply_enabled());
    EXPECT_EQ(cell(2, 2), "Park");
}

TEST_F(GridTest, PrintableCharacterReplacesTheTextAndStartsEditing) {
    click_cell(2, 2);
    type("Q");
    EXPECT_EQ(cell(2, 2), "Q");
    EXPECT_TRUE(editing());
    EXPECT_EQ(overlay_text(), "Q");
    EXPECT_EQ(overlay().cursorPosition(), 1);
    EXPECT_TRUE(apply_enabled());
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(GridTest, RefusedFirstCharacterIsTakenOffAgainAndLeavesTheCellEmpty) {
    click_cell(2, 3);
    type("x");
    EXPECT_THAT(m_user.boxes, ElementsAre(kNotNumeric));
    EXPECT_EQ(cell(2, 3), "");
    EXPECT_TRUE(editing());
    EXPECT_EQ(overlay_text(), "");
    EXPECT_TRUE(apply_enabled());
}

TEST_F(GridTest, PointIsRefusedAtOnceInTheValueColumn) {
    click_cell(2, 1);
    type(".");
    EXPECT_THAT(m_user.boxes, ElementsAre(kNoInteger));
    EXPECT_EQ(cell(2, 1), "");
    type("4.");
    EXPECT_THAT(m_user.boxes, ElementsAre(kNoInteger, kNoInteger));
    EXPECT_EQ(cell(2, 1), "4");
    EXPECT_EQ(overlay_text(), "4");
}

TEST_F(GridTest, LettersAndSignsAreRefusedInTheValueColumn) {
    click_cell(2, 1);
    type("-");
    type("a");
    EXPECT_THAT(m_user.boxes, ElementsAre(kNoInteger, kNoInteger));
    EXPECT_EQ(cell(2, 1), "");
}

TEST_F(GridTest, NameTakesAnyCharacter) {
    click_cell(2, 2);
    type(".,;\" 1-");
    EXPECT_EQ(cell(2, 2), ".,;\" 1-");
    EXPECT_EQ(overlay_text(), ".,;\" 1-");
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(GridTest, Typing101RefusesTheLast1InEveryCoefficientColumn) {
    for (const int column : {3, 4, 5}) {
        m_user.boxes.clear();
        click_cell(2, column);
        type("101");
        EXPECT_THAT(m_user.boxes, ElementsAre(kOutOfRange));
        EXPECT_EQ(cell(2, column), "10");
        EXPECT_EQ(overlay_text(), "10");
        type("0");
        EXPECT_EQ(cell(2, column), "100");
    }
    EXPECT_EQ(row(2), "2,Park,100,100,100");
}

TEST_F(GridTest, FractionsCanBeTyped) {
    click_cell(2, 5);
    type("12.5");
    EXPECT_EQ(cell(2, 5), "12.5");
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(GridTest, BackspaceRemovesTheLastCharacterOfTheCell) {
    click_cell(2, 2);
    key(Qt::Key_Backspace);
    EXPECT_EQ(cell(2, 2), "Par");
    EXPECT_FALSE(editing());
    EXPECT_TRUE(apply_enabled());
    for (int i = 0; i < 4; ++i)
        key(Qt::Key_Backspace);
    EXPECT_EQ(cell(2, 2), "");
}

TEST_F(GridTest, BackspaceInAnEmptyCellChangesNothing) {
    grid().set_text({2, 2}, "");
    click_cell(2, 2);
    key(Qt::Key_Backspace);
    EXPECT_FALSE(apply_enabled());
}

TEST_F(GridTest, DeleteEmptiesTheCell) {
    click_cell(2, 3);
    key(Qt::Key_Delete);
    EXPECT_EQ(cell(2, 3), "");
    EXPECT_TRUE(apply_enabled());
    key(Qt::Key_Right);
    EXPECT_EQ(cell(2, 3), "0");
}

TEST_F(GridTest, EnterMovesToTheNextCell) {
    click_cell(1, 1);
    key(Qt::Key_Return);
    EXPECT_EQ(current(), (GridCell{1, 2}));
    EXPECT_FALSE(editing());
    EXPECT_FALSE(apply_enabled());
}

TEST_F(GridTest, EnterInTheLastColumnMovesToTheFirstOfTheNextRow) {
    click_cell(1, 5);
    key(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(current(), (GridCell{2, 1}));
}

TEST_F(GridTest, EnterInTheLastCellStays) {
    click_cell(3, 5);
    key(Qt::Key_Return);
    EXPECT_EQ(current(), (GridCell{3, 5}));
}

TEST_F(GridTest, EnterMakesTheNextCellVisible) {
    fill_rows(60);
    click_cell(1, 5);
    for (int i = 0; i < 200; ++i)
        key(Qt::Key_Return);
    EXPECT_EQ(current(), (GridCell{41, 5}));
    EXPECT_TRUE(in_view({41, 5}));
}

TEST_F(GridTest, EscapeOnTheGridDoesNothing) {
    click_cell(2, 2);
    key(Qt::Key_Escape);
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_EQ(row(2), "2,Park,10,5,1");
    EXPECT_FALSE(apply_enabled());
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(GridTest, ArrowsMoveTheCurrentCell) {
    click_cell(1, 1);
    key(Qt::Key_Down);
    key(Qt::Key_Right);
    EXPECT_EQ(current(), (GridCell{2, 2}));
    key(Qt::Key_Up);
    key(Qt::Key_Left);
    EXPECT_EQ(current(), (GridCell{1, 1}));
    EXPECT_FALSE(apply_enabled());
}

TEST_F(GridTest, CommandsTypeNothing) {
    click_cell(2, 2);
    key(Qt::Key_B, Qt::ControlModifier);
    key(Qt::Key_B, Qt::MetaModifier);
    EXPECT_EQ(cell(2, 2), "Park");
    EXPECT_FALSE(apply_enabled());
}

// The mouse.

TEST_F(GridTest, DoubleClickStartsEditingTheClickedCell) {
    double_click_cell(3, 2);
    EXPECT_TRUE(editing());
    EXPECT_EQ(overlay_text(), "Pond");
    EXPECT_EQ(overlay().cursorPosition(), 4);
    EXPECT_EQ(overlay().geometry(), grid().place_of({3, 2}));
    EXPECT_TRUE(apply_enabled());
}

class MouseButton : public GridTest, public testing::WithParamInterface<Qt::MouseButton> {};

TEST_P(MouseButton, PressedOnTheGridHidesTheOverlayAndMakesTheCellTheCurrentOne) {
    edit(1, 2);
    const QPoint place = grid().place_of({3, 4}).center();
    QTest::mousePress(grid().viewport(), GetParam(), Qt::NoModifier, place);
    EXPECT_FALSE(editing());
    EXPECT_EQ(current(), (GridCell{3, 4}));
    EXPECT_EQ(menu().isVisible(), GetParam() == Qt::RightButton);
    menu().close();
}

INSTANTIATE_TEST_SUITE_P(frmISModelProps, MouseButton,
                         testing::Values(Qt::LeftButton, Qt::MiddleButton, Qt::RightButton));

TEST_F(GridTest, PressBelowTheRowsHidesTheOverlayAndKeepsTheCurrentCell) {
    edit(1, 2);
    QTest::mouseClick(grid().viewport(), Qt::LeftButton, Qt::NoModifier, grid().viewport()->rect().bottomLeft());
    EXPECT_FALSE(editing());
    EXPECT_EQ(current(), (GridCell{1, 2}));
}

TEST_F(GridTest, ClickOnARowNumberMakesTheRowTheCurrentOne) {
    click_cell(1, 3);
    const int y = grid().place_of({3, 1}).center().y();
    QTest::mouseClick(grid().verticalHeader()->viewport(), Qt::LeftButton, Qt::NoModifier, {5, y});
    EXPECT_EQ(current(), (GridCell{3, 3}));
}

TEST_F(GridTest, CellThatIsPartlyInViewStaysUnderTheMouseWhenClicked) {
    fill_rows(60);
    const QRect view = grid().viewport()->rect();
    const QPoint place(20, view.bottom() - 1);
    const int row = grid().indexAt(place).row() + 1;
    QTest::mouseClick(grid().viewport(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_EQ(current().row, row);
    EXPECT_EQ(grid().indexAt(place).row() + 1, row);
}

TEST_F(GridTest, CellThatShowsAPartOfItsTextTellsTheWholeOfItUnderTheMouse) {
    const auto hover = [this](GridCell at) {
        const QPoint place = grid().place_of(at).center();
        QHelpEvent event(QEvent::ToolTip, place, grid().viewport()->mapToGlobal(place));
        QApplication::sendEvent(grid().viewport(), &event);
        return QToolTip::text();
    };
    const QString name = "A name that is far too long for the column of names, so that its end is not seen";
    grid().set_text({2, 2}, name);
    EXPECT_EQ(hover({1, 2}), "") << "it is seen whole";
    EXPECT_EQ(hover({2, 2}), name);
    QToolTip::hideText();
}

// Keys in the overlay.

TEST_F(GridTest, EnterInTheOverlayWritesTheTextHidesItAndMovesOn) {
    edit(1, 2);
    type("s");
    key(Qt::Key_Return);
    EXPECT_EQ(cell(1, 2), "Roofs");
    EXPECT_FALSE(editing());
    EXPECT_EQ(current(), (GridCell{1, 3}));
    EXPECT_EQ(QApplication::focusWidget(), &grid());
}

TEST_F(GridTest, EnterInTheOverlayOfTheLastCellStays) {
    edit(3, 5);
    key(Qt::Key_Return);
    EXPECT_FALSE(editing());
    EXPECT_EQ(current(), (GridCell{3, 5}));
}

TEST_F(GridTest, EscapePutsTheTextOnEnteringBackIntoTheOverlayAndTheNextEnterIntoTheCell) {
    edit(1, 2);
    type("xyz");
    key(Qt::Key_Home);
    key(Qt::Key_Escape);
    EXPECT_TRUE(editing());
    EXPECT_EQ(overlay_text(), "Roof");
    EXPECT_EQ(overlay().cursorPosition(), 4);
    EXPECT_EQ(cell(1, 2), "Roofxyz") << "the cell itself receives it with the next Enter";
    EXPECT_TRUE(m_form->isVisible());
    key(Qt::Key_Return);
    EXPECT_EQ(cell(1, 2), "Roof");
}

TEST_F(GridTest, EscapeAfterAFirstCharacterBringsTheOldTextBack) {
    click_cell(1, 2);
    type("x");
    key(Qt::Key_Escape);
    EXPECT_EQ(overlay_text(), "Roof");
}

TEST_F(GridTest, LeftMovesWithinTheTextUntilTheCaretIsAtItsBeginning) {
    edit(2, 3);
    key(Qt::Key_Left);
    key(Qt::Key_Left);
    EXPECT_EQ(current(), (GridCell{2, 3}));
    EXPECT_EQ(overlay().cursorPosition(), 0);
    key(Qt::Key_Left);
    EXPECT_EQ(current(), (GridCell{2, 2}));
    EXPECT_TRUE(editing());
    EXPECT_EQ(overlay_text(), "Park");
    EXPECT_EQ(overlay().geometry(), grid().place_of({2, 2}));
    EXPECT_EQ(QApplication::focusWidget(), &overlay());
}

TEST_F(GridTest, LeftFromTheFirstColumnGoesToTheLastOfTheRowAbove) {
    edit(2, 1);
    key(Qt::Key_Home);
    key(Qt::Key_Left);
    EXPECT_EQ(current(), (GridCell{1, 5}));
    EXPECT_EQ(overlay_text(), "70");
}

TEST_F(GridTest, LeftInTheFirstCellStays) {
    edit(1, 1);
    key(Qt::Key_Home);
    key(Qt::Key_Left);
    EXPECT_EQ(current(), (GridCell{1, 1}));
    EXPECT_TRUE(editing());
}

TEST_F(GridTest, RightMovesWithinTheTextUntilTheCaretIsAtItsEnd) {
    edit(1, 2);
    key(Qt::Key_Home);
    for (int i = 0; i < 4; ++i)
        key(Qt::Key_Right);
    EXPECT_EQ(current(), (GridCell{1, 2}));
    key(Qt::Key_Right);
    EXPECT_EQ(current(), (GridCell{1, 3}));
    EXPECT_EQ(overlay_text(), "90");
    EXPECT_EQ(overlay().geometry(), grid().place_of({1, 3}));
}

TEST_F(GridTest, RightFromTheLastColumnGoesToTheFirstOfTheRowBelow) {
    edit(1, 5);
    key(Qt::Key_Right);
    EXPECT_EQ(current(), (GridCell{2, 1}));
    EXPECT_EQ(overlay_text(), "2");
}

TEST_F(GridTest, RightInTheLastCellStays) {
    edit(3, 5);
    key(Qt::Key_Right);
    EXPECT_EQ(current(), (GridCell{3, 5}));
    EXPECT_TRUE(editing());
}

TEST_F(GridTest, UpMovesTheOverlayToTheRowAboveButNotToTheHeader) {
    edit(2, 2);
    key(Qt::Key_Up);
    EXPECT_EQ(current(), (GridCell{1, 2}));
    EXPECT_EQ(overlay_text(), "Roof");
    EXPECT_EQ(overlay().geometry(), grid().place_of({1, 2}));
    key(Qt::Key_Up);
    EXPECT_EQ(current(), (GridCell{1, 2}));
    EXPECT_TRUE(editing());
}

TEST_F(GridTest, DownMovesTheOverlayToTheRowBelowButNotBeyondTheLast) {
    edit(2, 2);
    key(Qt::Key_Down);
    EXPECT_EQ(current(), (GridCell{3, 2}));
    EXPECT_EQ(overlay_text(), "Pond");
    key(Qt::Key_Down);
    EXPECT_EQ(current(), (GridCell{3, 2}));
    EXPECT_TRUE(editing());
}

TEST_F(GridTest, GridScrollsWhenTheOverlayMovesOutOfView) {
    fill_rows(60);
    edit(3, 2);
    for (int i = 0; i < 40; ++i)
        key(Qt::Key_Down);
    EXPECT_EQ(current(), (GridCell{43, 2}));
    EXPECT_TRUE(in_view({43, 2}));
    EXPECT_EQ(overlay().geometry(), grid().place_of({43, 2}));
}

TEST_F(GridTest, OverlayGoesWithItsCellWhenTheGridIsScrolledOrColumnsAreResized) {
    fill_rows(60);
    edit(2, 3);
    grid().verticalScrollBar()->setValue(20);
    EXPECT_EQ(overlay().geometry(), grid().place_of({2, 3}));
    EXPECT_LT(overlay().geometry().bottom(), 0);
    grid().verticalScrollBar()->setValue(0);
    grid().setColumnWidth(0, 120);
    m_form->resize(m_form->width() + 100, m_form->height());
    QTest::qWait(1);
    EXPECT_EQ(overlay().geometry(), grid().place_of({2, 3}));
}

TEST_F(GridTest, EditingACellThatIsScrolledAwayBringsItIntoView) {
    fill_rows(60);
    click_cell(2, 3);
    grid().verticalScrollBar()->setValue(30);
    key(Qt::Key_F2);
    EXPECT_TRUE(in_view({2, 3}));
    EXPECT_EQ(overlay().geometry(), grid().place_of({2, 3}));
}

TEST_F(GridTest, BackspaceInTheOverlayDeletesBeforeTheCaretAndWritesTheResultIntoTheCell) {
    edit(2, 2);
    key(Qt::Key_Left);
    key(Qt::Key_Backspace);
    EXPECT_EQ(overlay_text(), "Pak");
    EXPECT_EQ(cell(2, 2), "Pak");
    EXPECT_EQ(overlay().cursorPosition(), 2);
}

TEST_F(GridTest, DeleteInTheOverlayDeletesBehindTheCaretAndWritesTheResultIntoTheCell) {
    edit(2, 2);
    key(Qt::Key_Home);
    key(Qt::Key_Delete);
    EXPECT_EQ(overlay_text(), "ark");
    EXPECT_EQ(cell(2, 2), "ark");
}

TEST_F(GridTest, CharacterIsAppendedToTheCellAndCheckedThereWhereverTheCaretStands) {
    edit(2, 2);
    key(Qt::Key_Home);
    type("X");
    EXPECT_EQ(overlay_text(), "XPark");
    EXPECT_EQ(cell(2, 2), "ParkX");
    key(Qt::Key_Return);
    EXPECT_EQ(cell(2, 2), "XPark");
}

TEST_F(GridTest, CharacterInFrontIsRefusedForWhatItWouldMakeAtTheEnd) {
    edit(2, 3);  // 10
    key(Qt::Key_Home);
    type("1");  // 110 in the overlay, 101 in the check
    EXPECT_THAT(m_user.boxes, ElementsAre(kOutOfRange));
    EXPECT_EQ(overlay_text(), "10");
    EXPECT_EQ(cell(2, 3), "10");
}

TEST_F(GridTest, RefusedCharacterIsDiscardedAndTheCellGetsTheOverlaysTextBack) {
    edit(2, 3);
    type("x");
    EXPECT_THAT(m_user.boxes, ElementsAre(kNotNumeric));
    EXPECT_EQ(overlay_text(), "10");
    EXPECT_EQ(cell(2, 3), "10");
    EXPECT_TRUE(editing());
}

TEST_F(GridTest, CharacterReplacesSelectedText) {
    edit(2, 3);
    overlay().selectAll();
    type("5");
    EXPECT_EQ(overlay_text(), "5");
    EXPECT_EQ(cell(2, 3), "5");
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

// Entering and leaving.

TEST_F(GridTest, EnteredCellIsLightYellowAndALeftOneHasTheWindowColour) {
    click_cell(2, 2);
    EXPECT_EQ(colour(2, 2), QColor(255, 255, 192));
    EXPECT_NE(colour(1, 3), QColor(255, 255, 192));
    click_cell(1, 3);
    EXPECT_EQ(colour(1, 3), QColor(255, 255, 192));
    EXPECT_EQ(colour(2, 2), grid().palette().color(QPalette::Base));
}

TEST_F(GridTest, TextOnTheYellowIsBlackAlsoWhereTheSystemsIsWhite) {
    click_cell(2, 2);
    EXPECT_EQ(grid().item(1, 1)->foreground().color(), QColor(Qt::black));
    click_cell(1, 2);
    EXPECT_FALSE(grid().item(1, 1)->data(Qt::ForegroundRole).isValid());
}

TEST_F(GridTest, EnteringACellHidesTheOverlay) {
    edit(2, 2);
    grid().go_to({3, 3});
    EXPECT_FALSE(editing());
}

TEST_F(GridTest, LeavingAnEmptiedValueOrCoefficientPuts0IntoIt) {
    for (const int column : {1, 3, 4, 5}) {
        edit(1, column);
        overlay().selectAll();
        key(Qt::Key_Backspace);
        ASSERT_EQ(cell(1, column), "");
        key(Qt::Key_Down);
        EXPECT_EQ(cell(1, column), "0");
    }
    EXPECT_EQ(row(1), "0,Roof,0,0,0");
}

TEST_F(GridTest, LeavingBlanksPuts0IntoTheCell) {
    grid().set_text({1, 4}, "  ");
    click_cell(1, 4);
    key(Qt::Key_Right);
    EXPECT_EQ(cell(1, 4), "0");
}

TEST_F(GridTest, LeavingAnEmptiedNameLeavesItEmpty) {
    edit(1, 2);
    overlay().selectAll();
    key(Qt::Key_Backspace);
    key(Qt::Key_Down);
    EXPECT_EQ(cell(1, 2), "");
}

TEST_F(GridTest, LeavingARefusedFirstCharacterByMousePuts0IntoTheCell) {
    click_cell(2, 3);
    type("x");
    click_cell(3, 2);
    EXPECT_EQ(cell(2, 3), "0");
}

// The clipboard.

class ClipboardTest : public GridTest {
  protected:
    void paste(const char* text) {
        QApplication::clipboard()->setText(QString::fromUtf8(text));
        key(Qt::Key_V, Qt::ControlModifier);
    }
};

TEST_F(ClipboardTest, BlockOfCellsIsPastedFromTheCurrentCellOn) {
    click_cell(2, 2);
    paste("Field\t1\t2\t3\nHedge\t4\t5\t6\nDitch\t7\t8\t9\n");
    EXPECT_EQ(row(2), "2,Field,1,2,3");
    EXPECT_EQ(row(3), "3,Hedge,4,5,6");
    EXPECT_EQ(row(4), "0,Ditch,7,8,9");
    EXPECT_EQ(current(), (GridCell{2, 2}));
    EXPECT_TRUE(apply_enabled());
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(ClipboardTest, RefusedCellsKeepTheirTextAndOneMessageSaysHowManyAndWhy) {
    click_cell(1, 1);
    paste("1.5\tField\t101\t2\tx\n5\tHedge\t200\t5\t6\n");
    EXPECT_EQ(row(1), "1,Field,90,2,70");
    EXPECT_EQ(row(2), "5,Hedge,10,5,6");
    EXPECT_THAT(
        m_user.boxes,
        ElementsAre(MessageBox{
            "4 of 10 pasted cells could not be taken and keep their text:\r\n\r\nInvalid value entered - Class Value must be an integer.\r\nInvalid value entered - Coefficients must be between 0-100.\r\nInvalid value entered - Coefficients must be numeric.",
            "Paste", Icon::exclamation, Buttons::ok}));
}

TEST_F(ClipboardTest, SingleCellIsPastedIntoTheGridWithoutTheOverlay) {
    click_cell(1, 4);
    paste("33.3\r\n");
    EXPECT_EQ(cell(1, 4), "33.3");
    EXPECT_FALSE(editing());
}

TEST_F(ClipboardTest, BlockPastedWhileTheOverlayIsShownHidesIt) {
    edit(1, 3);
    paste("1\t2\n3\t4");
    EXPECT_FALSE(editing());
    EXPECT_EQ(row(1), "1,Roof,1,2,70");
    EXPECT_EQ(row(2), "2,Park,3,4,1");
}

TEST_F(ClipboardTest, TextIsPastedIntoTheOverlayAtTheCaret) {
    edit(2, 2);
    key(Qt::Key_Home);
    paste("City ");
    EXPECT_EQ(overlay_text(), "City Park");
    EXPECT_EQ(cell(2, 2), "City Park");
    EXPECT_TRUE(editing());
}

TEST_F(ClipboardTest, TextThatDoesNotFitIsRefusedInTheOverlay) {
    edit(2, 3);
    paste("5x");
    EXPECT_THAT(m_user.boxes, ElementsAre(kNotNumeric));
    EXPECT_EQ(overlay_text(), "10");
    EXPECT_EQ(cell(2, 3), "10");
    overlay().selectAll();
    paste("25");
    EXPECT_EQ(cell(2, 3), "25");
}

TEST_F(ClipboardTest, TextCutFromTheOverlayLeavesTheCellToo) {
    edit(2, 2);
    overlay().selectAll();
    key(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "Park");
    EXPECT_EQ(cell(2, 2), "");
}

TEST_F(ClipboardTest, PasteIntoAGridWithoutRowsAddsThem) {
    m_user.answers = {Answer::yes, Answer::yes, Answer::no};
    while (grid().rows() > 0) {
        m_user.answers = {Answer::yes};
        action("MnuFGridDelRow").trigger();
    }
    grid().setFocus();
    paste("Value\tName\tHigh\tMedium\tLow\n7\tMarsh\t1\t2\t3");
    ASSERT_EQ(grid().rows(), 1);
    EXPECT_EQ(row(1), "7,Marsh,1,2,3");
}

TEST_F(ClipboardTest, EmptyClipboardChangesNothing) {
    click_cell(2, 2);
    paste("");
    EXPECT_FALSE(apply_enabled());
    EXPECT_EQ(row(2), "2,Park,10,5,1");
}

TEST_F(ClipboardTest, CopyTakesTheTextOfTheCurrentCell) {
    click_cell(2, 2);
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "Park");
    EXPECT_FALSE(apply_enabled());
}

}  // namespace
}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QScrollBar>

#include "tests/forms/coefficients/grid_fixture.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

TEST_F(GridTest, EscapeDoesNotReachTheCellWithoutEnter) {
    edit(1, 2);
    type("xyz");
    key(Qt::Key_Escape);
    key(Qt::Key_Down);
    EXPECT_EQ(cell(1, 2), "Roofxyz");
    EXPECT_EQ(cell(2, 2), "Park");
    EXPECT_EQ(overlay_text(), "Park");
}

TEST_F(GridTest, MovingAwayWithoutEnterLeavesTheCellWithTheCharacterAtItsEnd) {
    for (const Qt::Key away : {Qt::Key_Up, Qt::Key_Down}) {
        grid().set_text({2, 2}, "Park");
        edit(2, 2);
        key(Qt::Key_Home);
        type("X");
        EXPECT_EQ(overlay_text(), "XPark");
        key(away);
        EXPECT_EQ(cell(2, 2), "ParkX");
        EXPECT_EQ(overlay_text(), cell(current().row, 2));
    }
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

TEST_F(GridTest, OverlayDoesNotHideWhatKeysOnTheGridDoToTheCell) {
    for (const auto& [pressed, left] : {std::pair(Qt::Key_Backspace, "Par"), std::pair(Qt::Key_Delete, "")}) {
        edit(2, 2);
        key(Qt::Key_Tab, Qt::ShiftModifier);
        ASSERT_EQ(QApplication::focusWidget(), &grid());
        key(pressed);
        EXPECT_EQ(cell(2, 2), left);
        EXPECT_FALSE(editing());
    }
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

}  // namespace
}  // namespace kestrel::test

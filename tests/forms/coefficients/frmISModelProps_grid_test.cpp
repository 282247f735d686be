// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QToolTip>

#include "tests/forms/coefficients/grid_fixture.h"

namespace kestrel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

TEST_F(GridTest, OverlayHasTheGridsFontWhateverItsOwn) {
    QFont other = grid().font();
    other.setPointSize(2 * other.pointSize());
    overlay().setFont(other);
    ASSERT_NE(overlay().font(), grid().font());
    click_cell(2, 2);
    key(Qt::Key_F2);
    EXPECT_EQ(overlay().font(), grid().font());
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

TEST_F(GridTest, EscapeOnTheGridDoesNothingThoughThereAreUnsavedChanges) {
    click_cell(2, 2);
    key(Qt::Key_Backspace);
    key(Qt::Key_Escape);
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_EQ(row(2), "2,Par,10,5,1");
    EXPECT_TRUE(apply_enabled());
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(GridTest, EnterOnTheGridPressesNoButton) {
    click_cell(2, 2);
    key(Qt::Key_Backspace);
    const std::string before = store_text();
    key(Qt::Key_Return);
    key(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(current(), (GridCell{2, 4}));
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    EXPECT_TRUE(apply_enabled());
    EXPECT_EQ(store_text(), before);
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(GridTest, EnterAndEscapeOnAGridWithoutRowsDoNothing) {
    while (grid().rows() > 0) {
        m_user.answers = {reporting::Answer::yes};
        action("MnuFGridDelRow").trigger();
    }
    m_user.boxes.clear();
    grid().setFocus();
    key(Qt::Key_Return);
    key(Qt::Key_Escape);
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
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
    EXPECT_EQ(overlay_text(), "0");
    EXPECT_FALSE(editing());
}

}  // namespace
}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>

#include "tests/forms/coefficients/grid_fixture.h"

namespace kestrel::test {
namespace {

using reporting::Answer;
using reporting::Buttons;
using reporting::Icon;
using reporting::MessageBox;
using testing::ElementsAre;
using testing::IsEmpty;

/// The row menu, on the set "Town": rows "1,Roof,90,80,70", "2,Park,10,5,1" and "3,Pond,0,0,0".
class RowMenuTest : public EditorTest {
  protected:
    void SetUp() override {
        open();
        select_set(1);
        grid().setFocus();
    }
    /// Opens the menu with the right button on a cell and picks an entry with the mouse.
    void pick(int row, int column, const char* entry) {
        click_cell(row, column, Qt::RightButton);
        ASSERT_EQ(QApplication::activePopupWidget(), &menu());
        QTest::mouseClick(&menu(), Qt::LeftButton, Qt::NoModifier, menu().actionGeometry(&action(entry)).center());
        ASSERT_FALSE(menu().isVisible());
        activate();
    }
    std::vector<std::string> rows() {
        std::vector<std::string> texts;
        for (int number = 1; number <= grid().rows(); ++number)
            texts.push_back(grid().model()->headerData(number - 1, Qt::Vertical).toString().toStdString() + ": " +
                            row(number));
        return texts;
    }
    static MessageBox prompt(const char* text) { return {text, "Delete Row!", Icon::none, Buttons::yes_no}; }
};

TEST_F(RowMenuTest, AddRowAppendsARowOfZerosAndMakesItCurrent) {
    pick(1, 3, "MnuFGridAddRow");
    EXPECT_THAT(rows(), ElementsAre("1: 1,Roof,90,80,70", "2: 2,Park,10,5,1", "3: 3,Pond,0,0,0", "4: 0,,0,0,0"));
    EXPECT_EQ(current(), (GridCell{4, 1}));
    EXPECT_TRUE(apply_enabled());
}

TEST_F(RowMenuTest, AddedRowIsMadeVisible) {
    for (int i = 0; i < 40; ++i)
        action("MnuFGridAddRow").trigger();
    EXPECT_EQ(current().row, 43);
    EXPECT_TRUE(grid().viewport()->rect().contains(grid().place_of({43, 1})));
}

TEST_F(RowMenuTest, InsertRowMakesTheCurrentRowAFreshOneAndRenumbersTheOthers) {
    pick(2, 3, "MnuFGridInsRow");
    EXPECT_THAT(rows(), ElementsAre("1: 1,Roof,90,80,70", "2: 0,,0,0,0", "3: 2,Park,10,5,1", "4: 3,Pond,0,0,0"));
    EXPECT_EQ(current(), (GridCell{2, 3}));
    EXPECT_TRUE(apply_enabled());
    EXPECT_EQ(colour(2, 3), QColor(255, 255, 192));
    EXPECT_NE(colour(3, 3), QColor(255, 255, 192));
}

TEST_F(RowMenuTest, InsertRowOnTheHeaderRowActsAsAddRow) {
    QTest::mouseClick(grid().horizontalHeader()->viewport(), Qt::RightButton, Qt::NoModifier, {10, 5});
    EXPECT_EQ(current().row, 0);
    EXPECT_TRUE(menu().isVisible());
    EXPECT_FALSE(action("MnuFGridDelRow").isEnabled());
    menu().close();
    action("MnuFGridInsRow").trigger();
    ASSERT_EQ(grid().rows(), 4);
    EXPECT_EQ(row(4), "0,,0,0,0");
    EXPECT_EQ(current(), (GridCell{4, 1}));
}

TEST_F(RowMenuTest, DeletingARowWithDataAsksAndNoKeepsIt) {
    m_user.answers = {Answer::no};
    pick(2, 1, "MnuFGridDelRow");
    EXPECT_THAT(m_user.boxes, ElementsAre(prompt("There is data in Row 2 ! Delete anyway?")));
    EXPECT_EQ(grid().rows(), 3);
    EXPECT_FALSE(apply_enabled());
}

TEST_F(RowMenuTest, DeletingARowWithDataMovesTheLaterOnesUp) {
    m_user.answers = {Answer::yes};
    pick(1, 1, "MnuFGridDelRow");
    EXPECT_THAT(m_user.boxes, ElementsAre(prompt("There is data in Row 1 ! Delete anyway?")));
    EXPECT_THAT(rows(), ElementsAre("1: 2,Park,10,5,1", "2: 3,Pond,0,0,0"));
    EXPECT_EQ(current().row, 1);
    EXPECT_EQ(colour(1, 1), QColor(255, 255, 192));
    EXPECT_TRUE(apply_enabled());
}

TEST_F(RowMenuTest, DeletingTheLastRowDropsIt) {
    m_user.answers = {Answer::yes};
    pick(3, 1, "MnuFGridDelRow");
    EXPECT_THAT(m_user.boxes, ElementsAre(prompt("There is data in Row 3 ! Delete anyway?")));
    EXPECT_THAT(rows(), ElementsAre("1: 1,Roof,90,80,70", "2: 2,Park,10,5,1"));
    EXPECT_EQ(current().row, 2);
}

TEST_F(RowMenuTest, DeletingARowOfZerosAndBlanksAsksNothing) {
    action("MnuFGridAddRow").trigger();
    grid().set_text({4, 3}, "");
    grid().set_text({4, 4}, " 0 ");
    pick(4, 1, "MnuFGridDelRow");
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_EQ(grid().rows(), 3);
}

TEST_F(RowMenuTest, DeletingTheOnlyRowLeavesTheHeaderRowCurrent) {
    for (int i = 0; i < 3; ++i) {
        m_user.answers = {Answer::yes};
        action("MnuFGridDelRow").trigger();
    }
    EXPECT_EQ(grid().rows(), 0);
    EXPECT_EQ(current().row, 0);
    m_user.boxes.clear();
    action("MnuFGridDelRow").trigger();
    EXPECT_THAT(m_user.boxes, IsEmpty());
    key(Qt::Key_F2);
    type("x");
    EXPECT_FALSE(editing());
    action("MnuFGridInsRow").trigger();
    EXPECT_EQ(row(1), "0,,0,0,0");
}

TEST_F(RowMenuTest, EveryEntryCountsAsAChange) {
    for (const char* entry : {"MnuFGridAddRow", "MnuFGridInsRow", "MnuFGridDelRow"}) {
        m_user.boxes.clear();
        action(entry).trigger();
        EXPECT_TRUE(apply_enabled()) << entry;
        m_user.answers = {Answer::cancel};
        click("cmdQuit");
        EXPECT_EQ(m_user.boxes.size(), 1U) << entry;
        click("cmdApply");
        grid().setFocus();
    }
}

TEST_F(RowMenuTest, EntriesHideTheOverlay) {
    for (const char* entry : {"MnuFGridAddRow", "MnuFGridInsRow", "MnuFGridDelRow"}) {
        edit(1, 2);
        m_user.answers = {Answer::yes};
        action(entry).trigger();
        EXPECT_FALSE(editing()) << entry;
        EXPECT_EQ(QApplication::focusWidget(), &grid()) << entry;
    }
}

struct MenuKey {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
};

class MenuByKey : public RowMenuTest, public testing::WithParamInterface<MenuKey> {};

TEST_P(MenuByKey, OpensBelowTheCurrentCell) {
    click_cell(2, 2);
    key(GetParam().key, GetParam().modifiers);
    EXPECT_TRUE(menu().isVisible());
    const QPoint corner = grid().viewport()->mapToGlobal(grid().place_of({2, 2}).bottomLeft());
    EXPECT_LE((menu().pos() - corner).manhattanLength(), 4);
    menu().close();
}

TEST_P(MenuByKey, OpensFromTheOverlayToo) {
    edit(2, 2);
    key(GetParam().key, GetParam().modifiers);
    EXPECT_TRUE(menu().isVisible());
    QTest::keyClick(&menu(), Qt::Key_I);
    EXPECT_EQ(row(2), "0,,0,0,0");
    EXPECT_FALSE(editing());
}

INSTANTIATE_TEST_SUITE_P(frmISModelProps, MenuByKey,
                         testing::Values(MenuKey{Qt::Key_Menu, Qt::NoModifier},
                                         MenuKey{Qt::Key_F10, Qt::ShiftModifier}));

TEST_F(RowMenuTest, OpensWithTheRightButtonOnTheOverlay) {
    edit(2, 2);
    QContextMenuEvent event(QContextMenuEvent::Mouse, {3, 3}, overlay().mapToGlobal(QPoint(3, 3)));
    QApplication::sendEvent(&overlay(), &event);
    EXPECT_TRUE(menu().isVisible());
    menu().close();
}

TEST_F(RowMenuTest, MenuRequestThatFollowsTheRightButtonOpensNothingMore) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, {3, 3}, grid().viewport()->mapToGlobal(QPoint(3, 3)));
    QApplication::sendEvent(grid().viewport(), &event);
    EXPECT_FALSE(menu().isVisible());
}

}  // namespace
}  // namespace kestrel::test

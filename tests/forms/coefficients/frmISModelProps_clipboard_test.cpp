// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QClipboard>

#include "tests/forms/coefficients/grid_fixture.h"

namespace kestrel::test {
namespace {

using reporting::Answer;
using reporting::Buttons;
using reporting::Icon;
using reporting::MessageBox;
using testing::ElementsAre;
using testing::IsEmpty;

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

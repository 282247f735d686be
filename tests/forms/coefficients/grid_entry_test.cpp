// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/coefficients/grid_entry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "tests/forms/coefficients/grid_fixture.h"

namespace kestrel::basISModelPropsUtil {

void PrintTo(const GridCell& cell, std::ostream* stream) {
    *stream << "(" << cell.row << ", " << cell.column << ")";
}

namespace {

using test::kNoInteger;
using test::kNotNumeric;
using test::kOutOfRange;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(entry_fault, ValueMustBeNumeric) {
    EXPECT_EQ(entry_fault(1, "12", "2"), std::nullopt);
    EXPECT_EQ(entry_fault(1, "0", "0"), std::nullopt);
    EXPECT_EQ(entry_fault(1, "1a", "a"), kNoInteger);
    EXPECT_EQ(entry_fault(1, "-", "-"), kNoInteger);
    EXPECT_EQ(entry_fault(1, "", ""), kNoInteger);
}

TEST(entry_fault, PointIsRefusedInTheValueColumnThoughTheTextIsNumeric) {
    EXPECT_EQ(entry_fault(1, "12.", "."), kNoInteger);
    EXPECT_EQ(entry_fault(1, ".", "."), kNoInteger);
}

TEST(entry_fault, ValueHasNoUpperLimitWhileItIsTyped) {
    EXPECT_EQ(entry_fault(1, "99999999999", "9"), std::nullopt);
}

TEST(entry_fault, NameIsNeverRefused) {
    for (const char* text : {"", ".", "a,b", "\"x\"", "101"})
        EXPECT_EQ(entry_fault(2, text, "."), std::nullopt) << text;
}

TEST(entry_fault, CoefficientsMustBeNumeric) {
    for (const int column : {3, 4, 5}) {
        EXPECT_EQ(entry_fault(column, "a", "a"), kNotNumeric);
        EXPECT_EQ(entry_fault(column, ".", "."), kNotNumeric);
        EXPECT_EQ(entry_fault(column, "12.", "."), std::nullopt);
        EXPECT_EQ(entry_fault(column, "12.5", "5"), std::nullopt);
    }
}

TEST(entry_fault, CoefficientsLieFrom0To100) {
    for (const int column : {3, 4, 5}) {
        EXPECT_EQ(entry_fault(column, "0", "0"), std::nullopt);
        EXPECT_EQ(entry_fault(column, "100", "0"), std::nullopt);
        EXPECT_EQ(entry_fault(column, "101", "1"), kOutOfRange);
        EXPECT_EQ(entry_fault(column, "100.0001", "1"), kOutOfRange);
        EXPECT_EQ(entry_fault(column, "-0.1", "1"), kOutOfRange);
        EXPECT_EQ(entry_fault(column, "1e999", "9"), kOutOfRange);
    }
}

TEST(text_fault, ValueIsAWholeNumberOf32BitsAndNotNegative) {
    for (const char* text : {"0", "21", " 21 ", "2147483647"})
        EXPECT_EQ(text_fault(1, text), std::nullopt) << text;
    for (const char* text : {"", "-1", "1.5", "12.", "1e-1", "2147483648", "1e999", "x"})
        EXPECT_EQ(text_fault(1, text), kNoInteger) << text;
}

TEST(text_fault, OtherColumnsAreCheckedAsWhileTyping) {
    EXPECT_EQ(text_fault(2, ""), std::nullopt);
    EXPECT_EQ(text_fault(3, ".5"), std::nullopt);
    EXPECT_EQ(text_fault(4, "x"), kNotNumeric);
    EXPECT_EQ(text_fault(5, "101"), kOutOfRange);
}

TEST(text_on_leaving, BlankValueOrCoefficientBecomesZero) {
    for (const int column : {1, 3, 4, 5}) {
        EXPECT_EQ(text_on_leaving(column, ""), "0");
        EXPECT_EQ(text_on_leaving(column, "  "), "0");
        EXPECT_EQ(text_on_leaving(column, "7"), "7");
    }
}

TEST(text_on_leaving, EmptyNameStaysEmpty) {
    EXPECT_EQ(text_on_leaving(2, ""), "");
    EXPECT_EQ(text_on_leaving(2, "  "), "  ");
}

TEST(next_cell, GoesRightThenToTheFirstColumnOfTheNextRow) {
    EXPECT_EQ(next_cell({1, 1}, 2), (GridCell{1, 2}));
    EXPECT_EQ(next_cell({1, 4}, 2), (GridCell{1, 5}));
    EXPECT_EQ(next_cell({1, 5}, 2), (GridCell{2, 1}));
}

TEST(next_cell, StaysInTheLastCell) {
    EXPECT_EQ(next_cell({2, 5}, 2), (GridCell{2, 5}));
}

TEST(cell_before, GoesLeftThenToTheLastColumnOfTheRowAbove) {
    EXPECT_EQ(cell_before({2, 2}), (GridCell{2, 1}));
    EXPECT_EQ(cell_before({2, 1}), (GridCell{1, 5}));
}

TEST(cell_before, StaysInTheFirstCell) {
    EXPECT_EQ(cell_before({1, 1}), (GridCell{1, 1}));
}

TEST(cell_above, NeverReachesTheHeaderRow) {
    EXPECT_EQ(cell_above({2, 3}), (GridCell{1, 3}));
    EXPECT_EQ(cell_above({1, 3}), (GridCell{1, 3}));
}

TEST(cell_below, StopsAtTheLastRow) {
    EXPECT_EQ(cell_below({1, 3}, 2), (GridCell{2, 3}));
    EXPECT_EQ(cell_below({2, 3}, 2), (GridCell{2, 3}));
}

class PasteBlock : public testing::Test {
  protected:
    PasteBlock() {
        SetLCGridHeaders(m_grid);
        m_grid.rows = {{"1", "11", "Water", "0", "0", "0"}, {"2", "21", "Town", "90", "80", "70"}};
    }
    GridContents m_grid;
};

TEST_F(PasteBlock, FillsCellsFromThePlaceOnAndAddsRows) {
    const PasteResult result = paste_block(m_grid, {2, 2}, "City\t50\t40\nHill\t1\t2\n");
    EXPECT_THAT(m_grid.rows,
                ElementsAre(GridRow{"1", "11", "Water", "0", "0", "0"}, GridRow{"2", "21", "City", "50", "40", "70"},
                            GridRow{"3", "0", "Hill", "1", "2", "0"}));
    EXPECT_EQ(result.cells, 6);
    EXPECT_EQ(result.refused, 0);
    EXPECT_THAT(result.reasons, IsEmpty());
}

TEST_F(PasteBlock, LinesMayEndInCarriageReturns) {
    paste_block(m_grid, {1, 5}, "1\r\n2\r\n");
    EXPECT_EQ(m_grid.rows[0][5], "1");
    EXPECT_EQ(m_grid.rows[1][5], "2");
    EXPECT_EQ(m_grid.rows.size(), 2U);
}

TEST_F(PasteBlock, RefusedCellsKeepTheirTextAndEachReasonIsToldOnce) {
    const PasteResult result = paste_block(m_grid, {1, 1}, "1.5\tLake\t101\tx\t5\n-2\tVillage\t200\t10\t\n");
    EXPECT_THAT(m_grid.rows, ElementsAre(GridRow{"1", "11", "Lake", "0", "0", "5"},
                                         GridRow{"2", "21", "Village", "90", "10", "70"}));
    EXPECT_EQ(result.cells, 10);
    EXPECT_EQ(result.refused, 6);
    EXPECT_THAT(result.reasons, ElementsAre("Invalid value entered - Class Value must be an integer.",
                                            "Invalid value entered - Coefficients must be between 0-100.",
                                            "Invalid value entered - Coefficients must be numeric."));
}

TEST_F(PasteBlock, CellsBeyondTheLastColumnAreRefused) {
    const PasteResult result = paste_block(m_grid, {1, 4}, "1\t2\t3\t4");
    EXPECT_EQ(m_grid.rows[0], (GridRow{"1", "11", "Water", "0", "1", "2"}));
    EXPECT_EQ(result.refused, 2);
    EXPECT_THAT(result.reasons, ElementsAre("The grid has no more columns to the right."));
}

TEST_F(PasteBlock, FirstLineThatNamesTheColumnsIsLeftOut) {
    paste_block(m_grid, {1, 1}, "value\tClassName\tHigh\tMedium\tLow\n12\tIce\t0\t0\t0\n");
    EXPECT_EQ(m_grid.rows[0], (GridRow{"1", "12", "Ice", "0", "0", "0"}));
    EXPECT_EQ(m_grid.rows[1][kNameColumn], "Town");
}

TEST_F(PasteBlock, NumbersLoseTheBlanksAroundThemAndNamesKeepTheirs) {
    paste_block(m_grid, {1, 1}, " 12 \t Ice \t 5");
    EXPECT_EQ(m_grid.rows[0], (GridRow{"1", "12", " Ice ", "5", "0", "0"}));
}

TEST_F(PasteBlock, NothingChangesNothing) {
    EXPECT_EQ(paste_block(m_grid, {1, 1}, "").cells, 0);
    EXPECT_EQ(m_grid.rows.size(), 2U);
}

}  // namespace
}  // namespace kestrel::basISModelPropsUtil

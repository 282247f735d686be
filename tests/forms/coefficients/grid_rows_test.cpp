// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/coefficients/grid_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/coefficients/sets.h"
#include "tests/support/scripted_interaction.h"

namespace kestrel::basISModelPropsUtil {
namespace {

using test::add_default_set;
using test::add_set;
using test::land_class;
using test::outline;
using test::ScriptedInteraction;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

GridContents grid_of(std::vector<GridRow> rows) {
    GridContents grid;
    SetLCGridHeaders(grid);
    grid.rows = std::move(rows);
    number_rows(grid);
    return grid;
}

TEST(SetLCGridHeaders, LaysOutSixColumnsWithTheirWidthsInTwips) {
    GridContents grid;
    SetLCGridHeaders(grid);
    std::vector<std::pair<std::string, int>> headers;
    for (const GridHeader& header : grid.headers)
        headers.emplace_back(header.text, header.width);
    EXPECT_THAT(headers, ElementsAre(std::pair("", 400), std::pair("Value", 775), std::pair("Name", 2600),
                                     std::pair("High", 965), std::pair("Medium", 965), std::pair("Low", 965)));
}

TEST(SetLCGridHeaders, EmptiesTheGridDownToTheHeaderRow) {
    GridContents grid = grid_of({fresh_row(), fresh_row()});
    SetLCGridHeaders(grid);
    EXPECT_THAT(grid.rows, IsEmpty());
    EXPECT_THAT(grid.headers, SizeIs(6));
}

TEST(LoadLCGrid, AddsARowPerClassInOrderNumberedFromOne) {
    clsISModelProperties props;
    add_set(props, "Other", {land_class(1, "x", 1, 1, 1)});
    add_default_set(props);
    GridContents grid;
    LoadLCGrid(grid, "Default", props);
    EXPECT_THAT(grid.rows, ElementsAre(GridRow{"1", "21", "Developed, Low Intensity", "35", "25", "12.5"},
                                       GridRow{"2", "41", "Forest", "0", "0", "0"}));
}

TEST(LoadLCGrid, ShowsTheFirstOfSetsOfTheSameName) {
    clsISModelProperties props;
    add_set(props, "Twin", {land_class(1, "first", 1, 1, 1)});
    add_set(props, "Twin", {land_class(2, "second", 1, 1, 1)});
    GridContents grid;
    LoadLCGrid(grid, "Twin", props);
    EXPECT_THAT(grid.rows, ElementsAre(GridRow{"1", "1", "first", "1", "1", "1"}));
}

TEST(LoadLCGrid, ReplacesTheRowsThatWereThere) {
    clsISModelProperties props;
    add_default_set(props);
    GridContents grid = grid_of({fresh_row(), fresh_row(), fresh_row()});
    LoadLCGrid(grid, "Default", props);
    EXPECT_THAT(grid.rows, SizeIs(2));
}

TEST(LoadLCGrid, NameOfNoSetClearsTheGrid) {
    GridContents grid = grid_of({fresh_row()});
    LoadLCGrid(grid, "default", clsISModelProperties());
    EXPECT_THAT(grid.rows, IsEmpty());
    EXPECT_THAT(grid.headers, SizeIs(6));
}

TEST(LoadLCGrid, NumbersAreInPlainTextForm) {
    clsISModelProperties props;
    add_set(props, "s", {land_class(-7, "n", 33.3F, 0.1F, 100)});
    GridContents grid;
    LoadLCGrid(grid, "s", props);
    EXPECT_THAT(grid.rows, ElementsAre(GridRow{"1", "-7", "n", "33.3", "0.1", "100"}));
}

TEST(RemoveEmptyGridRows, RemovesRowsWhoseDataCellsAreAllEmpty) {
    GridContents grid = grid_of({{"", "", "", "", "", ""}, {"", "1", "a", "0", "0", "0"}, {"", "", "", "", "", ""}});
    RemoveEmptyGridRows(grid);
    EXPECT_THAT(grid.rows, ElementsAre(GridRow{"1", "1", "a", "0", "0", "0"}));
}

TEST(RemoveEmptyGridRows, KeepsRowsOfZerosAndRowsWithOneFilledCell) {
    GridContents grid = grid_of({{"", "0", "", "0", "0", "0"}, {"", "", "a", "", "", ""}, {"", "", "", "", "", "0"}});
    RemoveEmptyGridRows(grid);
    EXPECT_THAT(grid.rows, SizeIs(3));
}

TEST(SaveModelPropUpdates, WritesTheRowsIntoTheSetInTheGridsOrder) {
    clsISModelProperties props;
    add_default_set(props);
    GridContents grid = grid_of({{"", "41", "Wood", "1", "2.5", "100"}, {"", "0", "", "0", "0", "0"}});
    EXPECT_TRUE(SaveModelPropUpdates(grid, "Default", props));
    EXPECT_EQ(outline(props), std::vector<std::string>{"Default: 41 0"});
    const auto first = props.ISLCDefs.Item(1)->LCClasses.Item(1);
    EXPECT_EQ(first->LCName, "Wood");
    EXPECT_EQ(first->LCHigh, 1.0F);
    EXPECT_EQ(first->LCMed, 2.5F);
    EXPECT_EQ(first->LCLow, 100.0F);
}

TEST(SaveModelPropUpdates, ChangesTheClassesThatAreThereAndAddsWhatIsMissing) {
    clsISModelProperties props;
    add_default_set(props);
    const auto first = props.ISLCDefs.Item(1)->LCClasses.Item(1);
    GridContents grid;
    LoadLCGrid(grid, "Default", props);
    grid.rows[0][kNameColumn] = "Renamed";
    grid.rows.push_back({"", "90", "Wetland", "0", "0", "0"});
    EXPECT_TRUE(SaveModelPropUpdates(grid, "Default", props));
    EXPECT_EQ(first->LCName, "Renamed");
    EXPECT_EQ(outline(props), std::vector<std::string>{"Default: 21 41 90"});
}

TEST(SaveModelPropUpdates, SurplusClassesAreRemovedFromTheEnd) {
    clsISModelProperties props;
    add_default_set(props);
    GridContents grid = grid_of({{"", "41", "Forest", "0", "0", "0"}});
    EXPECT_TRUE(SaveModelPropUpdates(grid, "Default", props));
    EXPECT_EQ(outline(props), std::vector<std::string>{"Default: 41"});
}

TEST(SaveModelPropUpdates, GridWithoutRowsEmptiesTheSet) {
    clsISModelProperties props;
    add_default_set(props);
    GridContents grid = grid_of({});
    EXPECT_TRUE(SaveModelPropUpdates(grid, "Default", props));
    EXPECT_EQ(outline(props), std::vector<std::string>{"Default:"});
}

TEST(SaveModelPropUpdates, SetThatIsNotThereIsAddedAtTheEnd) {
    clsISModelProperties props;
    add_default_set(props);
    GridContents grid = grid_of({{"", "5", "n", "1", "2", "3"}});
    EXPECT_TRUE(SaveModelPropUpdates(grid, "New", props));
    EXPECT_THAT(outline(props), ElementsAre("Default: 21 41", "New: 5"));
}

TEST(SaveModelPropUpdates, DropsEmptyRowsAndKeepsRowsOfZeros) {
    clsISModelProperties props;
    GridContents grid = grid_of({{"", "", "", "", "", ""}, {"", "0", "", "0", "0", "0"}});
    EXPECT_TRUE(SaveModelPropUpdates(grid, "s", props));
    EXPECT_EQ(outline(props), std::vector<std::string>{"s: 0"});
    EXPECT_THAT(grid.rows, SizeIs(1));
}

TEST(SaveModelPropUpdates, ValueIsRoundedHalfToEvenAndMayHaveBlanksAroundIt) {
    clsISModelProperties props;
    GridContents grid = grid_of({{"", " 12 ", "", "0", "0", "0"}, {"", "2.5", "", "0", "0", "0"}});
    EXPECT_TRUE(SaveModelPropUpdates(grid, "s", props));
    EXPECT_EQ(outline(props), std::vector<std::string>{"s: 12 2"});
}

class UnsavableCell : public testing::TestWithParam<std::pair<GridRow, std::string>> {};

TEST_P(UnsavableCell, IsReportedAndStopsTheSaveAsAWhole) {
    ScriptedInteraction user;
    clsISModelProperties props;
    add_default_set(props);
    GridContents grid = grid_of({{"", "1", "changed", "1", "1", "1"}, GetParam().first});
    EXPECT_FALSE(SaveModelPropUpdates(grid, "Default", props));
    EXPECT_EQ(outline(props), std::vector<std::string>{"Default: 21 41"});
    ASSERT_THAT(user.call_stacks, SizeIs(1));
    EXPECT_THAT(user.call_stacks.front(), HasSubstr("\tSaveModelPropUpdates basISModelPropsUtil Line : "));
    EXPECT_THAT(user.call_stacks.front(), HasSubstr(GetParam().second));
    EXPECT_THAT(user.boxes, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Cells, UnsavableCell,
    testing::Values(std::pair(GridRow{"", "", "name", "0", "0", "0"},
                              "Error Number \r\n\t13\r\nDescription\r\n\tType mismatch: \"\" in row 2 is no number"),
                    std::pair(GridRow{"", "1", "name", "", "0", "0"}, "Error Number \r\n\t13\r\n"),
                    std::pair(GridRow{"", "1", "name", "0", "", "0"}, "Error Number \r\n\t13\r\n"),
                    std::pair(GridRow{"", "1", "name", "0", "0", "x"}, "\"x\" in row 2 is no number"),
                    std::pair(GridRow{"", "3000000000", "name", "0", "0", "0"}, "Error Number \r\n\t6\r\n")));

TEST(SaveModelPropUpdates, FailureForASetThatIsNotThereAddsNone) {
    ScriptedInteraction user;
    clsISModelProperties props;
    GridContents grid = grid_of({{"", "", "name", "0", "0", "0"}});
    EXPECT_FALSE(SaveModelPropUpdates(grid, "New", props));
    EXPECT_EQ(props.ISLCDefs.Count(), 0);
    EXPECT_THAT(user.call_stacks, SizeIs(1));
}

TEST(has_data, BlanksAndZerosAreNone) {
    EXPECT_FALSE(has_data({"3", "0", "", " 0 ", "  ", "0"}));
    EXPECT_FALSE(has_data(fresh_row()));
}

TEST(has_data, AnythingElseIs) {
    EXPECT_TRUE(has_data({"3", "0", "a", "0", "0", "0"}));
    EXPECT_TRUE(has_data({"3", "7", "", "0", "0", "0"}));
    EXPECT_TRUE(has_data({"3", "0", "", "0", "0", "0.0"}));
}

}  // namespace
}  // namespace kestrel::basISModelPropsUtil

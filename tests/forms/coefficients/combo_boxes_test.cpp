// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/coefficients/combo_boxes.h"

#include <gtest/gtest.h>

#include "tests/coefficients/sets.h"

namespace kestrel {
namespace {

using basISModelPropsUtil::inComboBox;
using basUtil::LoadLCTypeCombobox;

TEST(LoadLCTypeCombobox, ListsTheNamesOfAllSetsInOrderAndSelectsNone) {
    clsISModelProperties props;
    for (const char* name : {"Zoo", "Alpha", "Zoo"})
        test::add_set(props, name);
    QComboBox combo;
    combo.addItem("old");
    LoadLCTypeCombobox(combo, props);
    ASSERT_EQ(combo.count(), 3);
    EXPECT_EQ(combo.itemText(0), "Zoo");
    EXPECT_EQ(combo.itemText(1), "Alpha");
    EXPECT_EQ(combo.itemText(2), "Zoo");
    EXPECT_EQ(combo.currentIndex(), -1);
}

TEST(LoadLCTypeCombobox, IsEmptyForAStoreWithoutSets) {
    QComboBox combo;
    combo.addItem("old");
    LoadLCTypeCombobox(combo, {});
    EXPECT_EQ(combo.count(), 0);
}

TEST(LoadLCTypeCombobox, TellsNobodyThatTheSelectionChanged) {
    clsISModelProperties props;
    test::add_set(props, "s");
    QComboBox combo;
    int told = 0;
    QObject::connect(&combo, QOverload<int>::of(&QComboBox::currentIndexChanged), &combo, [&told] { ++told; });
    LoadLCTypeCombobox(combo, props);
    EXPECT_EQ(told, 0);
}

TEST(inComboBox, ComparesWholeEntriesWithoutRegardToLetterCase) {
    QComboBox combo;
    combo.addItems({"Default", "Wälder"});
    EXPECT_TRUE(inComboBox(combo, "Default"));
    EXPECT_TRUE(inComboBox(combo, "dEFAULT"));
    EXPECT_TRUE(inComboBox(combo, "WÄLDER"));
    EXPECT_FALSE(inComboBox(combo, "Def"));
    EXPECT_FALSE(inComboBox(combo, "Default "));
    EXPECT_FALSE(inComboBox(combo, "D*"));
    EXPECT_FALSE(inComboBox(combo, ""));
}

}  // namespace
}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "extension/clsMenuDef.h"
#include "extension/clsToolbar.h"

namespace kestrel {
namespace {

using contracts::ItemDef;

/// What a position fills in over something that was there before.
template <typename Ask>
ItemDef filled(Ask ask) {
    ItemDef item{"before", true, 99};
    ask(item);
    return item;
}

ItemDef menu_item(std::int32_t position) {
    return filled([position](ItemDef& item) { clsMenuDef().IMenuDef_GetItemInfo(position, item); });
}

ItemDef toolbar_item(std::int32_t position) {
    return filled([position](ItemDef& item) { clsToolbar().IToolBarDef_GetItemInfo(position, item); });
}

const ItemDef kUntouched{"before", true, 99};

TEST(clsMenuDef, TellsNameAndCaption) {
    EXPECT_EQ(clsMenuDef().IMenuDef_Name(), "Kestrel");
    EXPECT_EQ(clsMenuDef().IMenuDef_Caption(), "Impervious Surface Tools");
}

TEST(clsMenuDef, HasSixCommandsAndAGroupThatBeginsWithHelp) {
    EXPECT_EQ(clsMenuDef().IMenuDef_ItemCount(), 6);
    EXPECT_EQ(menu_item(0), (ItemDef{"KESTREL_EXT.clsCommands", false, 1}));
    EXPECT_EQ(menu_item(1), (ItemDef{"KESTREL_EXT.clsCommands", false, 2}));
    EXPECT_EQ(menu_item(2), (ItemDef{"KESTREL_EXT.clsCommands", false, 3}));
    EXPECT_EQ(menu_item(3), (ItemDef{"KESTREL_EXT.clsCommands", false, 4}));
    EXPECT_EQ(menu_item(4), (ItemDef{"KESTREL_EXT.clsCommands", true, 5}));
    EXPECT_EQ(menu_item(5), (ItemDef{"KESTREL_EXT.clsCommands", false, 6}));
}

TEST(clsMenuDef, PositionOutsideFillsInNothing) {
    for (const std::int32_t position : {-1, 6, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(menu_item(position), kUntouched) << position;
    }
}

TEST(clsToolbar, CarriesTheMenuAlone) {
    EXPECT_EQ(clsToolbar().IToolBarDef_Name(), "Kestrel Tools");
    EXPECT_EQ(clsToolbar().IToolBarDef_Caption(), "Kestrel Tools");
    EXPECT_EQ(clsToolbar().IToolBarDef_ItemCount(), 1);
    EXPECT_EQ(toolbar_item(0), (ItemDef{"KESTREL_EXT.clsMenuDef", false, 1}));
}

TEST(clsToolbar, PositionOutsideFillsInNothing) {
    for (const std::int32_t position : {-1, 1, 2147483647}) {
        EXPECT_EQ(toolbar_item(position), kUntouched) << position;
    }
}

}  // namespace
}  // namespace kestrel

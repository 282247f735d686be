// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "extension/clsMenuDef.h"

#include "extension/class_ids.h"
#include "extension/extension_windows.h"

namespace kestrel {

namespace {
constexpr auto kItems = static_cast<std::int32_t>(CommandKind::about);
}

std::int32_t clsMenuDef::IMenuDef_ItemCount() const {
    return kItems;
}

void clsMenuDef::IMenuDef_GetItemInfo(std::int32_t position, contracts::ItemDef& item) const {
    if (position < 0 || position >= kItems) {
        return;
    }
    // The commands stand in the order of their sub-types, which count from 1.
    const std::int32_t sub_type = position + 1;
    item = {kCommandsClass, CommandKind{sub_type} == CommandKind::help, sub_type};
}

}  // namespace kestrel

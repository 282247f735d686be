// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "extension/clsToolbar.h"

#include "extension/class_ids.h"

namespace kestrel {

void clsToolbar::IToolBarDef_GetItemInfo(std::int32_t position, contracts::ItemDef& item) const {
    if (position == 0) {
        item = {kMenuClass, false, 1};
    }
}

}  // namespace kestrel

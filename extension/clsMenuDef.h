// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "contracts/command.h"
#include "contracts/extension_object.h"

namespace kestrel {

/// The menu of the six commands.
class clsMenuDef final : public contracts::ExtensionObject, public contracts::IMenuDef {
  public:
    std::int32_t IMenuDef_ItemCount() const override;
    void IMenuDef_GetItemInfo(std::int32_t position, contracts::ItemDef& item) const override;
    std::string IMenuDef_Name() const override { return "Kestrel"; }
    std::string IMenuDef_Caption() const override { return "Impervious Surface Tools"; }
};

}  // namespace kestrel

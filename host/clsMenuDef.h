// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "platform/contracts/command.h"
#include "platform/contracts/extension_object.h"

namespace kestrel {

/// The menu of the six commands.
class clsMenuDef final : public platform::ExtensionObject, public platform::IMenuDef {
  public:
    std::int32_t IMenuDef_ItemCount() const override;
    void IMenuDef_GetItemInfo(std::int32_t position, platform::ItemDef& item) const override;
    std::string IMenuDef_Name() const override { return "Kestrel"; }
    std::string IMenuDef_Caption() const override { return "Impervious Surface Tools"; }
};

}  // namespace kestrel

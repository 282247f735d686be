// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "contracts/command.h"
#include "contracts/extension_object.h"

namespace kestrel {

/// The toolbar that carries the menu as its only control.
class clsToolbar final : public contracts::ExtensionObject, public contracts::IToolBarDef {
  public:
    std::int32_t IToolBarDef_ItemCount() const override { return 1; }
    void IToolBarDef_GetItemInfo(std::int32_t position, contracts::ItemDef& item) const override;
    std::string IToolBarDef_Name() const override { return "Kestrel Tools"; }
    std::string IToolBarDef_Caption() const override { return "Kestrel Tools"; }
};

}  // namespace kestrel

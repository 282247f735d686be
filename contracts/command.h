// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

/// \file
/// The contracts through which a host shows an extension's toolbar, menu and commands. Members stand in slot order.
namespace kestrel::contracts {

class Application;

/// An entry of a menu or a button of a toolbar.
class ICommand {
  public:
    virtual ~ICommand() = default;
    /// Asked again and again as the host refreshes its menus.
    /// \throws RuntimeError what the extension's state read throws.
    virtual bool ICommand_Enabled() const = 0;
    virtual bool ICommand_Checked() const = 0;
    virtual std::string ICommand_Name() const = 0;
    virtual std::string ICommand_Caption() const = 0;
    virtual std::string ICommand_Tooltip() const = 0;
    /// What a status bar says of the command.
    virtual std::string ICommand_Message() const = 0;
    virtual std::string ICommand_HelpFile() const = 0;
    virtual std::int32_t ICommand_HelpContextID() const = 0;
    /// 0: no image.
    virtual std::int32_t ICommand_Bitmap() const = 0;
    virtual std::string ICommand_Category() const = 0;
    /// Called once, after the sub-type was set.
    /// \param hook the host application; it outlives the command.
    virtual void ICommand_OnCreate(Application* hook) = 0;
    virtual void ICommand_OnClick() = 0;
};

/// A command class that stands for several commands; the host makes one object of it for each.
class ICommandSubType {
  public:
    virtual ~ICommandSubType() = default;
    /// \param sub_type 1 to ICommandSubType_GetCount().
    virtual void ICommandSubType_SetSubType(std::int32_t sub_type) = 0;
    virtual std::int32_t ICommandSubType_GetCount() const = 0;
};

/// What stands at one position of a menu or toolbar.
struct ItemDef {
    /// Registered class name of a command or a menu.
    std::string ID;
    /// Whether a separator stands before it.
    bool Group = false;
    /// Handed to the item's ICommandSubType, where it has one.
    std::int32_t SubType = 0;

    friend bool operator==(const ItemDef&, const ItemDef&) = default;
};

class IMenuDef {
  public:
    virtual ~IMenuDef() = default;
    virtual std::int32_t IMenuDef_ItemCount() const = 0;
    /// \param position from 0; one outside the menu leaves `item` as it is.
    virtual void IMenuDef_GetItemInfo(std::int32_t position, ItemDef& item) const = 0;
    virtual std::string IMenuDef_Name() const = 0;
    virtual std::string IMenuDef_Caption() const = 0;
};

class IToolBarDef {
  public:
    virtual ~IToolBarDef() = default;
    virtual std::int32_t IToolBarDef_ItemCount() const = 0;
    /// \param position from 0; one outside the toolbar leaves `item` as it is.
    virtual void IToolBarDef_GetItemInfo(std::int32_t position, ItemDef& item) const = 0;
    virtual std::string IToolBarDef_Name() const = 0;
    virtual std::string IToolBarDef_Caption() const = 0;
};

}  // namespace kestrel::contracts

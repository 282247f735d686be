// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "contracts/application.h"
#include "contracts/command.h"
#include "contracts/extension_object.h"

namespace kestrel {

/// One of the six commands: the host makes an object for each, and its sub-type (a CommandKind) says which it is.
class clsCommands final : public contracts::ExtensionObject,
                          public contracts::ICommand,
                          public contracts::ICommandSubType {
  public:
    bool ICommand_Enabled() const override;
    bool ICommand_Checked() const override { return false; }
    /// The four texts are the command's caption; empty for a sub-type that there is not.
    std::string ICommand_Name() const override;
    std::string ICommand_Caption() const override;
    std::string ICommand_Tooltip() const override;
    std::string ICommand_Message() const override;
    std::string ICommand_HelpFile() const override { return {}; }
    std::int32_t ICommand_HelpContextID() const override { return 0; }
    std::int32_t ICommand_Bitmap() const override { return 0; }
    std::string ICommand_Category() const override { return {}; }
    void ICommand_OnCreate(contracts::Application* hook) override;
    /// Opens the command's window, unless the host's raster analysis is switched off.
    void ICommand_OnClick() override;

    void ICommandSubType_SetSubType(std::int32_t sub_type) override { m_sub_type = sub_type; }
    std::int32_t ICommandSubType_GetCount() const override;

  private:
    void open_window() const;

    std::int32_t m_sub_type = 0;
    contracts::Application* m_application = nullptr;
    /// The program's own extension; it outlives its commands.
    contracts::IExtensionConfig* m_extension = nullptr;
};

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// Registered names of the extension's classes beside those that hosts begin with (contracts/).
namespace kestrel {

inline constexpr const char* kCommandsClass = "KESTREL_EXT.clsCommands";
inline constexpr const char* kMenuClass = "KESTREL_EXT.clsMenuDef";

}  // namespace kestrel

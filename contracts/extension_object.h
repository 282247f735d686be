// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

namespace kestrel::contracts {

/// What an extension library makes. A host asks it by dynamic_cast for the contracts that it needs: IExtension and
/// IExtensionConfig, ICommand and ICommandSubType, IMenuDef, IToolBarDef.
class ExtensionObject {
  public:
    virtual ~ExtensionObject() = default;
};

/// The one function that an extension library exports, under the name kCreateObjectSymbol.
/// \param class_id registered class name, such as "KESTREL_EXT.clsCommands".
/// \return a new object, which the caller deletes before it closes the library; nothing when the library has no such
///         class or the object cannot be made. Never throws.
using CreateObject = ExtensionObject*(const char* class_id);

inline constexpr const char* kCreateObjectSymbol = "kestrel_create_object";

/// Registered name of this program's toolbar: where a host begins.
inline constexpr const char* kKestrelToolbar = "KESTREL_EXT.clsToolbar";

}  // namespace kestrel::contracts

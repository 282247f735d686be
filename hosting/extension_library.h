// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <typeinfo>

#include "contracts/extension_object.h"

/// \file
/// How a host loads an extension library, and asks its objects for their contracts.
namespace kestrel::hosting {

/// A loaded extension library. It outlives every object that it made.
class ExtensionLibrary {
  public:
    /// Loads the library with its names kept to itself, so that it cannot meet the host's own.
    /// \throws RuntimeError 53 when the file is missing, -2147467259 with the loader's reason when it cannot be loaded
    ///         or is no extension library.
    explicit ExtensionLibrary(const std::string& path, int line = __builtin_LINE());
    ~ExtensionLibrary();
    ExtensionLibrary(const ExtensionLibrary&) = delete;
    ExtensionLibrary& operator=(const ExtensionLibrary&) = delete;

    /// \param class_id registered class name.
    /// \throws RuntimeError 91 when the library does not make such an object.
    std::unique_ptr<contracts::ExtensionObject> create(const std::string& class_id, int line = __builtin_LINE()) const;

  private:
    std::string m_path;
    void* m_handle = nullptr;
    contracts::CreateObject* m_create = nullptr;
};

/// \throws RuntimeError 13: an object has not the contract that it should have.
[[noreturn]] void throw_missing_contract(const std::type_info& contract);

/// The contract of an object, such as contract<IMenuDef>(object).
/// \throws RuntimeError 13 when the object has none of that kind.
template <typename Contract>
Contract& contract(contracts::ExtensionObject& object) {
    auto* const found = dynamic_cast<Contract*>(&object);
    if (found == nullptr) {
        throw_missing_contract(typeid(Contract));
    }
    return *found;
}

}  // namespace kestrel::hosting

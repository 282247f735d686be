// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "contracts/extension.h"

namespace kestrel::qgis {

/// The extensions that a user can switch on and off. Their states are kept in the settings of QGIS; at first all are
/// on.
class ExtensionList {
  public:
    struct Entry {
        /// Registered name.
        std::string class_id;
        contracts::IExtensionConfig* extension;
    };

    /// Takes an extension into the list and gives it the state that is kept. It outlives its use here.
    void add(const std::string& class_id, contracts::IExtensionConfig& extension);

    const std::vector<Entry>& entries() const noexcept { return m_entries; }
    /// \throws RuntimeError what the extension's state read throws.
    static bool switched_on(const Entry& entry);
    /// Gives the extension a state, and keeps it.
    static void switch_on(const Entry& entry, bool on);

  private:
    std::vector<Entry> m_entries;
};

}  // namespace kestrel::qgis

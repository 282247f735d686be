// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kestrel::cli {

/// Path of the user's own coefficient store: etc/isprops.xml in $XDG_DATA_HOME/kestrel, by default
/// ~/.local/share/kestrel. On first use it is made from the installed one.
/// Refuses when there is neither.
std::string user_store();

/// Path of the contact values beside that store; the file may be missing.
std::string user_contact_file();

}  // namespace kestrel::cli

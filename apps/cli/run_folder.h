// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "hosting/headless_run.h"

namespace kestrel::cli {

/// The extension folder of one run: a private one that is removed at the end, so that runs side by side never meet, or
/// the one that the user named.
class RunFolder {
  public:
    /// \param chosen the folder to use; a private one when empty.
    /// \param contact_file the contact values that a private folder gets; may be missing.
    /// \throws RuntimeError when the folder is missing, or there is no place for a private one.
    RunFolder(const std::string& chosen, const std::string& contact_file);

    const std::string& path() const noexcept { return m_path; }

  private:
    std::unique_ptr<hosting::PrivateRunFolder> m_private;
    std::string m_path;
};

}  // namespace kestrel::cli

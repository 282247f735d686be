// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "base/files.h"
#include "hosting/headless_run.h"

namespace kestrel::cli {

/// The extension folder of one run: a private one that is removed at the end, so that runs side by side never meet, or
/// the one that the user named. It is locked, so that a second run in it is refused before it touches anything.
class RunFolder {
  public:
    /// \param chosen the folder to use; a private one when empty.
    /// \param contact_file the contact values that a private folder gets; may be missing.
    /// \throws RuntimeError when the folder is missing, locked, or cannot be written.
    RunFolder(const std::string& chosen, const std::string& contact_file);
    ~RunFolder();
    RunFolder(const RunFolder&) = delete;
    RunFolder& operator=(const RunFolder&) = delete;

    const std::string& path() const noexcept { return m_path; }

  private:
    std::unique_ptr<PrivateRunFolder> m_private;
    std::string m_path;
    std::unique_ptr<base::FolderLock> m_lock;
};

}  // namespace kestrel::cli

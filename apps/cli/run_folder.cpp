// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run_folder.h"

#include "apps/cli/refusal.h"
#include "base/errors.h"
#include "base/files.h"

namespace kestrel::cli {

namespace {

std::unique_ptr<hosting::PrivateRunFolder> private_folder(const std::string& contact_file) {
    try {
        return std::make_unique<hosting::PrivateRunFolder>(contact_file);
    } catch (const base::RuntimeError& error) {
        refuse("{}. Set TMPDIR, or give --extension-folder.", error.description());
    }
}

}  // namespace

RunFolder::RunFolder(const std::string& chosen, const std::string& contact_file)
    : m_private(chosen.empty() ? private_folder(contact_file) : nullptr),
      m_path(m_private ? m_private->path() : chosen) {
    if (m_private == nullptr && !base::folder_exists(chosen)) {
        refuse("The extension folder does not exist: '{}'. Make it, or leave --extension-folder out.", chosen);
    }
}

}  // namespace kestrel::cli

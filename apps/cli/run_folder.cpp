// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run_folder.h"

#include "apps/cli/refusal.h"

namespace kestrel::cli {

namespace {

std::string unique_folder(const std::string& parent) {
    try {
        return platform::make_unique_folder(parent, "kestrel-");
    } catch (const platform::RuntimeError& error) {
        refuse("There is no room for the working data of a run in '{}': {}. Set TMPDIR, or give --extension-folder.",
               parent, error.description());
    }
}

std::string private_folder(const std::string& contact_file) {
    const std::string parent = platform::temporary_folder();
    if (parent.empty()) {
        refuse("There is no folder for temporary files. Set TMPDIR, or give --extension-folder.");
    }
    const std::string folder = unique_folder(parent);
    if (platform::file_exists(contact_file)) {
        platform::create_folder(platform::join_path(folder, "etc"));
        platform::copy_file(contact_file, platform::join_path(folder, "etc/contact.ini"));
    }
    return folder;
}

}  // namespace

RunFolder::RunFolder(const std::string& chosen, const std::string& contact_file)
    : m_path(chosen), m_private(chosen.empty()) {
    if (m_private) {
        m_path = private_folder(contact_file);
    } else if (!platform::folder_exists(chosen)) {
        refuse("The extension folder does not exist: '{}'. Make it, or leave --extension-folder out.", chosen);
    }
    try {
        m_lock = std::make_unique<platform::FolderLock>(m_path);
    } catch (const platform::RuntimeError& error) {
        refuse("The extension folder cannot be used. {}. Give another --extension-folder, or none.",
               error.description());
    }
}

RunFolder::~RunFolder() {
    m_lock.reset();
    if (m_private) {
        try {
            platform::remove_folder(m_path);
        } catch (const platform::RuntimeError&) {
            // What stays behind lies in the system's folder for temporary files; the run's own end matters more.
        }
    }
}

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "extension/extension_folder.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>

#include "base/errors.h"
#include "base/files.h"

namespace kestrel {

namespace fs = std::filesystem;

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

/// Copies what lies in one folder to another. Permissions are not copied: an installed file may be read-only, but its
/// copy is the user's to change.
void copy_folder(const std::string& from, const std::string& to) {
    base::create_folder(to);
    std::error_code error;
    for (fs::recursive_directory_iterator entry(from, error), end; !error && entry != end; entry.increment(error)) {
        const std::string target = base::join_path(to, entry->path().lexically_relative(from).string());
        if (entry->is_directory(error)) {
            base::create_folder(target);
        } else if (!error) {
            base::copy_file(entry->path().string(), target);
        }
    }
    if (error) {
        throw base::system_error(error.value(), from);
    }
}

/// Copies a part of the installation. It appears under its name when it is whole, so that neither a failure nor another
/// process at the same time leaves half of it.
void provide(const std::string& part, const std::string& library_folder, const std::string& folder) {
    const std::string source = base::join_path(library_folder, part);
    const std::string target = base::join_path(folder, part);
    if (base::folder_exists(target) || !base::folder_exists(source)) {
        return;
    }
    const std::string stage = base::make_unique_folder(folder, ".kestrel-");
    try {
        const std::string whole = base::join_path(stage, part);
        copy_folder(source, whole);
        std::error_code error;
        fs::rename(whole, target, error);
        if (error && !base::folder_exists(target)) {
            throw base::system_error(error.value(), target);
        }
    } catch (...) {
        base::remove_folder(stage);
        throw;
    }
    base::remove_folder(stage);
}

}  // namespace

std::string loaded_library_folder() {
    Dl_info info{};
    // The address of something in the library is what the loader is asked about.
    static const int kHere = 0;
    std::error_code error;
    fs::path file;
    if (::dladdr(&kHere, &info) != 0 && info.dli_fname != nullptr) {
        file = fs::canonical(info.dli_fname, error);
    }
    if (file.empty() || error) {
        throw base::RuntimeError(base::kPathNotFound, "The folder of the extension's library cannot be found");
    }
    return file.parent_path().string();
}

std::string user_data_folder(const std::string& xdg_data_home, const std::string& home) {
    if (fs::path(xdg_data_home).is_absolute()) {
        return xdg_data_home;
    }
    return fs::path(home).is_absolute() ? base::join_path(home, ".local/share") : std::string();
}

std::string user_data_folder() {
    return user_data_folder(environment("XDG_DATA_HOME"), environment("HOME"));
}

std::string extension_folder(const std::string& library_folder, const std::string& data_folder) {
    return base::folder_writable(library_folder) ? library_folder : user_extension_folder(library_folder, data_folder);
}

std::string user_extension_folder(const std::string& library_folder, const std::string& data_folder) {
    if (data_folder.empty()) {
        throw base::RuntimeError(base::kPathNotFound,
                                 "There is no folder for the user's data: neither XDG_DATA_HOME nor HOME names one");
    }
    const std::string folder = base::join_path(data_folder, "kestrel");
    base::create_folders(folder);
    for (const char* part : {"etc", "help"}) {
        provide(part, library_folder, folder);
    }
    return folder;
}

}  // namespace kestrel

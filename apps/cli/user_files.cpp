// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/user_files.h"

#include <array>
#include <filesystem>
#include <string_view>

#include "apps/cli/refusal.h"
#include "base/files.h"
#include "extension/extension_folder.h"

namespace kestrel::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::array kShippedFiles{"isprops.xml", "contact.ini"};

/// Empty when the user has no home.
std::string user_etc() {
    const std::string data = user_data_folder();
    return data.empty() ? data : base::join_path(data, "kestrel/etc");
}

/// The `etc` that came with the program, beside the extension library. Empty when there is none.
std::string installed_etc() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error) {
        return {};
    }
    const fs::path etc = (program.parent_path() / KESTREL_FOLDER_FROM_COMMAND / "etc").lexically_normal();
    return fs::is_regular_file(etc / "isprops.xml", error) ? etc.string() : std::string();
}

}  // namespace

std::string user_store() {
    const std::string etc = user_etc();
    if (!etc.empty() && base::file_exists(etc + "/isprops.xml")) {
        return etc + "/isprops.xml";
    }
    const std::string installed = installed_etc();
    if (installed.empty()) {
        refuse(
            "There is no coefficient store: neither your own ('{}') nor one that came with the program. Give one "
            "with --store.",
            etc.empty() ? "no home folder is known" : etc + "/isprops.xml");
    }
    if (etc.empty()) {
        return installed + "/isprops.xml";
    }
    try {
        base::create_folders(etc);
    } catch (const base::RuntimeError& error) {
        refuse(
            "There is no place for a coefficient store of your own: {}. Give one with --store, or set XDG_DATA_HOME.",
            error.description());
    }
    for (const std::string_view name : kShippedFiles) {
        const std::string from = base::join_path(installed, name);
        const std::string to = base::join_path(etc, name);
        if (base::file_exists(from) && !base::file_exists(to)) {
            base::copy_file(from, to);
        }
    }
    return etc + "/isprops.xml";
}

std::string user_contact_file() {
    const std::string etc = user_etc();
    return etc.empty() ? "" : etc + "/contact.ini";
}

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/files.h"

namespace kestrel {

/// Where the coefficient store is written, and what messages call it.
struct CoefficientStore {
    std::string path;
    std::string shown_name;
    /// The folder that is locked while the store is written.
    std::string lock_folder;

    /// The store of an extension folder.
    static CoefficientStore in_extension_folder(const std::string& folder) {
        // The folder stands before "\etc" as it is, whatever its separators.
        return {base::join_path(folder, "etc/isprops.xml"), folder + "\\etc\\isprops.xml", folder};
    }

    /// A store in a file of any name.
    static CoefficientStore at(const std::string& path) {
        const std::string folder = base::folder_of(path);
        return {path, path, folder.empty() ? "." : folder};
    }

    /// Where the store is copied to before it is written.
    static std::string copy_of(const std::string& path) { return path + ".bak"; }
};

}  // namespace kestrel

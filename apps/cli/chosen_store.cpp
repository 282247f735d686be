// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/chosen_store.h"

#include <vector>

#include "apps/cli/refusal.h"
#include "base/files.h"
#include "coefficients/basUtil.h"

namespace kestrel::cli {

void load_store(const std::string& path, clsISModelProperties& store) {
    if (!base::file_exists(path)) {
        refuse("There is no coefficient store '{}'. Give one with --store.", path);
    }
    if (!basUtil::GetISModelProperties(store, path)) {
        const std::string copy = path + ".bak";
        refuse(
            "The coefficient store '{}' cannot be read: it is no coefficient store, or a damaged one. Give another "
            "with --store{}.",
            path, base::file_exists(copy) ? "; a copy of its state before the last save is '" + copy + "'" : "");
    }
}

std::string chosen_set(const clsISModelProperties& store, const std::string& path, const std::string& name) {
    const std::vector<std::string> names = basUtil::set_names(store);
    if (names.empty()) {
        refuse("The coefficient store '{}' holds no coefficient sets. Give another with --store.", path);
    }
    if (name.empty() && names.size() == 1) {
        return names.front();
    }
    if (name.empty()) {
        refuse("Which coefficient set? Give one with --set. The store '{}' holds: '{}'.", path,
               fmt::join(names, "', '"));
    }
    for (const std::string& one : names) {
        if (one == name) {
            return one;
        }
    }
    refuse("The coefficient store '{}' holds no set '{}' (--set). It holds: '{}'. Names are compared exactly.", path,
           name, fmt::join(names, "', '"));
}

}  // namespace kestrel::cli

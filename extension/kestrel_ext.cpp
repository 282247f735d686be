// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT

/// \file
/// The one function that the extension library exports.

#include <cstdio>
#include <exception>
#include <memory>
#include <string_view>

#include "extension/class_ids.h"
#include "extension/clsCommands.h"
#include "extension/clsExtension.h"
#include "extension/clsMenuDef.h"
#include "extension/clsToolbar.h"
#include "extension/extension_folder.h"
#include "extension/shared_windows.h"

namespace {

using kestrel::contracts::ExtensionObject;

std::unique_ptr<ExtensionObject> make_extension() {
    const std::string folder = kestrel::extension_folder(kestrel::loaded_library_folder(), kestrel::user_data_folder());
    return std::make_unique<kestrel::clsExtension>(folder, std::make_unique<kestrel::SharedWindows>(folder));
}

std::unique_ptr<ExtensionObject> make_object(std::string_view class_id) {
    if (class_id == kestrel::contracts::kKestrelExtension) {
        return make_extension();
    }
    if (class_id == kestrel::kCommandsClass) {
        return std::make_unique<kestrel::clsCommands>();
    }
    if (class_id == kestrel::kMenuClass) {
        return std::make_unique<kestrel::clsMenuDef>();
    }
    if (class_id == kestrel::contracts::kKestrelToolbar) {
        return std::make_unique<kestrel::clsToolbar>();
    }
    return nullptr;
}

}  // namespace

extern "C" [[gnu::visibility("default")]] ExtensionObject* kestrel_create_object(const char* class_id) try {
    return class_id == nullptr ? nullptr : make_object(class_id).release();
} catch (const std::exception& error) {
    // Nobody to speak through exists yet.
    std::fprintf(stderr, "kestrel: %s cannot be made: %s\n", class_id, error.what());
    return nullptr;
}

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "hosting/extension_library.h"

#include <dlfcn.h>

#include "base/errors.h"
#include "base/files.h"

namespace kestrel::hosting {

namespace {

std::string loader_reason() {
    const char* const reason = ::dlerror();
    return reason == nullptr ? "no reason is known" : reason;
}

}  // namespace

ExtensionLibrary::ExtensionLibrary(const std::string& path, int line) : m_path(path) {
    if (!base::file_exists(path)) {
        throw base::RuntimeError(base::kFileNotFound, "There is no extension library '" + path + "'", "Kestrel", line);
    }
    // A path without a separator would be looked for elsewhere.
    const std::string place = path.find('/') == std::string::npos ? "./" + path : path;
    m_handle = ::dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (m_handle == nullptr) {
        throw base::RuntimeError(base::kLibraryFailure, "The extension library cannot be loaded: " + loader_reason(),
                                 "Kestrel", line);
    }
    m_create = reinterpret_cast<contracts::CreateObject*>(::dlsym(m_handle, contracts::kCreateObjectSymbol));
    if (m_create == nullptr) {
        const std::string reason = loader_reason();
        ::dlclose(m_handle);
        throw base::RuntimeError(base::kLibraryFailure, "'" + path + "' is no extension library: " + reason, "Kestrel",
                                 line);
    }
}

ExtensionLibrary::~ExtensionLibrary() {
    ::dlclose(m_handle);
}

std::unique_ptr<contracts::ExtensionObject> ExtensionLibrary::create(const std::string& class_id, int line) const {
    std::unique_ptr<contracts::ExtensionObject> object(m_create(class_id.c_str()));
    if (!object) {
        throw base::RuntimeError(
            base::kObjectVariableNotSet,
            "The extension library '" + m_path + "' does not make an object of class '" + class_id + "'", "Kestrel",
            line);
    }
    return object;
}

void throw_missing_contract(const std::type_info& contract) {
    throw base::RuntimeError(base::kTypeMismatch,
                             std::string("An object of the extension lacks the contract ") + contract.name());
}

}  // namespace kestrel::hosting

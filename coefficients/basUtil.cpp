// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "coefficients/basUtil.h"

#include <fmt/format.h>

#include <optional>

#include "base/errors.h"
#include "base/files.h"
#include "coefficients/indented_text.h"
#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel::basUtil {

namespace {

constexpr const char* kModule = "basUtil";

/// The sentence that names the copy of the store at `path`; empty when there is none.
std::string where_the_copy_is(const std::string& path) {
    const std::string copy = CoefficientStore::copy_of(path);
    return base::file_exists(copy) ? fmt::format(" The last good copy of the store is \"{}\".", copy) : std::string();
}

/// Nothing when the file is missing or not well-formed: that is an answer here and no error, so it is not reported.
std::optional<data::XmlDocument> load_document(const std::string& path) {
    try {
        return data::XmlDocument::load(path);
    } catch (const base::RuntimeError& error) {
        reporting::current_interaction().notice(error.description() + "." + where_the_copy_is(path));
        return std::nullopt;
    }
}

bool loads(const std::string& path) {
    try {
        clsISModelProperties().LoadNode(data::XmlDocument::load(path).root());
        return true;
    } catch (const base::RuntimeError&) {
        return false;  // what is wrong with the old store does not matter to one who replaces it
    }
}

/// A store that an overflow has cut must never take the place of a good copy.
void keep_copy(const std::string& path) {
    if (base::file_exists(path) && loads(path)) {
        base::copy_file(path, CoefficientStore::copy_of(path));
    }
}

}  // namespace

bool GetISModelProperties(clsISModelProperties& props, const std::string& path) try {
    const std::optional<data::XmlDocument> document = load_document(path);
    if (!document) {
        return false;
    }
    props.XML(document->xml());
    return true;
} catch (...) {
    return reported<bool>({"GetISModelProperties", kModule});
}

bool PutISModelProperties(const clsISModelProperties& props, const CoefficientStore& store) try {
    const IndentedText layout = indented(props.XML());
    const base::FolderLock lock(store.lock_folder);
    keep_copy(store.path);
    base::write_file(store.path, layout.text);
    if (!layout.whole) {
        throw base::RuntimeError(
            base::kOverflow,
            fmt::format("Overflow: the coefficient sets are longer than {} characters, so \"{}\" is cut.{}",
                        kMaxStoreCharacters, store.path, where_the_copy_is(store.path)));
    }
    return true;
} catch (...) {
    return reported<bool>({"PutISModelProperties", kModule});
}

std::vector<std::string> set_names(const clsISModelProperties& props) {
    std::vector<std::string> names;
    for (const auto& set : props.ISLCDefs) {
        names.push_back(set->LCType);
    }
    return names;
}

}  // namespace kestrel::basUtil

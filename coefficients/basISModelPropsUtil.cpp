// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "coefficients/basISModelPropsUtil.h"

#include "coefficients/basUtil.h"
#include "coefficients/store_texts.h"
#include "host/error_report.h"

namespace kestrel::basISModelPropsUtil {

namespace {

constexpr const char* kModule = "basISModelPropsUtil";

void copy_classes(const clsLCClasses& from, clsLCClasses& to) {
    for (const auto& land_class : from) {
        to.Add(std::make_shared<clsLCClass>(*land_class));
    }
}

/// Adds a copy of `set` under `name`.
void add_set(clsISModelProperties& props, const clsISLCDef& set, const std::string& name) {
    auto added = std::make_shared<clsISLCDef>();
    added->LCType = name;
    props.ISLCDefs.Add(added);
    // Found again by its name: where an earlier set has it too, that one takes the classes and the new one stays empty.
    // Intended; do not "fix".
    copy_classes(set.LCClasses, find_set(props, name)->LCClasses);
}

}  // namespace

std::shared_ptr<clsISLCDef> find_set(const clsISModelProperties& props, std::string_view name) {
    for (const auto& set : props.ISLCDefs) {
        if (set->LCType == name) {
            return set;
        }
    }
    return nullptr;
}

bool MergeCoeffsFromFile(clsISModelProperties& props, const std::string& path, const CoefficientStore& store,
                         const SetAdded& set_added) try {
    clsISModelProperties loaded;
    if (!basUtil::GetISModelProperties(loaded, path)) {
        platform::interaction().message_box(store_texts::merge_load_failed());
        return false;
    }
    bool duplicates = false;
    for (const auto& set : loaded.ISLCDefs) {
        const bool taken = find_set(props, set->LCType) != nullptr;
        duplicates = duplicates || taken;
        // Appended once only: the new name may be taken as well. Intended.
        const std::string name = taken ? set->LCType + "2" : set->LCType;
        add_set(props, *set, name);
        if (set_added) {
            set_added(name);
        }
    }
    const bool saved = basUtil::PutISModelProperties(props, store);
    if (!saved) {
        platform::interaction().message_box(store_texts::save_failed(store));
    }
    if (duplicates) {
        platform::interaction().message_box(store_texts::duplicates_renamed());
    }
    return saved;
} catch (...) {
    return reported<bool>({"MergeCoeffsFromFile", kModule});
}

}  // namespace kestrel::basISModelPropsUtil

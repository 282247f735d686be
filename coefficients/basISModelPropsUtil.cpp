// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "coefficients/basISModelPropsUtil.h"

#include "base/files.h"
#include "coefficients/basUtil.h"
#include "coefficients/coefficient_text.h"
#include "coefficients/import_texts.h"
#include "coefficients/store_texts.h"
#include "reporting/error_report.h"

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

/// The name that the user gives to a new set, none that is taken; empty when the user gives none.
std::string ask_new_name(const clsISModelProperties& props) {
    while (true) {
        std::string name = reporting::current_interaction().input_box(import_texts::set_name());
        if (name.empty() || find_set(props, name) == nullptr) {
            return name;
        }
        reporting::current_interaction().message_box(import_texts::name_taken());
    }
}

/// A new set at the end of the sets, removed again unless it is kept.
class TentativeSet {
  public:
    TentativeSet(clsISLCDefs& sets, const std::string& name) : m_sets(sets), m_set(std::make_shared<clsISLCDef>()) {
        m_set->LCType = name;
        m_sets.Add(m_set);
    }
    ~TentativeSet() {
        if (!m_kept && m_sets.Count() > 0) {
            m_sets.Remove(m_sets.Count());
        }
    }
    TentativeSet(const TentativeSet&) = delete;
    TentativeSet& operator=(const TentativeSet&) = delete;

    clsISLCDef& set() noexcept { return *m_set; }
    void keep() noexcept { m_kept = true; }

  private:
    clsISLCDefs& m_sets;
    std::shared_ptr<clsISLCDef> m_set;
    bool m_kept = false;
};

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
        reporting::current_interaction().message_box(store_texts::merge_load_failed());
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
        reporting::current_interaction().message_box(store_texts::save_failed(store));
    }
    if (duplicates) {
        reporting::current_interaction().message_box(store_texts::duplicates_renamed());
    }
    return saved;
} catch (...) {
    return reported<bool>({"MergeCoeffsFromFile", kModule});
}

bool ExportCoeffsToFile(const clsISModelProperties& props, std::string_view set_name, const std::string& path) try {
    base::write_file(path, coefficient_text(find_set(props, set_name).get()));
    return true;
} catch (...) {
    return reported<bool>({"ExportCoeffsToFile", kModule});
}

bool ImportCoeffsFromFile(clsISModelProperties& props, const std::string& path, const CoefficientStore& store,
                          const SetAdded& set_added) try {
    const std::string name = ask_new_name(props);
    if (name.empty()) {
        return false;
    }
    TentativeSet added(props.ISLCDefs, name);
    if (const std::optional<TextFault> fault = read_coefficient_text(path, added.set().LCClasses)) {
        reporting::current_interaction().message_box(import_texts::refused(*fault, path));
        return false;
    }
    if (set_added) {
        set_added(name);
    }
    added.keep();
    const bool saved = basUtil::PutISModelProperties(props, store);
    if (!saved) {
        reporting::current_interaction().message_box(store_texts::save_failed(store, import_texts::kUnsuccessful));
    }
    return saved;
} catch (...) {
    return reported<bool>({"ImportCoeffsFromFile", kModule});
}

}  // namespace kestrel::basISModelPropsUtil

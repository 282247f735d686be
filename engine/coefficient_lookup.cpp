// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/coefficient_lookup.h"

#include "base/conversions.h"
#include "base/errors.h"

namespace kestrel {

double CoefficientLookup::coefficient(const std::string& class_code, std::string_view zone_key) const {
    try {
        return look_up(class_code, zone_key);
    } catch (const base::RuntimeError&) {
        // Any failure means the same: the set defines nothing for this class. It is told by who asked.
        return kNoCoefficient;
    }
}

double CoefficientLookup::look_up(const std::string& class_code, std::string_view zone_key) const {
    const TextList* entry = m_classes.find(class_code);
    return entry == nullptr || !m_option ? kNoCoefficient : base::to_double(entry->Item(position(zone_key)));
}

std::int32_t CoefficientLookup::position(std::string_view zone_key) const {
    switch (*m_option) {
        case CoefficientOption::high:
            return 2;
        case CoefficientOption::medium:
            return 3;
        case CoefficientOption::low:
            return 4;
        case CoefficientOption::by_density:
            break;
    }
    return base::to_integer(zone_key.substr(zone_key.empty() ? 0 : zone_key.size() - 1)) + 1;
}

}  // namespace kestrel

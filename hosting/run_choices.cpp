// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "hosting/run_choices.h"

#include <cmath>

#include "base/conversions.h"
#include "coefficients/basISModelPropsUtil.h"
#include "coefficients/clsISLCDef.h"
#include "coefficients/clsLCClass.h"

namespace kestrel::hosting {

std::string units_of(const data::SpatialReference& reference) {
    const double metres = reference.known() ? reference.metres_per_unit().value_or(0) : 0;
    if (std::abs(metres - 1) < 1e-9) {
        return "Meters";
    }
    // Both feet, the international one and that of the US survey.
    return std::abs(metres - 0.3048) < 1e-5 ? "Feet" : "";
}

std::string class_name(const clsISModelProperties& store, const std::string& set_name, std::int32_t code) {
    if (const auto set = basISModelPropsUtil::find_set(store, set_name)) {
        for (const auto& land_class : set->LCClasses) {
            if (land_class->ID == code) {
                return land_class->LCName;
            }
        }
    }
    return base::text_of(code);
}

}  // namespace kestrel::hosting

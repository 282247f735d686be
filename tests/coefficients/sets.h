// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "coefficients/clsISModelProperties.h"

/// \file
/// Coefficient sets made and read back in one line.
namespace kestrel::test {

inline std::shared_ptr<clsLCClass> land_class(std::int32_t id, const std::string& name, float high, float medium,
                                              float low) {
    auto made = std::make_shared<clsLCClass>();
    made->ID = id;
    made->LCName = name;
    made->LCHigh = high;
    made->LCMed = medium;
    made->LCLow = low;
    return made;
}

inline void add_set(clsISModelProperties& props, const std::string& name,
                    const std::vector<std::shared_ptr<clsLCClass>>& classes = {}) {
    auto set = std::make_shared<clsISLCDef>();
    set->LCType = name;
    for (const auto& member : classes) {
        set->LCClasses.Add(member);
    }
    props.ISLCDefs.Add(set);
}

/// A set "Default" of two classes.
inline void add_default_set(clsISModelProperties& props) {
    add_set(props, "Default",
            {land_class(21, "Developed, Low Intensity", 35, 25, 12.5F), land_class(41, "Forest", 0, 0, 0)});
}

/// Every set as "name: id id ...".
inline std::vector<std::string> outline(const clsISModelProperties& props) {
    std::vector<std::string> lines;
    for (const auto& set : props.ISLCDefs) {
        std::string line = set->LCType + ":";
        for (const auto& member : set->LCClasses) {
            line += " " + std::to_string(member->ID);
        }
        lines.push_back(line);
    }
    return lines;
}

/// Value, name, High, Medium and Low of every class.
using ClassValues = std::tuple<std::int32_t, std::string, float, float, float>;
inline std::vector<ClassValues> classes_of(const clsLCClasses& classes) {
    std::vector<ClassValues> values;
    for (const auto& member : classes) {
        values.emplace_back(member->ID, member->LCName, member->LCHigh, member->LCMed, member->LCLow);
    }
    return values;
}

}  // namespace kestrel::test

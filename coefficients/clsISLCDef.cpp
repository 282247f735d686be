// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "coefficients/clsISLCDef.h"

namespace kestrel {

void clsISLCDef::write_into(data::XmlElement& element) const {
    element.append("LCType", LCType);
    LCClasses.CreateNode(element);
}

void clsISLCDef::LoadNode(const data::XmlElement& element) {
    if (!element) {
        return;
    }
    std::string name = GetNodeText(element, "LCType");
    LCClasses.LoadNode(element.child(clsLCClasses::FNodeName()));
    LCType = std::move(name);
}

}  // namespace kestrel

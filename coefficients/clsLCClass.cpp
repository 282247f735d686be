// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "coefficients/clsLCClass.h"

#include "base/conversions.h"

namespace kestrel {

using base::text_of;

void clsLCClass::write_into(data::XmlElement& element) const {
    element.set_attribute("ID", text_of(ID));
    element.append("LCName", LCName);
    element.append("LCHigh", text_of(LCHigh));
    element.append("LCMed", text_of(LCMed));
    element.append("LCLow", text_of(LCLow));
}

void clsLCClass::LoadNode(const data::XmlElement& element) {
    if (!element) {
        return;
    }
    const std::int32_t id = base::to_integer(GetNodeText(element, "@ID"));
    const float high = base::to_single(GetNodeText(element, "LCHigh"));
    const float medium = base::to_single(GetNodeText(element, "LCMed"));
    const float low = base::to_single(GetNodeText(element, "LCLow"));
    LCName = GetNodeText(element, "LCName");
    ID = id;
    LCHigh = high;
    LCMed = medium;
    LCLow = low;
}

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "coefficients/xml_record.h"

namespace kestrel {

/// One land-cover class of a coefficient set. Takes any values: ranges are tested where values enter from the user.
class clsLCClass : public XmlRecord<clsLCClass> {
  public:
    static std::string FNodeName() { return "LCClass"; }

    /// Fills the class from `element`; nothing is done when it is none.
    /// \throws RuntimeError 13 when the class value or a coefficient is missing or no number, 6 when it is too large;
    ///         then nothing has changed. A missing name is an empty one.
    void LoadNode(const data::XmlElement& element);

    /// The class value: the cell value in the land-cover layer.
    std::int32_t ID = 0;
    std::string LCName;
    // Impervious percent at high, medium and low population density.
    float LCHigh = 0;
    float LCMed = 0;
    float LCLow = 0;

  private:
    friend class XmlRecord<clsLCClass>;
    void write_into(data::XmlElement& element) const;
};

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "coefficients/clsLCClasses.h"
#include "coefficients/xml_record.h"

namespace kestrel {

/// A coefficient set: a named list of land-cover classes.
class clsISLCDef : public XmlRecord<clsISLCDef> {
  public:
    static std::string FNodeName() { return "ISLCDef"; }

    /// Fills the set from `element`; nothing is done when it is none. A missing name is an empty one; classes that are
    /// missing as a whole leave those of the set as they are. When it throws, nothing has changed.
    void LoadNode(const data::XmlElement& element);

    /// The set's name.
    std::string LCType;
    clsLCClasses LCClasses;

  private:
    friend class XmlRecord<clsISLCDef>;
    void write_into(data::XmlElement& element) const;
};

}  // namespace kestrel

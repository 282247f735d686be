// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "coefficients/clsISLCDefs.h"
#include "coefficients/xml_record.h"

namespace kestrel {

/// The root of the coefficient model: every coefficient set that can be chosen for an analysis.
class clsISModelProperties : public XmlRecord<clsISModelProperties> {
  public:
    static std::string FNodeName() { return "ISModelProperties"; }

    /// Replaces the sets by those of `element`; they stay as they are when it is none, or has none. When it throws,
    /// nothing has changed.
    void LoadNode(const data::XmlElement& element) { ISLCDefs.LoadNode(element.child(clsISLCDefs::FNodeName())); }

    clsISLCDefs ISLCDefs;

  private:
    friend class XmlRecord<clsISModelProperties>;
    void write_into(data::XmlElement& element) const { ISLCDefs.CreateNode(element); }
};

}  // namespace kestrel

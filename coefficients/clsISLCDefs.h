// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "coefficients/clsISLCDef.h"
#include "coefficients/collection.h"

namespace kestrel {

/// The coefficient sets, in order. Names may repeat; a set is found by the first that has the name.
class clsISLCDefs : public Collection<clsISLCDefs, clsISLCDef> {
  public:
    static std::string FNodeName() { return "ISLCDefs"; }
};

}  // namespace kestrel

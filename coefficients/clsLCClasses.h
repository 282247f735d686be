// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "coefficients/clsLCClass.h"
#include "coefficients/collection.h"

namespace kestrel {

/// The land-cover classes of a coefficient set, in order. Class values may repeat.
class clsLCClasses : public Collection<clsLCClasses, clsLCClass> {
  public:
    static std::string FNodeName() { return "LCClasses"; }
};

}  // namespace kestrel

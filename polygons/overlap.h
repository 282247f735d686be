// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "polygons/polygons.h"

namespace kestrel::polygons {

/// Whether any feature of `a` shares some area with any feature of `b`; touching alone does not count.
/// \param a, b valid polygons (see repair()) in one coordinate system.
/// \throws RuntimeError (library failure) when two features cannot be compared.
bool overlap(const PolygonSet& a, const PolygonSet& b);

}  // namespace kestrel::polygons

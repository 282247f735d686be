// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "base/progress.h"
#include "polygons/polygons.h"

namespace kestrel::polygons {

/// Repairs invalid polygons (self-crossing rings, overlapping parts, repeated rings) in place of the given ones; what
/// remains of lines and points is dropped.
/// \param progress hears the share of the features that was checked. When it answers stop, nothing is repaired.
/// \param threads that may be used; 0 for as many as there are cores. The result does not depend on it.
/// \return how many features were invalid.
std::size_t repair(PolygonSet& polygons, base::Progress& progress, int threads = 0);
/// The same without anyone to tell.
std::size_t repair(PolygonSet& polygons);

}  // namespace kestrel::polygons

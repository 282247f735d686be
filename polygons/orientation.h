// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "polygons/polygons.h"

namespace kestrel::polygons {

/// On which side of the line from `a` to `b` the point `c` lies, decided exactly: 1 left, -1 right, 0 on the line.
/// Coordinates may not be so large or so small that products of two leave the range of a double.
int orientation(Point a, Point b, Point c);

}  // namespace kestrel::polygons

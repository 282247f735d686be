// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>

#include "polygons/polygons.h"

namespace kestrel::polygons {

/// Takes one piece of an intersection: the positions of the two features that it comes from, and the piece as feature 0
/// of a set. Returns true to go on.
using PieceVisitor = std::function<bool(std::size_t input, std::size_t overlay, const PolygonSet& piece)>;

/// Intersects every feature of `input` with every feature of `overlay` (valid polygons), and hands over the pieces that
/// have an area, in the order of the input features, then of the overlay features. Pieces that share only lines or
/// points are none.
/// \param input,overlay in one coordinate system.
void intersect(const PolygonSet& input, const PolygonSet& overlay, const PieceVisitor& visit);

}  // namespace kestrel::polygons

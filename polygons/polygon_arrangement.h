// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "polygons/polygons.h"

namespace kestrel::polygons {

/// Joins polygons whose borders do not match vertex by vertex: corners on a neighbour's edge, edges that lie on parts
/// of one another, overlaps and gaps, however thin.
///
/// All edges are cut where they meet; how many polygons lie on either side of each part is counted; the parts with
/// polygons on one side only bound the union. Where edges meet is decided exactly; where they cross is rounded to
/// doubles, and rounding may lead astray: the caller checks that the result is valid.
///
/// \param polygons valid polygons.
/// \param members positions of the features in `polygons`.
/// \return one feature; its rings begin at their lowest point and stand in its order, whatever order the members have.
///         Nothing where the counts contradict one another, or there are so many edges close together that this way is
///         no gain.
std::optional<PolygonSet> arranged_union(const PolygonSet& polygons, std::span<const std::size_t> members);

}  // namespace kestrel::polygons

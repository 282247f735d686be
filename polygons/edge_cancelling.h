// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "polygons/polygons.h"

namespace kestrel::polygons {

/// Joins features that share their borders vertex by vertex: an edge that two of them run along in opposite directions
/// is inside and is dropped, the others are chained to the rings of the union.
///
/// What is chained is the union exactly when it is a valid feature, which the caller checks: the edges that remain
/// bound the points that the features cover, once each. Where borders do not match, or polygons overlap, edges remain
/// that cross or lie on one another.
///
/// \param members positions of the features in `polygons`.
/// \return one feature, its rings beginning at their lowest point and ordered by it; nothing where the edges leave
///         doubt how they go on: several rings meeting in a vertex, an edge used twice in one direction, a hole that no
///         shell surrounds.
std::optional<PolygonSet> cancel_shared_edges(const PolygonSet& polygons, std::span<const std::size_t> members);

}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "polygons/polygons.h"

/// \file
/// Private to this room: what those who join polygons share, points that are numbered and rings that are put together.
namespace kestrel::polygons {

/// Gives every point a number, the same to equal points: 0 to the first that it is asked for, 1 to the next one that
/// differs. Zero and minus zero are equal.
class PointNumbers {
  public:
    /// \param most_points how many different points there can be; no more may follow.
    explicit PointNumbers(std::size_t most_points);

    std::uint32_t of(Point p);
    /// The points by their numbers.
    const std::vector<Point>& points() const noexcept { return m_points; }

  private:
    std::vector<std::uint32_t> m_buckets;
    std::vector<Point> m_points;
};

/// Makes one feature of closed rings that do not cross but may touch in points: those that run left about are shells,
/// the others holes of the smallest shell around them. Rings begin at their westernmost point, the southernmost of
/// those, and polygons, and the holes of each, stand in the order of these points, whatever order they come in.
/// \return nothing when a hole lies in no shell, or all of its corners lie on the border of one.
std::optional<PolygonSet> assemble_rings(std::vector<std::vector<Point>> rings);

}  // namespace kestrel::polygons

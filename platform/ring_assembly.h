// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/polygons.h"

/// \file
/// For this folder's own sources: what those who join polygons share, points that are numbered and rings that are put
/// together.
namespace kestrel::platform {

/// Gives every point a number, the same to equal points.
class PointNumbers {
  public:
    /// \param most_points how many there can be.
    explicit PointNumbers(std::size_t most_points);

    std::uint32_t of(Point p);
    const std::vector<Point>& points() const noexcept { return m_points; }

  private:
    std::vector<std::uint32_t> m_buckets;
    std::vector<Point> m_points;
};

/// Makes one feature of closed rings that do not cross: those that run left about are shells, the others holes of the
/// smallest shell around them. Rings begin at their lowest point and stand in its order, whatever order they come in.
/// \return nothing when a hole lies in no shell, or on the border of one.
std::optional<PolygonSet> assemble_rings(std::vector<std::vector<Point>> rings);

}  // namespace kestrel::platform

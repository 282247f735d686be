// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <initializer_list>
#include <random>
#include <span>
#include <vector>

#include "polygons/polygons.h"

/// \file
/// Polygons on a lattice of few points, whose edges lie on one another, cross, touch and end on one another all the
/// time, and the slow and obvious way to count the ones over a point.
namespace kestrel::test {

/// Features of one to three polygons whose corners are whole numbers from 0 to `side`: boxes, triangles down to
/// slivers, concave ones, some with holes that may touch the shell or with spikes of no width. Rings run either way.
polygons::PolygonSet lattice_polygons(std::mt19937& random, int side, int count);

/// Boxes between whole numbers from 0 to `side`, no wider and no higher than `most`.
polygons::PolygonSet lattice_boxes(std::mt19937& random, int side, int most, int count);

/// A feature for each polygon, which is given as its rings, the shell first, not closed.
polygons::PolygonSet features(std::initializer_list<std::vector<std::vector<polygons::Point>>> polygons);

/// The corners of a box.
std::vector<polygons::Point> box(double x, double y, double width, double height);

/// Positions of all features.
std::vector<std::size_t> all_of(const polygons::PolygonSet& polygons);

/// How many polygons of the features hold the point, which lies on none of their edges.
int polygons_over(const polygons::PolygonSet& polygons, std::span<const std::size_t> members, polygons::Point p);

struct PointsBeside {
    polygons::Point left;
    polygons::Point right;
};

/// Points a hair to the left and to the right of the line from `from` to `to`. They are not beside its middle: there,
/// lines of a lattice may cross it at a right angle, and a point on an edge is on neither side of it.
PointsBeside points_beside(polygons::Point from, polygons::Point to, double hair);

}  // namespace kestrel::test

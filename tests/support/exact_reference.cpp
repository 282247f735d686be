// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/support/exact_reference.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace kestrel::test {

using data::Grid;
using polygons::Point;
using polygons::PolygonSet;

namespace {

struct WholePoint {
    std::int64_t x = 0;
    std::int64_t y = 0;
};

std::int64_t whole(double value) {
    const double scaled = value * static_cast<double>(kScale);
    if (scaled != std::floor(scaled)) {
        throw std::logic_error("the reference needs coordinates that are multiples of its scale");
    }
    return static_cast<std::int64_t>(scaled);
}

WholePoint whole(Point p) {
    return {whole(p.x), whole(p.y)};
}

int side(WholePoint a, WholePoint b, WholePoint c) {
    const std::int64_t cross = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    return cross > 0 ? 1 : cross < 0 ? -1 : 0;
}

template <typename Take>
void for_each_edge(const PolygonSet& polygons, std::size_t feature, Take take) {
    for (std::size_t r = polygons.first_ring_of(feature); r < polygons.first_ring_of(feature + 1); ++r) {
        const auto ring = polygons.ring(r);
        for (std::size_t i = 0; i + 1 < ring.size(); ++i) {
            take(whole(ring[i]), whole(ring[i + 1]));
        }
    }
}

bool between(std::int64_t value, std::int64_t a, std::int64_t b) {
    return std::min(a, b) <= value && value <= std::max(a, b);
}

bool on_segment(WholePoint a, WholePoint b, WholePoint p) {
    return side(a, b, p) == 0 && between(p.x, a.x, b.x) && between(p.y, a.y, b.y);
}

bool segments_meet(WholePoint a, WholePoint b, WholePoint c, WholePoint d) {
    return (side(a, b, c) * side(a, b, d) < 0 && side(c, d, a) * side(c, d, b) < 0) || on_segment(a, b, c) ||
           on_segment(a, b, d) || on_segment(c, d, a) || on_segment(c, d, b);
}

int pick(std::mt19937& random, int lowest, int highest) {
    return std::uniform_int_distribution<int>(lowest, highest)(random);
}

/// A point in and around the grid, on a lattice of half, quarter or sixteenth cells.
Point random_point(std::mt19937& random, const Grid& grid) {
    const int steps[] = {2, 4, 16};
    const int step = steps[pick(random, 0, 2)];
    const double x = grid.x0 + grid.dx * pick(random, -2 * step, (grid.columns + 2) * step) / step;
    const double y = grid.y0 + grid.dy * pick(random, -2 * step, (grid.rows + 2) * step) / step;
    return {x, y};
}

void add_ring(PolygonSet& polygons, const std::vector<Point>& points) {
    polygons.begin_ring();
    for (const Point p : points) {
        polygons.add(p);
    }
    polygons.add(points.front());
}

Point snapped(Point p) {
    const auto scale = static_cast<double>(kScale);
    return {std::round(p.x * scale) / scale, std::round(p.y * scale) / scale};
}

std::vector<Point> star(std::mt19937& random, Point centre, double radius) {
    const int corners = pick(random, 3, 14);
    std::vector<Point> points;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * 3.14159265358979 * i / corners;
        const double r = radius * pick(random, 20, 100) / 100;
        points.push_back(snapped({centre.x + r * std::cos(angle), centre.y + r * std::sin(angle)}));
    }
    return points;
}

void add_feature(PolygonSet& polygons, std::mt19937& random, const Grid& grid) {
    polygons.begin_feature();
    const int parts = pick(random, 0, 9) == 0 ? 0 : pick(random, 1, 3);
    for (int part = 0; part < parts; ++part) {
        polygons.begin_polygon();
        const Point centre = random_point(random, grid);
        const double radius = grid.dx * pick(random, 1, 12);
        switch (pick(random, 0, 4)) {
            case 0:  // any points at all: spikes, bow-ties, repeated points
                add_ring(polygons, {random_point(random, grid), random_point(random, grid), random_point(random, grid),
                                    random_point(random, grid), centre});
                break;
            case 1: {  // a sliver
                const Point far = random_point(random, grid);
                add_ring(polygons, {centre, far, {far.x + 1.0 / kScale, far.y}});
                break;
            }
            case 2: {  // a rectangle along grid lines or through centres
                const Point far = random_point(random, grid);
                add_ring(polygons, {centre, {far.x, centre.y}, far, {centre.x, far.y}});
                break;
            }
            case 3: {  // with a hole
                add_ring(polygons, star(random, centre, radius));
                add_ring(polygons, star(random, centre, radius / 4));
                break;
            }
            default:
                add_ring(polygons, star(random, centre, radius));
        }
    }
}

}  // namespace

bool centre_inside(const PolygonSet& polygons, std::size_t feature, const Grid& grid, int column, int row) {
    const WholePoint p = whole({grid.centre_x(column), grid.centre_y(row)});
    bool inside = false;
    for_each_edge(polygons, feature, [&](WholePoint a, WholePoint b) {
        const WholePoint low = a.y < b.y ? a : b;
        const WholePoint high = a.y < b.y ? b : a;
        if (low.y <= p.y && p.y < high.y && side(low, high, p) <= 0) {
            inside = !inside;
        }
    });
    return inside;
}

bool touches_square(const PolygonSet& polygons, std::size_t feature, const Grid& grid, int column, int row) {
    if (centre_inside(polygons, feature, grid, column, row)) {
        return true;
    }
    const std::int64_t west = whole(grid.line_x(column));
    const std::int64_t east = whole(grid.line_x(column + 1));
    const std::int64_t one = whole(grid.line_y(row));
    const std::int64_t other = whole(grid.line_y(row + 1));
    const WholePoint corners[] = {{west, one}, {east, one}, {east, other}, {west, other}};
    bool touching = false;
    for_each_edge(polygons, feature, [&](WholePoint a, WholePoint b) {
        touching = touching || (between(a.x, west, east) && between(a.y, one, other));
        for (int i = 0; i < 4 && !touching; ++i) {
            touching = segments_meet(a, b, corners[i], corners[(i + 1) % 4]);
        }
    });
    return touching;
}

int owner(const PolygonSet& polygons, const Grid& grid, int column, int row) {
    for (std::size_t feature = polygons.feature_count(); feature-- > 0;) {
        if (centre_inside(polygons, feature, grid, column, row)) {
            return static_cast<int>(feature);
        }
    }
    return -1;
}

PolygonSet awkward_polygons(std::mt19937& random, const Grid& grid, int count) {
    PolygonSet polygons;
    for (int i = 0; i < count; ++i) {
        add_feature(polygons, random, grid);
    }
    return polygons;
}

PolygonSet coverage(std::mt19937& random, const Grid& grid, int columns, int rows) {
    // A mesh of quadrangles whose inner corners are moved, and whose edges have a moved point in the middle.
    const double width = grid.dx * grid.columns;
    const double height = grid.dy * grid.rows;
    const int lattice_columns = 2 * columns + 1;
    std::vector<Point> lattice;
    for (int j = 0; j <= 2 * rows; ++j) {
        for (int i = 0; i <= 2 * columns; ++i) {
            Point p{grid.x0 + width * i / (2 * columns), grid.y0 + height * j / (2 * rows)};
            if (i > 0 && i < 2 * columns) {
                p.x += width / columns * pick(random, -20, 20) / 100;
            }
            if (j > 0 && j < 2 * rows) {
                p.y += height / rows * pick(random, -20, 20) / 100;
            }
            lattice.push_back(snapped(p));
        }
    }
    const auto at = [&](int i, int j) { return lattice[static_cast<std::size_t>(j * lattice_columns + i)]; };
    PolygonSet polygons;
    for (int j = 0; j < rows; ++j) {
        for (int i = 0; i < columns; ++i) {
            polygons.begin_feature();
            polygons.begin_polygon();
            const int x = 2 * i;
            const int y = 2 * j;
            add_ring(polygons, {at(x, y), at(x + 1, y), at(x + 2, y), at(x + 2, y + 1), at(x + 2, y + 2),
                                at(x + 1, y + 2), at(x, y + 2), at(x, y + 1)});
        }
    }
    return polygons;
}

}  // namespace kestrel::test

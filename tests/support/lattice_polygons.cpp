// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/support/lattice_polygons.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace kestrel::test {

using polygons::Point;
using polygons::PolygonSet;

namespace {

using Ring = std::vector<Point>;

int pick(std::mt19937& random, int lowest, int highest) {
    return std::uniform_int_distribution<int>(lowest, highest)(random);
}

Point random_point(std::mt19937& random, int side) {
    return {static_cast<double>(pick(random, 0, side)), static_cast<double>(pick(random, 0, side))};
}

double turn(Point a, Point b, Point c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool on(Point a, Point b, Point p) {
    return turn(a, b, p) == 0 && p.x >= std::min(a.x, b.x) && p.x <= std::max(a.x, b.x) && p.y >= std::min(a.y, b.y) &&
           p.y <= std::max(a.y, b.y);
}

bool meet(Point a, Point b, Point c, Point d) {
    return (turn(a, b, c) * turn(a, b, d) < 0 && turn(c, d, a) * turn(c, d, b) < 0) || on(a, b, c) || on(a, b, d) ||
           on(c, d, a) || on(c, d, b);
}

/// Whether the ring, which is not closed, neither meets nor doubles back on itself.
bool simple(const Ring& ring) {
    const std::size_t n = ring.size();
    for (std::size_t i = 0; i < n; ++i) {
        const Point a = ring[i];
        const Point b = ring[(i + 1) % n];
        if (a == b || on(a, b, ring[(i + 2) % n]) || on(b, ring[(i + 2) % n], a)) {
            return false;
        }
        for (std::size_t j = i + 2; j < n && (j + 1) % n != i; ++j) {
            if (meet(a, b, ring[j], ring[(j + 1) % n])) {
                return false;
            }
        }
    }
    return true;
}

Ring random_ring(std::mt19937& random, int side) {
    Ring ring;
    do {
        ring.clear();
        const int corners = pick(random, 3, 6);
        for (int i = 0; i < corners; ++i) {
            ring.push_back(random_point(random, side));
        }
    } while (!simple(ring));
    return ring;
}

Ring random_box(std::mt19937& random, int side, int most) {
    const int x = pick(random, 0, side - 1);
    const int y = pick(random, 0, side - 1);
    return box(x, y, pick(random, 1, std::min(most, side - x)), pick(random, 1, std::min(most, side - y)));
}

/// A spike of no width to any point and back.
void add_spike(std::mt19937& random, int side, Ring& ring) {
    const std::size_t at = random() % ring.size();
    const Point tip = random_point(random, side);
    ring.insert(ring.begin() + static_cast<std::ptrdiff_t>(at), {ring[at], tip});
}

void add_ring(std::mt19937& random, PolygonSet& set, Ring ring) {
    if (random() % 2 == 0) {
        std::reverse(ring.begin(), ring.end());
    }
    set.begin_ring();
    for (const Point p : ring) {
        set.add(p);
    }
    set.add(ring.front());
}

void add_polygon(std::mt19937& random, PolygonSet& set, int side) {
    set.begin_polygon();
    switch (pick(random, 0, 5)) {
        case 0:
        case 1:
            add_ring(random, set, random_box(random, side, side));
            return;
        case 2: {
            Ring ring = random_ring(random, side);
            add_spike(random, side, ring);
            add_ring(random, set, std::move(ring));
            return;
        }
        case 3: {  // the hole reaches the shell in places
            const int size = pick(random, 2, side);
            const int x = pick(random, 0, side - size);
            Ring hole = random_ring(random, size);
            for (Point& p : hole) {
                p.x += x;
            }
            add_ring(random, set, box(x, 0, size, size));
            add_ring(random, set, std::move(hole));
            return;
        }
        default:
            add_ring(random, set, random_ring(random, side));
    }
}

bool holds(const PolygonSet& polygons, std::size_t polygon, Point p) {
    bool inside = false;
    for (std::size_t r = polygons.first_ring(polygon); r < polygons.first_ring(polygon + 1); ++r) {
        const auto ring = polygons.ring(r);
        for (std::size_t i = 0; i + 1 < ring.size(); ++i) {
            const Point low = ring[i].y < ring[i + 1].y ? ring[i] : ring[i + 1];
            const Point high = ring[i].y < ring[i + 1].y ? ring[i + 1] : ring[i];
            if (low.y <= p.y && p.y < high.y && turn(low, high, p) < 0) {
                inside = !inside;
            }
        }
    }
    return inside;
}

}  // namespace

PolygonSet lattice_polygons(std::mt19937& random, int side, int count) {
    PolygonSet set;
    for (int i = 0; i < count; ++i) {
        set.begin_feature();
        for (int part = pick(random, 0, 4) == 0 ? pick(random, 2, 3) : 1; part > 0; --part) {
            add_polygon(random, set, side);
        }
    }
    return set;
}

PolygonSet lattice_boxes(std::mt19937& random, int side, int most, int count) {
    PolygonSet set;
    for (int i = 0; i < count; ++i) {
        set.begin_feature();
        set.begin_polygon();
        add_ring(random, set, random_box(random, side, most));
    }
    return set;
}

PolygonSet features(std::initializer_list<std::vector<std::vector<Point>>> polygons) {
    PolygonSet set;
    for (const auto& rings : polygons) {
        set.begin_feature();
        set.begin_polygon();
        for (const Ring& ring : rings) {
            set.begin_ring();
            for (const Point p : ring) {
                set.add(p);
            }
            set.add(ring.front());
        }
    }
    return set;
}

std::vector<Point> box(double x, double y, double width, double height) {
    return {{x, y}, {x + width, y}, {x + width, y + height}, {x, y + height}};
}

std::vector<std::size_t> all_of(const PolygonSet& polygons) {
    std::vector<std::size_t> members(polygons.feature_count());
    std::iota(members.begin(), members.end(), 0U);
    return members;
}

int polygons_over(const PolygonSet& polygons, std::span<const std::size_t> members, Point p) {
    int count = 0;
    for (const std::size_t feature : members) {
        for (std::size_t i = polygons.first_polygon(feature); i < polygons.first_polygon(feature + 1); ++i) {
            count += holds(polygons, i, p) ? 1 : 0;
        }
    }
    return count;
}

PointsBeside points_beside(Point from, Point to, double hair) {
    constexpr double kAlong = 0.53182;
    const double x = to.x - from.x;
    const double y = to.y - from.y;
    const Point on{from.x + kAlong * x, from.y + kAlong * y};
    const double scale = hair / std::hypot(x, y);
    return {{on.x - scale * y, on.y + scale * x}, {on.x + scale * y, on.y - scale * x}};
}

}  // namespace kestrel::test

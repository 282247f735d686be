// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "polygons/dissolve.h"
#include "polygons/repair.h"
#include "tests/support/dissolved_copy.h"

/// \file
/// Small polygons for tests, and what they are compared by.
namespace kestrel::polygons {

using Ring = std::vector<Point>;
using Polygon = std::vector<Ring>;
using Groups = std::vector<std::uint32_t>;

inline void add_polygon(PolygonSet& set, const Polygon& polygon) {
    set.begin_polygon();
    for (const Ring& ring : polygon) {
        set.begin_ring();
        for (const Point p : ring) {
            set.add(p);
        }
    }
}

inline void add_feature(PolygonSet& set, const std::vector<Polygon>& polygons) {
    set.begin_feature();
    for (const Polygon& polygon : polygons) {
        add_polygon(set, polygon);
    }
}

inline PolygonSet set_of(const std::vector<std::vector<Polygon>>& features) {
    PolygonSet set;
    for (const auto& feature : features) {
        add_feature(set, feature);
    }
    return set;
}

inline Ring rectangle(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}, {x0, y0}};
}

/// A partition of a wobbly rectangle into n x n quadrilaterals that share their corners exactly.
inline PolygonSet partition(std::size_t n, unsigned seed, double jitter = 0.3) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> offset(-jitter, jitter);
    std::vector<Point> corners;
    for (std::size_t j = 0; j <= n; ++j) {
        for (std::size_t i = 0; i <= n; ++i) {
            corners.push_back(
                {300000 + static_cast<double>(i) + offset(random), 4100000 + static_cast<double>(j) + offset(random)});
        }
    }
    PolygonSet set;
    for (std::size_t j = 0; j < n; ++j) {
        for (std::size_t i = 0; i < n; ++i) {
            const std::size_t a = j * (n + 1) + i;
            add_feature(set, {{{corners[a], corners[a + 1], corners[a + n + 2], corners[a + n + 1], corners[a]}}});
        }
    }
    return set;
}

inline double total_area(const PolygonSet& set) {
    double sum = 0;
    for (std::size_t f = 0; f < set.feature_count(); ++f) {
        sum += set.area(f);
    }
    return sum;
}

inline bool equal(const PolygonSet& a, const PolygonSet& b) {
    const auto same_points = std::equal(a.points().begin(), a.points().end(), b.points().begin(), b.points().end());
    bool same = same_points && a.feature_count() == b.feature_count() && a.polygon_count() == b.polygon_count() &&
                a.ring_count() == b.ring_count();
    for (std::size_t f = 0; same && f < a.feature_count(); ++f) {
        same = a.first_polygon(f) == b.first_polygon(f);
    }
    for (std::size_t p = 0; same && p < a.polygon_count(); ++p) {
        same = a.first_ring(p) == b.first_ring(p);
    }
    for (std::size_t r = 0; same && r < a.ring_count(); ++r) {
        same = a.ring(r).size() == b.ring(r).size();
    }
    return same;
}

inline bool is_valid(PolygonSet set) {
    return repair(set) == 0;
}

inline PolygonSet dissolved(const PolygonSet& set, const Groups& groups, std::size_t count) {
    base::NoProgress progress;
    return test::copy_of(dissolve(std::make_shared<PolygonSet>(set), groups, count, progress));
}

}  // namespace kestrel::polygons

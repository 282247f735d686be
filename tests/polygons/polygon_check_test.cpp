// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/polygon_check.h"

#include <geos_c.h>
#include <gtest/gtest.h>

#include <random>
#include <span>
#include <vector>

#include "tests/support/exact_reference.h"

namespace kestrel::polygons {
namespace {

PolygonSet one_ring(const std::vector<Point>& points) {
    PolygonSet polygons;
    polygons.begin_feature();
    polygons.begin_polygon();
    polygons.begin_ring();
    for (const Point p : points) {
        polygons.add(p);
    }
    return polygons;
}

bool valid_for_geos(GEOSContextHandle_t geos, std::span<const Point> ring) {
    GEOSCoordSequence* sequence =
        GEOSCoordSeq_copyFromBuffer_r(geos, &ring.front().x, static_cast<unsigned>(ring.size()), 0, 0);
    GEOSGeometry* polygon = GEOSGeom_createPolygon_r(geos, GEOSGeom_createLinearRing_r(geos, sequence), nullptr, 0);
    const bool valid = GEOSisValid_r(geos, polygon) == 1;
    GEOSGeom_destroy_r(geos, polygon);
    return valid;
}

TEST(PolygonCheck, SimpleRingsAreValid) {
    EXPECT_TRUE(certainly_valid(one_ring({{0, 0}, {4, 0}, {0, 4}, {0, 0}}), 0));
    EXPECT_TRUE(certainly_valid(one_ring({{0, 0}, {0, 4}, {4, 4}, {4, 0}, {0, 0}}), 0)) << "either way about";
    EXPECT_TRUE(certainly_valid(one_ring({{0, 0}, {2, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}}), 0)) << "straight on";
}

TEST(PolygonCheck, RingsThatCrossTouchOrRunBackAreNotTakenForValid) {
    EXPECT_FALSE(certainly_valid(one_ring({{0, 0}, {4, 4}, {4, 0}, {0, 4}, {0, 0}}), 0)) << "a bow-tie";
    EXPECT_FALSE(certainly_valid(one_ring({{0, 0}, {4, 0}, {4, 4}, {2, 0}, {0, 4}, {0, 0}}), 0)) << "a touching vertex";
    EXPECT_FALSE(certainly_valid(one_ring({{0, 0}, {4, 0}, {6, 0}, {4, 0}, {0, 4}, {0, 0}}), 0)) << "a spike";
    EXPECT_FALSE(certainly_valid(one_ring({{0, 0}, {4, 0}, {8, 0}, {0, 0}}), 0)) << "no area";
    EXPECT_FALSE(certainly_valid(one_ring({{0, 0}, {4, 0}, {4, 0}, {0, 4}, {0, 0}}), 0)) << "a repeated point";
}

TEST(PolygonCheck, NothingIsSaidOfHolesPartsAndEmptyFeatures) {
    PolygonSet polygons = one_ring({{0, 0}, {9, 0}, {9, 9}, {0, 0}});
    polygons.begin_ring();
    for (const Point p : {Point{5, 1}, Point{6, 1}, Point{6, 2}, Point{5, 1}}) {
        polygons.add(p);
    }
    polygons.begin_feature();
    EXPECT_FALSE(certainly_valid(polygons, 0));
    EXPECT_FALSE(certainly_valid(polygons, 1));
}

TEST(PolygonCheck, WhatItAcceptsTheFullCheckAcceptsToo) {
    std::mt19937 random(21);
    const data::Grid grid{.x0 = 0, .y0 = 64, .dx = 1, .dy = -1, .columns = 64, .rows = 64};
    GEOSContextHandle_t geos = GEOS_init_r();
    std::size_t accepted = 0;
    for (int i = 0; i < 800; ++i) {
        const PolygonSet polygons = test::awkward_polygons(random, grid, 10);
        for (std::size_t f = 0; f < polygons.feature_count(); ++f) {
            if (certainly_valid(polygons, f)) {
                ++accepted;
                ASSERT_TRUE(valid_for_geos(geos, polygons.ring(polygons.first_ring_of(f))))
                    << "case " << i << ", feature " << f;
            }
        }
    }
    GEOS_finish_r(geos);
    EXPECT_GT(accepted, 1000U);
}

}  // namespace
}  // namespace kestrel::polygons

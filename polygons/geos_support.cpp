// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/geos_support.h"

#include <fmt/format.h>
#include <geos_c.h>

#include <vector>

#include "base/errors.h"

namespace kestrel::polygons {

namespace {

void keep_message(const char* message, void* target) {
    *static_cast<std::string*>(target) = message;
}

/// Gives the geometries up, to a call that takes them over.
std::vector<GEOSGeometry*> release(std::vector<Geos::Geometry>& geometries) {
    std::vector<GEOSGeometry*> result;
    for (Geos::Geometry& geometry : geometries) {
        result.push_back(geometry.release());
    }
    return result;
}

}  // namespace

void Geos::Delete::operator()(GEOSGeom_t* geometry) const {
    GEOSGeom_destroy_r(handle, geometry);
}

void Geos::Delete::operator()(const GEOSPrepGeom_t* prepared) const {
    GEOSPreparedGeom_destroy_r(handle, prepared);
}

Geos::Geos() : m_handle(GEOS_init_r()) {
    GEOSContext_setErrorMessageHandler_r(m_handle, keep_message, &m_message);
}

Geos::~Geos() {
    GEOS_finish_r(m_handle);
}

void Geos::fail(const char* what) const {
    throw base::RuntimeError(base::kLibraryFailure,
                             m_message.empty() ? std::string(what) : fmt::format("{}: {}", what, m_message));
}

Geos::Geometry Geos::owned(GEOSGeom_t* geometry, const char* what) const {
    if (geometry == nullptr) {
        fail(what);
    }
    return Geometry(geometry, Delete{m_handle});
}

bool Geos::answer(char result, const char* what) const {
    constexpr char kError = 2;
    if (result == kError) {
        fail(what);
    }
    return result == 1;
}

Geos::Geometry Geos::ring(std::span<const Point> points) const {
    static_assert(sizeof(Point) == 2 * sizeof(double), "points are copied as pairs of doubles");
    GEOSCoordSequence* const sequence =
        GEOSCoordSeq_copyFromBuffer_r(m_handle, &points.front().x, static_cast<unsigned>(points.size()), 0, 0);
    return owned(sequence != nullptr ? GEOSGeom_createLinearRing_r(m_handle, sequence) : nullptr,
                 "A ring cannot be taken over");
}

Geos::Geometry Geos::polygon(const PolygonSet& set, std::size_t polygon) const {
    const std::size_t first = set.first_ring(polygon);
    Geometry shell = ring(set.ring(first));
    std::vector<Geometry> holes;
    for (std::size_t r = first + 1; r < set.first_ring(polygon + 1); ++r) {
        holes.push_back(ring(set.ring(r)));
    }
    std::vector<GEOSGeometry*> given = release(holes);
    return owned(GEOSGeom_createPolygon_r(m_handle, shell.release(), given.data(), static_cast<unsigned>(given.size())),
                 "A polygon cannot be taken over");
}

bool Geos::valid(const Geometry& geometry) const {
    return answer(GEOSisValid_r(m_handle, geometry.get()), "A polygon cannot be checked");
}

Geos::Geometry Geos::multipolygon(const PolygonSet& set, std::span<const std::size_t> features) const {
    std::vector<Geometry> polygons;
    for (const std::size_t feature : features) {
        for (std::size_t p = set.first_polygon(feature); p < set.first_polygon(feature + 1); ++p) {
            polygons.push_back(polygon(set, p));
        }
    }
    std::vector<GEOSGeometry*> given = release(polygons);
    return owned(
        GEOSGeom_createCollection_r(m_handle, GEOS_MULTIPOLYGON, given.data(), static_cast<unsigned>(given.size())),
        "A multipolygon cannot be taken over");
}

Geos::Prepared Geos::prepare(const Geometry& geometry) const {
    const GEOSPreparedGeometry* const prepared = GEOSPrepare_r(m_handle, geometry.get());
    if (prepared == nullptr) {
        fail("A polygon cannot be prepared");
    }
    return Prepared(prepared, Delete{m_handle});
}

void Geos::append(PolygonSet& set, const GEOSGeom_t* geometry) const {
    set.begin_feature();
    append_parts(set, geometry);
}

void Geos::append_parts(PolygonSet& set, const GEOSGeom_t* geometry) const {
    const int type = GEOSGeomTypeId_r(m_handle, geometry);
    if (type == GEOS_MULTIPOLYGON || type == GEOS_GEOMETRYCOLLECTION) {
        const int count = GEOSGetNumGeometries_r(m_handle, geometry);
        for (int i = 0; i < count; ++i) {
            append_parts(set, GEOSGetGeometryN_r(m_handle, geometry, i));
        }
        return;
    }
    double area = 0;
    if (type != GEOS_POLYGON || GEOSArea_r(m_handle, geometry, &area) == 0 || !(area > 0)) {
        return;
    }
    set.begin_polygon();
    append_ring(set, GEOSGetExteriorRing_r(m_handle, geometry));
    const int holes = GEOSGetNumInteriorRings_r(m_handle, geometry);
    for (int i = 0; i < holes; ++i) {
        append_ring(set, GEOSGetInteriorRingN_r(m_handle, geometry, i));
    }
}

void Geos::append_ring(PolygonSet& set, const GEOSGeom_t* ring) const {
    const GEOSCoordSequence* const sequence = GEOSGeom_getCoordSeq_r(m_handle, ring);
    unsigned count = 0;
    if (sequence == nullptr || GEOSCoordSeq_getSize_r(m_handle, sequence, &count) == 0) {
        fail("A ring cannot be read");
    }
    set.begin_ring();
    const std::span<Point> points = set.add_points(count);
    if (GEOSCoordSeq_copyToBuffer_r(m_handle, sequence, &points.front().x, 0, 0) == 0) {
        fail("A ring cannot be read");
    }
}

}  // namespace kestrel::polygons

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/ogr_polygons.h"

#include <ogr_geometry.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace kestrel::data {

namespace {

constexpr std::size_t kFewestPoints = 4;

std::size_t closed_point_count(const OGRLinearRing& ring) {
    const int count = ring.getNumPoints();
    if (count == 0) {
        return 0;
    }
    const bool closed = ring.getX(0) == ring.getX(count - 1) && ring.getY(0) == ring.getY(count - 1);
    return static_cast<std::size_t>(count) + (closed ? 0U : 1U);
}

bool finite(polygons::Point p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

/// Takes over the polygons of one geometry.
class PolygonTaker {
  public:
    explicit PolygonTaker(polygons::PolygonSet& set) : m_set(set) {}

    void take(const OGRGeometry& geometry) {
        const OGRwkbGeometryType type = wkbFlatten(geometry.getGeometryType());
        if (OGR_GT_IsSubClassOf(type, wkbPolygon) != 0) {
            m_any = true;
            take_polygon(*geometry.toPolygon());
        } else if (OGR_GT_IsSubClassOf(type, wkbGeometryCollection) != 0) {
            for (const OGRGeometry* const member : *geometry.toGeometryCollection()) {
                take(*member);
            }
        }
    }

    AppendResult result() const {
        if (!m_any) {
            return AppendResult::no_polygon;
        }
        return m_finite ? AppendResult::appended : AppendResult::not_finite;
    }

  private:
    void take_polygon(const OGRPolygon& polygon) {
        const OGRLinearRing* const shell = polygon.getExteriorRing();
        if (shell == nullptr || closed_point_count(*shell) < kFewestPoints) {
            return;
        }
        m_set.begin_polygon();
        for (const OGRLinearRing* const ring : polygon) {
            take_ring(*ring);
        }
    }

    void take_ring(const OGRLinearRing& ring) {
        const std::size_t count = closed_point_count(ring);
        if (count < kFewestPoints) {
            return;
        }
        m_set.begin_ring();
        const std::span<polygons::Point> points = m_set.add_points(count);
        ring.getPoints(&points[0].x, sizeof(polygons::Point), &points[0].y, sizeof(polygons::Point));
        points.back() = points.front();
        m_finite = m_finite && std::all_of(points.begin(), points.end(), finite);
    }

    polygons::PolygonSet& m_set;
    bool m_any = false;
    bool m_finite = true;
};

void set_points(OGRLinearRing& ring, std::span<const polygons::Point> points) {
    std::vector<OGRRawPoint> raw(points.size());
    std::transform(points.begin(), points.end(), raw.begin(), [](polygons::Point p) { return OGRRawPoint(p.x, p.y); });
    ring.setPoints(static_cast<int>(raw.size()), raw.data());
}

std::unique_ptr<OGRPolygon> polygon_of(const polygons::PolygonSet& set, std::size_t polygon) {
    auto result = std::make_unique<OGRPolygon>();
    for (std::size_t r = set.first_ring(polygon); r < set.first_ring(polygon + 1); ++r) {
        auto ring = std::make_unique<OGRLinearRing>();
        set_points(*ring, set.ring(r));
        result->addRingDirectly(ring.release());
    }
    return result;
}

}  // namespace

AppendResult append_feature(polygons::PolygonSet& set, const OGRGeometry* geometry) {
    set.begin_feature();
    if (geometry == nullptr || geometry->IsEmpty() != 0) {
        return AppendResult::appended;
    }
    PolygonTaker taker(set);
    if (geometry->hasCurveGeometry(FALSE) != 0) {
        const std::unique_ptr<OGRGeometry> lines(geometry->getLinearGeometry());
        taker.take(*lines);
    } else {
        taker.take(*geometry);
    }
    return taker.result();
}

std::unique_ptr<OGRGeometry> geometry_of(const polygons::PolygonSet& set, std::size_t feature) {
    const std::size_t first = set.first_polygon(feature);
    const std::size_t end = set.first_polygon(feature + 1);
    if (first == end) {
        return nullptr;
    }
    if (end == first + 1) {
        return polygon_of(set, first);
    }
    auto result = std::make_unique<OGRMultiPolygon>();
    for (std::size_t p = first; p < end; ++p) {
        result->addGeometryDirectly(polygon_of(set, p).release());
    }
    return result;
}

}  // namespace kestrel::data

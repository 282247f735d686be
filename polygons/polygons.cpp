// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/polygons.h"

#include <cmath>

namespace kestrel::polygons {

double twice_signed_area(std::span<const Point> ring) noexcept {
    double sum = 0;
    for (std::size_t i = 1; i + 1 < ring.size(); ++i) {
        sum += (ring[i].x - ring[0].x) * (ring[i + 1].y - ring[0].y) -
               (ring[i + 1].x - ring[0].x) * (ring[i].y - ring[0].y);
    }
    return sum;
}

void PolygonSet::append(const PolygonSet& other, std::size_t feature) {
    begin_feature();
    for (std::size_t p = other.first_polygon(feature); p < other.first_polygon(feature + 1); ++p) {
        begin_polygon();
        for (std::size_t r = other.first_ring(p); r < other.first_ring(p + 1); ++r) {
            begin_ring();
            const auto source = other.ring(r);
            m_points.insert(m_points.end(), source.begin(), source.end());
        }
    }
}

void PolygonSet::append(const PolygonSet& other) {
    for (std::size_t feature = 0; feature < other.feature_count(); ++feature) {
        append(other, feature);
    }
}

void PolygonSet::shrink_to_fit() {
    m_features.shrink_to_fit();
    m_polygons.shrink_to_fit();
    m_rings.shrink_to_fit();
    m_points.shrink_to_fit();
}

Envelope PolygonSet::envelope(std::size_t feature) const noexcept {
    Envelope result;
    for (std::size_t r = first_ring_of(feature); r < first_ring_of(feature + 1); ++r) {
        for (const Point p : ring(r)) {
            result.add(p);
        }
    }
    return result;
}

Envelope PolygonSet::envelope() const noexcept {
    Envelope result;
    for (const Point p : m_points) {
        result.add(p);
    }
    return result;
}

double PolygonSet::area(std::size_t feature) const noexcept {
    double sum = 0;
    for (std::size_t p = first_polygon(feature); p < first_polygon(feature + 1); ++p) {
        for (std::size_t r = first_ring(p); r < first_ring(p + 1); ++r) {
            const double part = std::abs(twice_signed_area(ring(r))) / 2;
            sum += r == first_ring(p) ? part : -part;
        }
    }
    return sum;
}

}  // namespace kestrel::polygons

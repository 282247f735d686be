// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <span>
#include <vector>

namespace kestrel::polygons {

struct Point {
    double x = 0;
    double y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

/// An axis-parallel rectangle in map units; empty until something is added.
struct Envelope {
    double min_x = std::numeric_limits<double>::infinity();
    double min_y = std::numeric_limits<double>::infinity();
    double max_x = -std::numeric_limits<double>::infinity();
    double max_y = -std::numeric_limits<double>::infinity();

    bool empty() const noexcept { return min_x > max_x; }
    void add(Point p) noexcept {
        min_x = p.x < min_x ? p.x : min_x;
        min_y = p.y < min_y ? p.y : min_y;
        max_x = p.x > max_x ? p.x : max_x;
        max_y = p.y > max_y ? p.y : max_y;
    }
    void include(const Envelope& other) noexcept {
        if (!other.empty()) {
            add({other.min_x, other.min_y});
            add({other.max_x, other.max_y});
        }
    }
    /// Whether the closed rectangles share a point.
    bool touches(const Envelope& other) const noexcept {
        return !empty() && !other.empty() && min_x <= other.max_x && other.min_x <= max_x && min_y <= other.max_y &&
               other.min_y <= max_y;
    }
    bool contains(const Envelope& other) const noexcept {
        return other.empty() ||
               (min_x <= other.min_x && other.max_x <= max_x && min_y <= other.min_y && other.max_y <= max_y);
    }
};

/// Twice the area of a closed ring: positive when it runs left about. Taken about its first point, so that large
/// coordinates cost no digits.
double twice_signed_area(std::span<const Point> ring) noexcept;

/// The polygons of many features in four flat arrays: features hold polygons, polygons hold rings (the shell first,
/// then its holes), rings hold points and end with the point that they began with.
///
/// A feature may have no polygon at all (an empty geometry). Coordinates are in the units of the layer.
class PolygonSet {
  public:
    // Building, in order: begin_feature(), begin_polygon(), begin_ring(), add().
    void begin_feature() { m_features.push_back(m_polygons.size()); }
    void begin_polygon() { m_polygons.push_back(m_rings.size()); }
    void begin_ring() { m_rings.push_back(m_points.size()); }
    void add(Point p) { m_points.push_back(p); }
    /// Adds `count` points to the ring, to be filled in at once.
    std::span<Point> add_points(std::size_t count) {
        m_points.resize(m_points.size() + count);
        return std::span(m_points).last(count);
    }
    /// Appends feature `feature` of `other`, which is another set, as a new feature.
    void append(const PolygonSet& other, std::size_t feature);
    /// Appends all features of `other`.
    void append(const PolygonSet& other);
    void reserve_points(std::size_t count) { m_points.reserve(count); }
    void shrink_to_fit();

    std::size_t feature_count() const noexcept { return m_features.size(); }
    std::size_t polygon_count() const noexcept { return m_polygons.size(); }
    std::size_t ring_count() const noexcept { return m_rings.size(); }
    std::size_t point_count() const noexcept { return m_points.size(); }

    /// Polygons of `feature` are [first_polygon(feature), first_polygon(feature + 1)), and so on downwards.
    std::size_t first_polygon(std::size_t feature) const noexcept {
        return feature < m_features.size() ? m_features[feature] : m_polygons.size();
    }
    std::size_t first_ring(std::size_t polygon) const noexcept {
        return polygon < m_polygons.size() ? m_polygons[polygon] : m_rings.size();
    }
    std::span<const Point> ring(std::size_t ring) const noexcept {
        const std::size_t end = ring + 1 < m_rings.size() ? m_rings[ring + 1] : m_points.size();
        return {m_points.data() + m_rings[ring], end - m_rings[ring]};
    }
    /// Rings of a feature, over all of its polygons, are [first_ring_of(feature), first_ring_of(feature + 1)).
    std::size_t first_ring_of(std::size_t feature) const noexcept { return first_ring(first_polygon(feature)); }

    std::span<Point> points() noexcept { return m_points; }
    std::span<const Point> points() const noexcept { return m_points; }

    bool empty(std::size_t feature) const noexcept { return first_polygon(feature) == first_polygon(feature + 1); }
    Envelope envelope(std::size_t feature) const noexcept;
    Envelope envelope() const noexcept;
    /// Area of the feature in square map units: shells less holes, whatever way the rings run.
    double area(std::size_t feature) const noexcept;

  private:
    std::vector<std::size_t> m_features;  // first polygon of each feature
    std::vector<std::size_t> m_polygons;  // first ring of each polygon
    std::vector<std::size_t> m_rings;     // first point of each ring
    std::vector<Point> m_points;
};

/// Polygons that several hold and nobody changes: layers can be large.
using SharedPolygons = std::shared_ptr<const PolygonSet>;

}  // namespace kestrel::polygons

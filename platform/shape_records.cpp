// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/shape_records.h"

#include <algorithm>
#include <array>

namespace kestrel::platform {

namespace {

constexpr std::int64_t kHeader = 100;
constexpr std::int64_t kLengthAt = 24;
constexpr std::int64_t kExtentAt = 36;
constexpr std::int64_t kRecordHeader = 8;
constexpr std::int64_t kWord = 2;
constexpr std::int32_t kNullShape = 0;
constexpr std::int32_t kPolygon = 5;

/// Puts in where a file's header states its size and what it holds.
void state(AppendedFile& file, const Envelope& extent) {
    file.flush();
    std::string length;
    append_big_endian(length, file.end() / kWord);
    file.replace(kLengthAt, length);
    if (!extent.empty()) {
        std::string corners;
        for (const double bound : {extent.min_x, extent.min_y, extent.max_x, extent.max_y}) {
            append_little_endian(corners, bound);
        }
        file.replace(kExtentAt, corners);
    }
}

void append_points(std::string& bytes, std::span<const Point> ring, bool clockwise) {
    const std::size_t begin = bytes.size();
    const std::size_t size = ring.size() * sizeof(Point);
    if ((twice_signed_area(ring) < 0) == clockwise) {
        bytes.append(reinterpret_cast<const char*>(ring.data()), size);
        return;
    }
    bytes.resize(begin + size);
    std::reverse_copy(ring.begin(), ring.end(), reinterpret_cast<Point*>(bytes.data() + begin));
}

}  // namespace

std::int64_t shape_size(const PolygonSet& polygons, std::size_t feature) noexcept {
    constexpr std::size_t kType = 4;
    constexpr std::size_t kFixedPart = 44;
    std::size_t size = kRecordHeader + (polygons.empty(feature) ? kType : kFixedPart);
    for (std::size_t r = polygons.first_ring_of(feature); r < polygons.first_ring_of(feature + 1); ++r) {
        size += sizeof(std::int32_t) + sizeof(Point) * polygons.ring(r).size();
    }
    return static_cast<std::int64_t>(size);
}

ShapeRecords::ShapeRecords(const std::string& stem)
    : m_shapes(stem + ".shp", kHeader), m_index(stem + ".shx", kHeader) {}

void ShapeRecords::append(const PolygonSet& polygons, std::size_t feature) {
    const std::int64_t content = shape_size(polygons, feature) - kRecordHeader;
    append_big_endian(m_index.buffer(), m_shapes.end() / kWord);
    append_big_endian(m_index.buffer(), content / kWord);
    std::string& bytes = m_shapes.buffer();
    append_big_endian(bytes, ++m_count);
    append_big_endian(bytes, content / kWord);
    if (polygons.empty(feature)) {
        append_little_endian(bytes, kNullShape);
    } else {
        append_rings(polygons, feature);
    }
    m_shapes.appended();
    m_index.appended();
}

void ShapeRecords::append_rings(const PolygonSet& polygons, std::size_t feature) {
    const std::size_t first_ring = polygons.first_ring_of(feature);
    const std::size_t end_ring = polygons.first_ring_of(feature + 1);
    const std::span<const Point> all = polygons.points();
    const auto start = static_cast<std::size_t>(polygons.ring(first_ring).data() - all.data());
    const Envelope extent = polygons.envelope(feature);
    m_extent.include(extent);

    std::string& bytes = m_shapes.buffer();
    append_little_endian(bytes, kPolygon);
    for (const double bound : {extent.min_x, extent.min_y, extent.max_x, extent.max_y}) {
        append_little_endian(bytes, bound);
    }
    std::size_t points = 0;
    for (std::size_t r = first_ring; r < end_ring; ++r) {
        points += polygons.ring(r).size();
    }
    append_little_endian(bytes, static_cast<std::int32_t>(end_ring - first_ring));
    append_little_endian(bytes, static_cast<std::int32_t>(points));
    for (std::size_t r = first_ring; r < end_ring; ++r) {
        const auto begin = static_cast<std::size_t>(polygons.ring(r).data() - all.data());
        append_little_endian(bytes, static_cast<std::int32_t>(begin - start));
    }
    for (std::size_t p = polygons.first_polygon(feature); p < polygons.first_polygon(feature + 1); ++p) {
        for (std::size_t r = polygons.first_ring(p); r < polygons.first_ring(p + 1); ++r) {
            append_points(bytes, polygons.ring(r), r == polygons.first_ring(p));
        }
    }
}

void ShapeRecords::flush() {
    state(m_shapes, m_extent);
    state(m_index, m_extent);
}

void ShapeRecords::close() {
    flush();
    m_shapes.close();
    m_index.close();
}

}  // namespace kestrel::platform

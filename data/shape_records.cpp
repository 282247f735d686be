// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/shape_records.h"

#include <shapefil.h>

#include <utility>
#include <vector>

#include "data/buffered_file.h"

namespace kestrel::data {

namespace {

struct CloseHandle {
    void operator()(SHPInfo* handle) const { SHPClose(handle); }
};

constexpr std::int64_t kHeader = 100;

}  // namespace

std::int64_t shape_size(const polygons::PolygonSet& polygons, std::size_t feature) noexcept {
    constexpr std::size_t kRecordHeader = 8;
    constexpr std::size_t kNullShape = 4;
    constexpr std::size_t kFixedPart = 44;
    std::size_t size = kRecordHeader + (polygons.empty(feature) ? kNullShape : kFixedPart);
    for (std::size_t r = polygons.first_ring_of(feature); r < polygons.first_ring_of(feature + 1); ++r) {
        size += sizeof(std::int32_t) + sizeof(polygons::Point) * polygons.ring(r).size();
    }
    return static_cast<std::int64_t>(size);
}

struct ShapeRecords::State {
    std::string path;
    std::unique_ptr<SHPInfo, CloseHandle> handle;
    polygons::Envelope whole;
    // One feature as the library takes it.
    std::vector<int> starts;
    std::vector<int> kinds;
    std::vector<double> x;
    std::vector<double> y;

    void add_ring(std::span<const polygons::Point> ring, bool clockwise);
    SHPObject object(const polygons::PolygonSet& polygons, std::size_t feature);
    void state_extent();
    void flush();
};

void ShapeRecords::State::add_ring(std::span<const polygons::Point> ring, bool clockwise) {
    starts.push_back(static_cast<int>(x.size()));
    kinds.push_back(SHPP_RING);
    const bool as_it_is = (polygons::twice_signed_area(ring) < 0) == clockwise;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const polygons::Point point = ring[as_it_is ? i : ring.size() - 1 - i];
        x.push_back(point.x);
        y.push_back(point.y);
    }
}

SHPObject ShapeRecords::State::object(const polygons::PolygonSet& polygons, std::size_t feature) {
    starts.clear();
    kinds.clear();
    x.clear();
    y.clear();
    for (std::size_t p = polygons.first_polygon(feature); p < polygons.first_polygon(feature + 1); ++p) {
        for (std::size_t r = polygons.first_ring(p); r < polygons.first_ring(p + 1); ++r) {
            add_ring(polygons.ring(r), r == polygons.first_ring(p));
        }
    }
    SHPObject shape{};
    shape.nSHPType = polygons.empty(feature) ? SHPT_NULL : SHPT_POLYGON;
    shape.nShapeId = -1;
    shape.nParts = static_cast<int>(starts.size());
    shape.panPartStart = starts.data();
    shape.panPartType = kinds.data();
    shape.nVertices = static_cast<int>(x.size());
    shape.padfX = x.data();
    shape.padfY = y.data();
    if (!polygons.empty(feature)) {
        const polygons::Envelope extent = polygons.envelope(feature);
        shape.dfXMin = extent.min_x;
        shape.dfYMin = extent.min_y;
        shape.dfXMax = extent.max_x;
        shape.dfYMax = extent.max_y;
    }
    return shape;
}

/// Sets the extent that the header states: the library's own takes null shapes, some of its versions, for the origin.
void ShapeRecords::State::state_extent() {
    if (!whole.empty()) {
        handle->adBoundsMin[0] = whole.min_x;
        handle->adBoundsMin[1] = whole.min_y;
        handle->adBoundsMax[0] = whole.max_x;
        handle->adBoundsMax[1] = whole.max_y;
    }
}

void ShapeRecords::State::flush() {
    forget_file_failure();
    state_extent();
    SHPWriteHeader(handle.get());
    handle->sHooks.FFlush(handle->fpSHP);
    handle->sHooks.FFlush(handle->fpSHX);
    check_file_failure(true, path);
}

ShapeRecords::ShapeRecords(const std::string& stem) : m_state(std::make_unique<State>()), m_size(kHeader) {
    SAHooks hooks{};
    SASetupDefaultHooks(&hooks);
    use_buffered_files(hooks);
    m_state->path = stem + ".shp";
    forget_file_failure();
    m_state->handle.reset(SHPOpenLL(m_state->path.c_str(), "rb+", &hooks));
    check_file_failure(m_state->handle != nullptr, m_state->path);
}

ShapeRecords::~ShapeRecords() = default;

void ShapeRecords::append(const polygons::PolygonSet& polygons, std::size_t feature) {
    SHPObject shape = m_state->object(polygons, feature);
    forget_file_failure();
    const bool written = SHPWriteObject(m_state->handle.get(), -1, &shape) >= 0;
    check_file_failure(written, m_state->path);
    if (shape.nSHPType != SHPT_NULL) {
        m_state->whole.include({shape.dfXMin, shape.dfYMin, shape.dfXMax, shape.dfYMax});
    }
    m_size += shape_size(polygons, feature);
}

void ShapeRecords::flush() {
    m_state->flush();
}

void ShapeRecords::close() {
    if (m_state->handle != nullptr) {
        m_state->flush();
        m_state->handle.reset();
        check_file_failure(true, m_state->path);
    }
}

}  // namespace kestrel::data

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "polygons/polygons.h"

namespace kestrel::data {

/// Bytes that a feature takes in a .shp.
std::int64_t shape_size(const polygons::PolygonSet& polygons, std::size_t feature) noexcept;

/// The .shp and .shx of a shapefile of polygons, written record by record.
///
/// Shells are stored clockwise and holes counter-clockwise, whatever way they run in memory, as the format has it.
class ShapeRecords {
  public:
    /// \param stem path of a shapefile that exists and holds no record, without its extension.
    /// \throws RuntimeError (system error) when it cannot be opened.
    explicit ShapeRecords(const std::string& stem);
    ~ShapeRecords();

    /// Appends a feature; an empty one becomes a null shape. The .shp must not pass 2 GB by it.
    /// \throws RuntimeError 61 when the device is full, or the system's error.
    void append(const polygons::PolygonSet& polygons, std::size_t feature);
    /// Size of the .shp with all that was appended.
    std::int64_t size() const noexcept { return m_size; }
    /// Writes what is buffered and states size and extent in the headers. \throws RuntimeError as append() does.
    void flush();
    /// Flushes and closes. \throws RuntimeError as append() does.
    void close();

  private:
    struct State;

    std::unique_ptr<State> m_state;
    std::int64_t m_size;
};

}  // namespace kestrel::data

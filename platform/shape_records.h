// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "platform/appended_file.h"
#include "platform/polygons.h"

namespace kestrel::platform {

/// Bytes that a feature takes in a .shp.
std::int64_t shape_size(const PolygonSet& polygons, std::size_t feature) noexcept;

/// The .shp and .shx of a shapefile of polygons, written record by record.
///
/// Shells are stored clockwise and holes counter-clockwise, whatever way they run in memory, as the format has it.
class ShapeRecords {
  public:
    /// \param stem path of a shapefile that exists and holds no record, without its extension.
    explicit ShapeRecords(const std::string& stem);

    /// Appends a feature; an empty one becomes a null shape. The .shp must not pass 2 GB by it.
    void append(const PolygonSet& polygons, std::size_t feature);
    /// Size of the .shp with all that was appended.
    std::int64_t size() const noexcept { return m_shapes.end(); }
    /// Writes what is buffered and states size and extent in the headers. \throws RuntimeError as AppendedFile does.
    void flush();
    /// Flushes and closes. \throws RuntimeError as AppendedFile does.
    void close();

  private:
    void append_rings(const PolygonSet& polygons, std::size_t feature);

    AppendedFile m_shapes;
    AppendedFile m_index;
    Envelope m_extent;
    std::int32_t m_count = 0;
};

}  // namespace kestrel::platform

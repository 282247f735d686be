// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/field.h"
#include "platform/polygons.h"
#include "platform/spatial_reference.h"

namespace kestrel::platform {

/// Writes a new polygon shapefile with .dbf, .shx, .prj (when the coordinate system is known) and .cpg (UTF-8).
///
/// Inserted features are buffered until flush() or close(). Numbers are stored with the scale of their field, text is
/// cut only when it is longer than a dBASE field can be (254 bytes), at a character's border.
class ShapefileWriter {
  public:
    /// \param path of the .shp; its folder exists. Existing files of that name are replaced.
    /// \param fields in order; names of at most 10 bytes.
    /// \throws RuntimeError with the path when it cannot be created.
    ShapefileWriter(const std::string& path, std::span<const Field> fields, const SpatialReference& reference);
    /// Closes without throwing; use close() to learn of failures.
    ~ShapefileWriter();
    ShapefileWriter(const ShapefileWriter&) = delete;
    ShapefileWriter& operator=(const ShapefileWriter&) = delete;

    /// \param feature position in `polygons`; an empty one becomes a null shape.
    /// \param values one for each field.
    void insert(const PolygonSet& polygons, std::size_t feature, std::span<const Value> values);
    /// Hands the buffered features to the file.
    void flush();
    /// How often flush() was called.
    int flush_count() const noexcept;
    /// Flushes, closes, and checks that all bytes reached the files.
    /// \throws RuntimeError 61 when the device is full, library failure otherwise.
    void close();

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// Files that make up the shapefile at `path`, those that exist: .shp, .shx, .dbf, .prj, .cpg, .qix, .sbn, .sbx,
/// .shp.xml and their like.
std::vector<std::string> shapefile_members(const std::string& path);

}  // namespace kestrel::platform

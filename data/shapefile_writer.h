// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "data/field.h"
#include "data/spatial_reference.h"
#include "polygons/polygons.h"

namespace kestrel::data {

/// Writes a new polygon shapefile with .dbf, .shx, .prj (when the coordinate system is known) and .cpg (UTF-8).
///
/// Inserted features are buffered until flush() or close(). Numbers are stored with the scale of their field; a field
/// of whole numbers or of text grows when a value needs more room. Text is cut only when it is longer than a dBASE
/// field can be (254 bytes), at a character's border.
class ShapefileWriter {
  public:
    /// \param path of the .shp; its folder exists. Existing files of that name are replaced.
    /// \param fields in order; names of at most 10 bytes. A length of 0 stands for 254 characters of text, the digits
    ///        that the integer type needs, or a real of 32 digits with 15 decimals.
    /// \throws RuntimeError with the path when it cannot be created.
    ShapefileWriter(const std::string& path, std::span<const Field> fields, const SpatialReference& reference);
    /// Closes without throwing; use close() to learn of failures.
    ~ShapefileWriter();
    ShapefileWriter(const ShapefileWriter&) = delete;
    ShapefileWriter& operator=(const ShapefileWriter&) = delete;

    /// \param feature position in `polygons`; an empty one becomes a null shape.
    /// \param values one for each field; NULL stays NULL.
    /// \throws RuntimeError 13 when a value does not suit its field's type, 6 when a number is too large for its field,
    ///         61 when the device is full or a file would pass 2 GB, library failure otherwise.
    void insert(const polygons::PolygonSet& polygons, std::size_t feature, std::span<const Value> values);
    /// Hands the buffered features to the files. \throws RuntimeError as insert() does.
    void flush();
    /// How often flush() was called.
    int flush_count() const noexcept;
    /// Writes what is buffered, closes, and checks that all bytes are in the files.
    /// \throws RuntimeError 61 when the device is full, 57 or library failure otherwise.
    void close();

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace kestrel::data

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "data/class_breaks.h"
#include "data/raster.h"
#include "data/spatial_reference.h"

namespace kestrel::data {

/// How a class of a raster is named and drawn.
struct RasterClass {
    std::uint8_t value = 0;
    std::string name;
    Colour colour;
};

/// What a new raster of class codes is like.
struct RasterDefinition {
    Grid grid;
    SpatialReference reference;
    std::optional<std::uint8_t> nodata{};
    /// Become the colour table, and the raster attribute table in the side file NAME.tif.aux.xml.
    std::vector<RasterClass> classes{};
};

/// Writes a raster of one byte a cell as a tiled, compressed GeoTIFF. The same cells give the same file.
class RasterWriter {
  public:
    /// \param path of the .tif; its folder exists. An existing file is replaced.
    /// \throws RuntimeError (library failure) when it cannot be created.
    RasterWriter(const std::string& path, const RasterDefinition& definition);
    /// Closes without throwing; use close() to learn of failures.
    ~RasterWriter();
    RasterWriter(const RasterWriter&) = delete;
    RasterWriter& operator=(const RasterWriter&) = delete;

    /// Writes rows [first_row, first_row + count), row by row in `cells`. Fastest in ascending order.
    /// \throws RuntimeError when the rows cannot be written.
    void write_rows(int first_row, int count, std::span<const std::uint8_t> cells);
    /// Closes, and checks that everything reached the file.
    void close();

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace kestrel::data

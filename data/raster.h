// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "data/spatial_reference.h"
#include "data/tile_lines.h"
#include "polygons/polygons.h"

namespace kestrel::data {

/// The cells of a raster in map units: columns run east, rows run away from the first row.
struct Grid {
    /// The outer corner of the first cell.
    double x0 = 0;
    double y0 = 0;
    /// East-west size of a cell, positive.
    double dx = 1;
    /// Step from one row to the next: negative where the first row is the northernmost, positive where it is the
    /// southernmost.
    double dy = -1;
    int columns = 0;
    int rows = 0;

    /// The grid line at the near side of `column`, `row`; `columns` and `rows` give the far edges.
    double line_x(int column) const noexcept { return x0 + column * dx; }
    double line_y(int row) const noexcept { return y0 + row * dy; }
    double centre_x(int column) const noexcept { return x0 + (column + 0.5) * dx; }
    double centre_y(int row) const noexcept { return y0 + (row + 0.5) * dy; }
    /// Area of a cell in square map units.
    double cell_area() const noexcept { return dx * (dy < 0 ? -dy : dy); }
    polygons::Envelope extent() const noexcept {
        polygons::Envelope result;
        result.add({line_x(0), line_y(0)});
        result.add({line_x(columns), line_y(rows)});
        return result;
    }
};

/// A rectangle of cells.
struct CellWindow {
    int first_column = 0;
    int first_row = 0;
    int columns = 0;
    int rows = 0;
};

/// How the cells of a raster are held in memory while they are counted.
enum class CellType {
    byte,   // 0 to 255
    int32,  // any other class codes
    wide,   // 64 bits: NODATA comes from a mask, or the stored type can hold more than a class code may be
};

/// Cells of a window, row by row; the array of the raster's cell type is in use.
struct CellBuffer {
    std::vector<std::uint8_t> bytes;
    std::vector<std::int32_t> integers;
    std::vector<std::int64_t> wide;
};

/// What a NODATA cell holds in a buffer of wide cells.
inline constexpr std::int64_t kWideNodata = std::numeric_limits<std::int64_t>::min();

/// A land-cover raster: the first band of a dataset that GDAL opens. A handle is used on one thread; every thread opens
/// its own.
class RasterDataset {
  public:
    /// \throws RuntimeError 53 when the file is missing, library failure when it cannot be opened, 5 when it is
    ///         rotated, has no position, no band, or complex values; its text tells what is wrong and what to do.
    static RasterDataset open(const std::string& source);
    /// A handle of its own on the same raster, for another thread. \throws RuntimeError as open() does.
    RasterDataset reopened() const;

    const std::string& source() const noexcept;
    const Grid& grid() const noexcept;
    const SpatialReference& spatial_reference() const noexcept;
    CellType cell_type() const noexcept;
    /// Whether the cells are stored in a type that can hold what is no class code, so that all have to be looked at.
    bool needs_checking() const noexcept;
    /// The value that marks NODATA in byte or int32 buffers; nothing when no cell is NODATA or the cells are wide.
    std::optional<std::int32_t> nodata_value() const noexcept;
    /// Whether the raster declares NODATA in any way: a value, a mask or an alpha band.
    bool declares_nodata() const noexcept;
    /// The lines between stored blocks, or groups of them where they are small. Tiles of cells that need checking are
    /// as wide as the raster.
    const TileLines& tile_lines() const noexcept;
    /// Bands that hold data, without an alpha band; more than one draws a notice.
    int data_band_count() const noexcept;

    /// Reads a window that lies inside the raster; quickest where it is a tile.
    /// \throws RuntimeError 57 when it cannot be read, 5 when a value is no class code (fractional, or beyond a signed
    ///         32-bit integer); the description names the first such value with its row and column, counted from 1.
    void read(const CellWindow& window, CellBuffer& buffer) const;

  private:
    struct Source;
    explicit RasterDataset(std::shared_ptr<Source> source) : m_source(std::move(source)) {}
    std::shared_ptr<Source> m_source;
};

}  // namespace kestrel::data

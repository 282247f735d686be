// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "data/raster.h"

namespace kestrel::test {

/// A raster file of any stored type and blocking, for tests of how rasters are read.
struct RasterFile {
    data::Grid grid;
    /// Row by row, as numbers.
    std::vector<double> cells;
    /// A GDAL type name: "Byte", "Int8" (signed bytes, whatever this GDAL calls them), "Int16", "UInt16", "Int32",
    /// "UInt32", "Int64", "Float32", "Float64".
    std::string type = "Byte";
    /// Creation options of GeoTIFF, such as "TILED=YES".
    std::vector<std::string> options{};
    std::optional<double> nodata{};
    /// Cells that a mask band hides, row by row; no mask when empty.
    std::vector<std::uint8_t> hidden{};
    /// A coordinate system, such as "EPSG:26912"; none when empty.
    std::string reference{};
};

/// Writes a GeoTIFF; throws std::runtime_error when that fails.
void write_raster(const std::string& path, const RasterFile& raster);

}  // namespace kestrel::test

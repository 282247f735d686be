// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

/// \file
/// How rasters of stored blocks, and mosaics of such rasters, are cut into tiles.
namespace kestrel::data {

/// Where a raster is best cut in order to read every stored block once: ascending, from 0 to the raster's size.
struct TileLines {
    /// Rows at which bands of rows begin, and the number of rows.
    std::vector<int> rows;
    /// Columns at which tiles begin, and the number of columns.
    std::vector<int> columns;
    /// Rows of a tile that are cheap to read together; a band's height or less.
    int rows_at_once = 0;
};

/// The lines between the stored blocks of a raster. Blocks that are low are joined to bands of some hundred rows, and
/// their tiles are as wide as the raster.
TileLines block_lines(int block_columns, int block_rows, int columns, int rows);

/// Size of the blocks in which a raster is stored.
struct BlockSize {
    int columns = 0;
    int rows = 0;
};

/// The lines between the stored blocks of the rasters that a mosaic is put together from, as the mosaic's description
/// (a VRT, first band) gives them. Without lines when it does not: sources that are scaled, do not lie on whole cells,
/// or cut the mosaic into too many tiles.
/// \param otherwise blocks of the sources of which the description does not tell.
TileLines mosaic_lines(const char* vrt_xml, int columns, int rows, BlockSize otherwise);

}  // namespace kestrel::data

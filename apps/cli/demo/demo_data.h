// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "data/raster.h"

namespace kestrel::cli {

/// How large the demonstration is, and which country it shows.
struct DemoSize {
    int columns = 1500;
    int rows = 1200;
    std::uint64_t seed = 1;
};

/// Cells of 30 metres in the equal-area projection of the national land cover.
data::Grid demo_grid(const DemoSize& size);

// Names of what lies in the folder of a demonstration.
inline constexpr const char* kDemoLandCover = "land_cover.tif";
inline constexpr const char* kDemoWatersheds = "watersheds.shp";
inline constexpr const char* kDemoBlocks = "census_blocks.shp";
inline constexpr const char* kDemoMall = "new_mall.shp";
inline constexpr const char* kDemoSubdivision = "subdivision.shp";

/// Writes the land cover, and the polygon layers. The same size gives the same cells and the same polygons.
/// \param folder exists; files of those names are replaced.
void write_demo_land_cover(const std::string& folder, const DemoSize& size);
/// Watersheds with SHED_ID and NAME: some reach beyond the raster, some into the corner that was not mapped.
void write_demo_watersheds(const std::string& folder, const DemoSize& size);
/// Census blocks with BLOCK_ID, POP and POP_DEN, people on a square kilometre.
void write_demo_blocks(const std::string& folder, const DemoSize& size);
/// Two projects at the edge of the largest town, one shapefile each.
void write_demo_scenarios(const std::string& folder, const DemoSize& size);

}  // namespace kestrel::cli

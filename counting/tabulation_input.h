// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "polygons/polygons.h"

namespace kestrel::counting {

/// What lies over the raster. All coordinates are in the raster's coordinate system.
struct TabulationInput {
    /// The zones; required. Where they overlap, the later one owns the cell.
    const polygons::PolygonSet* zones = nullptr;
    /// Polygons that split the zones into pieces (later ones own the cell); may be missing. With an overlay, cells
    /// outside of it are counted with kNoOverlay.
    const polygons::PolygonSet* overlay = nullptr;
    /// Scenarios, each a set of polygons; a cell belongs to a scenario when any of its polygons holds the centre.
    std::vector<const polygons::PolygonSet*> scenarios{};
};

}  // namespace kestrel::counting

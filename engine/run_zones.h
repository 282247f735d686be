// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "engine/zone_keys.h"
#include "polygons/polygons.h"

namespace kestrel {

/// Everything that one pass over the land cover looks at, in the land cover's coordinate system.
struct RunZones {
    polygons::SharedPolygons zones;
    /// The population density polygons; nothing without the per-zone option.
    polygons::SharedPolygons density;
    /// The development scenarios that can be laid over the zones.
    std::vector<polygons::SharedPolygons> scenarios;
    ZoneKeys keys;
};

}  // namespace kestrel

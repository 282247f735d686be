// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "polygons/dissolved_polygons.h"

namespace kestrel::test {

/// The dissolved features in one set.
inline polygons::PolygonSet copy_of(const polygons::DissolvedPolygons& dissolved) {
    polygons::PolygonSet result;
    for (std::size_t group = 0; group < dissolved.feature_count(); ++group) {
        const polygons::DissolvedPolygons::Feature feature = dissolved.feature(group);
        result.append(feature.set, feature.position);
    }
    return result;
}

}  // namespace kestrel::test

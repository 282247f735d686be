// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "platform/dissolved_polygons.h"

namespace kestrel::test {

/// The dissolved features in one set.
inline platform::PolygonSet copy_of(const platform::DissolvedPolygons& dissolved) {
    platform::PolygonSet result;
    for (std::size_t group = 0; group < dissolved.feature_count(); ++group) {
        const platform::DissolvedPolygons::Feature feature = dissolved.feature(group);
        result.append(feature.set, feature.position);
    }
    return result;
}

}  // namespace kestrel::test

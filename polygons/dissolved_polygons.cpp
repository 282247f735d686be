// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/dissolved_polygons.h"

namespace kestrel::polygons {

Envelope DissolvedPolygons::envelope() const noexcept {
    Envelope result;
    for (std::size_t group = 0; group < feature_count(); ++group) {
        const Feature found = feature(group);
        result.include(found.set.envelope(found.position));
    }
    return result;
}

}  // namespace kestrel::polygons

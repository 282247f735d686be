// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/repair.h"

#include <geos_c.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/parallel.h"
#include "polygons/geos_support.h"
#include "polygons/polygon_check.h"

namespace kestrel::polygons {

namespace {

/// The repair that keeps what any part of a feature covers; the other one would cut out what two parts cover.
Geos::Geometry repaired(const Geos& geos, const Geos::Geometry& geometry) {
    GEOSMakeValidParams* const params = GEOSMakeValidParams_create_r(geos.handle());
    GEOSMakeValidParams_setMethod_r(geos.handle(), params, GEOS_MAKE_VALID_STRUCTURE);
    GEOSMakeValidParams_setKeepCollapsed_r(geos.handle(), params, 0);
    GEOSGeometry* const result = GEOSMakeValidWithParams_r(geos.handle(), geometry.get(), params);
    GEOSMakeValidParams_destroy_r(geos.handle(), params);
    return geos.owned(result, "An invalid polygon cannot be repaired");
}

/// Features that are checked as one item of work.
constexpr std::size_t kFeaturesPerItem = 256;

/// Which features are invalid; none when told to stop.
std::vector<std::uint8_t> find_invalid(const PolygonSet& polygons, base::Progress& progress, int threads) {
    const std::size_t count = polygons.feature_count();
    std::vector<std::uint8_t> invalid(count, 0);
    ThreadContexts contexts(threads);
    const std::size_t items = (count + kFeaturesPerItem - 1) / kFeaturesPerItem;
    const bool all =
        base::for_each_item(items, threads, progress, "Checking polygons", [&](std::size_t item, int worker) {
            const std::size_t end = std::min(count, (item + 1) * kFeaturesPerItem);
            for (std::size_t f = item * kFeaturesPerItem; f < end; ++f) {
                if (!polygons.empty(f) && !certainly_valid(polygons, f)) {
                    const Geos& geos = contexts.of(worker);
                    invalid[f] = geos.valid(geos.multipolygon(polygons, f)) ? 0 : 1;
                }
            }
        });
    return all ? invalid : std::vector<std::uint8_t>(count, 0);
}

}  // namespace

std::size_t repair(PolygonSet& polygons) {
    base::NoProgress nobody;
    return repair(polygons, nobody);
}

std::size_t repair(PolygonSet& polygons, base::Progress& progress, int threads) {
    const std::vector<std::uint8_t> invalid = find_invalid(polygons, progress, base::thread_count(threads));
    const auto count = static_cast<std::size_t>(std::count(invalid.begin(), invalid.end(), 1));
    if (count == 0) {
        return 0;
    }
    const Geos geos;
    PolygonSet whole;
    for (std::size_t f = 0; f < invalid.size(); ++f) {
        if (invalid[f] != 0) {
            geos.append(whole, repaired(geos, geos.multipolygon(polygons, f)).get());
        } else {
            whole.append(polygons, f);
        }
    }
    polygons = std::move(whole);
    return count;
}

}  // namespace kestrel::polygons

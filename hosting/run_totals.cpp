// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "hosting/run_totals.h"

#include "base/conversions.h"

namespace kestrel::hosting {

contracts::ZoneResult total_of(const contracts::RunResult& result) {
    contracts::ZoneResult total;
    for (const contracts::ZoneResult& zone : result.zones) {
        total.total_area += zone.total_area;
        total.impervious_area += zone.impervious_area;
        total.cells += zone.cells;
        total.nodata_cells += zone.nodata_cells;
    }
    // Zones have 6 decimals; the sum of so many doubles may have more.
    total.total_area = base::round_to_scale(total.total_area, 6);
    total.impervious_area = base::round_to_scale(total.impervious_area, 6);
    if (total.total_area != 0) {
        total.percent = total.impervious_area / total.total_area * 100;
    }
    return total;
}

}  // namespace kestrel::hosting

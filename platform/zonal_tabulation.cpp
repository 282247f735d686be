// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/zonal_tabulation.h"

#include <memory>

#include "platform/band_counter.h"
#include "platform/parallel.h"

namespace kestrel::platform {

ZoneCounts tabulate(const RasterDataset& raster, const TabulationInput& input, int threads, Progress& progress) {
    const TabulationPlan plan(raster, input);
    const int workers = thread_count(threads);
    std::vector<std::unique_ptr<BandCounter>> counters(static_cast<std::size_t>(workers));
    for_each_item(static_cast<std::size_t>(plan.layers.zones.band_count()), workers, progress, "Counting land cover",
                  [&](std::size_t band, int worker) {
                      auto& counter = counters[static_cast<std::size_t>(worker)];
                      if (!counter) {
                          counter = std::make_unique<BandCounter>(raster.reopened(), plan);
                      }
                      counter->count(static_cast<int>(band));
                  });
    ZoneCounts counts;
    counts.touches_nodata.assign(plan.zone_count, 0);
    for (const auto& counter : counters) {
        if (counter) {
            counter->append_to(counts);
        }
    }
    return counts;
}

}  // namespace kestrel::platform

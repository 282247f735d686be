// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/zonal_tabulation.h"

#include <atomic>
#include <memory>

#include "base/parallel.h"
#include "base/part_of_progress.h"
#include "counting/band_counter.h"

namespace kestrel::counting {

namespace {

/// Of the work; dealing out the edges takes it.
constexpr double kPlanningShare = 0.05;

/// Progress of the counting that raises a flag when it is told to stop: a band of a wide raster is long work.
class StopFlag final : public base::Progress {
  public:
    explicit StopFlag(base::Progress& whole) : m_counting(whole, kPlanningShare, 1) {}

    bool report(double fraction, std::string_view text) override {
        const bool go_on = m_counting.report(fraction, text);
        m_stopped = !go_on;
        return go_on;
    }
    bool cancelled() const override { return m_counting.cancelled(); }
    const std::atomic<bool>& stopped() const { return m_stopped; }

  private:
    base::PartOfProgress m_counting;
    std::atomic<bool> m_stopped = false;
};

/// What all counters have counted, each of which is let go.
ZoneCounts gathered(std::vector<std::unique_ptr<BandCounter>>& counters, std::size_t zone_count) {
    ZoneCounts counts;
    counts.touches_nodata.assign(zone_count, 0);
    std::size_t rows = 0;
    for (const auto& counter : counters) {
        rows += counter->row_count();
    }
    counts.rows.reserve(rows);
    for (auto& counter : counters) {
        counter->append_to(counts);
        counter.reset();
    }
    counts.put_in_order();
    return counts;
}

}  // namespace

ZoneCounts tabulate(const data::RasterDataset& raster, const TabulationInput& input, int threads,
                    base::Progress& progress) {
    const int workers = base::thread_count(threads);
    base::PartOfProgress planning(progress, 0, kPlanningShare);
    const TabulationPlan plan(raster, input, workers, planning);
    if (progress.cancelled()) {
        return {};
    }
    StopFlag counting(progress);
    std::vector<std::unique_ptr<BandCounter>> counters(static_cast<std::size_t>(workers));
    const auto bands = static_cast<std::size_t>(plan.layers.zones.band_count());
    const bool all =
        base::for_each_item(bands, workers, counting, "Counting land cover", [&](std::size_t band, int worker) {
            auto& counter = counters[static_cast<std::size_t>(worker)];
            if (!counter) {
                counter = std::make_unique<BandCounter>(raster.reopened(), plan, counting.stopped());
                // A worker's share of the zones, and some that others meet in their bands too.
                counter->reserve(plan.zone_count / counters.size() * 5 / 4);
            }
            counter->count(static_cast<int>(band));
        });
    if (!all) {
        return {};
    }
    std::erase(counters, nullptr);
    return gathered(counters, plan.zone_count);
}

}  // namespace kestrel::counting

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/zonal_tabulation.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "platform/cell_runs.h"
#include "platform/edge_sweep.h"
#include "platform/piece_counter.h"
#include "platform/row_spans.h"

namespace kestrel::platform {

namespace {

constexpr auto kReportInterval = std::chrono::milliseconds(50);

/// A span of cells that lie in one zone, under one overlay polygon or none, under one set of scenarios.
struct PieceSpan {
    std::int32_t begin = 0;
    std::int32_t end = 0;
    std::uint32_t zone = 0;
    std::uint32_t overlay = kNoOverlay;
    std::uint32_t scenario_set = 0;
};

/// Cuts `pieces` where spans of `cover` begin and end; set(piece, owner) changes the parts that are covered. Both are
/// ascending and disjoint.
template <typename Set>
void cut(std::vector<PieceSpan>& pieces, const std::vector<RowSpan>& cover, std::vector<PieceSpan>& room, Set set) {
    if (cover.empty()) {
        return;
    }
    room.clear();
    std::size_t next = 0;
    for (PieceSpan piece : pieces) {
        while (next < cover.size() && cover[next].end <= piece.begin) {
            ++next;
        }
        for (std::size_t c = next; c < cover.size() && cover[c].begin < piece.end; ++c) {
            if (piece.begin < cover[c].begin) {
                room.push_back(piece);
                room.back().end = cover[c].begin;
                piece.begin = cover[c].begin;
            }
            room.push_back(piece);
            room.back().end = std::min(piece.end, cover[c].end);
            set(room.back(), cover[c].owner);
            piece.begin = room.back().end;
        }
        if (piece.begin < piece.end) {
            room.push_back(piece);
        }
    }
    pieces.swap(room);
}

/// Everything that the bands share and nobody changes.
struct Plan {
    EdgeSweep zones;
    std::optional<EdgeSweep> overlay;
    std::vector<EdgeSweep> scenarios;
    std::size_t zone_count = 0;
    int first_column = 0;
    int end_column = 0;

    Plan(const RasterDataset& raster, const TabulationInput& input);
};

Plan::Plan(const RasterDataset& raster, const TabulationInput& input)
    : zones(*input.zones, raster.grid(), raster.rows_per_band()), zone_count(input.zones->feature_count()) {
    const Grid& grid = raster.grid();
    if (input.overlay != nullptr) {
        overlay.emplace(*input.overlay, grid, raster.rows_per_band());
    }
    for (const PolygonSet* scenario : input.scenarios) {
        scenarios.emplace_back(*scenario, grid, raster.rows_per_band());
    }
    if (raster.needs_checking()) {
        end_column = grid.columns;  // every cell is looked at
        return;
    }
    // Cells that no zone comes near need not be read; one more on each side may be touched.
    const Envelope box = input.zones->envelope();
    if (!box.empty()) {
        const double west = std::floor((box.min_x - grid.x0) / grid.dx) - 2;
        const double east = std::ceil((box.max_x - grid.x0) / grid.dx) + 2;
        first_column = static_cast<int>(std::clamp(west, 0.0, static_cast<double>(grid.columns)));
        end_column = static_cast<int>(std::clamp(east, 0.0, static_cast<double>(grid.columns)));
    }
}

/// Counts bands, one after the other, into tables of its own.
class BandCounter {
  public:
    BandCounter(const std::string& source, const Plan& plan)
        : m_raster(RasterDataset::open(source)), m_plan(plan), m_touched(plan.zone_count, 0) {}

    void count(int band);
    void append_to(ZoneCounts& counts) const;

  private:
    template <typename Cell>
    void count_cells(int band, const std::vector<Cell>& cells, std::optional<Cell> nodata);
    template <typename Cell>
    void find_nodata(const CellWindow& window, const std::vector<Cell>& cells, std::optional<Cell> nodata);
    void mark_touched(int band);
    void mark_covered();
    void lay_out_pieces(std::size_t row);

    RasterDataset m_raster;
    const Plan& m_plan;
    PieceCounter m_counter;
    ScenarioSets m_sets;
    std::vector<std::uint8_t> m_touched;

    // Room that is kept from band to band.
    CellBuffer m_buffer;
    EdgeSweep::Scratch m_scratch;
    std::vector<std::vector<RowSpan>> m_zone_rows;
    std::vector<std::vector<RowSpan>> m_overlay_rows;
    std::vector<std::vector<std::vector<RowSpan>>> m_scenario_rows;
    NodataRuns m_nodata;
    bool m_has_nodata = false;
    std::vector<PieceSpan> m_pieces;
    std::vector<PieceSpan> m_room;
};

void BandCounter::count(int band) {
    if (m_plan.zones.empty(band) && !m_raster.needs_checking()) {
        return;
    }
    const CellWindow window{m_plan.first_column, m_plan.zones.first_row(band), m_plan.end_column - m_plan.first_column,
                            m_plan.zones.row_count(band)};
    if (window.columns == 0) {
        return;
    }
    m_raster.read(window, m_buffer);
    const std::optional<std::int32_t> nodata = m_raster.nodata_value();
    switch (m_raster.cell_type()) {
        case CellType::byte:
            count_cells<std::uint8_t>(band, m_buffer.bytes,
                                      nodata ? std::optional(static_cast<std::uint8_t>(*nodata)) : std::nullopt);
            return;
        case CellType::int32:
            count_cells<std::int32_t>(band, m_buffer.integers, nodata);
            return;
        case CellType::wide:
            count_cells<std::int64_t>(band, m_buffer.wide, std::optional(kWideNodata));
            return;
    }
}

template <typename Cell>
void BandCounter::count_cells(int band, const std::vector<Cell>& cells, std::optional<Cell> nodata) {
    const auto width = static_cast<std::size_t>(m_plan.end_column - m_plan.first_column);
    m_plan.zones.spans(band, m_scratch, m_zone_rows);
    if (m_plan.overlay) {
        m_plan.overlay->spans(band, m_scratch, m_overlay_rows);
    }
    m_scenario_rows.resize(m_plan.scenarios.size());
    for (std::size_t s = 0; s < m_plan.scenarios.size(); ++s) {
        m_plan.scenarios[s].spans(band, m_scratch, m_scenario_rows[s]);
    }
    find_nodata({m_plan.first_column, 0, static_cast<int>(width), static_cast<int>(m_zone_rows.size())}, cells, nodata);
    if (m_has_nodata) {
        mark_touched(band);
    }
    for (std::size_t row = 0; row < m_zone_rows.size(); ++row) {
        lay_out_pieces(row);
        const Cell* line = cells.data() + row * width;
        for (const PieceSpan& span : m_pieces) {
            const std::size_t piece = m_counter.piece(span.zone, span.overlay, span.scenario_set);
            for_each_run(line, static_cast<std::size_t>(span.begin - m_plan.first_column),
                         static_cast<std::size_t>(span.end - m_plan.first_column), [&](Cell value, std::size_t count) {
                             const bool is_nodata = nodata && value == *nodata;
                             m_counter.add(piece, is_nodata ? PieceCounter::kNodata : std::int64_t{value}, count);
                         });
        }
    }
}

/// The runs of NODATA cells of every row.
template <typename Cell>
void BandCounter::find_nodata(const CellWindow& window, const std::vector<Cell>& cells, std::optional<Cell> nodata) {
    m_has_nodata = false;
    m_nodata.resize(static_cast<std::size_t>(window.rows));
    for (auto& row : m_nodata) {
        row.clear();
    }
    if (!nodata) {
        return;
    }
    const auto width = static_cast<std::size_t>(window.columns);
    for (std::size_t row = 0; row < m_nodata.size(); ++row) {
        const Cell* line = cells.data() + row * width;
        const Cell* end = line + width;
        for (const Cell* at = std::find(line, end, *nodata); at != end; at = std::find(at, end, *nodata)) {
            const auto begin = static_cast<std::size_t>(at - line);
            const std::size_t stop = end_of_run(line, begin, width);
            m_nodata[row].push_back({window.first_column + static_cast<std::int32_t>(begin),
                                     window.first_column + static_cast<std::int32_t>(stop), 0});
            m_has_nodata = true;
            at = line + stop;
        }
    }
}

/// A polygon touches a NODATA cell when its border does, or when the cell lies inside, its centre with it.
void BandCounter::mark_touched(int band) {
    m_plan.zones.mark_touching(band, m_nodata, m_touched);
    mark_covered();
}

void BandCounter::mark_covered() {
    for (std::size_t row = 0; row < m_zone_rows.size(); ++row) {
        const auto& runs = m_nodata[row];
        if (runs.empty()) {
            continue;
        }
        for (const RowSpan& span : m_zone_rows[row]) {
            if (m_touched[span.owner] != 0) {
                continue;
            }
            const auto run =
                std::partition_point(runs.begin(), runs.end(), [&](const RowSpan& r) { return r.end <= span.begin; });
            if (run != runs.end() && run->begin < span.end) {
                m_touched[span.owner] = 1;
            }
        }
    }
}

void BandCounter::lay_out_pieces(std::size_t row) {
    resolve_overlaps(m_zone_rows[row]);
    m_pieces.clear();
    for (const RowSpan& span : m_zone_rows[row]) {
        m_pieces.push_back({span.begin, span.end, span.owner, kNoOverlay, 0});
    }
    if (m_plan.overlay) {
        resolve_overlaps(m_overlay_rows[row]);
        cut(m_pieces, m_overlay_rows[row], m_room,
            [](PieceSpan& piece, std::uint32_t owner) { piece.overlay = owner; });
    }
    for (std::uint32_t s = 0; s < m_scenario_rows.size(); ++s) {
        unite(m_scenario_rows[s][row]);
        cut(m_pieces, m_scenario_rows[s][row], m_room,
            [&](PieceSpan& piece, std::uint32_t) { piece.scenario_set = m_sets.with(piece.scenario_set, s); });
    }
}

void BandCounter::append_to(ZoneCounts& counts) const {
    m_counter.append_to(counts, m_sets);
    for (std::size_t i = 0; i < m_touched.size(); ++i) {
        counts.touches_nodata[i] = counts.touches_nodata[i] | m_touched[i];
    }
}

/// The bands of a raster, handed out to threads in ascending order, and how the work stands.
class BandQueue {
  public:
    explicit BandQueue(int bands) : m_bands(bands) {}

    /// The next band, or nothing when all are taken, one has failed, or the work is to stop.
    std::optional<int> take();
    void done();
    /// Keeps the error of the lowest band. Bands are handed out in order, so all lower ones are done or under way, and
    /// the error that is kept does not depend on the threads.
    void failed(int band, std::exception_ptr error);
    void thread_ended();

    /// Reports progress on the calling thread until all threads have ended.
    void watch(int threads, Progress& progress);
    void rethrow() const;

  private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_bands;
    int m_next = 0;
    int m_done = 0;
    int m_ended_threads = 0;
    int m_failed_band = -1;
    bool m_stop = false;
    std::exception_ptr m_error;
};

std::optional<int> BandQueue::take() {
    const std::lock_guard lock(m_mutex);
    if (m_stop || m_next == m_bands) {
        return std::nullopt;
    }
    return m_next++;
}

void BandQueue::done() {
    const std::lock_guard lock(m_mutex);
    ++m_done;
}

void BandQueue::failed(int band, std::exception_ptr error) {
    const std::lock_guard lock(m_mutex);
    m_stop = true;
    if (m_failed_band < 0 || band < m_failed_band) {
        m_failed_band = band;
        m_error = std::move(error);
    }
}

void BandQueue::thread_ended() {
    const std::lock_guard lock(m_mutex);
    ++m_ended_threads;
    m_changed.notify_all();
}

void BandQueue::watch(int threads, Progress& progress) {
    std::unique_lock lock(m_mutex);
    while (!m_changed.wait_for(lock, kReportInterval, [&] { return m_ended_threads == threads; })) {
        const double fraction = static_cast<double>(m_done) / m_bands;
        lock.unlock();
        const bool go_on = progress.report(fraction, "Counting land cover");
        lock.lock();
        m_stop = m_stop || !go_on;
    }
}

void BandQueue::rethrow() const {
    if (m_error) {
        std::rethrow_exception(m_error);
    }
}

void work(BandQueue& queue, const std::string& source, const Plan& plan, std::unique_ptr<BandCounter>& counter) {
    int band = 0;
    try {
        counter = std::make_unique<BandCounter>(source, plan);
        while (const std::optional<int> taken = queue.take()) {
            band = *taken;
            counter->count(band);
            queue.done();
        }
    } catch (...) {
        queue.failed(band, std::current_exception());
    }
    queue.thread_ended();
}

}  // namespace

ZoneCounts tabulate(const RasterDataset& raster, const TabulationInput& input, int threads, Progress& progress) {
    const Plan plan(raster, input);
    const int cores = threads > 0 ? threads : static_cast<int>(std::thread::hardware_concurrency());
    const int wanted = std::clamp(cores, 1, std::max(1, plan.zones.band_count()));
    BandQueue queue(plan.zones.band_count());
    std::vector<std::unique_ptr<BandCounter>> counters(static_cast<std::size_t>(wanted));
    {
        std::vector<std::jthread> pool;
        for (auto& counter : counters) {
            pool.emplace_back([&] { work(queue, raster.source(), plan, counter); });
        }
        queue.watch(wanted, progress);
    }
    queue.rethrow();
    ZoneCounts counts;
    counts.touches_nodata.assign(plan.zone_count, 0);
    for (const auto& counter : counters) {
        counter->append_to(counts);
    }
    progress.report(1, "Counting land cover");
    return counts;
}

}  // namespace kestrel::platform

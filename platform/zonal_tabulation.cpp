// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/zonal_tabulation.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

#include "platform/band_histogram.h"
#include "platform/cell_runs.h"
#include "platform/edge_sweep.h"
#include "platform/parallel.h"
#include "platform/piece_counter.h"
#include "platform/row_spans.h"

namespace kestrel::platform {

namespace {

/// Shorter spans are counted run by run: a histogram for each of many small pieces would cost more than it saves.
constexpr std::size_t kHistogramWidth = 32;

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

/// The value that marks NODATA in byte cells.
std::optional<std::uint8_t> byte_nodata(const RasterDataset& raster) {
    const std::optional<std::int32_t> value = raster.nodata_value();
    return value && raster.cell_type() == CellType::byte ? std::optional(static_cast<std::uint8_t>(*value))
                                                         : std::nullopt;
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
        : m_raster(RasterDataset::open(source)),
          m_plan(plan),
          m_histogram(byte_nodata(m_raster)),
          m_touched(plan.zone_count, 0) {}

    void count(int band);
    void append_to(ZoneCounts& counts) const;

  private:
    template <typename Cell>
    void count_cells(int band, const std::vector<Cell>& cells, std::optional<Cell> nodata);
    template <typename Cell>
    void count_span(const PieceSpan& span, const Cell* cells, std::optional<Cell> nodata);
    template <typename Cell>
    void find_nodata(const CellWindow& window, const std::vector<Cell>& cells, std::optional<Cell> nodata);
    void mark_touched(int band);
    void mark_covered();
    void lay_out_pieces(std::size_t row);

    RasterDataset m_raster;
    const Plan& m_plan;
    PieceCounter m_counter;
    BandHistogram m_histogram;
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
    switch (m_raster.cell_type()) {
        case CellType::byte:
            count_cells<std::uint8_t>(band, m_buffer.bytes, byte_nodata(m_raster));
            return;
        case CellType::int32:
            count_cells<std::int32_t>(band, m_buffer.integers, m_raster.nodata_value());
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
            count_span(span, line + (span.begin - m_plan.first_column), nodata);
        }
    }
    if constexpr (sizeof(Cell) == 1) {
        m_histogram.flush(m_counter);
    }
}

template <typename Cell>
void BandCounter::count_span(const PieceSpan& span, const Cell* cells, std::optional<Cell> nodata) {
    const std::size_t piece = m_counter.piece(span.zone, span.overlay, span.scenario_set);
    const auto width = static_cast<std::size_t>(span.end - span.begin);
    if constexpr (sizeof(Cell) == 1) {
        if (width >= kHistogramWidth) {
            m_histogram.count(piece, cells, width, m_counter);
            return;
        }
    }
    for_each_run(cells, 0, width, [&](Cell value, std::size_t count) {
        const bool is_nodata = nodata && value == *nodata;
        m_counter.add(piece, is_nodata ? PieceCounter::kNodata : std::int64_t{value}, count);
    });
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
        for (std::size_t begin = find_cell(line, 0, width, *nodata); begin < width;) {
            const std::size_t stop = end_of_run(line, begin, width);
            m_nodata[row].push_back({window.first_column + static_cast<std::int32_t>(begin),
                                     window.first_column + static_cast<std::int32_t>(stop), 0});
            m_has_nodata = true;
            begin = find_cell(line, stop, width, *nodata);
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

}  // namespace

ZoneCounts tabulate(const RasterDataset& raster, const TabulationInput& input, int threads, Progress& progress) {
    const Plan plan(raster, input);
    const int workers = thread_count(threads);
    std::vector<std::unique_ptr<BandCounter>> counters(static_cast<std::size_t>(workers));
    for_each_item(static_cast<std::size_t>(plan.zones.band_count()), workers, progress, "Counting land cover",
                  [&](std::size_t band, int worker) {
                      auto& counter = counters[static_cast<std::size_t>(worker)];
                      if (!counter) {
                          counter = std::make_unique<BandCounter>(raster.source(), plan);
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

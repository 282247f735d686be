// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/band_counter.h"

#include <algorithm>
#include <cmath>

#include "base/part_of_progress.h"
#include "counting/cell_runs.h"

namespace kestrel::counting {

namespace {

/// Shorter spans are counted run by run: a histogram for each of many small pieces would cost more than it saves.
constexpr std::size_t kHistogramWidth = 32;

/// The value that marks NODATA in byte cells.
std::optional<std::uint8_t> byte_nodata(const data::RasterDataset& raster) {
    const std::optional<std::int32_t> value = raster.nodata_value();
    return value && raster.cell_type() == data::CellType::byte ? std::optional(static_cast<std::uint8_t>(*value))
                                                               : std::nullopt;
}

LayerSweeps sweeps_of(const data::RasterDataset& raster, const TabulationInput& input, int threads,
                      base::Progress& progress) {
    const double each = 1.0 / static_cast<double>(input.scenarios.size() + 2);
    double begin = 0;
    const auto sweep_of = [&](const polygons::PolygonSet& polygons) {
        base::PartOfProgress part(progress, begin, begin + each);
        begin += each;
        return EdgeSweep(polygons, raster.grid(), raster.tile_lines().rows, threads, part);
    };
    LayerSweeps layers{.zones = sweep_of(*input.zones), .overlay = {}, .scenarios = {}};
    if (input.overlay != nullptr) {
        layers.overlay.emplace(sweep_of(*input.overlay));
    }
    for (const polygons::PolygonSet* scenario : input.scenarios) {
        layers.scenarios.push_back(sweep_of(*scenario));
    }
    return layers;
}

}  // namespace

TabulationPlan::TabulationPlan(const data::RasterDataset& raster, const TabulationInput& input, int threads,
                               base::Progress& progress)
    : layers(sweeps_of(raster, input, threads, progress)), zone_count(input.zones->feature_count()) {
    const data::Grid& grid = raster.grid();
    if (raster.needs_checking()) {
        end_column = grid.columns;  // every cell is looked at
        return;
    }
    const polygons::Envelope box = input.zones->envelope();
    if (!box.empty()) {
        // One more on each side may be touched.
        const double west = std::floor((box.min_x - grid.x0) / grid.dx) - 2;
        const double east = std::ceil((box.max_x - grid.x0) / grid.dx) + 2;
        first_column = static_cast<int>(std::clamp(west, 0.0, static_cast<double>(grid.columns)));
        end_column = static_cast<int>(std::clamp(east, 0.0, static_cast<double>(grid.columns)));
    }
}

BandCounter::BandCounter(data::RasterDataset raster, const TabulationPlan& plan, const std::atomic<bool>& stopped)
    : m_raster(std::move(raster)),
      m_plan(plan),
      m_stopped(stopped),
      m_histogram(byte_nodata(m_raster)),
      m_touched(plan.zone_count, 0) {}

void BandCounter::count(int band) {
    const EdgeSweep& zones = m_plan.layers.zones;
    if (zones.empty(band) && !m_raster.needs_checking()) {
        return;
    }
    m_spans.lay_out(m_plan.layers, band, m_counter, m_sets);
    m_has_nodata = false;
    m_nodata.resize(static_cast<std::size_t>(zones.row_count(band)));
    for (auto& row : m_nodata) {
        row.clear();
    }
    const data::TileLines& lines = m_raster.tile_lines();
    for (int row = 0; row < zones.row_count(band); row += lines.rows_at_once) {
        const int rows = std::min(lines.rows_at_once, zones.row_count(band) - row);
        for (std::size_t i = 0; i + 1 < lines.columns.size() && !m_stopped; ++i) {
            if (lines.columns[i + 1] > m_plan.first_column && lines.columns[i] < m_plan.end_column) {
                count_tile(band, {lines.columns[i], zones.first_row(band) + row,
                                  lines.columns[i + 1] - lines.columns[i], rows});
            }
        }
    }
    m_histogram.flush(m_counter);
    if (m_has_nodata) {
        zones.mark_touching(band, m_nodata, m_touched);
        mark_covered();
    }
}

void BandCounter::count_tile(int band, const data::CellWindow& tile) {
    m_raster.read(tile, m_buffer);
    switch (m_raster.cell_type()) {
        case data::CellType::byte:
            count_cells<std::uint8_t>(band, tile, m_buffer.bytes, byte_nodata(m_raster));
            return;
        case data::CellType::int32:
            count_cells<std::int32_t>(band, tile, m_buffer.integers, m_raster.nodata_value());
            return;
        case data::CellType::wide:
            count_cells<std::int64_t>(band, tile, m_buffer.wide, std::optional(data::kWideNodata));
            return;
    }
}

template <typename Cell>
void BandCounter::count_cells(int band, const data::CellWindow& tile, const std::vector<Cell>& cells,
                              std::optional<Cell> nodata) {
    const auto first_row = static_cast<std::size_t>(tile.first_row - m_plan.layers.zones.first_row(band));
    for (std::size_t row = 0; row < static_cast<std::size_t>(tile.rows); ++row) {
        const Cell* const line = cells.data() + row * static_cast<std::size_t>(tile.columns);
        if (nodata) {
            find_nodata(m_nodata[first_row + row], tile, line, *nodata);
        }
        m_spans.for_each(first_row + row, tile.first_column, tile.first_column + tile.columns,
                         [&](const PieceSpans::Span& span) {
                             count_span(span.piece, line + (span.begin - tile.first_column),
                                        static_cast<std::size_t>(span.end - span.begin), nodata);
                         });
    }
}

template <typename Cell>
void BandCounter::count_span(std::size_t piece, const Cell* cells, std::size_t count, std::optional<Cell> nodata) {
    if constexpr (sizeof(Cell) == 1) {
        if (count >= kHistogramWidth) {
            m_histogram.count(piece, cells, count, m_counter);
            return;
        }
    }
    for_each_run(cells, 0, count, [&](Cell value, std::size_t cells_of_run) {
        const bool is_nodata = nodata && value == *nodata;
        m_counter.add(piece, is_nodata ? PieceCounter::kNodata : std::int64_t{value}, cells_of_run);
    });
}

/// Appends the runs of NODATA cells of a tile's row to those of the tiles west of it.
template <typename Cell>
void BandCounter::find_nodata(std::vector<RowSpan>& runs, const data::CellWindow& tile, const Cell* line, Cell nodata) {
    const auto width = static_cast<std::size_t>(tile.columns);
    for (std::size_t begin = find_cell(line, 0, width, nodata); begin < width;) {
        const std::size_t stop = end_of_run(line, begin, width);
        const std::int32_t first = tile.first_column + static_cast<std::int32_t>(begin);
        const std::int32_t end = tile.first_column + static_cast<std::int32_t>(stop);
        if (!runs.empty() && runs.back().end == first) {
            runs.back().end = end;
        } else {
            runs.push_back({first, end, 0});
        }
        m_has_nodata = true;
        begin = find_cell(line, stop, width, nodata);
    }
}

/// A polygon touches a NODATA cell when its border does, which the sweep tells, or when the cell lies inside, its
/// centre with it.
void BandCounter::mark_covered() {
    const auto& zone_rows = m_spans.zone_rows();
    for (std::size_t row = 0; row < zone_rows.size(); ++row) {
        const auto& runs = m_nodata[row];
        if (runs.empty()) {
            continue;
        }
        for (const RowSpan& span : zone_rows[row]) {
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

void BandCounter::append_to(ZoneCounts& counts) const {
    m_counter.append_to(counts, m_sets);
    for (std::size_t i = 0; i < m_touched.size(); ++i) {
        counts.touches_nodata[i] = counts.touches_nodata[i] | m_touched[i];
    }
}

}  // namespace kestrel::counting

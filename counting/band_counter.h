// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

#include "counting/band_histogram.h"
#include "counting/edge_sweep.h"
#include "counting/piece_counter.h"
#include "counting/piece_spans.h"
#include "counting/tabulation_input.h"
#include "counting/zone_counts.h"
#include "data/raster.h"

namespace kestrel::counting {

/// What all bands share and nobody changes while they are counted.
struct TabulationPlan {
    /// \param threads as thread_count() gives it.
    /// \param progress when it answers stop, the plan must not be used.
    TabulationPlan(const data::RasterDataset& raster, const TabulationInput& input, int threads,
                   base::Progress& progress);

    LayerSweeps layers;
    std::size_t zone_count = 0;
    /// Cells that no zone comes near need not be read: only tiles that reach into these columns are.
    int first_column = 0;
    int end_column = 0;
};

/// Counts bands of rows, one after the other, into tables of its own; used on one thread.
///
/// A band is read tile by tile, so that cells are counted while they are in the processor's cache.
class BandCounter {
  public:
    /// \param raster a handle that nobody else uses.
    /// \param stopped once it is set, what is counted does not matter any more.
    BandCounter(data::RasterDataset raster, const TabulationPlan& plan, const std::atomic<bool>& stopped);

    /// Makes room for that many pieces of zones at once.
    void reserve(std::size_t pieces) { m_counter.reserve(pieces); }
    /// \throws RuntimeError as RasterDataset::read() does.
    void count(int band);
    std::size_t row_count() const noexcept { return m_counter.row_count(); }
    /// Appends all that was counted to `counts`, which is then to be put in order.
    void append_to(ZoneCounts& counts) const;

  private:
    void count_tile(int band, const data::CellWindow& tile);
    template <typename Cell>
    void count_cells(int band, const data::CellWindow& tile, const std::vector<Cell>& cells,
                     std::optional<Cell> nodata);
    template <typename Cell>
    void count_span(std::size_t piece, const Cell* cells, std::size_t count, std::optional<Cell> nodata);
    template <typename Cell>
    void find_nodata(std::vector<RowSpan>& runs, const data::CellWindow& tile, const Cell* line, Cell nodata);
    void mark_covered();

    data::RasterDataset m_raster;
    const TabulationPlan& m_plan;
    const std::atomic<bool>& m_stopped;
    PieceCounter m_counter;
    BandHistogram m_histogram;
    ScenarioSets m_sets;
    std::vector<std::uint8_t> m_touched;

    // Room that is kept from band to band.
    data::CellBuffer m_buffer;
    PieceSpans m_spans;
    NodataRuns m_nodata;
    bool m_has_nodata = false;
};

}  // namespace kestrel::counting

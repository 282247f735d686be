// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "counting/edge_sweep.h"
#include "counting/piece_counter.h"
#include "counting/row_spans.h"
#include "counting/zone_counts.h"

namespace kestrel::counting {

/// The edges of everything that lies over the raster.
struct LayerSweeps {
    EdgeSweep zones;
    std::optional<EdgeSweep> overlay;
    std::vector<EdgeSweep> scenarios;
};

/// The cells of a band, row by row in spans that lie in one piece each: one zone, under one overlay polygon or none,
/// under one set of scenarios. Where several zones or overlay polygons cover a cell, the last of them owns it. Cells of
/// no zone are in no span.
///
/// Made once for a thread and laid out anew for every band. The cells of a band are read in tiles, column of tiles
/// after column of tiles, and each tile asks for the parts of the spans that lie in it.
class PieceSpans {
  public:
    /// The cells [begin, end) of a row, and the piece that they belong to.
    struct Span {
        std::int32_t begin = 0;
        std::int32_t end = 0;
        std::uint32_t piece = 0;
    };

    /// Finds the spans of a band. Pieces get their positions in `counter`, sets of scenarios theirs in `sets`; both go
    /// with one another through all bands. All sweeps have the same grid and bands.
    void lay_out(const LayerSweeps& layers, int band, PieceCounter& counter, ScenarioSets& sets);

    /// The cells of the band in zones, row by row, before later zones take those that several cover.
    const std::vector<std::vector<RowSpan>>& zone_rows() const noexcept { return m_zone_rows; }

    /// Calls take(span) for the parts of a row's spans between two columns.
    /// \pre Parts of a row are asked for from the west to the east, each once and none left out.
    /// \param row counted from the first of the band.
    template <typename Take>
    void for_each(std::size_t row, std::int32_t first_column, std::int32_t end_column, Take take) {
        std::size_t& next = m_next[row];
        while (next < m_begin[row + 1] && m_spans[next].begin < end_column) {
            const Span& span = m_spans[next];
            take(Span{std::max(span.begin, first_column), std::min(span.end, end_column), span.piece});
            if (span.end > end_column) {
                return;  // the rest of it lies in the next part
            }
            ++next;
        }
    }

  private:
    struct Part {
        std::int32_t begin = 0;
        std::int32_t end = 0;
        std::uint32_t zone = 0;
        std::uint32_t overlay = kNoOverlay;
        std::uint32_t scenario_set = 0;
    };

    template <typename Set>
    void cut(const std::vector<RowSpan>& cover, Set set);
    void lay_out_row(const LayerSweeps& layers, std::size_t row, ScenarioSets& sets);

    std::vector<Span> m_spans;
    std::vector<std::size_t> m_begin;  // of each row's spans
    std::vector<std::size_t> m_next;   // the first span of each row that has not been handed out

    // Room that is kept from band to band.
    EdgeSweep::Scratch m_scratch;
    std::vector<std::vector<RowSpan>> m_zone_rows;
    std::vector<std::vector<RowSpan>> m_overlay_rows;
    std::vector<std::vector<std::vector<RowSpan>>> m_scenario_rows;
    std::vector<RowSpan> m_row;
    std::vector<Part> m_parts;
    std::vector<Part> m_room;
};

}  // namespace kestrel::counting

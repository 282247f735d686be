// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/progress.h"
#include "counting/row_spans.h"
#include "data/raster.h"
#include "polygons/polygons.h"

namespace kestrel::counting {

/// The NODATA cells of a band: for each row of it, disjoint ascending runs of columns.
using NodataRuns = std::vector<std::vector<RowSpan>>;

/// The edges of polygons, dealt out to the bands of rows that they reach, so that each band is swept by itself, in any
/// order and on any thread.
///
/// Holds 8 bytes for every edge and band that the edge reaches; the polygons outlive it. All decisions are exact on the
/// given coordinates: where rounding could matter, the position of the point is decided by orientation().
class EdgeSweep {
  public:
    /// \param polygons in the grid's coordinate system; rings may run either way.
    /// \param band_lines rows at which bands begin, ascending from 0, and the grid's number of rows.
    /// \param threads that may be used, as thread_count() gives it. The result does not depend on it.
    /// \param progress hears the share that is done. When it answers stop, the sweep must not be used.
    EdgeSweep(const polygons::PolygonSet& polygons, const data::Grid& grid, std::vector<int> band_lines, int threads,
              base::Progress& progress);
    /// Bands of equal height, the last may be lower; on one thread.
    EdgeSweep(const polygons::PolygonSet& polygons, const data::Grid& grid, int rows_per_band);

    int band_count() const noexcept { return static_cast<int>(m_band_begin.size()) - 1; }
    /// Whether no edge reaches the band; then no polygon has a cell in it.
    bool empty(int band) const noexcept { return m_band_begin[index(band)] == m_band_begin[index(band) + 1]; }
    /// First row of the band, and how many there are.
    int first_row(int band) const noexcept { return m_band_lines[index(band)]; }
    int row_count(int band) const noexcept { return m_band_lines[index(band) + 1] - m_band_lines[index(band)]; }

    /// Room that spans() works in; one for each thread, kept from band to band.
    struct Scratch {
        struct Crossing {
            std::uint32_t feature = 0;
            std::int32_t column = 0;
        };
        std::vector<std::vector<Crossing>> rows;
    };

    /// The cells whose centres lie in polygons: for each row of the band the spans of every feature, features
    /// ascending. Spans of one feature are disjoint and ascending; those of several may overlap.
    /// A centre on an edge belongs to the polygon on its east, or on its north where the edge is level.
    void spans(int band, Scratch& scratch, std::vector<std::vector<RowSpan>>& rows) const;

    /// Sets touched[feature] for every feature with an edge that meets the closed square of a NODATA cell of the band.
    void mark_touching(int band, const NodataRuns& nodata, std::vector<std::uint8_t>& touched) const;

  private:
    struct Edge {
        std::uint32_t first_point = 0;
        std::uint32_t feature = 0;
    };
    /// An edge with its ends in ascending order of y, so that polygons on both sides of it compute the same numbers.
    struct UpwardEdge {
        polygons::Point low;
        polygons::Point high;
    };
    /// Rows or columns, both ends included.
    struct CellRange {
        int first = 0;
        int last = -1;
    };

    static std::size_t index(int i) noexcept { return static_cast<std::size_t>(i); }
    void set_tolerances();
    void set_bands();
    void deal_out_edges(int threads, base::Progress& progress);
    template <typename Take>
    void for_each_edge(std::size_t first_feature, std::size_t end_feature, Take take) const;
    UpwardEdge upward(const Edge& edge) const noexcept;
    CellRange rows_touched(polygons::Point a, polygons::Point b) const noexcept;
    CellRange columns_touched(double west, double east) const noexcept;
    void add_crossings(const Edge& edge, int band, Scratch& scratch) const;
    int column_of_crossing(const UpwardEdge& edge, double slope, double y) const;
    void pair_crossings(std::vector<Scratch::Crossing>& crossings, std::vector<RowSpan>& row) const;
    int band_of(int row) const noexcept { return m_band_of_row[index(row)]; }
    bool touches(const UpwardEdge& edge, int row, const std::vector<RowSpan>& nodata) const;

    const polygons::PolygonSet& m_polygons;
    data::Grid m_grid;
    std::vector<int> m_band_lines;
    std::vector<int> m_band_of_row;
    double m_rows_per_unit = 1;
    double m_columns_per_unit = 1;
    /// How far from a whole number a computed row or column position has to be to be trusted.
    double m_row_tolerance = 0;
    double m_column_tolerance = 0;
    std::vector<std::size_t> m_band_begin;
    std::vector<Edge> m_edges;
};

/// Whether the segment from `a` to `b` shares a point with the closed rectangle; decided exactly.
bool segment_touches(polygons::Point a, polygons::Point b, const polygons::Envelope& rectangle);

}  // namespace kestrel::counting

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/edge_sweep.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <span>
#include <utility>

#include "base/errors.h"
#include "base/parallel.h"
#include "base/part_of_progress.h"
#include "polygons/orientation.h"

namespace kestrel::counting {

namespace {

/// Bound of the error of (coordinate - origin) / step: a few roundings of numbers as large as the coordinates.
double position_tolerance(double lowest, double highest, double origin, double step) {
    const double magnitude = std::max({std::abs(lowest), std::abs(highest), std::abs(origin)});
    return 32 * std::numeric_limits<double>::epsilon() * magnitude / std::abs(step) + 1e-12;
}

std::vector<int> equal_bands(int rows, int rows_per_band) {
    std::vector<int> lines;
    for (int row = 0; row < rows; row += rows_per_band) {
        lines.push_back(row);
    }
    lines.push_back(rows);
    return lines;
}

constexpr const char* kText = "Counting land cover";
/// Of the work of dealing out edges.
constexpr double kCountingShare = 0.5;

/// Where to cut the features into parts of some ten thousand points: the first of each part, and their number.
std::vector<std::size_t> feature_lines(const polygons::PolygonSet& polygons) {
    constexpr std::size_t kPointsPerPart = 50'000;
    std::vector<std::size_t> lines{0};
    std::size_t points = 0;
    for (std::size_t feature = 0; feature < polygons.feature_count(); ++feature) {
        for (std::size_t r = polygons.first_ring_of(feature); r < polygons.first_ring_of(feature + 1); ++r) {
            points += polygons.ring(r).size();
        }
        if (points >= kPointsPerPart) {
            lines.push_back(feature + 1);
            points = 0;
        }
    }
    if (lines.back() < polygons.feature_count()) {
        lines.push_back(polygons.feature_count());
    }
    return lines;
}

/// The whole number at or below a position, kept within bounds; quicker than a rounding function where there is no
/// instruction for it.
int floor_within(double position, int lowest, int highest) {
    if (!(position > lowest)) {
        return lowest;
    }
    if (position >= highest) {
        return highest;
    }
    const int cut_off = static_cast<int>(position);
    return cut_off - (cut_off > position ? 1 : 0);
}

/// The whole number at or above a position, kept within bounds.
int ceil_within(double position, int lowest, int highest) {
    return -floor_within(-position, -highest, -lowest);
}

}  // namespace

EdgeSweep::EdgeSweep(const polygons::PolygonSet& polygons, const data::Grid& grid, int rows_per_band)
    : m_polygons(polygons), m_grid(grid), m_band_lines(equal_bands(grid.rows, rows_per_band)) {
    base::NoProgress nobody;
    set_tolerances();
    set_bands();
    deal_out_edges(1, nobody);
}

EdgeSweep::EdgeSweep(const polygons::PolygonSet& polygons, const data::Grid& grid, std::vector<int> band_lines,
                     int threads, base::Progress& progress)
    : m_polygons(polygons), m_grid(grid), m_band_lines(std::move(band_lines)) {
    set_tolerances();
    set_bands();
    deal_out_edges(threads, progress);
}

void EdgeSweep::set_tolerances() {
    m_rows_per_unit = 1 / m_grid.dy;
    m_columns_per_unit = 1 / m_grid.dx;
    polygons::Envelope box = m_polygons.envelope();
    box.include(m_grid.extent());
    m_row_tolerance = position_tolerance(box.min_y, box.max_y, m_grid.y0, m_grid.dy);
    m_column_tolerance = position_tolerance(box.min_x, box.max_x, m_grid.x0, m_grid.dx);
}

void EdgeSweep::set_bands() {
    for (int band = 0; band + 1 < static_cast<int>(m_band_lines.size()); ++band) {
        m_band_of_row.resize(index(m_band_lines[index(band) + 1]), band);
    }
}

/// A counting sort by band; within a band the edges stay in the order of the features. Each part of the features counts
/// and places its own edges, so that parts can be worked on at the same time.
void EdgeSweep::deal_out_edges(int threads, base::Progress& progress) {
    if (m_polygons.point_count() > std::numeric_limits<std::uint32_t>::max()) {
        throw base::RuntimeError(base::kOutOfMemory,
                                 "The polygons have more than 4,294,967,295 vertices: split the layer");
    }
    const std::size_t bands = m_band_lines.size() - 1;
    const std::vector<std::size_t> lines = feature_lines(m_polygons);
    const std::size_t parts = lines.size() - 1;
    std::vector<std::vector<std::size_t>> next(parts);
    const auto for_each_band_of_an_edge = [&](std::size_t part, auto take) {
        for_each_edge(lines[part], lines[part + 1], [&](const Edge& edge, CellRange rows) {
            for (int band = band_of(rows.first); band <= band_of(rows.last); ++band) {
                take(next[part][index(band)], edge);
            }
        });
    };
    base::PartOfProgress counting(progress, 0, kCountingShare);
    const bool counted = base::for_each_item(parts, threads, counting, kText, [&](std::size_t part, int) {
        next[part].assign(bands, 0);
        for_each_band_of_an_edge(part, [](std::size_t& count, const Edge&) { ++count; });
    });
    if (!counted) {
        return;
    }
    m_band_begin.clear();
    std::size_t position = 0;
    for (std::size_t band = 0; band < bands; ++band) {
        m_band_begin.push_back(position);
        for (std::size_t part = 0; part < parts; ++part) {
            position += std::exchange(next[part][band], position);
        }
    }
    m_band_begin.push_back(position);
    m_edges.resize(position);
    base::PartOfProgress placing(progress, kCountingShare, 1);
    base::for_each_item(parts, threads, placing, kText, [&](std::size_t part, int) {
        for_each_band_of_an_edge(part, [&](std::size_t& place, const Edge& edge) { m_edges[place++] = edge; });
    });
}

/// Calls take(edge, rows) for every edge of some features that reaches the grid's rows.
template <typename Take>
void EdgeSweep::for_each_edge(std::size_t first_feature, std::size_t end_feature, Take take) const {
    const std::span<const polygons::Point> all = m_polygons.points();
    for (std::size_t feature = first_feature; feature < end_feature; ++feature) {
        for (std::size_t r = m_polygons.first_ring_of(feature); r < m_polygons.first_ring_of(feature + 1); ++r) {
            const std::span<const polygons::Point> ring = m_polygons.ring(r);
            const auto first = static_cast<std::size_t>(ring.data() - all.data());
            for (std::size_t i = 0; i + 1 < ring.size(); ++i) {
                const CellRange rows = rows_touched(ring[i], ring[i + 1]);
                if (rows.first <= rows.last) {
                    take(Edge{static_cast<std::uint32_t>(first + i), static_cast<std::uint32_t>(feature)}, rows);
                }
            }
        }
    }
}

/// The rows whose closed strip the edge may meet: never too few, rarely one too many.
EdgeSweep::CellRange EdgeSweep::rows_touched(polygons::Point a, polygons::Point b) const noexcept {
    const double from = (a.y - m_grid.y0) * m_rows_per_unit;
    const double to = (b.y - m_grid.y0) * m_rows_per_unit;
    const double lowest = std::min(from, to) - m_row_tolerance;
    const double highest = std::max(from, to) + m_row_tolerance;
    if (!(highest >= 0) || !(lowest < m_grid.rows)) {
        return {};
    }
    return {floor_within(lowest, 0, m_grid.rows - 1), floor_within(highest, 0, m_grid.rows - 1)};
}

EdgeSweep::UpwardEdge EdgeSweep::upward(const Edge& edge) const noexcept {
    const std::span<const polygons::Point> points = m_polygons.points();
    const polygons::Point a = points[edge.first_point];
    const polygons::Point b = points[edge.first_point + 1];
    const bool rises = a.y != b.y ? a.y < b.y : a.x <= b.x;
    return rises ? UpwardEdge{a, b} : UpwardEdge{b, a};
}

void EdgeSweep::spans(int band, Scratch& scratch, std::vector<std::vector<RowSpan>>& rows) const {
    const std::size_t count = index(row_count(band));
    scratch.rows.resize(std::max(scratch.rows.size(), count));
    for (auto& row : scratch.rows) {
        row.clear();
    }
    for (std::size_t e = m_band_begin[index(band)]; e < m_band_begin[index(band) + 1]; ++e) {
        add_crossings(m_edges[e], band, scratch);
    }
    rows.resize(count);
    for (std::size_t r = 0; r < count; ++r) {
        pair_crossings(scratch.rows[r], rows[r]);
    }
}

/// The spans between the crossings of each feature, of which there are two as a rule.
void EdgeSweep::pair_crossings(std::vector<Scratch::Crossing>& crossings, std::vector<RowSpan>& row) const {
    row.clear();
    for (std::size_t i = 0; i < crossings.size();) {
        std::size_t end = i + 1;
        while (end < crossings.size() && crossings[end].feature == crossings[i].feature) {
            ++end;
        }
        if (end - i == 2) {
            if (crossings[i].column > crossings[i + 1].column) {
                std::swap(crossings[i], crossings[i + 1]);
            }
        } else {
            std::sort(crossings.begin() + static_cast<std::ptrdiff_t>(i),
                      crossings.begin() + static_cast<std::ptrdiff_t>(end),
                      [](const auto& a, const auto& b) { return a.column < b.column; });
        }
        for (; i + 1 < end; i += 2) {
            if (crossings[i].column < crossings[i + 1].column) {
                row.push_back({crossings[i].column, crossings[i + 1].column, crossings[i].feature});
            }
        }
        i = end;
    }
}

/// Adds where the edge crosses the lines through the centres of the band's rows. A line through the lower end counts
/// as crossed, one through the upper end does not, so every ring crosses every line an even number of times.
void EdgeSweep::add_crossings(const Edge& edge, int band, Scratch& scratch) const {
    const UpwardEdge e = upward(edge);
    const double at_low = (e.low.y - m_grid.y0) * m_rows_per_unit - 0.5;
    const double at_high = (e.high.y - m_grid.y0) * m_rows_per_unit - 0.5;
    const int band_first = first_row(band);
    const int band_last = band_first + row_count(band) - 1;
    const int first = ceil_within(std::min(at_low, at_high) - m_row_tolerance, band_first, band_last + 1);
    const int last = floor_within(std::max(at_low, at_high) + m_row_tolerance, band_first - 1, band_last);
    if (first > last) {
        return;
    }
    const double slope = e.low.y < e.high.y ? (e.high.x - e.low.x) / (e.high.y - e.low.y) : 0;
    for (int row = first; row <= last; ++row) {
        const double y = m_grid.centre_y(row);
        if (e.low.y <= y && y < e.high.y) {
            scratch.rows[index(row - band_first)].push_back({edge.feature, column_of_crossing(e, slope, y)});
        }
    }
}

/// The first column whose centre is not west of where the edge crosses the line at `y`; the number of columns when
/// there is none.
int EdgeSweep::column_of_crossing(const UpwardEdge& edge, double slope, double y) const {
    const double x = edge.low.x + (y - edge.low.y) * slope;
    const double position = (x - m_grid.x0) * m_columns_per_unit - 0.5;
    const int column = ceil_within(position, 0, m_grid.columns);
    const double beyond = column - position;  // from 0 to 1, but where the bounds have moved the column
    if (beyond > m_column_tolerance && beyond < 1 - m_column_tolerance) {
        return column;
    }
    const int nearest = beyond < 0.5 ? column : column - 1;
    if (std::abs(nearest - position) > m_column_tolerance || nearest < 0 || nearest >= m_grid.columns) {
        return column;
    }
    const bool centre_is_west = polygons::orientation(edge.low, edge.high, {m_grid.centre_x(nearest), y}) > 0;
    return centre_is_west ? nearest + 1 : nearest;
}

namespace {

/// Which columns of a band hold NODATA in some row, in groups of 64 columns.
class NodataColumns {
  public:
    NodataColumns(const NodataRuns& nodata, int columns) : m_before(static_cast<std::size_t>(columns) / kGroup + 2, 0) {
        for (const auto& row : nodata) {
            for (const RowSpan& run : row) {
                for (std::int32_t group = run.begin / kGroup; group <= (run.end - 1) / kGroup; ++group) {
                    m_before[static_cast<std::size_t>(group) + 1] = 1;
                }
            }
        }
        std::partial_sum(m_before.begin(), m_before.end(), m_before.begin());
    }

    bool any(int first, int last) const {
        return first <= last && m_before[static_cast<std::size_t>(last) / kGroup + 1] >
                                    m_before[static_cast<std::size_t>(first) / kGroup];
    }

  private:
    static constexpr int kGroup = 64;
    std::vector<std::uint32_t> m_before;  // groups with NODATA before each group
};

}  // namespace

void EdgeSweep::mark_touching(int band, const NodataRuns& nodata, std::vector<std::uint8_t>& touched) const {
    const int band_first = first_row(band);
    const int band_last = band_first + row_count(band) - 1;
    const NodataColumns near(nodata, m_grid.columns);
    for (std::size_t i = m_band_begin[index(band)]; i < m_band_begin[index(band) + 1]; ++i) {
        if (touched[m_edges[i].feature] != 0) {
            continue;
        }
        const UpwardEdge edge = upward(m_edges[i]);
        const CellRange columns = columns_touched(std::min(edge.low.x, edge.high.x), std::max(edge.low.x, edge.high.x));
        if (!near.any(std::min(columns.first, m_grid.columns - 1), columns.last)) {
            continue;  // most edges are far from NODATA
        }
        const CellRange rows = rows_touched(edge.low, edge.high);
        for (int row = std::max(rows.first, band_first); row <= std::min(rows.last, band_last); ++row) {
            if (touches(edge, row, nodata[index(row - band_first)])) {
                touched[m_edges[i].feature] = 1;
                break;
            }
        }
    }
}

/// The columns whose closed strips may hold a point between `west` and `east`. A point on a grid line touches the cells
/// on both sides of it.
EdgeSweep::CellRange EdgeSweep::columns_touched(double west, double east) const noexcept {
    const double first = (west - m_grid.x0) * m_columns_per_unit - m_column_tolerance;
    const double last = (east - m_grid.x0) * m_columns_per_unit + m_column_tolerance;
    return {floor_within(first - 1, 0, m_grid.columns), floor_within(last, -1, m_grid.columns - 1)};
}

bool EdgeSweep::touches(const UpwardEdge& edge, int row, const std::vector<RowSpan>& nodata) const {
    double west = std::min(edge.low.x, edge.high.x);
    double east = std::max(edge.low.x, edge.high.x);
    const CellRange near = columns_touched(west, east);
    auto run =
        std::partition_point(nodata.begin(), nodata.end(), [&](const RowSpan& span) { return span.end <= near.first; });
    if (run == nodata.end() || run->begin > near.last) {
        return false;
    }
    // Where the edge runs within the row, generously; each NODATA cell there is then decided by itself.
    const double south = std::min(m_grid.line_y(row), m_grid.line_y(row + 1));
    const double north = std::max(m_grid.line_y(row), m_grid.line_y(row + 1));
    if (edge.low.y < edge.high.y) {
        const double slope = (edge.high.x - edge.low.x) / (edge.high.y - edge.low.y);
        const double at_south = edge.low.x + (std::max(south, edge.low.y) - edge.low.y) * slope;
        const double at_north = edge.low.x + (std::min(north, edge.high.y) - edge.low.y) * slope;
        west = std::max(west, std::min(at_south, at_north));
        east = std::min(east, std::max(at_south, at_north));
    }
    const CellRange columns = columns_touched(west, east);
    for (; run != nodata.end() && run->begin <= columns.last; ++run) {
        for (int column = std::max(run->begin, columns.first); column < run->end && column <= columns.last; ++column) {
            const polygons::Envelope square{m_grid.line_x(column), south, m_grid.line_x(column + 1), north};
            if (segment_touches(edge.low, edge.high, square)) {
                return true;
            }
        }
    }
    return false;
}

bool segment_touches(polygons::Point a, polygons::Point b, const polygons::Envelope& rectangle) {
    polygons::Envelope box;
    box.add(a);
    box.add(b);
    if (!box.touches(rectangle)) {
        return false;
    }
    // Boxes that meet are apart only when all corners lie strictly on one side of the segment's line.
    const int corners[] = {polygons::orientation(a, b, {rectangle.min_x, rectangle.min_y}),
                           polygons::orientation(a, b, {rectangle.max_x, rectangle.min_y}),
                           polygons::orientation(a, b, {rectangle.max_x, rectangle.max_y}),
                           polygons::orientation(a, b, {rectangle.min_x, rectangle.max_y})};
    const bool all_left = std::all_of(std::begin(corners), std::end(corners), [](int side) { return side > 0; });
    const bool all_right = std::all_of(std::begin(corners), std::end(corners), [](int side) { return side < 0; });
    return !all_left && !all_right;
}

}  // namespace kestrel::counting

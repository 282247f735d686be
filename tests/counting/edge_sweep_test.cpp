// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/edge_sweep.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "tests/support/exact_reference.h"
#include "tests/support/listening_progress.h"

namespace kestrel::counting {
namespace {

using test::awkward_polygons;
using test::centre_inside;
using test::touches_square;

constexpr int kCases = 1500;

data::Grid small_grid(bool south_up) {
    return {.x0 = 1000.5,
            .y0 = south_up ? -20.25 : 30.25,
            .dx = 1.5,
            .dy = south_up ? 1.25 : -1.25,
            .columns = 23,
            .rows = 19};
}

/// The cells of every feature, as spans of all bands say.
std::vector<std::vector<std::uint8_t>> swept_cells(const polygons::PolygonSet& polygons, const data::Grid& grid,
                                                   int rows_per_band) {
    const EdgeSweep sweep(polygons, grid, rows_per_band);
    const auto columns = static_cast<std::size_t>(grid.columns);
    const std::size_t cells = columns * static_cast<std::size_t>(grid.rows);
    std::vector<std::vector<std::uint8_t>> inside(polygons.feature_count(), std::vector<std::uint8_t>(cells, 0));
    EdgeSweep::Scratch scratch;
    std::vector<std::vector<RowSpan>> rows;
    for (int band = 0; band < sweep.band_count(); ++band) {
        sweep.spans(band, scratch, rows);
        EXPECT_EQ(rows.size(), static_cast<std::size_t>(sweep.row_count(band)));
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (const RowSpan& span : rows[row]) {
                EXPECT_LE(0, span.begin);
                EXPECT_LT(span.begin, span.end);
                EXPECT_LE(span.end, grid.columns);
                const std::size_t line = (static_cast<std::size_t>(sweep.first_row(band)) + row) * columns;
                for (int column = span.begin; column < span.end; ++column) {
                    ++inside[span.owner][line + static_cast<std::size_t>(column)];
                }
            }
        }
    }
    return inside;
}

TEST(EdgeSweep, SpansHoldExactlyTheCellsWhoseCentresLieInside) {
    std::mt19937 random(1);
    for (int i = 0; i < kCases; ++i) {
        const data::Grid grid = small_grid(i % 2 == 1);
        const polygons::PolygonSet polygons = awkward_polygons(random, grid, 6);
        const auto inside = swept_cells(polygons, grid, 1 + i % 7);
        for (std::size_t feature = 0; feature < polygons.feature_count(); ++feature) {
            for (int row = 0; row < grid.rows; ++row) {
                for (int column = 0; column < grid.columns; ++column) {
                    ASSERT_EQ(inside[feature][static_cast<std::size_t>(row * grid.columns + column)],
                              centre_inside(polygons, feature, grid, column, row) ? 1 : 0)
                        << "case " << i << ", feature " << feature << ", row " << row << ", column " << column;
                }
            }
        }
    }
}

TEST(EdgeSweep, PolygonsThatShareBordersOwnEveryCellOnce) {
    std::mt19937 random(2);
    for (int i = 0; i < 300; ++i) {
        const data::Grid grid = small_grid(i % 2 == 1);
        const polygons::PolygonSet polygons = test::coverage(random, grid, 2 + i % 5, 2 + i % 4);
        const auto inside = swept_cells(polygons, grid, 4);
        for (std::size_t cell = 0; cell < inside.front().size(); ++cell) {
            int owners = 0;
            for (const auto& feature : inside) {
                owners += feature[cell];
            }
            ASSERT_EQ(owners, 1) << "case " << i << ", cell " << cell;
        }
    }
}

TEST(EdgeSweep, ACentreOnABorderBelongsToTheEastAndToTheNorth) {
    const data::Grid grid{.x0 = 0, .y0 = 4, .dx = 1, .dy = -1, .columns = 4, .rows = 4};
    polygons::PolygonSet polygons;
    for (const polygons::Point low :
         {polygons::Point{0.5, 0.5}, polygons::Point{1.5, 0.5}, polygons::Point{0.5, 1.5}}) {
        polygons.begin_feature();
        polygons.begin_polygon();
        polygons.begin_ring();
        for (const polygons::Point p : {low, polygons::Point{low.x + 1, low.y}, polygons::Point{low.x + 1, low.y + 1},
                                        polygons::Point{low.x, low.y + 1}, low}) {
            polygons.add(p);
        }
    }
    const auto inside = swept_cells(polygons, grid, 2);
    // Each unit square has four cell centres at its corners and owns the one in its south-west.
    EXPECT_EQ(inside[0][3 * 4 + 0], 1);
    EXPECT_EQ(inside[1][3 * 4 + 1], 1);
    EXPECT_EQ(inside[2][2 * 4 + 0], 1);
    for (const auto& feature : inside) {
        EXPECT_EQ(std::count(feature.begin(), feature.end(), 1), 1);
    }
}

TEST(EdgeSweep, MarksExactlyTheFeaturesWhoseBorderMeetsANodataSquare) {
    std::mt19937 random(3);
    for (int i = 0; i < kCases; ++i) {
        const data::Grid grid = small_grid(i % 2 == 1);
        const polygons::PolygonSet polygons = awkward_polygons(random, grid, 6);
        const EdgeSweep sweep(polygons, grid, 1 + i % 5);
        // One NODATA cell alone, or a run of two.
        const int row = std::uniform_int_distribution<int>(0, grid.rows - 1)(random);
        const int column = std::uniform_int_distribution<int>(0, grid.columns - 2)(random);
        const int width = 1 + i % 2;
        std::vector<std::uint8_t> touched(polygons.feature_count(), 0);
        for (int band = 0; band < sweep.band_count(); ++band) {
            NodataRuns nodata(static_cast<std::size_t>(sweep.row_count(band)));
            const int within = row - sweep.first_row(band);
            if (within >= 0 && within < sweep.row_count(band)) {
                nodata[static_cast<std::size_t>(within)].push_back({column, column + width, 0});
            }
            sweep.mark_touching(band, nodata, touched);
        }
        for (std::size_t feature = 0; feature < polygons.feature_count(); ++feature) {
            bool expected = false;
            bool covers = false;
            for (int c = column; c < column + width; ++c) {
                expected = expected || touches_square(polygons, feature, grid, c, row);
                covers = covers || centre_inside(polygons, feature, grid, c, row);
            }
            // A feature that covers the square without an edge in it is found by its spans, not by its edges.
            if (touched[feature] != 0 || !covers) {
                ASSERT_EQ(touched[feature] != 0, expected)
                    << "case " << i << ", feature " << feature << ", row " << row << ", column " << column;
            }
        }
    }
}

TEST(EdgeSweep, SegmentsTouchingARectangleAtACornerOrAlongASideCount) {
    const polygons::Envelope square{1, 1, 2, 2};
    EXPECT_TRUE(segment_touches({0, 2}, {2, 0}, square));  // through the corner (1, 1)
    EXPECT_TRUE(segment_touches({2, 0}, {2, 5}, square));  // along the east side
    EXPECT_TRUE(segment_touches({1.2, 1.2}, {1.3, 1.3}, square));
    EXPECT_TRUE(segment_touches({2, 2}, {2, 2}, square));
    EXPECT_TRUE(segment_touches({0, 0}, {3, 3}, square));
    EXPECT_FALSE(segment_touches({0, 1.9999999999999998}, {1.9999999999999998, 0}, square));
    EXPECT_FALSE(segment_touches({2.0000000000000004, 0}, {2.0000000000000004, 5}, square));
    EXPECT_FALSE(segment_touches({0, 0}, {0.9999999999999999, 3}, square));
}

/// Stars of many points that overlap: more than are dealt out as one piece of work.
polygons::PolygonSet stars(const data::Grid& grid, int count, int points) {
    polygons::PolygonSet polygons;
    std::mt19937 random(8);
    std::uniform_real_distribution<double> share(0, 1);
    for (int i = 0; i < count; ++i) {
        const polygons::Point centre{grid.x0 + grid.columns * grid.dx * share(random),
                                     grid.y0 + grid.rows * grid.dy * share(random)};
        polygons.begin_feature();
        polygons.begin_polygon();
        polygons.begin_ring();
        polygons::Point first;
        for (int p = 0; p < points; ++p) {
            const double angle = 2 * std::numbers::pi * p / points;
            const double radius = 4 + 3 * share(random);
            const polygons::Point at{centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)};
            first = p == 0 ? at : first;
            polygons.add(at);
        }
        polygons.add(first);
    }
    return polygons;
}

TEST(EdgeSweep, IsTheSameWithAnyNumberOfThreads) {
    const data::Grid grid = small_grid(false);
    const polygons::PolygonSet polygons = stars(grid, 97, 3000);
    const std::vector<int> lines{0, 5, 6, 12, grid.rows};
    const auto rows_of = [&](int threads) {
        base::NoProgress nobody;
        const EdgeSweep sweep(polygons, grid, lines, threads, nobody);
        EdgeSweep::Scratch scratch;
        std::vector<std::vector<std::vector<RowSpan>>> bands(lines.size() - 1);
        for (int band = 0; band < sweep.band_count(); ++band) {
            sweep.spans(band, scratch, bands[static_cast<std::size_t>(band)]);
        }
        return bands;
    };
    const auto one = rows_of(1);
    ASSERT_GT(one[2][0].size(), 50U);
    EXPECT_EQ(rows_of(2), one);
    EXPECT_EQ(rows_of(5), one);
    // By bands of one height, row by row.
    const auto cells = swept_cells(polygons, grid, 3);
    std::vector<std::vector<std::uint8_t>> same(cells.size(), std::vector<std::uint8_t>(cells[0].size(), 0));
    for (std::size_t band = 0; band < one.size(); ++band) {
        for (std::size_t row = 0; row < one[band].size(); ++row) {
            for (const RowSpan& span : one[band][row]) {
                const std::size_t line =
                    (static_cast<std::size_t>(lines[band]) + row) * static_cast<std::size_t>(grid.columns);
                for (int column = span.begin; column < span.end; ++column) {
                    ++same[span.owner][line + static_cast<std::size_t>(column)];
                }
            }
        }
    }
    EXPECT_EQ(same, cells);
}

TEST(EdgeSweep, StopsWhenToldSo) {
    const data::Grid grid = small_grid(false);
    const polygons::PolygonSet polygons = stars(grid, 97, 3000);
    test::ListeningProgress stop(1);
    const EdgeSweep sweep(polygons, grid, {0, grid.rows}, 2, stop);
    EXPECT_EQ(stop.fractions, std::vector<double>{0}) << "it does not ask again";
}

TEST(EdgeSweep, BandsThatNoEdgeReachesAreEmpty) {
    const data::Grid grid{.x0 = 0, .y0 = 100, .dx = 1, .dy = -1, .columns = 10, .rows = 100};
    polygons::PolygonSet polygons;
    polygons.begin_feature();
    polygons.begin_polygon();
    polygons.begin_ring();
    for (const polygons::Point p :
         {polygons::Point{2, 52}, polygons::Point{8, 52}, polygons::Point{8, 58}, polygons::Point{2, 52}}) {
        polygons.add(p);
    }
    const EdgeSweep sweep(polygons, grid, 10);
    ASSERT_EQ(sweep.band_count(), 10);
    for (int band = 0; band < 10; ++band) {
        EXPECT_EQ(sweep.empty(band), band != 4) << band;
    }
}

TEST(EdgeSweep, LongEdgesAtHugeCoordinatesStayExact) {
    // Edges through cell centres of a grid whose lines are no round binary numbers.
    const data::Grid grid{.x0 = 5000000.1, .y0 = 4000000.7, .dx = 31.5303, .dy = -31.5247, .columns = 40, .rows = 40};
    polygons::PolygonSet polygons;
    polygons.begin_feature();
    polygons.begin_polygon();
    polygons.begin_ring();
    const polygons::Point a{grid.centre_x(3), grid.centre_y(30)};
    const polygons::Point b{grid.centre_x(30), grid.centre_y(30)};
    const polygons::Point c{grid.centre_x(30), grid.centre_y(3)};
    const polygons::Point d{grid.centre_x(3), grid.centre_y(3)};
    for (const polygons::Point p : {a, b, c, d, a}) {
        polygons.add(p);
    }
    const auto inside = swept_cells(polygons, grid, 7);
    for (int row = 0; row < 40; ++row) {
        for (int column = 0; column < 40; ++column) {
            const bool expected = column >= 3 && column < 30 && row > 3 && row <= 30;
            ASSERT_EQ(inside[0][static_cast<std::size_t>(row * 40 + column)], expected ? 1 : 0) << row << " " << column;
        }
    }
}

}  // namespace
}  // namespace kestrel::counting

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/piece_spans.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/exact_reference.h"
#include "tests/support/lattice_polygons.h"

namespace kestrel::counting {
namespace {

using test::box;
using test::features;

constexpr std::int64_t kNoZone = -1;

/// What lies over a raster: zones, perhaps an overlay, and scenarios.
struct Scene {
    data::Grid grid;
    polygons::PolygonSet zones;
    std::optional<polygons::PolygonSet> overlay;
    std::vector<polygons::PolygonSet> scenarios;
    int rows_per_band = 4;

    LayerSweeps sweeps() const {
        LayerSweeps layers{EdgeSweep(zones, grid, rows_per_band), std::nullopt, {}};
        if (overlay) {
            layers.overlay.emplace(*overlay, grid, rows_per_band);
        }
        for (const polygons::PolygonSet& scenario : scenarios) {
            layers.scenarios.emplace_back(scenario, grid, rows_per_band);
        }
        return layers;
    }
};

/// The piece of one cell, by asking every polygon for its centre.
std::int64_t piece_of(const Scene& scene, int column, int row, PieceCounter& counter, ScenarioSets& sets) {
    const int zone = test::owner(scene.zones, scene.grid, column, row);
    if (zone < 0) {
        return kNoZone;
    }
    const int over = scene.overlay ? test::owner(*scene.overlay, scene.grid, column, row) : -1;
    std::uint32_t set = 0;
    for (std::uint32_t s = 0; s < scene.scenarios.size(); ++s) {
        if (test::owner(scene.scenarios[s], scene.grid, column, row) >= 0) {
            set = sets.with(set, s);
        }
    }
    const std::uint32_t overlay = over < 0 ? kNoOverlay : static_cast<std::uint32_t>(over);
    return static_cast<std::int64_t>(counter.piece(static_cast<std::uint32_t>(zone), overlay, set));
}

/// The pieces of a row's cells, asked for in parts that end at the given columns.
std::vector<std::int64_t> cells_of(PieceSpans& spans, std::size_t row, const std::vector<int>& part_ends) {
    std::vector<std::int64_t> cells(static_cast<std::size_t>(part_ends.back()), kNoZone);
    int begin = 0;
    for (const int end : part_ends) {
        int position = begin;
        spans.for_each(row, begin, end, [&](const PieceSpans::Span& span) {
            EXPECT_LE(position, span.begin);
            EXPECT_LT(span.begin, span.end);
            EXPECT_LE(span.end, end);
            position = span.end;
            for (int column = span.begin; column < span.end; ++column) {
                cells[static_cast<std::size_t>(column)] = span.piece;
            }
        });
        begin = end;
    }
    return cells;
}

/// Columns at which the tiles of a raster end.
std::vector<int> random_ends(std::mt19937& random, int columns) {
    std::vector<int> ends;
    const auto widest = 1 + random() % static_cast<unsigned>(columns);
    for (int end = 0; end < columns;) {
        end = std::min(columns, end + 1 + static_cast<int>(random() % widest));
        ends.push_back(end);
    }
    return ends;
}

void compare_with_every_cell(const Scene& scene, PieceSpans& spans, std::mt19937& random, const std::string& what) {
    const LayerSweeps layers = scene.sweeps();
    PieceCounter counter;
    ScenarioSets sets;
    for (int band = 0; band < layers.zones.band_count(); ++band) {
        spans.lay_out(layers, band, counter, sets);
        ASSERT_EQ(spans.zone_rows().size(), static_cast<std::size_t>(layers.zones.row_count(band))) << what;
        const std::vector<int> ends = random_ends(random, scene.grid.columns);
        for (int r = 0; r < layers.zones.row_count(band); ++r) {
            const int row = layers.zones.first_row(band) + r;
            std::vector<std::int64_t> expected;
            for (int column = 0; column < scene.grid.columns; ++column) {
                expected.push_back(piece_of(scene, column, row, counter, sets));
            }
            ASSERT_EQ(cells_of(spans, static_cast<std::size_t>(r), ends), expected) << what << ", row " << row;
        }
    }
}

Scene small_scene() {
    return {.grid = {.x0 = 0, .y0 = 4, .dx = 1, .dy = -1, .columns = 10, .rows = 4},
            .zones = features({{box(1, 0, 6, 4)}, {box(5, 0, 4, 4)}}),
            .overlay = std::nullopt,
            .scenarios = {}};
}

TEST(PieceSpans, TheLaterZoneOwnsTheCellsOfTwo) {
    const Scene scene = small_scene();
    PieceSpans spans;
    PieceCounter counter;
    ScenarioSets sets;
    spans.lay_out(scene.sweeps(), 0, counter, sets);
    const auto first = static_cast<std::int64_t>(counter.piece(0, kNoOverlay, 0));
    const auto second = static_cast<std::int64_t>(counter.piece(1, kNoOverlay, 0));
    EXPECT_EQ(cells_of(spans, 0, {10}), (std::vector<std::int64_t>{kNoZone, first, first, first, first, second, second,
                                                                   second, second, kNoZone}));
    // All that the zones cover, before one took cells from the other.
    EXPECT_EQ(spans.zone_rows()[0], (std::vector<RowSpan>{{1, 7, 0}, {5, 9, 1}}));
}

TEST(PieceSpans, OverlayAndScenariosOutsideOfZonesMakeNoSpan) {
    Scene scene = small_scene();
    scene.overlay = features({{box(0, 0, 10, 4)}});
    scene.scenarios = {features({{box(8, 0, 2, 4)}})};
    PieceSpans spans;
    PieceCounter counter;
    ScenarioSets sets;
    spans.lay_out(scene.sweeps(), 0, counter, sets);
    const auto cells = cells_of(spans, 2, {10});
    EXPECT_EQ(cells[0], kNoZone);
    EXPECT_EQ(cells[9], kNoZone);
    EXPECT_EQ(cells[7], static_cast<std::int64_t>(counter.piece(1, 0, 0)));
    EXPECT_EQ(cells[8], static_cast<std::int64_t>(counter.piece(1, 0, sets.with(0, 0))));
}

TEST(PieceSpans, ASpanThatReachesOverATilesEndIsGivenInParts) {
    const Scene scene = small_scene();
    PieceSpans spans;
    PieceCounter counter;
    ScenarioSets sets;
    spans.lay_out(scene.sweeps(), 0, counter, sets);
    std::vector<std::pair<int, int>> parts;
    const int ends[] = {0, 1, 3, 5, 8, 10};
    for (int i = 0; i < 5; ++i) {
        spans.for_each(1, ends[i], ends[i + 1],
                       [&](const PieceSpans::Span& span) { parts.emplace_back(span.begin, span.end); });
    }
    EXPECT_EQ(parts, (std::vector<std::pair<int, int>>{{1, 3}, {3, 5}, {5, 8}, {8, 9}}));
}

TEST(PieceSpans, EveryCellLiesInTheSpanOfItsPiece) {
    std::mt19937 random(71);
    PieceSpans spans;  // one for all scenes: nothing of the last may remain
    for (int i = 0; i < 1500; ++i) {
        Scene scene;
        scene.grid = {.x0 = 1000.5, .y0 = 30.25, .dx = 1.5, .dy = i % 2 == 0 ? -1.25 : 1.25, .columns = 23, .rows = 11};
        scene.rows_per_band = 1 + i % 6;
        scene.zones = i % 3 == 0 ? test::coverage(random, scene.grid, 1 + i % 4, 2)
                                 : test::awkward_polygons(random, scene.grid, 1 + i % 7);
        if (i % 5 != 0) {
            scene.overlay = i % 4 == 0 ? test::coverage(random, scene.grid, 3, 3)
                                       : test::awkward_polygons(random, scene.grid, i % 5);
        }
        for (int s = 0; s < i % 4; ++s) {
            scene.scenarios.push_back(test::awkward_polygons(random, scene.grid, 1 + s));
        }
        compare_with_every_cell(scene, spans, random, "scene " + std::to_string(i));
    }
}

TEST(PieceSpans, BoxesThroughCellCentresAndCornersLieInTheSpansOfTheirPieces) {
    std::mt19937 random(72);
    PieceSpans spans;
    for (int i = 0; i < 1500; ++i) {
        Scene scene;
        // Every other whole number is a grid line, those between are centres.
        scene.grid = {.x0 = 0, .y0 = 24, .dx = 2, .dy = -2, .columns = 12, .rows = 12};
        scene.rows_per_band = 1 + i % 12;
        scene.zones = test::lattice_boxes(random, 24, 1 + i % 24, 1 + i % 9);
        scene.overlay = test::lattice_boxes(random, 24, 12, i % 6);
        scene.scenarios = {test::lattice_boxes(random, 24, 9, 3), test::lattice_boxes(random, 24, 20, i % 2)};
        compare_with_every_cell(scene, spans, random, "scene " + std::to_string(i));
    }
}

}  // namespace
}  // namespace kestrel::counting

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
//
// The units that a run spends its time in: the sweep, counting under spans, dissolving, checking polygons.
#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <utility>

#include "counting/cell_runs.h"
#include "counting/edge_sweep.h"
#include "counting/piece_counter.h"
#include "counting/piece_spans.h"
#include "counting/row_spans.h"
#include "polygons/dissolve.h"
#include "polygons/edge_cancelling.h"
#include "polygons/polygon_check.h"
#include "tests/support/exact_reference.h"

namespace {

using namespace kestrel::counting;
using namespace kestrel::polygons;
using kestrel::base::NoProgress;
using kestrel::data::Grid;

const Grid kGrid{.x0 = 0, .y0 = 2048, .dx = 1, .dy = -1, .columns = 2048, .rows = 2048};

PolygonSet coverage(int side) {
    std::mt19937 random(1);
    return kestrel::test::coverage(random, kGrid, side, side);
}

/// Cells in runs of about the given length.
std::vector<std::uint8_t> patches(int length) {
    std::mt19937 random(2);
    std::vector<std::uint8_t> cells;
    while (cells.size() < (1U << 20)) {
        const auto run = static_cast<std::size_t>(std::geometric_distribution<int>(1.0 / length)(random) + 1);
        cells.insert(cells.end(), run, static_cast<std::uint8_t>(random() % 16));
    }
    return cells;
}

void SweepSpans(benchmark::State& state) {
    const PolygonSet polygons = coverage(static_cast<int>(state.range(0)));
    const EdgeSweep sweep(polygons, kGrid, 256);
    EdgeSweep::Scratch scratch;
    std::vector<std::vector<RowSpan>> rows;
    for (auto _ : state) {
        for (int band = 0; band < sweep.band_count(); ++band) {
            sweep.spans(band, scratch, rows);
            benchmark::DoNotOptimize(rows.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * kGrid.rows);
}
BENCHMARK(SweepSpans)->Arg(8)->Arg(64);

void CountRuns(benchmark::State& state) {
    const auto cells = patches(static_cast<int>(state.range(0)));
    PieceCounter counter;
    const std::size_t piece = counter.piece(0, kNoOverlay, 0);
    for (auto _ : state) {
        for_each_run(cells.data(), 0, cells.size(),
                     [&](std::uint8_t value, std::size_t count) { counter.add(piece, value, count); });
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(cells.size()));
}
BENCHMARK(CountRuns)->Arg(2)->Arg(12)->Arg(100);

void dissolve_into_one(benchmark::State& state, PolygonSet given) {
    const auto polygons = std::make_shared<const PolygonSet>(std::move(given));
    const std::vector<std::uint32_t> one_group(polygons->feature_count(), 0);
    NoProgress nobody;
    for (auto _ : state) {
        benchmark::DoNotOptimize(dissolve(polygons, one_group, 1, nobody, 1));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(polygons->point_count()));
}

void DissolveByCancelling(benchmark::State& state) {
    dissolve_into_one(state, coverage(static_cast<int>(state.range(0))));
}
BENCHMARK(DissolveByCancelling)->Arg(8)->Arg(64)->UseRealTime();  // another thread does the work

/// Boxes in rows, each row cut elsewhere: corners lie on the borders of neighbours.
PolygonSet bricks(int side) {
    std::mt19937 random(3);
    PolygonSet polygons;
    for (int row = 0; row < side; ++row) {
        double west = 0;
        for (int i = 0; i < side; ++i) {
            const double east = i + 1 + std::uniform_real_distribution<double>(0, 0.9)(random);
            polygons.begin_feature();
            polygons.begin_polygon();
            polygons.begin_ring();
            for (const Point p : {Point{west, row + 0.0}, Point{east, row + 0.0}, Point{east, row + 1.0},
                                  Point{west, row + 1.0}, Point{west, row + 0.0}}) {
                polygons.add(p);
            }
            west = east;
        }
    }
    return polygons;
}

void DissolveByArrangement(benchmark::State& state) {
    dissolve_into_one(state, bricks(static_cast<int>(state.range(0))));
}
BENCHMARK(DissolveByArrangement)->Arg(8)->Arg(64)->UseRealTime();  // another thread does the work

void CountUnderSpans(benchmark::State& state) {
    const PolygonSet polygons = coverage(static_cast<int>(state.range(0)));
    const PolygonSet overlay = coverage(5);
    const LayerSweeps layers{EdgeSweep(polygons, kGrid, 256), EdgeSweep(overlay, kGrid, 256), {}};
    const auto cells = patches(12);  // the same rows again for every band
    PieceSpans spans;
    PieceCounter counter;
    ScenarioSets sets;
    for (auto _ : state) {
        for (int band = 0; band < layers.zones.band_count(); ++band) {
            spans.lay_out(layers, band, counter, sets);
            for (std::size_t row = 0; row < 256; ++row) {
                const std::uint8_t* const line = cells.data() + row * 2048;
                spans.for_each(row, 0, kGrid.columns, [&](const PieceSpans::Span& span) {
                    for_each_run(line, static_cast<std::size_t>(span.begin), static_cast<std::size_t>(span.end),
                                 [&](std::uint8_t value, std::size_t count) { counter.add(span.piece, value, count); });
                });
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * kGrid.rows * kGrid.columns);
}
BENCHMARK(CountUnderSpans)->Arg(8)->Arg(64);

void CheckValidity(benchmark::State& state) {
    const PolygonSet polygons = coverage(64);
    for (auto _ : state) {
        for (std::size_t f = 0; f < polygons.feature_count(); ++f) {
            benchmark::DoNotOptimize(certainly_valid(polygons, f));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(polygons.feature_count()));
}
BENCHMARK(CheckValidity);

}  // namespace

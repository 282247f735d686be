// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/real/expected_output.h"

#include <algorithm>
#include <cstdlib>

namespace kestrel::test {

namespace {

constexpr double kMicrometre = 1e-6;
// A table keeps 6 decimals; a scenario rounds what it takes and what it takes it from to 3.
constexpr double kTableRounding = 0.5e-6;
constexpr double kScenarioRounding = 2 * 0.5e-3;

struct Layers {
    LandCover land_cover;
    Shapes zones;
    Shapes blocks;
    std::vector<Shapes> scenarios;
    std::vector<char> digits;  // of the blocks
};

Layers read_layers(const RunSettings& settings) {
    Layers layers;
    layers.land_cover = read_land_cover(settings.land_cover);
    layers.zones = read_shapes(settings.zones, settings.field, settings.selected, layers.land_cover);
    if (settings.option == kByDensity) {
        layers.blocks = read_shapes(settings.density, settings.density_field, {}, layers.land_cover);
        const double high = std::atof(settings.density_high.c_str());
        const double low = std::atof(settings.density_low.c_str());
        for (const double density : layers.blocks.numbers) {
            layers.digits.push_back(density >= high ? '1' : density > low ? '2' : '3');
        }
    }
    for (const RunSettings::Scenario& scenario : settings.scenarios) {
        layers.scenarios.push_back(read_shapes(scenario.source, "", scenario.selected, layers.land_cover));
    }
    return layers;
}

/// Reclassifies one cell by every scenario that covers it, in order.
void count_cell(ExpectedPiece& piece, std::int32_t land_class, const std::set<std::uint32_t>& covering,
                const RunSettings& settings) {
    std::int32_t present = land_class;
    ++piece.states[0][present];
    for (std::uint32_t i = 0; i < settings.scenarios.size(); ++i) {
        present = covering.count(i) != 0 ? settings.scenarios[i].target : present;
        ++piece.states[i + 1][present];
    }
}

void count_cells(const Layers& layers, const RunSettings& settings, ExpectedOutput& expected) {
    const std::size_t count = layers.land_cover.cell_count();
    const std::vector<std::int32_t> zone_of = burn(layers.zones, layers.land_cover);
    const bool by_density = settings.option == kByDensity;
    const std::vector<std::int32_t> block_of =
        by_density ? burn(layers.blocks, layers.land_cover) : std::vector<std::int32_t>(count, -1);
    std::vector<std::vector<std::int32_t>> scenario_of;
    for (const Shapes& scenario : layers.scenarios) {
        scenario_of.push_back(burn(scenario, layers.land_cover));
    }
    for (std::size_t cell = 0; cell < count; ++cell) {
        const std::int32_t zone = zone_of[cell];
        const std::int32_t block = block_of[cell];
        if (zone < 0) {
            continue;
        }
        std::set<std::uint32_t> covering;
        for (std::uint32_t i = 0; i < scenario_of.size(); ++i) {
            if (scenario_of[i][cell] >= 0) {
                covering.insert(i);
            }
        }
        const bool nodata = layers.land_cover.nodata[cell] != 0;
        const std::int32_t land_class = nodata ? 0 : layers.land_cover.classes[cell];
        ++(nodata ? expected.nodata_cells : expected.cells)[{zone, block, covering, land_class}];
        if (by_density && block < 0) {
            continue;
        }
        const std::string& value = layers.zones.texts[static_cast<std::size_t>(zone)];
        const std::string key = by_density ? value + "#" + layers.digits[static_cast<std::size_t>(block)] : value;
        ExpectedPiece& piece = expected.pieces[key];
        piece.states.resize(settings.scenarios.size() + 1);
        piece.meets.resize(settings.scenarios.size());
        for (const std::uint32_t scenario : covering) {
            piece.meets[scenario] = true;
        }
        if (nodata) {
            ++piece.nodata_cells;
        } else {
            count_cell(piece, land_class, covering, settings);
        }
    }
}

/// How far the areas of a piece may be off: half a unit of the last place for each number that is kept, more where a
/// scenario rounds it.
double tolerance_of(const ExpectedPiece& piece) {
    double tolerance = 0;
    for (std::size_t state = 0; state < piece.states.size(); ++state) {
        tolerance += kTableRounding * static_cast<double>(piece.states[state].size() + 1);
        if (state > 0 && piece.meets[state - 1]) {
            tolerance += kScenarioRounding * static_cast<double>(piece.states[state - 1].size());
        }
    }
    return tolerance;
}

void add_piece(ExpectedZone& zone, const ExpectedPiece& piece, double cell_area,
               const std::map<std::int32_t, std::array<double, 3>>& coefficients, std::size_t position) {
    for (const auto& [land_class, cells] : piece.states.front()) {
        zone.cells += cells;
        zone.total_area += static_cast<double>(cells) * cell_area;
    }
    for (const auto& [land_class, cells] : piece.states.back()) {
        // A class without coefficients ends the run, so it adds nothing here.
        const auto found = coefficients.find(land_class);
        const double percent = found == coefficients.end() ? 0 : found->second.at(position);
        zone.impervious_area += static_cast<double>(cells) * cell_area * percent / 100;
    }
    zone.nodata_cells += piece.nodata_cells;
    zone.area_tolerance += tolerance_of(piece);
}

void sum_zones(const RunSettings& settings, ExpectedOutput& expected) {
    const auto coefficients = read_coefficients(real_file("isprops.xml"), settings.set);
    for (const auto& [key, piece] : expected.pieces) {
        const bool by_density = settings.option == kByDensity;
        const std::string value = by_density ? key.substr(0, key.size() - 2) : key;
        const auto position =
            static_cast<std::size_t>(by_density ? key.back() - '1' : static_cast<int>(settings.option));
        add_piece(expected.zones.at(value), piece, expected.cell_area, coefficients, position);
    }
    for (auto& [value, zone] : expected.zones) {
        zone.area_tolerance += kTableRounding;
        zone.percent = zone.total_area == 0 ? 0 : zone.impervious_area / zone.total_area * 100;
        // Half of the last of two decimals, and what the areas' own tolerances make of a quotient below 1.
        const double carried = zone.total_area == 0 ? 0 : 2 * zone.area_tolerance / zone.total_area * 100;
        zone.percent_tolerance = std::min(0.005 + carried + 1e-9, 0.01);
    }
}

}  // namespace

ExpectedOutput expected_output(const RunSettings& settings) {
    const Layers layers = read_layers(settings);
    ExpectedOutput expected;
    expected.cell_area = layers.land_cover.cell_area() * (settings.units == "Feet" ? 2.2956e-05 : 0.0001);
    const std::vector<bool> touches = touch_nodata(layers.zones, layers.land_cover);
    const std::vector<bool> beyond = reach_beyond(layers.zones, layers.land_cover);
    for (std::size_t i = 0; i < layers.zones.shapes.size(); ++i) {
        ExpectedZone& zone = expected.zones[layers.zones.texts[i]];
        zone.touches_nodata = zone.touches_nodata || touches[i];
        zone.beyond_raster = zone.beyond_raster || beyond[i];
    }
    count_cells(layers, settings, expected);
    sum_zones(settings, expected);
    for (const Shapes* shapes : {&layers.zones, &layers.blocks}) {
        expected.centres_near_edges += centres_near_edges(*shapes, layers.land_cover, kMicrometre);
    }
    for (const Shapes& shapes : layers.scenarios) {
        expected.centres_near_edges += centres_near_edges(shapes, layers.land_cover, kMicrometre);
    }
    return expected;
}

}  // namespace kestrel::test

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/demo/demo_land.h"

#include <algorithm>
#include <cmath>

#include "apps/cli/demo/demo_noise.h"

namespace kestrel::cli {

namespace {

enum LandClass : std::uint8_t {
    kWater = 11,
    kDevelopedOpen = 21,
    kDevelopedLow = 22,
    kDevelopedMedium = 23,
    kDevelopedHigh = 24,
    kBarren = 31,
    kDeciduous = 41,
    kEvergreen = 42,
    kMixedForest = 43,
    kShrub = 52,
    kGrassland = 71,
    kPasture = 81,
    kCrops = 82,
    kWoodyWetland = 90,
    kHerbaceousWetland = 95,
};

// Every use of noise has a place of its own in the seeds.
enum Stream : std::uint64_t {
    kTownStream = 0x1000,
    kEdgeStream = 0x2000,
    kGrainStream = 0x3000,
    kRiverStream = 0x4000,
    kShoreStream = 0x5000,
    kReliefStream = 0x6000,
    kForestStream = 0x7000,
    kFieldStream = 0x8000,
    kCornerStream = 0x9000,
};

constexpr int kStreetSpacing = 9;
constexpr int kCountryRoadSpacing = 72;
constexpr double kTownEdge = 0.30;

double distance(double x, double y) {
    return std::sqrt(x * x + y * y);
}

/// Distance of a place from the line between two others.
double distance_from_line(double x, double y, double x1, double y1, double x2, double y2) {
    const double dx = x2 - x1;
    const double dy = y2 - y1;
    const double along = std::clamp(((x - x1) * dx + (y - y1) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
    return distance(x - x1 - along * dx, y - y1 - along * dy);
}

}  // namespace

std::vector<data::RasterClass> demo_classes() {
    return {{kWater, "Open Water", {70, 107, 159}},
            {kDevelopedOpen, "Developed, Open Space", {222, 197, 197}},
            {kDevelopedLow, "Developed, Low Intensity", {217, 146, 130}},
            {kDevelopedMedium, "Developed, Medium Intensity", {235, 0, 0}},
            {kDevelopedHigh, "Developed, High Intensity", {171, 0, 0}},
            {kBarren, "Barren Land", {179, 172, 159}},
            {kDeciduous, "Deciduous Forest", {104, 171, 95}},
            {kEvergreen, "Evergreen Forest", {28, 95, 44}},
            {kMixedForest, "Mixed Forest", {181, 197, 143}},
            {kShrub, "Shrub/Scrub", {204, 184, 121}},
            {kGrassland, "Grassland/Herbaceous", {223, 223, 194}},
            {kPasture, "Pasture/Hay", {220, 217, 57}},
            {kCrops, "Cultivated Crops", {171, 108, 40}},
            {kWoodyWetland, "Woody Wetlands", {184, 217, 235}},
            {kHerbaceousWetland, "Emergent Herbaceous Wetlands", {108, 159, 184}}};
}

DemoLand::DemoLand(int columns, int rows, std::uint64_t seed)
    : m_seed(seed), m_columns(columns), m_rows(rows), m_size(std::min(columns, rows)) {
    const auto shifted = [&](int town, int axis) { return 0.06 * (unit_random(seed + kTownStream, town, axis) - 0.5); };
    const auto add = [&](double x, double y, double radius, double weight) {
        const int town = static_cast<int>(m_towns.size());
        m_towns.push_back(
            {m_columns * (x + shifted(town, 0)), m_rows * (y + shifted(town, 1)), m_size * radius, weight});
    };
    add(0.42, 0.50, 0.12, 1.0);
    add(0.80, 0.70, 0.07, 0.75);
    add(0.17, 0.20, 0.055, 0.7);
    add(0.20, 0.82, 0.04, 0.6);
}

double DemoLand::urbanity(double x, double y) const {
    const double ragged = 0.65 + 0.7 * fractal_noise(m_seed + kEdgeStream, 14 * x / m_size, 14 * y / m_size, 3);
    double result = 0;
    for (const Town& town : m_towns) {
        const double d = distance(x - town.x, y - town.y) * ragged / town.radius;
        result = std::max(result, town.weight / (1 + d * d));
    }
    return result;
}

bool DemoLand::unmapped(double x, double y) const {
    const double wave = 0.8 + 0.4 * smooth_noise(m_seed + kCornerStream, 12 * y / m_size, 0);
    return (m_columns - x) + 1.3 * y < 0.16 * m_size * wave;
}

double DemoLand::river_at(double y) const {
    const double wide = smooth_noise(m_seed + kRiverStream, 3 * y / m_size, 0) - 0.5;
    const double narrow = smooth_noise(m_seed + kRiverStream, 16 * y / m_size, 1) - 0.5;
    return m_columns * 0.62 + m_size * (0.22 * wide + 0.04 * narrow);
}

std::uint8_t DemoLand::water_at(double x, double y) const {
    const double shore = fractal_noise(m_seed + kShoreStream, 20 * x / m_size, 20 * y / m_size, 3);
    const double from_river = std::abs(x - river_at(y));
    const double river = 1 + 0.003 * m_size + 0.002 * m_size * shore;
    const double lake_y = 0.24 * m_rows;
    const double from_lake = distance(x - river_at(lake_y), 1.4 * (y - lake_y)) * (0.7 + 0.6 * shore);
    const double lake = 0.085 * m_size;
    if (from_river < river || from_lake < lake) {
        return kWater;
    }
    const double marsh = std::max(0.0, shore - 0.45) * 0.09 * m_size;
    if (from_river < river + marsh || from_lake < lake + marsh) {
        return shore > 0.6 ? kHerbaceousWetland : kWoodyWetland;
    }
    return 0;
}

std::uint8_t DemoLand::road_at(int column, int row, double intensity) const {
    const Town& city = m_towns.front();
    for (std::size_t i = 1; i < m_towns.size(); ++i) {
        if (distance_from_line(column, row, city.x, city.y, m_towns[i].x, m_towns[i].y) < 1.1) {
            return intensity > kTownEdge ? kDevelopedHigh : kDevelopedMedium;
        }
    }
    if (intensity > kTownEdge && (column % kStreetSpacing == 0 || row % kStreetSpacing == 0)) {
        if (intensity > 0.6) {
            return kDevelopedHigh;
        }
        return intensity > 0.42 ? kDevelopedMedium : kDevelopedLow;
    }
    if (column % kCountryRoadSpacing == 0 || row % kCountryRoadSpacing == 0) {
        return kDevelopedLow;
    }
    return 0;
}

std::uint8_t DemoLand::built_up_at(int column, int row, double intensity) const {
    // A block between streets is mostly of one kind; a grain of single cells is laid over it.
    const double block = unit_random(m_seed + kGrainStream, column / kStreetSpacing, row / kStreetSpacing);
    const double cell = unit_random(m_seed + kGrainStream + 1, column, row);
    if (block > 0.95) {
        return cell > 0.3 ? kDevelopedOpen : kDeciduous;  // a park
    }
    const double density = intensity + 0.22 * (block - 0.5) + 0.18 * (cell - 0.5);
    if (density > 0.78) {
        return kDevelopedHigh;
    }
    if (density > 0.58) {
        return kDevelopedMedium;
    }
    return density > 0.40 ? kDevelopedLow : kDevelopedOpen;
}

std::uint8_t DemoLand::field_at(int column, int row) const {
    constexpr int kWidth = 26;
    constexpr int kHeight = 16;
    const int strip = row / kHeight;
    const int shift = static_cast<int>(kWidth * unit_random(m_seed + kFieldStream, strip));
    const double kind = unit_random(m_seed + kFieldStream + 1, (column + shift) / kWidth, strip);
    if (kind < 0.62) {
        return kCrops;
    }
    return kind < 0.93 ? kPasture : kGrassland;
}

std::uint8_t DemoLand::open_land_at(int column, int row) const {
    const double relief = fractal_noise(m_seed + kReliefStream, 5 * column / m_size, 5 * row / m_size, 5);
    if (relief < 0.47) {
        return field_at(column, row);
    }
    if (relief < 0.50) {
        return unit_random(m_seed + kGrainStream + 2, column, row) < 0.5 ? kShrub : kGrassland;
    }
    const double stand = fractal_noise(m_seed + kForestStream, 30 * column / m_size, 30 * row / m_size, 3);
    if (relief > 0.72 && stand > 0.6) {
        return kBarren;
    }
    if (stand + (relief - 0.5) > 0.68) {
        return kEvergreen;
    }
    return stand > 0.45 ? kDeciduous : kMixedForest;
}

std::uint8_t DemoLand::class_at(int column, int row) const {
    if (unmapped(column, row)) {
        return kDemoNodata;
    }
    const double intensity = urbanity(column, row);
    // Roads come first: they cross the water on bridges.
    if (const std::uint8_t road = road_at(column, row, intensity); road != 0) {
        return road;
    }
    if (const std::uint8_t water = water_at(column, row); water != 0) {
        return water;
    }
    return intensity > kTownEdge ? built_up_at(column, row, intensity) : open_land_at(column, row);
}

}  // namespace kestrel::cli

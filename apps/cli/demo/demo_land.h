// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "data/raster_writer.h"
#include "polygons/polygons.h"

namespace kestrel::cli {

/// The value of cells that the demonstration raster does not know.
inline constexpr std::uint8_t kDemoNodata = 0;

/// The classes of the demonstration's land cover: codes, names and colours of the national legend.
std::vector<data::RasterClass> demo_classes();

/// An invented country: towns with streets and a dense middle, villages, fields, forests, a river and a lake. Places
/// are in cells, counted from the upper left corner of the raster.
class DemoLand {
  public:
    DemoLand(int columns, int rows, std::uint64_t seed);

    /// The class of a cell; kDemoNodata in the corner that was not mapped.
    std::uint8_t class_at(int column, int row) const;
    /// How much of a town a place is: 1 in the middle of the largest, near 0 far from all.
    double urbanity(double x, double y) const;
    /// Middle of the largest town.
    polygons::Point centre() const { return {m_towns.front().x, m_towns.front().y}; }

  private:
    struct Town {
        double x;
        double y;
        double radius;
        double weight;
    };

    bool unmapped(double x, double y) const;
    double river_at(double y) const;
    std::uint8_t water_at(double x, double y) const;
    std::uint8_t road_at(int column, int row, double intensity) const;
    std::uint8_t built_up_at(int column, int row, double intensity) const;
    std::uint8_t open_land_at(int column, int row) const;
    std::uint8_t field_at(int column, int row) const;

    std::uint64_t m_seed;
    double m_columns;
    double m_rows;
    double m_size;  // of the shorter side: the measure of everything that grows with the raster
    std::vector<Town> m_towns;
};

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/demo/demo_data.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <span>
#include <vector>

#include "apps/cli/demo/demo_land.h"
#include "apps/cli/demo/demo_noise.h"
#include "apps/cli/demo/demo_regions.h"
#include "base/conversions.h"
#include "base/files.h"
#include "data/raster_writer.h"
#include "data/shapefile_writer.h"
#include "data/spatial_reference.h"

namespace kestrel::cli {

using data::Field;
using data::FieldType;
using data::Grid;
using data::Value;
using polygons::Point;
using polygons::PolygonSet;

namespace {

constexpr std::uint64_t kShedStream = 0xA000;
constexpr std::uint64_t kBlockStream = 0xB000;
constexpr int kBandRows = 256;  // rows of tiles of the GeoTIFF

constexpr std::array kShedNames{"Alder Creek",   "Beaver Run",     "Cedar Fork",    "Dry Branch",    "Elk Lick",
                                "Falls Creek",   "Goose Pond",     "Hickory Creek", "Indigo Branch", "Juniper Run",
                                "Kettle Brook",  "Laurel Fork",    "Mill Creek",    "North Prong",   "Otter Slough",
                                "Pine Hollow",   "Quarry Brook",   "Rocky Ford",    "Stony Run",     "Tanyard Branch",
                                "Upper Meadows", "Violet Springs", "Willow Bend",   "Yarrow Creek"};

data::SpatialReference demo_reference() {
    return data::SpatialReference::from("EPSG:5070");
}

/// A place, given in cells from the upper left corner, in the map; to the centimetre.
Point in_map(const Grid& grid, double column, double row) {
    return {std::round((grid.x0 + column * grid.dx) * 100) / 100, std::round((grid.y0 + row * grid.dy) * 100) / 100};
}

/// A lattice laid over a part of the raster, in cells.
struct Frame {
    double left;
    double top;
    double step_x;
    double step_y;
    std::uint64_t seed;

    double x(double column) const { return left + column * step_x; }
    double y(double row) const { return top + row * step_y; }
    /// A corner of the lattice, moved a little, so that borders do not look like stairs.
    Point corner(int column, int row) const {
        const auto shift = [&](std::uint64_t axis) { return 0.56 * (unit_random(seed + axis, column, row) - 0.5); };
        return {x(column + shift(1)), y(row + shift(2))};
    }
};

Frame frame_over(const DemoSize& size, int columns, int rows, double left, double width, std::uint64_t seed) {
    return {left * size.columns, 0, width * size.columns / columns, static_cast<double>(size.rows) / rows, seed};
}

/// The nearest of some seeds, with the distances bent so that borders wind.
std::int32_t nearest(const std::vector<Point>& seeds, Point place) {
    std::int32_t best = -1;
    double best_distance = 0;
    for (std::size_t i = 0; i < seeds.size(); ++i) {
        const double dx = seeds[i].x - place.x;
        const double dy = seeds[i].y - place.y;
        const double d = dx * dx + dy * dy;
        if (best == -1 || d < best_distance) {
            best = static_cast<std::int32_t>(i);
            best_distance = d;
        }
    }
    return best;
}

Point bent(Point place, double amplitude, double wave, std::uint64_t seed) {
    return {place.x + amplitude * (fractal_noise(seed, place.x / wave, place.y / wave, 4) - 0.5),
            place.y + amplitude * (fractal_noise(seed + 1, place.x / wave, place.y / wave, 4) - 0.5)};
}

RegionLattice lattice_of(const Frame& frame, int columns, int rows, const std::function<std::int32_t(Point)>& label) {
    RegionLattice lattice{columns, rows, {}};
    lattice.labels.reserve(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            lattice.labels.push_back(label({frame.x(column + 0.5), frame.y(row + 0.5)}));
        }
    }
    make_regions_whole(lattice);
    return lattice;
}

PolygonSet polygons_of(const RegionLattice& lattice, const Frame& frame, const Grid& grid,
                       std::vector<std::int32_t>& labels) {
    const auto place = [&](int column, int row) {
        const Point corner = frame.corner(column, row);
        return in_map(grid, corner.x, corner.y);
    };
    return region_polygons(lattice, place, labels);
}

std::vector<Point> shed_seeds(const DemoSize& size) {
    std::vector<Point> seeds;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 5; ++column) {
            const auto shift = [&](std::uint64_t axis) {
                return 0.6 * (unit_random(size.seed + kShedStream + axis, column, row) - 0.5);
            };
            seeds.push_back({size.columns * (column + 0.5 + shift(1)) / 5, size.rows * (row + 0.5 + shift(2)) / 4});
        }
    }
    return seeds;
}

/// Blocks stand close where people do.
std::vector<Point> block_seeds(const DemoSize& size, const DemoLand& land) {
    constexpr int kAcross = 36;
    constexpr int kDown = 29;
    std::vector<Point> seeds;
    for (int row = 0; row < kDown; ++row) {
        for (int column = 0; column < kAcross; ++column) {
            const auto random = [&](std::uint64_t use) {
                return unit_random(size.seed + kBlockStream + use, column, row);
            };
            const double x = size.columns * (column + random(1)) / kAcross;
            const double y = size.rows * (row + random(2)) / kDown;
            if (random(3) < 0.12 + 1.3 * land.urbanity(x, y)) {
                seeds.push_back({x, y});
            }
        }
    }
    return seeds;
}

void write_polygons(const std::string& path, const std::vector<Field>& fields, const PolygonSet& polygons,
                    const std::function<std::vector<Value>(std::size_t)>& values) {
    data::ShapefileWriter writer(path, fields, demo_reference());
    for (std::size_t i = 0; i < polygons.feature_count(); ++i) {
        writer.insert(polygons, i, values(i));
    }
    writer.close();
}

Field integer_field(const std::string& name) {
    return {.name = name, .type = FieldType::integer, .length = 9, .precision = 9};
}

Field text_field(const std::string& name, int length) {
    return {.name = name, .type = FieldType::text, .length = length};
}

/// A polygon whose corners are given in cells from a place.
void add_site(PolygonSet& sites, const Grid& grid, Point from, std::span<const Point> corners) {
    sites.begin_feature();
    sites.begin_polygon();
    sites.begin_ring();
    for (const Point corner : corners) {
        sites.add(in_map(grid, from.x + corner.x, from.y + corner.y));
    }
    sites.add(in_map(grid, from.x + corners.front().x, from.y + corners.front().y));
}

}  // namespace

Grid demo_grid(const DemoSize& size) {
    return {.x0 = 1245015, .y0 = 1725015, .dx = 30, .dy = -30, .columns = size.columns, .rows = size.rows};
}

void write_demo_land_cover(const std::string& folder, const DemoSize& size) {
    const DemoLand land(size.columns, size.rows, size.seed);
    data::RasterWriter writer(
        base::join_path(folder, kDemoLandCover),
        {.grid = demo_grid(size), .reference = demo_reference(), .nodata = kDemoNodata, .classes = demo_classes()});
    std::vector<std::uint8_t> cells;
    for (int first = 0; first < size.rows; first += kBandRows) {
        const int count = std::min(kBandRows, size.rows - first);
        cells.clear();
        for (int row = first; row < first + count; ++row) {
            for (int column = 0; column < size.columns; ++column) {
                cells.push_back(land.class_at(column, row));
            }
        }
        writer.write_rows(first, count, cells);
    }
    writer.close();
}

void write_demo_watersheds(const std::string& folder, const DemoSize& size) {
    constexpr int kColumns = 160;
    constexpr int kRows = 120;
    const std::vector<Point> seeds = shed_seeds(size);
    const Frame frame = frame_over(size, kColumns, kRows, -0.03, 1.02, size.seed + kShedStream);
    const auto shed_at = [&](Point place) {
        const double x = place.x / size.columns;
        const double y = place.y / size.rows;
        const double edge = 0.06 * fractal_noise(frame.seed + 5, 9 * x, 9 * y, 4);
        const bool inside = x < 0.99 - edge && y > 0.005 + edge && y < 0.99 - edge && x > -0.028 + edge;
        return inside ? nearest(seeds, bent(place, 0.3 * size.rows, 0.2 * size.rows, frame.seed + 6)) : -1;
    };
    std::vector<std::int32_t> labels;
    const PolygonSet polygons =
        polygons_of(lattice_of(frame, kColumns, kRows, shed_at), frame, demo_grid(size), labels);
    write_polygons(base::join_path(folder, kDemoWatersheds), {integer_field("SHED_ID"), text_field("NAME", 30)},
                   polygons, [&](std::size_t i) {
                       const auto shed = static_cast<std::size_t>(labels[i]);
                       return std::vector<Value>{std::int64_t{labels[i]} + 1, std::string(kShedNames[shed])};
                   });
}

void write_demo_blocks(const std::string& folder, const DemoSize& size) {
    constexpr int kColumns = 300;
    constexpr int kRows = 240;
    const DemoLand land(size.columns, size.rows, size.seed);
    const std::vector<Point> seeds = block_seeds(size, land);
    const Frame frame = frame_over(size, kColumns, kRows, -0.05, 1.05, size.seed + kBlockStream);
    const auto block_at = [&](Point place) {
        return nearest(seeds, bent(place, 0.04 * size.rows, 0.04 * size.rows, frame.seed + 6));
    };
    std::vector<std::int32_t> labels;
    const PolygonSet polygons =
        polygons_of(lattice_of(frame, kColumns, kRows, block_at), frame, demo_grid(size), labels);
    const std::vector<Field> fields{
        text_field("BLOCK_ID", 12), integer_field("POP"),
        Field{.name = "POP_DEN", .type = FieldType::real, .length = 12, .precision = 12, .scale = 2}};
    write_polygons(base::join_path(folder, kDemoBlocks), fields, polygons, [&](std::size_t i) {
        const Point seed = seeds[static_cast<std::size_t>(labels[i])];
        const double urbanity = land.urbanity(seed.x, seed.y);
        const double spread = 0.6 + 0.8 * unit_random(size.seed + kBlockStream + 9, labels[i]);
        const double area = polygons.area(i) / 1e6;
        const double people = std::round(area * spread * (4 + 4200 * urbanity * urbanity * urbanity));
        return std::vector<Value>{"B" + base::text_of(std::int32_t{1000 + labels[i]}),
                                  static_cast<std::int64_t>(people), base::round_to_scale(people / area, 2)};
    });
}

void write_demo_scenarios(const std::string& folder, const DemoSize& size) {
    const DemoLand land(size.columns, size.rows, size.seed);
    const Grid grid = demo_grid(size);
    const double unit = std::min(size.columns, size.rows) / 1200.0;
    const auto from_centre = [&](double x, double y) {
        return Point{land.centre().x + unit * x, land.centre().y + unit * y};
    };
    const auto site = [&](PolygonSet& sites, Point from, std::vector<Point> corners) {
        for (Point& corner : corners) {
            corner = {corner.x * unit, corner.y * unit};
        }
        add_site(sites, grid, from, corners);
    };

    PolygonSet mall;
    site(mall, from_centre(-255.4, 52.7), {{0, 0}, {38, 4}, {37, 20}, {21, 19}, {20, 34}, {-3, 31}});
    write_polygons(base::join_path(folder, kDemoMall), {text_field("PROJECT", 30)}, mall,
                   [](std::size_t) { return std::vector<Value>{std::string("Mall with car park")}; });

    PolygonSet subdivision;
    site(subdivision, from_centre(75.3, 236.6), {{0, 0}, {52, -6}, {60, 30}, {24, 44}, {2, 36}});
    site(subdivision, from_centre(148.8, 246.2), {{0, 0}, {31, 3}, {33, 27}, {4, 29}});
    write_polygons(base::join_path(folder, kDemoSubdivision), {text_field("PROJECT", 30)}, subdivision,
                   [](std::size_t i) {
                       return std::vector<Value>{std::string(i == 0 ? "Subdivision, phase 1" : "Subdivision, phase 2")};
                   });
}

}  // namespace kestrel::cli

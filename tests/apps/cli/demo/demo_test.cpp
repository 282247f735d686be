// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

#include "apps/cli/demo/demo_command.h"
#include "apps/cli/demo/demo_land.h"
#include "apps/cli/demo/demo_noise.h"
#include "apps/cli/demo/demo_regions.h"
#include "base/errors.h"
#include "base/files.h"
#include "data/feature_class.h"
#include "data/raster.h"
#include "tests/support/test_files.h"

namespace kestrel::cli {
namespace {

using data::FeatureClass;
using data::PolygonFeatures;
using polygons::Point;

constexpr DemoSize kSize{.columns = 300, .rows = 240, .seed = 7};

std::vector<std::uint8_t> cells_of(const std::string& folder) {
    const auto raster = data::RasterDataset::open(folder + "/land_cover.tif");
    data::CellBuffer buffer;
    raster.read({0, 0, raster.grid().columns, raster.grid().rows}, buffer);
    return buffer.bytes;
}

PolygonFeatures polygons_in(const std::string& path, const std::vector<std::string>& fields = {}) {
    return FeatureClass::open({.path = path}).read_polygons(fields);
}

/// How often each piece of border, without regard to its direction, belongs to a polygon.
std::map<std::pair<std::pair<double, double>, std::pair<double, double>>, int> border_pieces(
    const polygons::PolygonSet& polygons) {
    std::map<std::pair<std::pair<double, double>, std::pair<double, double>>, int> pieces;
    for (std::size_t ring = 0; ring < polygons.ring_count(); ++ring) {
        const auto points = polygons.ring(ring);
        for (std::size_t i = 1; i < points.size(); ++i) {
            std::pair from{points[i - 1].x, points[i - 1].y};
            std::pair to{points[i].x, points[i].y};
            ++pieces[from < to ? std::pair{from, to} : std::pair{to, from}];
        }
    }
    return pieces;
}

TEST(DemoNoise, BelongsToSeedAndPlaceAlone) {
    EXPECT_EQ(unit_random(1, 2, 3), unit_random(1, 2, 3));
    EXPECT_NE(unit_random(1, 2, 3), unit_random(2, 2, 3));
    EXPECT_NE(unit_random(1, 2, 3), unit_random(1, 3, 2));
    for (int i = -1000; i < 1000; ++i) {
        const double value = unit_random(5, i, -i);
        EXPECT_TRUE(value >= 0 && value < 1) << i;
        const double noise = fractal_noise(5, 0.37 * i, -0.11 * i, 4);
        EXPECT_TRUE(noise >= 0 && noise <= 1) << i;
    }
}

TEST(DemoNoise, IsTheSameOnEveryMachine) {
    EXPECT_EQ(static_cast<std::uint64_t>(unit_random(1, 2, 3) * 0x1p53), 7182826344826855U);
}

TEST(DemoSizes, AreSmallMediumOrColumnsAndRows) {
    EXPECT_EQ(demo_size_from("small")->columns, 1500);
    EXPECT_EQ(demo_size_from("small")->rows, 1200);
    EXPECT_EQ(demo_size_from("medium")->columns, 6000);
    EXPECT_EQ(demo_size_from("600x400")->columns, 600);
    EXPECT_EQ(demo_size_from("600x400")->rows, 400);
}

TEST(DemoSizes, AnythingElseIsNone) {
    for (const char* text :
         {"", "large", "600", "600x", "x400", "600x400x2", "39x400", "600x100001", "-600x400", "600 x 400"}) {
        EXPECT_FALSE(demo_size_from(text).has_value()) << text;
    }
}

TEST(DemoLandCover, TheSameSeedGivesTheSameCells) {
    const test::TemporaryFolder first;
    const test::TemporaryFolder second;
    write_demo_land_cover(first.path(), kSize);
    write_demo_land_cover(second.path(), kSize);
    EXPECT_EQ(cells_of(first.path()), cells_of(second.path()));
    EXPECT_EQ(base::read_file(first / "land_cover.tif"), base::read_file(second / "land_cover.tif"));
}

TEST(DemoLandCover, AnotherSeedGivesAnotherCountry) {
    const test::TemporaryFolder first;
    const test::TemporaryFolder second;
    write_demo_land_cover(first.path(), kSize);
    write_demo_land_cover(second.path(), {.columns = 300, .rows = 240, .seed = 8});
    EXPECT_NE(cells_of(first.path()), cells_of(second.path()));
}

TEST(DemoLandCover, HasEveryKindOfLandAndAnUnmappedCorner) {
    const test::TemporaryFolder folder;
    write_demo_land_cover(folder.path(), kSize);
    std::map<int, int> counts;
    for (const std::uint8_t cell : cells_of(folder.path())) {
        ++counts[cell];
    }
    for (const int code : {0, 11, 21, 22, 23, 24, 41, 42, 43, 52, 71, 81, 82}) {
        EXPECT_GT(counts[code], 0) << code;
    }
    std::set<int> legend{0};
    for (const auto& one : demo_classes()) {
        legend.insert(one.value);
    }
    for (const auto& [code, count] : counts) {
        EXPECT_TRUE(legend.contains(code)) << code;
    }
    EXPECT_EQ(cells_of(folder.path())[299], kDemoNodata) << "upper right corner";
    EXPECT_LT(counts[0], 300 * 240 / 10);
}

TEST(DemoLandCover, DeclaresItsNodataAndItsPlace) {
    const test::TemporaryFolder folder;
    write_demo_land_cover(folder.path(), kSize);
    const auto raster = data::RasterDataset::open(folder / "land_cover.tif");
    EXPECT_EQ(raster.nodata_value(), 0);
    EXPECT_EQ(raster.spatial_reference().authority_code(), "EPSG:5070");
    EXPECT_EQ(raster.grid().dx, 30);
    EXPECT_EQ(raster.grid().columns, 300);
    EXPECT_EQ(raster.grid().rows, 240);
}

TEST(DemoLandCover, NamesItsClasses) {
    const test::TemporaryFolder folder;
    write_demo_land_cover(folder.path(), kSize);
    const std::string side_file = base::read_file(folder / "land_cover.tif.aux.xml");
    EXPECT_NE(side_file.find("Developed, High Intensity"), std::string::npos);
}

TEST(DemoWatersheds, ShareTheirBordersExactly) {
    const test::TemporaryFolder folder;
    write_demo_watersheds(folder.path(), kSize);
    const PolygonFeatures sheds = polygons_in(folder / "watersheds.shp");
    EXPECT_GE(sheds.ids.size(), 15U);
    EXPECT_LE(sheds.ids.size(), 24U);
    std::size_t shared = 0;
    for (const auto& [piece, count] : border_pieces(sheds.polygons)) {
        EXPECT_LE(count, 2);
        shared += count == 2 ? 1 : 0;
    }
    EXPECT_GT(shared, 100U);
}

TEST(DemoWatersheds, SomeReachBeyondTheRasterAndHaveNames) {
    const test::TemporaryFolder folder;
    write_demo_watersheds(folder.path(), kSize);
    const PolygonFeatures sheds = polygons_in(folder / "watersheds.shp", {"SHED_ID", "NAME"});
    const data::Grid grid = demo_grid(kSize);
    EXPECT_FALSE(grid.extent().contains(sheds.polygons.envelope()));
    std::set<std::string> names;
    for (const data::Value& name : sheds.columns[1]) {
        names.insert(data::text_of(name));
    }
    EXPECT_EQ(names.size(), sheds.ids.size()) << "every name once";
    EXPECT_FALSE(names.contains(""));
}

TEST(DemoBlocks, AreSmallerAndDenserInTheTown) {
    const test::TemporaryFolder folder;
    write_demo_blocks(folder.path(), kSize);
    const PolygonFeatures blocks = polygons_in(folder / "census_blocks.shp", {"POP_DEN"});
    EXPECT_GT(blocks.ids.size(), 100U);
    std::size_t densest = 0;
    double largest_area = 0;
    for (std::size_t i = 0; i < blocks.ids.size(); ++i) {
        if (data::number_of(blocks.columns[0][i]) > data::number_of(blocks.columns[0][densest])) {
            densest = i;
        }
        largest_area = std::max(largest_area, blocks.polygons.area(i));
    }
    EXPECT_GT(data::number_of(blocks.columns[0][densest]), 1500);
    EXPECT_LT(blocks.polygons.area(densest) * 4, largest_area);
}

TEST(DemoBlocks, LeaveNoGapAndDoNotOverlap) {
    const test::TemporaryFolder folder;
    write_demo_blocks(folder.path(), kSize);
    const PolygonFeatures blocks = polygons_in(folder / "census_blocks.shp");
    double area = 0;
    for (std::size_t i = 0; i < blocks.ids.size(); ++i) {
        area += blocks.polygons.area(i);
    }
    // The border alone belongs to one block only: what it encloses is the area of all.
    polygons::Envelope envelope = blocks.polygons.envelope();
    const double whole = (envelope.max_x - envelope.min_x) * (envelope.max_y - envelope.min_y);
    EXPECT_NEAR(area / whole, 1, 0.02);
    for (const auto& [piece, count] : border_pieces(blocks.polygons)) {
        EXPECT_LE(count, 2);
    }
}

TEST(DemoScenarios, LieInsideOfTheCountry) {
    const test::TemporaryFolder folder;
    write_demo_scenarios(folder.path(), kSize);
    for (const auto& [name, count] : {std::pair{"new_mall.shp", 1U}, std::pair{"subdivision.shp", 2U}}) {
        const PolygonFeatures sites = polygons_in(folder / name);
        EXPECT_EQ(sites.ids.size(), count);
        EXPECT_TRUE(demo_grid(kSize).extent().contains(sites.polygons.envelope())) << name;
    }
}

TEST(DemoRegions, SquaresThatMeetInACornerAreJoined) {
    RegionLattice lattice{2, 2, {0, 1, 1, 0}};
    make_regions_whole(lattice);
    std::vector<std::int32_t> labels;
    const auto place = [](int column, int row) { return Point{double(column), double(-row)}; };
    const polygons::PolygonSet polygons = region_polygons(lattice, place, labels);
    double area = 0;
    for (std::size_t i = 0; i < polygons.feature_count(); ++i) {
        area += polygons.area(i);
    }
    EXPECT_EQ(area, 4);
    EXPECT_EQ(polygons.ring_count(), polygons.feature_count());
}

TEST(DemoRegions, APieceThatIsCutOffGoesToItsNeighbour) {
    RegionLattice lattice{4, 1, {0, 0, 1, 0}};
    make_regions_whole(lattice);
    EXPECT_EQ(lattice.labels, (std::vector<std::int32_t>{0, 0, 1, 1}));
}

TEST(DemoRegions, ARegionAroundAnotherHasAHole) {
    RegionLattice lattice{3, 3, {5, 5, 5, 5, 9, 5, 5, 5, 5}};
    make_regions_whole(lattice);
    std::vector<std::int32_t> labels;
    const auto place = [](int column, int row) { return Point{double(column), double(-row)}; };
    const polygons::PolygonSet polygons = region_polygons(lattice, place, labels);
    EXPECT_EQ(labels, (std::vector<std::int32_t>{5, 9}));
    EXPECT_EQ(polygons.polygon_count(), 2U);
    EXPECT_EQ(polygons.ring_count(), 3U);
    EXPECT_EQ(polygons.area(0), 8);
    EXPECT_EQ(polygons.area(1), 1);
}

TEST(DemoRegions, SquaresOfNobodyStayEmpty) {
    RegionLattice lattice{2, 1, {-1, 3}};
    std::vector<std::int32_t> labels;
    const auto place = [](int column, int row) { return Point{double(column), double(-row)}; };
    EXPECT_EQ(region_polygons(lattice, place, labels).feature_count(), 1U);
    EXPECT_EQ(labels, (std::vector<std::int32_t>{3}));
}

}  // namespace
}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/zonal_tabulation.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <tuple>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/exact_reference.h"
#include "tests/support/listening_progress.h"
#include "tests/support/raster_files.h"
#include "tests/support/test_files.h"

namespace kestrel::counting {
namespace {

using test::RasterFile;
using Key = std::tuple<std::uint32_t, std::uint32_t, std::vector<std::uint32_t>, std::int32_t>;
using Counts = std::map<Key, std::uint64_t>;

constexpr double kNodata = 99;

struct Scene {
    RasterFile raster;
    polygons::PolygonSet zones;
    polygons::PolygonSet overlay;
    bool with_overlay = false;
    std::vector<polygons::PolygonSet> scenarios;
};

int pick(std::mt19937& random, int lowest, int highest) {
    return std::uniform_int_distribution<int>(lowest, highest)(random);
}

/// Patches of few classes with NODATA cells alone, in blobs and along the border.
std::vector<double> land_cover(std::mt19937& random, const data::Grid& grid) {
    std::vector<double> cells(static_cast<std::size_t>(grid.columns * grid.rows), 11);
    const double classes[] = {11, 21, 22, 41, kNodata};
    for (int patch = 0; patch < 25; ++patch) {
        const int column = pick(random, 0, grid.columns - 1);
        const int row = pick(random, 0, grid.rows - 1);
        const int size = pick(random, 1, 9);
        const double land_class = classes[pick(random, 0, patch % 5 == 0 ? 4 : 3)];
        for (int r = row; r < std::min(grid.rows, row + size); ++r) {
            for (int c = column; c < std::min(grid.columns, column + 2 * size); ++c) {
                cells[static_cast<std::size_t>(r * grid.columns + c)] = land_class;
            }
        }
    }
    return cells;
}

Scene random_scene(std::mt19937& random, int number) {
    Scene scene;
    const bool south_up = number % 4 == 3;
    scene.raster.grid = {.x0 = 500, .y0 = 250, .dx = 1.5, .dy = south_up ? 1.25 : -1.25, .columns = 61, .rows = 47};
    scene.raster.cells = land_cover(random, scene.raster.grid);
    scene.raster.nodata = kNodata;
    const data::Grid& grid = scene.raster.grid;
    // Few wide zones, many narrow ones, or anything at all: long spans are counted otherwise than short ones.
    scene.zones = number % 2 == 1 ? test::awkward_polygons(random, grid, 8)
                                  : test::coverage(random, grid, number % 4 == 0 ? 1 : 5, 3);
    scene.with_overlay = number % 3 != 0;
    if (scene.with_overlay) {
        scene.overlay = test::awkward_polygons(random, grid, 5);
    }
    for (int s = 0; s < number % 4; ++s) {
        scene.scenarios.push_back(test::awkward_polygons(random, grid, 2));
    }
    return scene;
}

TabulationInput input_of(const Scene& scene) {
    TabulationInput input{.zones = &scene.zones};
    input.overlay = scene.with_overlay ? &scene.overlay : nullptr;
    for (const polygons::PolygonSet& scenario : scene.scenarios) {
        input.scenarios.push_back(&scenario);
    }
    return input;
}

/// Looks at every cell by itself.
void count_slowly(const Scene& scene, Counts& counts, Counts& nodata) {
    const data::Grid& grid = scene.raster.grid;
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column) {
            const int zone = test::owner(scene.zones, grid, column, row);
            if (zone < 0) {
                continue;
            }
            const int over = scene.with_overlay ? test::owner(scene.overlay, grid, column, row) : -1;
            std::vector<std::uint32_t> set;
            for (std::uint32_t s = 0; s < scene.scenarios.size(); ++s) {
                if (test::owner(scene.scenarios[s], grid, column, row) >= 0) {
                    set.push_back(s);
                }
            }
            const double value = scene.raster.cells[static_cast<std::size_t>(row * grid.columns + column)];
            const bool is_nodata = scene.raster.nodata && value == *scene.raster.nodata;
            const Key key{static_cast<std::uint32_t>(zone), over < 0 ? kNoOverlay : static_cast<std::uint32_t>(over),
                          set, is_nodata ? 0 : static_cast<std::int32_t>(value)};
            ++(is_nodata ? nodata : counts)[key];
        }
    }
}

Counts keyed(const ZoneCounts& counts, const std::vector<ZoneCounts::Row>& rows) {
    Counts result;
    for (const ZoneCounts::Row& row : rows) {
        result[{row.zone, row.overlay, counts.scenario_sets[row.scenario_set], row.land_class}] += row.cells;
    }
    return result;
}

std::vector<std::uint8_t> touching_slowly(const Scene& scene) {
    const data::Grid& grid = scene.raster.grid;
    std::vector<std::uint8_t> touches(scene.zones.feature_count(), 0);
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column) {
            if (scene.raster.cells[static_cast<std::size_t>(row * grid.columns + column)] != kNodata) {
                continue;
            }
            for (std::size_t zone = 0; zone < touches.size(); ++zone) {
                if (touches[zone] == 0 && test::touches_square(scene.zones, zone, grid, column, row)) {
                    touches[zone] = 1;
                }
            }
        }
    }
    return touches;
}

class ZonalTabulation : public ::testing::Test {
  protected:
    ZoneCounts tabulated(const Scene& scene, const RasterFile& raster, int threads = 1) {
        const std::string path = m_folder / "cells.tif";
        test::write_raster(path, raster);
        base::NoProgress progress;
        return tabulate(data::RasterDataset::open(path), input_of(scene), threads, progress);
    }

    test::TemporaryFolder m_folder;
};

TEST_F(ZonalTabulation, AgreesWithLookingAtEveryCell) {
    std::mt19937 random(11);
    for (int number = 0; number < 60; ++number) {
        const Scene scene = random_scene(random, number);
        RasterFile raster = scene.raster;
        raster.options = number % 2 == 0 ? std::vector<std::string>{"TILED=YES", "BLOCKXSIZE=16", "BLOCKYSIZE=16"}
                                         : std::vector<std::string>{"BLOCKYSIZE=3"};
        const ZoneCounts counts = tabulated(scene, raster, 1 + number % 3);
        Counts expected;
        Counts expected_nodata;
        count_slowly(scene, expected, expected_nodata);
        ASSERT_EQ(keyed(counts, counts.rows), expected) << "scene " << number;
        ASSERT_EQ(keyed(counts, counts.nodata_rows), expected_nodata) << "scene " << number;
        ASSERT_EQ(counts.touches_nodata, touching_slowly(scene)) << "scene " << number;
    }
}

TEST_F(ZonalTabulation, TheStoredTypeTheBlocksAndTheThreadsDoNotShow) {
    std::mt19937 random(12);
    const Scene scene = random_scene(random, 10);
    const ZoneCounts plain = tabulated(scene, scene.raster);
    ASSERT_GT(plain.rows.size(), 20U);
    ASSERT_GT(plain.nodata_rows.size(), 0U);
    struct Variant {
        const char* type;
        std::vector<std::string> options;
        bool masked;
    };
    const Variant variants[] = {{"Byte", {"TILED=YES", "BLOCKXSIZE=16", "BLOCKYSIZE=16", "COMPRESS=DEFLATE"}, false},
                                {"Byte", {"BLOCKYSIZE=1", "COMPRESS=LZW"}, false},
                                {"Byte", {"BLOCKYSIZE=47"}, true},
                                {"Int16", {"TILED=YES", "BLOCKXSIZE=32", "BLOCKYSIZE=16"}, false},
                                {"UInt16", {"BLOCKYSIZE=5"}, false},
                                {"Int32", {}, false},
                                {"UInt32", {}, false},
                                {"Int64", {}, false},
                                {"Float32", {"BLOCKYSIZE=7"}, false},
                                {"Float64", {"TILED=YES", "BLOCKXSIZE=16", "BLOCKYSIZE=16"}, true}};
    for (const Variant& variant : variants) {
        RasterFile raster = scene.raster;
        raster.type = variant.type;
        raster.options = variant.options;
        if (variant.masked) {
            raster.nodata.reset();
            for (double& cell : raster.cells) {
                raster.hidden.push_back(cell == kNodata ? 1 : 0);
                cell = cell == kNodata ? 21 : cell;  // what lies below the mask must not matter
            }
        }
        for (const int threads : {1, 2, 5}) {
            const ZoneCounts counts = tabulated(scene, raster, threads);
            EXPECT_EQ(counts.rows, plain.rows) << variant.type << ", " << threads << " threads";
            EXPECT_EQ(counts.nodata_rows, plain.nodata_rows) << variant.type;
            EXPECT_EQ(counts.scenario_sets, plain.scenario_sets) << variant.type;
            EXPECT_EQ(counts.touches_nodata, plain.touches_nodata) << variant.type;
        }
    }
}

/// A mosaic of two rows and three columns of sources, cut out of the raster, the blocks of which do not line up.
std::string write_mosaic(const test::TemporaryFolder& folder, const RasterFile& raster) {
    const data::Grid& grid = raster.grid;
    std::string sources;
    const int columns[] = {0, 70, 171, grid.columns};
    const int rows[] = {0, 81, grid.rows};
    for (int r = 0; r < 2; ++r) {
        for (int c = 0; c < 3; ++c) {
            RasterFile part{.grid = grid, .cells = {}, .options = {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"}};
            part.grid.columns = columns[c + 1] - columns[c];
            part.grid.rows = rows[r + 1] - rows[r];
            for (int y = rows[r]; y < rows[r + 1]; ++y) {
                const auto line = raster.cells.begin() + y * grid.columns;
                part.cells.insert(part.cells.end(), line + columns[c], line + columns[c + 1]);
            }
            const std::string name = "part" + std::to_string(r) + std::to_string(c) + ".tif";
            test::write_raster(folder / name, part);
            const std::string size = " xSize=\"" + std::to_string(part.grid.columns) + "\" ySize=\"" +
                                     std::to_string(part.grid.rows) + "\"/>";
            sources += "<SimpleSource><SourceFilename relativeToVRT=\"1\">" + name +
                       "</SourceFilename><SourceBand>1</SourceBand><SourceProperties BlockXSize=\"64\" "
                       "BlockYSize=\"64\" DataType=\"Byte\" RasterXSize=\"" +
                       std::to_string(part.grid.columns) + "\" RasterYSize=\"" + std::to_string(part.grid.rows) +
                       "\"/><SrcRect xOff=\"0\" yOff=\"0\"" + size + "<DstRect xOff=\"" + std::to_string(columns[c]) +
                       "\" yOff=\"" + std::to_string(rows[r]) + "\"" + size + "</SimpleSource>";
        }
    }
    base::write_file(folder / "mosaic.vrt",
                     "<VRTDataset rasterXSize=\"" + std::to_string(grid.columns) + "\" rasterYSize=\"" +
                         std::to_string(grid.rows) + "\"><GeoTransform>500, 1.5, 0, 250, 0, -1.25</GeoTransform>" +
                         "<VRTRasterBand dataType=\"Byte\" band=\"1\"><NoDataValue>99</NoDataValue>" + sources +
                         "</VRTRasterBand></VRTDataset>");
    return folder / "mosaic.vrt";
}

TEST_F(ZonalTabulation, TilesBlocksAndMosaicsDoNotShow) {
    std::mt19937 random(21);
    for (int number = 0; number < 6; ++number) {
        Scene scene;
        scene.raster.grid = {.x0 = 500, .y0 = 250, .dx = 1.5, .dy = -1.25, .columns = 230, .rows = 150};
        scene.raster.cells = land_cover(random, scene.raster.grid);
        scene.raster.nodata = kNodata;
        scene.zones = number % 2 == 0 ? test::coverage(random, scene.raster.grid, 1 + number, 3)
                                      : test::awkward_polygons(random, scene.raster.grid, 12);
        scene.scenarios.push_back(test::awkward_polygons(random, scene.raster.grid, 3));
        Counts expected;
        Counts expected_nodata;
        count_slowly(scene, expected, expected_nodata);
        const std::vector<std::uint8_t> touching = touching_slowly(scene);
        const auto check = [&](const ZoneCounts& counts, const std::string& what) {
            EXPECT_EQ(keyed(counts, counts.rows), expected) << what << ", scene " << number;
            EXPECT_EQ(keyed(counts, counts.nodata_rows), expected_nodata) << what << ", scene " << number;
            EXPECT_EQ(counts.touches_nodata, touching) << what << ", scene " << number;
        };
        for (const std::vector<std::string>& options :
             {std::vector<std::string>{"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64", "COMPRESS=DEFLATE"},
              std::vector<std::string>{"TILED=YES", "BLOCKXSIZE=128", "BLOCKYSIZE=96"},
              std::vector<std::string>{"BLOCKYSIZE=150", "COMPRESS=LZW"}}) {
            scene.raster.options = options;
            for (const char* type : {"Byte", "Int16", "Float32"}) {
                scene.raster.type = type;
                check(tabulated(scene, scene.raster, 1 + number % 2), options[0] + type);
            }
        }
        scene.raster.type = "Byte";
        base::NoProgress progress;
        const data::RasterDataset mosaic = data::RasterDataset::open(write_mosaic(m_folder, scene.raster));
        EXPECT_EQ(mosaic.tile_lines().columns, (std::vector<int>{0, 64, 70, 134, 171, 230}));
        EXPECT_EQ(mosaic.tile_lines().rows, (std::vector<int>{0, 64, 81, 145, 150}));
        check(tabulate(mosaic, input_of(scene), 2, progress), "mosaic");
    }
}

TEST_F(ZonalTabulation, ARasterThatDeclaresNoNodataHasNone) {
    std::mt19937 random(13);
    Scene scene = random_scene(random, 4);
    scene.raster.nodata.reset();
    const ZoneCounts counts = tabulated(scene, scene.raster);
    Counts expected;
    Counts none;
    count_slowly(scene, expected, none);
    EXPECT_EQ(keyed(counts, counts.rows), expected);
    EXPECT_TRUE(counts.nodata_rows.empty());
    EXPECT_EQ(counts.touches_nodata, std::vector<std::uint8_t>(scene.zones.feature_count(), 0));
}

TEST_F(ZonalTabulation, NegativeAndLargeCodesAreClassesLikeOthers) {
    Scene scene;
    scene.raster.grid = {.x0 = 0, .y0 = 2, .dx = 1, .dy = -1, .columns = 2, .rows = 2};
    scene.raster.cells = {-2147483648.0, 2147483647.0, -1, 300};
    scene.raster.type = "Int32";
    scene.zones.begin_feature();
    scene.zones.begin_polygon();
    scene.zones.begin_ring();
    for (const polygons::Point p : {polygons::Point{0, 0}, polygons::Point{2, 0}, polygons::Point{2, 2},
                                    polygons::Point{0, 2}, polygons::Point{0, 0}}) {
        scene.zones.add(p);
    }
    const ZoneCounts counts = tabulated(scene, scene.raster);
    EXPECT_EQ(counts.rows, (std::vector<ZoneCounts::Row>{{0, kNoOverlay, 0, -2147483647 - 1, 1},
                                                         {0, kNoOverlay, 0, -1, 1},
                                                         {0, kNoOverlay, 0, 300, 1},
                                                         {0, kNoOverlay, 0, 2147483647, 1}}));
}

TEST_F(ZonalTabulation, ZonesOutsideOfTheRasterHaveNoRows) {
    std::mt19937 random(14);
    Scene scene = random_scene(random, 0);
    for (polygons::Point& point : scene.zones.points()) {
        point.x += 1000;
    }
    scene.with_overlay = false;
    const ZoneCounts counts = tabulated(scene, scene.raster);
    EXPECT_TRUE(counts.rows.empty());
    EXPECT_TRUE(counts.nodata_rows.empty());
    EXPECT_EQ(counts.touches_nodata, std::vector<std::uint8_t>(scene.zones.feature_count(), 0));
}

TEST_F(ZonalTabulation, TheFirstValueThatIsNoCodeIsNamedWhateverTheThreads) {
    std::mt19937 random(15);
    Scene scene = random_scene(random, 0);
    scene.raster.type = "Float32";
    scene.raster.options = {"BLOCKYSIZE=1"};
    scene.raster.cells[20 * 61 + 7] = 21.5;
    scene.raster.cells[40 * 61 + 3] = 3e10;
    for (const int threads : {1, 2, 4}) {
        try {
            tabulated(scene, scene.raster, threads);
            FAIL() << "accepted";
        } catch (const base::RuntimeError& error) {
            EXPECT_EQ(error.number(), base::kInvalidProcedureCall);
            EXPECT_NE(error.description().find("holds 21.5 at row 21, column 8"), std::string::npos)
                << error.description();
        }
    }
}

TEST_F(ZonalTabulation, ProgressRisesFromNothingAndIsOfTheWholeCall) {
    std::mt19937 random(18);
    const Scene scene = random_scene(random, 1);
    const std::string path = m_folder / "cells.tif";
    test::write_raster(path, scene.raster);
    test::ListeningProgress hear;
    tabulate(data::RasterDataset::open(path), input_of(scene), 2, hear);
    ASSERT_GE(hear.fractions.size(), 2U);
    EXPECT_EQ(hear.fractions.front(), 0);
    EXPECT_TRUE(std::is_sorted(hear.fractions.begin(), hear.fractions.end()));
    EXPECT_LE(hear.fractions.back(), 1);
    EXPECT_EQ(hear.texts.front(), "Counting land cover");
    EXPECT_EQ(hear.texts.back(), "Counting land cover");
}

TEST_F(ZonalTabulation, StoppingEndsTheWorkSoon) {
    std::mt19937 random(16);
    const Scene scene = random_scene(random, 0);
    const std::string path = m_folder / "cells.tif";
    test::write_raster(path, scene.raster);
    test::ListeningProgress stop(1);
    // Nothing may be concluded from the counts; what matters is that the call returns.
    EXPECT_NO_THROW(tabulate(data::RasterDataset::open(path), input_of(scene), 2, stop));
}

}  // namespace
}  // namespace kestrel::counting

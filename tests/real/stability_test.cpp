// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ogrsf_frmts.h>

#include <algorithm>

#include "tests/real/comparison.h"
#include "tests/support/raster_files.h"

namespace kestrel::test {
namespace {

/// A run that uses everything.
RunSettings full_run() {
    RunSettings settings;
    settings.option = kByDensity;
    settings.scenarios = {{real_file("town_plan.shp"), 23}, {real_file("resort_wgs84.gpkg"), 22}};
    return settings;
}

bool same_counts(const counting::ZoneCounts& a, const counting::ZoneCounts& b) {
    return a.rows == b.rows && a.nodata_rows == b.nodata_rows && a.scenario_sets == b.scenario_sets &&
           a.touches_nodata == b.touches_nodata;
}

void expect_same_run(const WholeRun& run, const WholeRun& reference) {
    ASSERT_TRUE(run.result.finished) << ::testing::PrintToString(run.boxes);
    ASSERT_TRUE(reference.result.finished);
    EXPECT_TRUE(same_counts(run.result.counts, reference.result.counts));
    EXPECT_EQ(table_bytes(run.output()), table_bytes(reference.output()));
    EXPECT_EQ(run.boxes, reference.boxes);
}

class RealRunOnThreads : public RealData, public ::testing::WithParamInterface<int> {};

TEST_P(RealRunOnThreads, GivesTheSameTableToTheByte) {
    RunSettings settings = full_run();
    settings.threads = GetParam();
    RunSettings single = full_run();
    single.threads = 1;
    expect_same_run(WholeRun(settings), WholeRun(single));
}

INSTANTIATE_TEST_SUITE_P(Real, RealRunOnThreads, ::testing::Values(0, 1, 2, 3, 7));

/// How a raster of the same cells may be stored.
struct Storage {
    const char* name;
    const char* type = "Byte";
    std::vector<std::string> options{};
    bool south_up = false;
    bool masked = false;
};

void PrintTo(const Storage& storage, std::ostream* stream) {
    *stream << storage.name;
}

class RealRunOnStorage : public RealData, public ::testing::WithParamInterface<Storage> {
  protected:
    /// Writes the real land cover's cells anew.
    static void write_stored(const std::string& path, const Storage& storage) {
        const LandCover real = read_land_cover(real_file("nlcd2011.tif"));
        RasterFile file{.grid = {real.transform[0], real.transform[3], real.transform[1], real.transform[5],
                                 real.columns, real.rows},
                        .cells = {real.classes.begin(), real.classes.end()},
                        .type = storage.type,
                        .options = storage.options};
        file.reference = "EPSG:26912";
        if (storage.masked) {
            file.hidden = real.nodata;
            // What a mask hides counts nowhere, whatever it is.
            std::transform(file.cells.begin(), file.cells.end(), real.nodata.begin(), file.cells.begin(),
                           [](double cell, std::uint8_t nodata) { return nodata != 0 ? 21 : cell; });
        } else {
            file.nodata = 255;
        }
        if (storage.south_up) {
            turn_upside_down(file);
        }
        write_raster(path, file);
    }

  private:
    static void turn_upside_down(RasterFile& file) {
        file.grid.y0 = file.grid.line_y(file.grid.rows);
        file.grid.dy = -file.grid.dy;
        for (int row = 0; row < file.grid.rows / 2; ++row) {
            const auto upper = file.cells.begin() + static_cast<std::ptrdiff_t>(row) * file.grid.columns;
            const auto lower =
                file.cells.begin() + static_cast<std::ptrdiff_t>(file.grid.rows - 1 - row) * file.grid.columns;
            std::swap_ranges(upper, upper + file.grid.columns, lower);
        }
    }
};

TEST_P(RealRunOnStorage, GivesTheSameTableToTheByte) {
    const TemporaryFolder folder;
    RunSettings settings = full_run();
    settings.land_cover = folder / "nlcd2011.tif";
    settings.threads = 3;
    write_stored(settings.land_cover, GetParam());
    expect_same_run(WholeRun(settings), WholeRun(full_run()));
}

INSTANTIATE_TEST_SUITE_P(
    Real, RealRunOnStorage,
    ::testing::Values(
        Storage{.name = "Tiles256", .options = {"TILED=YES", "BLOCKXSIZE=256", "BLOCKYSIZE=256"}},
        Storage{.name = "Tiles16", .options = {"TILED=YES", "BLOCKXSIZE=16", "BLOCKYSIZE=16"}},
        Storage{.name = "StripsOfOneRow", .options = {"BLOCKYSIZE=1"}},
        Storage{.name = "OneStrip", .options = {"BLOCKYSIZE=1359", "COMPRESS=DEFLATE"}},
        Storage{.name = "Int16", .type = "Int16"}, Storage{.name = "Int32", .type = "Int32"},
        Storage{.name = "Float32", .type = "Float32"}, Storage{.name = "SouthUp", .south_up = true},
        Storage{.name = "SouthUpTiles", .options = {"TILED=YES", "BLOCKXSIZE=256", "BLOCKYSIZE=256"}, .south_up = true},
        Storage{.name = "MaskBand", .masked = true},
        Storage{.name = "MaskBandFloat", .type = "Float32", .masked = true}),
    [](const ::testing::TestParamInfo<Storage>& storage) { return std::string(storage.param.name); });

class RealRunInAnotherOrder : public RealData {
  protected:
    /// Writes features of sheds.shp in the order of `ids`.
    static void write_in_order(const std::string& path, const std::vector<GIntBig>& ids) {
        GDALAllRegister();
        const GDALDatasetUniquePtr source(GDALDataset::Open(real_file("sheds.shp").c_str(), GDAL_OF_VECTOR));
        OGRLayer* const from = source->GetLayer(0);
        GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
        const GDALDatasetUniquePtr target(driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
        const char* const options[] = {"ENCODING=UTF-8", nullptr};
        OGRLayer* const to =
            target->CreateLayer("sheds", from->GetSpatialRef(), wkbPolygon, const_cast<char**>(options));
        for (int i = 0; i < from->GetLayerDefn()->GetFieldCount(); ++i) {
            to->CreateField(from->GetLayerDefn()->GetFieldDefn(i));
        }
        for (const GIntBig id : ids) {
            const OGRFeatureUniquePtr feature(from->GetFeature(id));
            feature->SetFID(OGRNullFID);
            if (to->CreateFeature(feature.get()) != OGRERR_NONE) {
                throw std::runtime_error("cannot write " + path);
            }
        }
    }
};

// Without 24, no two zones overlap.
TEST_F(RealRunInAnotherOrder, OfZonesThatDoNotOverlapGivesTheSameTableToTheByte) {
    const TemporaryFolder folder;
    std::vector<GIntBig> ids;
    for (GIntBig id = 0; id < 27; ++id) {
        if (id != 24) {
            ids.push_back(id);
        }
    }
    RunSettings in_order = full_run();
    in_order.zones = folder / "sheds.shp";
    write_in_order(in_order.zones, ids);
    const WholeRun reference(in_order);
    const TemporaryFolder other;
    RunSettings reversed = full_run();
    reversed.zones = other / "sheds.shp";
    std::reverse(ids.begin(), ids.end());
    write_in_order(reversed.zones, ids);
    const WholeRun run(reversed);
    ASSERT_TRUE(reference.result.finished);
    ASSERT_TRUE(run.result.finished);
    EXPECT_EQ(table_bytes(run.output()), table_bytes(reference.output()));
    expect_run_as_counted(reversed);
}

TEST_F(RealRunInAnotherOrder, TwiceGivesTheSameTableToTheByte) {
    expect_same_run(WholeRun(full_run()), WholeRun(full_run()));
}

}  // namespace
}  // namespace kestrel::test

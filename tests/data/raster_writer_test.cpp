// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/raster_writer.h"

#include <gtest/gtest.h>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/file_size_limit.h"
#include "tests/support/test_files.h"

namespace kestrel::data {
namespace {

RasterDefinition three_by_two() {
    return {.grid = {100, 200, 10, -10, 3, 2}, .reference = SpatialReference::from("EPSG:26912"), .nodata = 255};
}

TEST(RasterWriter, WhatIsWrittenReadsBack) {
    const test::TemporaryFolder folder;
    RasterWriter writer(folder / "a.tif", three_by_two());
    writer.write_rows(0, 1, std::vector<std::uint8_t>{1, 2, 3});
    writer.write_rows(1, 1, std::vector<std::uint8_t>{4, 5, 255});
    writer.close();

    const RasterDataset raster = RasterDataset::open(folder / "a.tif");
    CellBuffer cells;
    raster.read({0, 0, 3, 2}, cells);
    EXPECT_EQ(cells.bytes, (std::vector<std::uint8_t>{1, 2, 3, 4, 5, 255}));
    EXPECT_EQ(raster.grid().x0, 100);
    EXPECT_EQ(raster.grid().y0, 200);
    EXPECT_EQ(raster.grid().dx, 10);
    EXPECT_EQ(raster.grid().dy, -10);
    EXPECT_EQ(raster.nodata_value(), 255);
    EXPECT_EQ(raster.spatial_reference().authority_code(), "EPSG:26912");
}

TEST(RasterWriter, WithoutNodataAndSystemNoneAreDeclared) {
    const test::TemporaryFolder folder;
    RasterWriter writer(folder / "a.tif", {.grid = {0, 0, 1, -1, 1, 1}, .reference = {}});
    writer.write_rows(0, 1, std::vector<std::uint8_t>{7});
    writer.close();
    const RasterDataset raster = RasterDataset::open(folder / "a.tif");
    EXPECT_FALSE(raster.declares_nodata());
    EXPECT_FALSE(raster.spatial_reference().known());
}

TEST(RasterWriter, ClassesGetTheirNames) {
    const test::TemporaryFolder folder;
    RasterDefinition definition = three_by_two();
    definition.classes = {{11, "Open Water", {70, 107, 159}}};
    RasterWriter writer(folder / "a.tif", definition);
    writer.write_rows(0, 2, std::vector<std::uint8_t>(6, 11));
    writer.close();
    EXPECT_NE(base::read_file(folder / "a.tif.aux.xml").find("<F>Open Water</F>"), std::string::npos);
}

TEST(RasterWriter, TheSameCellsGiveTheSameFile) {
    const test::TemporaryFolder folder;
    for (const char* name : {"a.tif", "b.tif"}) {
        RasterWriter writer(folder / name, three_by_two());
        writer.write_rows(0, 2, std::vector<std::uint8_t>(6, 41));
        writer.close();
    }
    EXPECT_EQ(base::read_file(folder / "a.tif"), base::read_file(folder / "b.tif"));
}

TEST(RasterWriter, RowsOfTheWrongLengthAreAnError) {
    const test::TemporaryFolder folder;
    RasterWriter writer(folder / "a.tif", three_by_two());
    try {
        writer.write_rows(0, 1, std::vector<std::uint8_t>{1, 2});
        FAIL() << "not refused";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 5);
    }
}

TEST(RasterWriter, AFileThatCannotBeMadeIsAnErrorThatNamesIt) {
    const test::TemporaryFolder folder;
    try {
        RasterWriter writer(folder / "none/a.tif", three_by_two());
        FAIL() << "not refused";
    } catch (const base::RuntimeError& error) {
        EXPECT_NE(error.description().find(folder / "none/a.tif"), std::string::npos) << error.description();
    }
}

TEST(RasterWriter, AFullDeviceIsAnErrorAtTheLatestOnClosing) {
    const test::TemporaryFolder folder;
    std::vector<std::uint8_t> cells;
    for (unsigned i = 0; i < 500 * 500; ++i) {
        cells.push_back(static_cast<std::uint8_t>(((i * i + 77U) * 2654435761U) >> 21));
    }
    const test::FileSizeLimit limit(20000);
    EXPECT_THROW(
        {
            RasterWriter writer(folder / "a.tif", {.grid = {0, 0, 1, -1, 500, 500}, .reference = {}});
            writer.write_rows(0, 500, cells);
            writer.close();
        },
        base::RuntimeError);
}

}  // namespace
}  // namespace kestrel::data

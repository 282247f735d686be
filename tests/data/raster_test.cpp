// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/raster.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <limits>

#include "base/errors.h"
#include "tests/support/raster_files.h"
#include "tests/support/test_files.h"

namespace kestrel::data {
namespace {

using test::RasterFile;

RasterFile three_by_two(const std::string& type, std::vector<double> cells) {
    return {.grid = {.x0 = 100, .y0 = 200, .dx = 30, .dy = -30, .columns = 3, .rows = 2},
            .cells = std::move(cells),
            .type = type};
}

class Raster : public ::testing::Test {
  protected:
    RasterDataset opened(const RasterFile& file) {
        test::write_raster(m_folder / "r.tif", file);
        return RasterDataset::open(m_folder / "r.tif");
    }
    std::string refusal(const std::string& source) {
        try {
            RasterDataset::open(source);
        } catch (const base::RuntimeError& error) {
            m_number = error.number();
            return error.description();
        }
        return "accepted";
    }
    std::string read_refusal(const RasterFile& file) {
        const RasterDataset raster = opened(file);
        CellBuffer buffer;
        try {
            raster.read({0, 0, 3, 2}, buffer);
        } catch (const base::RuntimeError& error) {
            m_number = error.number();
            return error.description();
        }
        return "accepted";
    }

    test::TemporaryFolder m_folder;
    std::int32_t m_number = 0;
};

TEST_F(Raster, BytesAreReadAsTheyAre) {
    RasterFile file = three_by_two("Byte", {0, 11, 255, 21, 22, 23});
    file.nodata = 255;
    file.reference = "EPSG:26912";
    const RasterDataset raster = opened(file);
    EXPECT_EQ(raster.cell_type(), CellType::byte);
    EXPECT_EQ(raster.nodata_value(), 255);
    EXPECT_TRUE(raster.declares_nodata());
    EXPECT_FALSE(raster.needs_checking());
    EXPECT_EQ(raster.data_band_count(), 1);
    EXPECT_EQ(raster.grid().cell_area(), 900);
    EXPECT_EQ(raster.grid().extent().min_y, 140);
    EXPECT_EQ(raster.spatial_reference().authority_code(), "EPSG:26912");
    CellBuffer buffer;
    raster.read({1, 0, 2, 2}, buffer);
    EXPECT_EQ(buffer.bytes, (std::vector<std::uint8_t>{11, 255, 22, 23}));
}

TEST_F(Raster, IntegersKeepTheirSign) {
    RasterFile file = three_by_two("Int16", {-5, 11, 300, -9999, 22, 23});
    file.nodata = -9999;
    const RasterDataset raster = opened(file);
    EXPECT_EQ(raster.cell_type(), CellType::int32);
    EXPECT_EQ(raster.nodata_value(), -9999);
    CellBuffer buffer;
    raster.read({0, 0, 3, 2}, buffer);
    EXPECT_EQ(buffer.integers, (std::vector<std::int32_t>{-5, 11, 300, -9999, 22, 23}));
}

TEST_F(Raster, SignedBytesKeepTheirSign) {
    const RasterDataset raster = opened(three_by_two("Int8", {1, 2, 3, -2, 5, 6}));
    EXPECT_EQ(raster.cell_type(), CellType::int32);
    EXPECT_FALSE(raster.needs_checking());
    CellBuffer buffer;
    raster.read({0, 1, 3, 1}, buffer);
    EXPECT_EQ(buffer.integers.at(1), 5);
    EXPECT_EQ(buffer.integers.at(0), -2);
}

TEST_F(Raster, WholeFloatingPointValuesAreCodes) {
    RasterFile file = three_by_two("Float32", {-5, 11, 2147483520.0, -3.4e38, 22, 23});
    file.nodata = -3.4e38;
    const RasterDataset raster = opened(file);
    EXPECT_TRUE(raster.needs_checking());
    CellBuffer buffer;
    raster.read({0, 0, 3, 2}, buffer);
    EXPECT_EQ(buffer.wide, (std::vector<std::int64_t>{-5, 11, 2147483520, kWideNodata, 22, 23}));
}

TEST_F(Raster, NotANumberIsNodataOnlyWhereItIsDeclared) {
    RasterFile file = three_by_two("Float64", {1, 2, 3, 4, std::numeric_limits<double>::quiet_NaN(), 6});
    EXPECT_NE(read_refusal(file).find("at row 2, column 2"), std::string::npos);
    file.nodata = std::numeric_limits<double>::quiet_NaN();
    const RasterDataset raster = opened(file);
    CellBuffer buffer;
    raster.read({0, 0, 3, 2}, buffer);
    EXPECT_EQ(buffer.wide.at(4), kWideNodata);
}

TEST_F(Raster, FractionsAreRefusedWithValueAndPlace) {
    EXPECT_NE(read_refusal(three_by_two("Float32", {1, 2, 3, 4, 5, 6.5})).find("holds 6.5 at row 2, column 3"),
              std::string::npos);
    EXPECT_EQ(m_number, base::kInvalidProcedureCall);
}

TEST_F(Raster, ValuesBeyond32BitsAreRefusedWithValueAndPlace) {
    EXPECT_NE(
        read_refusal(three_by_two("UInt32", {1, 4000000000.0, 3, 4, 5, 6})).find("holds 4000000000 at row 1, column 2"),
        std::string::npos);
}

TEST_F(Raster, ANodataValueThatNoCellCanHoldMarksNothing) {
    RasterFile file = three_by_two("Byte", {0, 1, 2, 3, 4, 5});
    file.nodata = -9999;
    EXPECT_EQ(opened(file).nodata_value(), std::nullopt);
}

TEST_F(Raster, AMaskHidesCells) {
    RasterFile file = three_by_two("Byte", {0, 1, 2, 3, 4, 5});
    file.hidden = {0, 1, 0, 0, 0, 1};
    const RasterDataset raster = opened(file);
    EXPECT_TRUE(raster.declares_nodata());
    CellBuffer buffer;
    raster.read({0, 0, 3, 2}, buffer);
    EXPECT_EQ(buffer.wide, (std::vector<std::int64_t>{0, kWideNodata, 2, 3, 4, kWideNodata}));
}

TEST_F(Raster, ThinStripsAreReadManyRowsAtATime) {
    RasterFile file{.grid = {.x0 = 0, .y0 = 0, .dx = 1, .dy = -1, .columns = 2, .rows = 1000},
                    .cells = std::vector<double>(2000, 1),
                    .options = {"BLOCKYSIZE=1"}};
    const std::vector<int> of_256{0, 256, 512, 768, 1000};
    EXPECT_EQ(opened(file).tile_lines().rows, of_256);
    file.options = {"BLOCKYSIZE=3"};
    EXPECT_EQ(opened(file).tile_lines().rows[1] % 3, 0);
    file.options = {"BLOCKYSIZE=128"};
    EXPECT_EQ(opened(file).tile_lines().rows[1], 128);
    EXPECT_EQ(opened(file).tile_lines().columns, (std::vector<int>{0, 2}));
}

TEST_F(Raster, WindowsOfOneTileHoldItsCellsAlsoWhereTheRasterEnds) {
    // Tiles of 32 by 16 cells: the last column of tiles is 6 cells wide, the last row 2 cells high.
    RasterFile file{.grid = {.x0 = 0, .y0 = 0, .dx = 1, .dy = -1, .columns = 70, .rows = 50},
                    .cells = {},
                    .options = {"TILED=YES", "BLOCKXSIZE=32", "BLOCKYSIZE=16", "COMPRESS=DEFLATE"}};
    for (int cell = 0; cell < 70 * 50; ++cell) {
        file.cells.push_back(cell % 251);
    }
    const RasterDataset raster = opened(file);
    CellBuffer buffer;
    // From the last tile to the first, so that each comes after one of another size.
    for (int row = 48; row >= 0; row -= 16) {
        for (int column = 64; column >= 0; column -= 32) {
            const CellWindow tile{column, row, std::min(32, 70 - column), std::min(16, 50 - row)};
            raster.read(tile, buffer);
            std::vector<std::uint8_t> expected;
            for (int r = row; r < row + tile.rows; ++r) {
                for (int c = column; c < column + tile.columns; ++c) {
                    expected.push_back(static_cast<std::uint8_t>((r * 70 + c) % 251));
                }
            }
            EXPECT_EQ(buffer.bytes, expected) << row << " " << column;
        }
    }
}

TEST_F(Raster, AMissingFileIsSaidToBeMissing) {
    EXPECT_EQ(refusal(m_folder / "none.tif"), "There is no raster \"" + m_folder / "none.tif" + "\"");
    EXPECT_EQ(m_number, base::kFileNotFound);
}

TEST_F(Raster, AFileThatIsNoRasterIsNamed) {
    std::ofstream(m_folder / "text.tif") << "no raster";
    EXPECT_NE(refusal(m_folder / "text.tif").find("text.tif\" cannot be opened"), std::string::npos);
}

TEST_F(Raster, ARotatedOrMirroredRasterIsRefusedWithWhatToDo) {
    RasterFile file = three_by_two("Byte", {0, 1, 2, 3, 4, 5});
    file.grid.dx = -30;
    test::write_raster(m_folder / "mirrored.tif", file);
    EXPECT_NE(refusal(m_folder / "mirrored.tif").find("is rotated or mirrored: make it north up first"),
              std::string::npos);
    EXPECT_EQ(m_number, base::kInvalidProcedureCall);
}

TEST_F(Raster, ARasterWithoutPositionIsRefusedWithWhatToDo) {
    std::ofstream(m_folder / "r.asc") << "P2\n2 2\n255\n1 2\n3 4\n";
    std::ofstream(m_folder / "r.pgm", std::ios::binary) << "P5\n2 2\n255\nabcd";
    EXPECT_NE(refusal(m_folder / "r.pgm").find("has no position in a map"), std::string::npos);
}

TEST_F(Raster, ComplexNumbersAreRefused) {
    EXPECT_NE(refusal([&] {
                  test::write_raster(m_folder / "c.tif", three_by_two("CFloat32", {0, 1, 2, 3, 4, 5}));
                  return m_folder / "c.tif";
              }())
                  .find("complex numbers"),
              std::string::npos);
}

TEST_F(Raster, ATruncatedFileFailsWhenItIsReadWithTheRows) {
    RasterFile file{.grid = {.x0 = 0, .y0 = 0, .dx = 1, .dy = -1, .columns = 100, .rows = 100},
                    .cells = std::vector<double>(10000, 1),
                    .options = {"BLOCKYSIZE=10"}};
    test::write_raster(m_folder / "t.tif", file);
    std::string bytes;
    {
        std::ifstream in(m_folder / "t.tif", std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    }
    std::ofstream(m_folder / "t.tif", std::ios::binary) << bytes.substr(0, 5000);
    const RasterDataset raster = RasterDataset::open(m_folder / "t.tif");
    CellBuffer buffer;
    try {
        raster.read({0, 0, 100, 100}, buffer);
        FAIL() << "read";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), base::kDeviceInputOutputError);
        EXPECT_NE(error.description().find("cannot be read at rows 1 to 100"), std::string::npos)
            << error.description();
    }
}

}  // namespace
}  // namespace kestrel::data

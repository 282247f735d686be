// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/tile_lines.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>

namespace kestrel::data {
namespace {

using Lines = std::vector<int>;

/// A source of a mosaic: a raster of these blocks, laid cell on cell.
std::string source(int block_columns, int block_rows, int from_x, int from_y, int to_x, int to_y, int columns, int rows,
                   double scale = 1) {
    return fmt::format(
        "<SimpleSource><SourceFilename>a.tif</SourceFilename>"
        "<SourceProperties RasterXSize=\"1000\" RasterYSize=\"1000\" BlockXSize=\"{}\" BlockYSize=\"{}\"/>"
        "<SrcRect xOff=\"{}\" yOff=\"{}\" xSize=\"{}\" ySize=\"{}\"/>"
        "<DstRect xOff=\"{}\" yOff=\"{}\" xSize=\"{}\" ySize=\"{}\"/></SimpleSource>",
        block_columns, block_rows, from_x, from_y, columns, rows, to_x, to_y, columns * scale, rows * scale);
}

TileLines mosaic(const std::string& sources, int columns, int rows) {
    const std::string xml =
        "<VRTDataset><VRTRasterBand dataType=\"Byte\" band=\"1\">" + sources + "</VRTRasterBand></VRTDataset>";
    return mosaic_lines(xml.c_str(), columns, rows, {});
}

TEST(TileLines, OfATiledRasterAreThoseOfItsBlocks) {
    const TileLines lines = block_lines(512, 256, 1200, 600);
    EXPECT_EQ(lines.columns, (Lines{0, 512, 1024, 1200}));
    EXPECT_EQ(lines.rows, (Lines{0, 256, 512, 600}));
    EXPECT_EQ(lines.rows_at_once, 256);
}

TEST(TileLines, LowBlocksAreJoined) {
    const TileLines strips = block_lines(20000, 1, 20000, 600);
    EXPECT_EQ(strips.columns, (Lines{0, 20000}));
    EXPECT_EQ(strips.rows, (Lines{0, 256, 512, 600}));
    EXPECT_EQ(strips.rows_at_once, 13) << "as many as a processor's cache holds";
    const TileLines small = block_lines(16, 16, 100, 40);
    EXPECT_EQ(small.columns, (Lines{0, 100}));
    EXPECT_EQ(small.rows, (Lines{0, 40}));
    EXPECT_EQ(block_lines(100000, 7, 1000000, 600).rows_at_once, 7) << "never less than a block";
}

TEST(TileLines, OfOneBlockAreTheRastersEnds) {
    const TileLines lines = block_lines(512, 512, 30, 20);
    EXPECT_EQ(lines.columns, (Lines{0, 30}));
    EXPECT_EQ(lines.rows, (Lines{0, 20}));
}

TEST(TileLines, OfAMosaicFollowTheBlocksOfItsSources) {
    const TileLines lines =
        mosaic(source(512, 512, 0, 0, 0, 0, 1000, 1000) + source(512, 512, 0, 0, 1000, 0, 1000, 1000), 2000, 1000);
    EXPECT_EQ(lines.columns, (Lines{0, 512, 1000, 1512, 2000}));
    EXPECT_EQ(lines.rows, (Lines{0, 512, 1000}));
    EXPECT_GE(lines.rows_at_once, 512);
}

TEST(TileLines, BlocksThatAreNotDescribedAreTheGivenOnes) {
    const char* const xml =
        "<VRTDataset><VRTRasterBand><ComplexSource><SrcRect xOff=\"0\" yOff=\"0\" xSize=\"300\" ySize=\"200\"/>"
        "<DstRect xOff=\"0\" yOff=\"0\" xSize=\"300\" ySize=\"200\"/></ComplexSource></VRTRasterBand></VRTDataset>";
    EXPECT_EQ(mosaic_lines(xml, 300, 200, {256, 128}).columns, (Lines{0, 256, 300}));
    EXPECT_EQ(mosaic_lines(xml, 300, 200, {256, 128}).rows, (Lines{0, 128, 200}));
}

TEST(TileLines, OfPartsOfSourcesAreThoseOfTheirFiles) {
    const TileLines lines = mosaic(source(512, 512, 500, 100, 10, 20, 400, 800), 500, 900);
    EXPECT_EQ(lines.columns, (Lines{0, 10, 22, 410, 500}));
    EXPECT_EQ(lines.rows, (Lines{0, 20, 432, 820, 900}));
}

TEST(TileLines, OfAMosaicOfStripsAreAsWideAsTheSources) {
    const TileLines lines = mosaic(source(1000, 1, 0, 0, 0, 0, 1000, 1000), 1000, 1000);
    EXPECT_EQ(lines.columns, (Lines{0, 1000}));
    EXPECT_EQ(lines.rows, (Lines{0, 256, 512, 768, 1000}));
}

TEST(TileLines, AMosaicThatCannotBeCutHasNone) {
    EXPECT_TRUE(mosaic(source(512, 512, 0, 0, 0, 0, 100, 100, 2), 200, 200).rows.empty()) << "scaled";
    EXPECT_TRUE(mosaic("<SimpleSource/>", 200, 200).rows.empty()) << "nothing is said of it";
    EXPECT_TRUE(mosaic("", 200, 200).rows.empty()) << "no source";
    EXPECT_TRUE(mosaic_lines("no description", 200, 200, {512, 512}).rows.empty());
    std::string many;
    for (int i = 0; i < 100; ++i) {
        many += source(512, 512, 0, 0, 2 * i, i, 1, 1);
    }
    EXPECT_TRUE(mosaic(many, 200, 200).rows.empty()) << "too many tiles";
}

TEST(TileLines, SourcesBeyondTheMosaicAddNoLineOutsideOfIt) {
    const TileLines lines = mosaic(source(64, 64, 0, 0, 100, 0, 300, 300), 200, 200);
    EXPECT_EQ(lines.columns.back(), 200);
    EXPECT_EQ(lines.rows.back(), 200);
}

}  // namespace
}  // namespace kestrel::data

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
//
// What a run cannot be faster than: decodes every block of a raster and looks at nothing.
//   decode_floor RASTER [threads]
#include <gdal_priv.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

void decode(const char* path, std::atomic<int>& next, int rows_at_once) {
    GDALDataset* dataset = GDALDataset::Open(path, GDAL_OF_RASTER);
    GDALRasterBand* band = dataset->GetRasterBand(1);
    int width = 0;
    int height = 0;
    band->GetBlockSize(&width, &height);
    const int across = (dataset->GetRasterXSize() + width - 1) / width;
    const int down = (dataset->GetRasterYSize() + height - 1) / height;
    const auto bytes = static_cast<std::size_t>(GDALGetDataTypeSizeBytes(band->GetRasterDataType()));
    std::vector<char> block(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * bytes);
    for (int first = next.fetch_add(rows_at_once); first < down; first = next.fetch_add(rows_at_once)) {
        for (int y = first; y < std::min(down, first + rows_at_once); ++y) {
            for (int x = 0; x < across; ++x) {
                if (band->ReadBlock(x, y, block.data()) != CE_None) {
                    std::exit(1);
                }
            }
        }
    }
    GDALClose(dataset);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: decode_floor RASTER [threads]\n");
        return 2;
    }
    GDALAllRegister();
    // Room for the tiles of a mosaic under a few rows of its own blocks, and not a share of the memory.
    GDALSetCacheMax64(std::int64_t{512} << 20);
    const int threads = argc > 2 ? std::atoi(argv[2]) : static_cast<int>(std::thread::hardware_concurrency());
    const auto begin = std::chrono::steady_clock::now();
    std::atomic<int> next = 0;
    {
        std::vector<std::jthread> pool;
        for (int i = 0; i < threads; ++i) {
            pool.emplace_back([&] { decode(argv[1], next, 2); });
        }
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    std::printf("%.4f\n", seconds.count());
    return 0;
}

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/band_histogram.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <utility>

namespace kestrel::counting {
namespace {

using Counts = std::map<std::pair<std::uint32_t, std::int64_t>, std::uint64_t>;

/// Counts random spans of some pieces band by band, and the same one by one.
void compare_with_counting(int classes, int nodata) {
    std::mt19937 random(static_cast<unsigned>(classes));
    PieceCounter counter;
    BandHistogram histogram(nodata < 0 ? std::nullopt : std::optional(static_cast<std::uint8_t>(nodata)));
    Counts expected;
    for (int band = 0; band < 20; ++band) {
        for (int span = 0; span < 200; ++span) {
            const auto zone = static_cast<std::uint32_t>(random() % 30);
            std::vector<std::uint8_t> cells(std::uniform_int_distribution<std::size_t>(1, 100)(random));
            for (std::uint8_t& cell : cells) {
                // Later bands meet classes that earlier ones did not.
                cell = static_cast<std::uint8_t>(random() % static_cast<unsigned>(1 + (classes - 1) * band / 19));
                const std::int64_t code = cell == nodata ? PieceCounter::kNodata : cell;
                ++expected[{zone, code}];
            }
            histogram.count(counter.piece(zone, kNoOverlay, 0), cells.data(), cells.size(), counter);
        }
        histogram.flush(counter);
    }
    ZoneCounts counts;
    counts.touches_nodata.assign(30, 0);
    counter.append_to(counts, {});
    Counts found;
    for (const ZoneCounts::Row& row : counts.rows) {
        found[{row.zone, row.land_class}] = row.cells;
    }
    for (const ZoneCounts::Row& row : counts.nodata_rows) {
        found[{row.zone, PieceCounter::kNodata}] = row.cells;
    }
    EXPECT_EQ(found, expected);
}

TEST(BandHistogram, CountsAgreeWithCountingOneByOne) {
    compare_with_counting(16, -1);
}

TEST(BandHistogram, NodataIsKeptApart) {
    compare_with_counting(16, 3);
}

TEST(BandHistogram, MoreClassesThanItHasColumnsForAreCountedToo) {
    compare_with_counting(256, -1);
}

TEST(BandHistogram, NodataAmongClassesWithoutColumnsIsKeptApart) {
    for (const int nodata : {0, 130, 255}) {
        compare_with_counting(256, nodata);
    }
}

}  // namespace
}  // namespace kestrel::counting

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/piece_counter.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <tuple>

namespace kestrel::counting {
namespace {

using Key = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t, std::int32_t>;

ZoneCounts collected(const PieceCounter& counter, const ScenarioSets& sets, std::size_t zones) {
    ZoneCounts counts;
    counts.touches_nodata.assign(zones, 0);
    counter.append_to(counts, sets);
    EXPECT_EQ(counter.row_count(), counts.rows.size() + counts.nodata_rows.size());
    counts.put_in_order();
    return counts;
}

TEST(PieceCounter, CountsAgreeWithAMap) {
    std::mt19937 random(7);
    ScenarioSets sets;
    const std::uint32_t with_scenario = sets.with(0, 0);
    PieceCounter counter;
    std::map<Key, std::uint64_t> expected;
    for (int i = 0; i < 200000; ++i) {
        const auto zone = std::uniform_int_distribution<std::uint32_t>(0, 49)(random);
        const auto overlay = random() % 3 == 0 ? kNoOverlay : static_cast<std::uint32_t>(random() % 4);
        const std::uint32_t set = random() % 2 == 0 ? 0 : with_scenario;
        // Codes from a few to many, of both signs.
        const auto code = std::uniform_int_distribution<std::int32_t>(-static_cast<std::int32_t>(zone),
                                                                      static_cast<std::int32_t>(zone) * 4)(random);
        const auto cells = std::uniform_int_distribution<std::uint64_t>(1, 1000)(random);
        counter.add(counter.piece(zone, overlay, set), code, cells);
        expected[{zone, overlay, set, code}] += cells;
    }
    const ZoneCounts counts = collected(counter, sets, 50);
    ASSERT_EQ(counts.rows.size(), expected.size());
    auto next = expected.begin();
    for (const ZoneCounts::Row& row : counts.rows) {
        EXPECT_EQ((Key{row.zone, row.overlay, row.scenario_set, row.land_class}), next->first);
        EXPECT_EQ(row.cells, next->second);
        ++next;
    }
}

TEST(PieceCounter, CodesAtTheBoundsOf32BitsAndNodataAreKeptApart) {
    PieceCounter counter;
    const ScenarioSets sets;
    const std::size_t piece = counter.piece(0, kNoOverlay, 0);
    counter.add(piece, std::numeric_limits<std::int32_t>::min(), 1);
    counter.add(piece, std::numeric_limits<std::int32_t>::max(), 2);
    counter.add(piece, 0, 3);
    counter.add(piece, PieceCounter::kNodata, 4);
    const ZoneCounts counts = collected(counter, sets, 1);
    ASSERT_EQ(counts.rows.size(), 3U);
    EXPECT_EQ(counts.rows[0].land_class, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(counts.rows[0].cells, 1U);
    EXPECT_EQ(counts.rows[1].cells, 3U);
    EXPECT_EQ(counts.rows[2].land_class, std::numeric_limits<std::int32_t>::max());
    ASSERT_EQ(counts.nodata_rows.size(), 1U);
    EXPECT_EQ(counts.nodata_rows[0].cells, 4U);
}

TEST(PieceCounter, CountsBeyond32BitsDoNotOverflow) {
    PieceCounter counter;
    const std::size_t piece = counter.piece(0, kNoOverlay, 0);
    for (int i = 0; i < 3; ++i) {
        counter.add(piece, 11, 4000000000ULL);
    }
    EXPECT_EQ(collected(counter, {}, 1).rows.at(0).cells, 12000000000ULL);
}

TEST(ScenarioSets, ASetIsMadeOnceWhateverTheWayToIt) {
    ScenarioSets sets;
    const std::uint32_t first = sets.with(0, 0);
    const std::uint32_t both = sets.with(first, 2);
    EXPECT_EQ(sets.with(0, 0), first);
    EXPECT_EQ(sets.with(first, 2), both);
    EXPECT_EQ(sets.sets().at(both), (std::vector<std::uint32_t>{0, 2}));
    EXPECT_TRUE(sets.sets().at(0).empty());
}

}  // namespace
}  // namespace kestrel::counting

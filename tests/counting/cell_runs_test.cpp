// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/cell_runs.h"

#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

namespace kestrel::counting {
namespace {

template <typename Cell>
void compare_with_counting(int highest) {
    std::mt19937 random(6);
    for (int i = 0; i < 2000; ++i) {
        std::vector<Cell> cells;
        while (cells.size() < 200) {
            const auto value = static_cast<Cell>(std::uniform_int_distribution<int>(0, highest)(random));
            cells.insert(cells.end(), std::uniform_int_distribution<std::size_t>(1, 40)(random), value);
        }
        const auto begin = std::uniform_int_distribution<std::size_t>(0, 20)(random);
        const auto end = std::uniform_int_distribution<std::size_t>(begin, cells.size())(random);
        std::size_t position = begin;
        for_each_run(cells.data(), begin, end, [&](Cell value, std::size_t count) {
            ASSERT_GT(count, 0U);
            for (std::size_t k = 0; k < count; ++k) {
                ASSERT_EQ(cells[position + k], value);
            }
            position += count;
            ASSERT_TRUE(position == end || cells[position] != value) << "runs are as long as they can be";
        });
        ASSERT_EQ(position, end);
    }
}

TEST(CellRuns, RunsOfBytesAreWholeAndNeverPassTheEnd) {
    compare_with_counting<std::uint8_t>(255);
}

TEST(CellRuns, RunsOfFewByteValuesAreJoined) {
    compare_with_counting<std::uint8_t>(1);
}

TEST(CellRuns, RunsOfIntegersAreWholeAndNeverPassTheEnd) {
    compare_with_counting<std::int32_t>(3);
}

TEST(CellRuns, RunsOfWideCellsAreWholeAndNeverPassTheEnd) {
    compare_with_counting<std::int64_t>(3);
}

TEST(CellRuns, ChangesAreFoundManyAtATime) {
    std::mt19937 random(8);
    for (int i = 0; i < 2000; ++i) {
        std::vector<std::uint8_t> cells;
        const int one_in = 1 + i % 20;
        while (cells.size() < 65) {
            const bool changes = cells.empty() || random() % static_cast<unsigned>(one_in) == 0;
            cells.push_back(changes ? static_cast<std::uint8_t>(random() >> 8) : cells.back());
        }
        std::uint64_t expected = 0;
        for (std::size_t at = 0; at < 64; ++at) {
            expected |= std::uint64_t{cells[at] != cells[at + 1]} << at;
        }
        EXPECT_EQ(changes_in_64(cells.data()), expected);
        for (int at = 0; at < 57; ++at) {
            EXPECT_EQ(changes_in_8(cells.data() + at), expected >> at & 255);
        }
    }
}

}  // namespace
}  // namespace kestrel::counting

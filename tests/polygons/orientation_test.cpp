// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "polygons/orientation.h"

namespace kestrel::polygons {
namespace {

TEST(Orientation, LeftRightAndOnTheLine) {
    EXPECT_EQ(orientation({0, 0}, {2, 0}, {1, 1}), 1);
    EXPECT_EQ(orientation({0, 0}, {2, 0}, {1, -1}), -1);
    EXPECT_EQ(orientation({0, 0}, {2, 0}, {1, 0}), 0);
    EXPECT_EQ(orientation({0, 0}, {2, 0}, {5, 0}), 0);
    EXPECT_EQ(orientation({1, 1}, {1, 1}, {5, 0}), 0);
}

TEST(Orientation, IsExactWhereDoublesCannotTell) {
    // The points around (0.5, 0.5) against the diagonal, one unit of the last place apart; whole numbers tell the
    // truth.
    __extension__ using Wide = __int128;
    constexpr double kUnit = 1.0 / 9007199254740992.0;  // 2^-53
    constexpr Wide kHalf = Wide{1} << 52;
    constexpr Wide kOne = Wide{1} << 53;
    const Point b{12, 12};
    const Point c{24, 24};
    for (int i = 0; i < 64; ++i) {
        for (int j = 0; j < 64; ++j) {
            const Point a{0.5 + i * 2 * kUnit, 0.5 + j * 2 * kUnit};
            const Wide ax = kHalf + 2 * i;
            const Wide ay = kHalf + 2 * j;
            const Wide det = (ax - 24 * kOne) * (12 * kOne - 24 * kOne) - (ay - 24 * kOne) * (12 * kOne - 24 * kOne);
            const int expected = det > 0 ? 1 : (det < 0 ? -1 : 0);
            ASSERT_EQ(orientation(a, b, c), expected) << i << ", " << j;
            ASSERT_EQ(orientation(b, c, a), expected);
            ASSERT_EQ(orientation(b, a, c), -expected);
        }
    }
}

TEST(Orientation, IsExactAtMapCoordinates) {
    // Points of a line of 2^-30 m steps far from the origin: sums of whole numbers of steps again.
    __extension__ using Wide = __int128;
    std::mt19937_64 random(7);
    const auto step = [&] { return static_cast<std::int64_t>(random() % (std::uint64_t{1} << 50)); };
    const auto real = [](std::int64_t steps) { return std::ldexp(static_cast<double>(steps), -30); };
    int on_line = 0;
    for (int k = 0; k < 20000; ++k) {
        const std::int64_t x = step();
        const std::int64_t y = step();
        const std::int64_t dx = static_cast<std::int64_t>(random() % 1000000);
        const std::int64_t dy = static_cast<std::int64_t>(random() % 1000000);
        const std::int64_t off = static_cast<std::int64_t>(random() % 3) - 1;
        const std::int64_t bx = x + 3 * dx;
        const std::int64_t by = y + 3 * dy;
        const std::int64_t cx = x + 7 * dx + off;
        const std::int64_t cy = y + 7 * dy;
        const Wide det = Wide{bx - x} * (cy - y) - Wide{by - y} * (cx - x);
        const int expected = det > 0 ? 1 : (det < 0 ? -1 : 0);
        ASSERT_EQ(orientation({real(x), real(y)}, {real(bx), real(by)}, {real(cx), real(cy)}), expected);
        on_line += expected == 0 ? 1 : 0;
    }
    EXPECT_GT(on_line, 1000);
}

}  // namespace
}  // namespace kestrel::polygons

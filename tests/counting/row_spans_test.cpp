// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/row_spans.h"

#include <gtest/gtest.h>

#include <random>

namespace kestrel::counting {

void PrintTo(const RowSpan& span, std::ostream* stream) {
    *stream << "[" << span.begin << ", " << span.end << ") of " << span.owner;
}

namespace {

constexpr int kWidth = 40;

std::vector<RowSpan> random_spans(std::mt19937& random, int count) {
    std::vector<RowSpan> spans;
    for (int i = 0; i < count; ++i) {
        const int begin = std::uniform_int_distribution<int>(0, kWidth - 1)(random);
        const int end = std::uniform_int_distribution<int>(begin + 1, kWidth)(random);
        spans.push_back({begin, end, std::uniform_int_distribution<std::uint32_t>(0, 9)(random)});
    }
    return spans;
}

TEST(RowSpans, DisjointSpansAreOnlyPutInOrder) {
    std::vector<RowSpan> spans{{7, 9, 0}, {1, 3, 1}, {3, 7, 2}};
    resolve_overlaps(spans);
    EXPECT_EQ(spans, (std::vector<RowSpan>{{1, 3, 1}, {3, 7, 2}, {7, 9, 0}}));
}

TEST(RowSpans, TheLaterFeatureOwnsWhatSeveralCover) {
    std::vector<RowSpan> spans{{0, 10, 1}, {2, 4, 3}, {3, 6, 2}};
    resolve_overlaps(spans);
    EXPECT_EQ(spans, (std::vector<RowSpan>{{0, 2, 1}, {2, 4, 3}, {4, 6, 2}, {6, 10, 1}}));
}

TEST(RowSpans, ResolvedSpansAgreeWithPaintingCellByCell) {
    std::mt19937 random(4);
    for (int i = 0; i < 3000; ++i) {
        std::vector<RowSpan> spans = random_spans(random, i % 40);
        std::vector<int> painted(kWidth, -1);
        for (const RowSpan& span : spans) {
            for (int c = span.begin; c < span.end; ++c) {
                auto& cell = painted[static_cast<std::size_t>(c)];
                cell = std::max(cell, static_cast<int>(span.owner));
            }
        }
        resolve_overlaps(spans);
        std::vector<int> resolved(kWidth, -1);
        int position = 0;
        for (const RowSpan& span : spans) {
            ASSERT_LE(position, span.begin);
            position = span.end;
            for (int c = span.begin; c < span.end; ++c) {
                resolved[static_cast<std::size_t>(c)] = static_cast<int>(span.owner);
            }
        }
        ASSERT_EQ(resolved, painted) << "case " << i;
    }
}

TEST(RowSpans, UnitedSpansAgreeWithPaintingCellByCell) {
    std::mt19937 random(5);
    for (int i = 0; i < 3000; ++i) {
        std::vector<RowSpan> spans = random_spans(random, i % 8);
        std::vector<bool> painted(kWidth, false);
        for (const RowSpan& span : spans) {
            std::fill(painted.begin() + span.begin, painted.begin() + span.end, true);
        }
        unite(spans);
        std::vector<bool> united(kWidth, false);
        int position = -1;
        for (const RowSpan& span : spans) {
            ASSERT_LT(position, span.begin) << "spans that touch are one";
            ASSERT_EQ(span.owner, 0U);
            position = span.end;
            std::fill(united.begin() + span.begin, united.begin() + span.end, true);
        }
        ASSERT_EQ(united, painted) << "case " << i;
    }
}

}  // namespace
}  // namespace kestrel::counting

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/zone_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "counting/zone_counts.h"

namespace kestrel {
namespace {

using data::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> texts_of(const ZoneGroups& groups) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < groups.count(); ++i) {
        texts.push_back(groups.text(i));
    }
    return texts;
}

Value number(std::int64_t value) {
    return value;
}

TEST(ZoneGroups, FeaturesOfOneValueAreOneGroup) {
    const ZoneGroups groups({number(7), number(3), number(7)});
    EXPECT_THAT(texts_of(groups), ElementsAre("3", "7"));
    EXPECT_THAT(groups.group_of(), ElementsAre(1, 0, 1));
}

TEST(ZoneGroups, NumbersStandByTheirSizeAndNotByTheirText) {
    EXPECT_THAT(texts_of(ZoneGroups({number(10), number(9), number(-2), number(123456789012345678)})),
                ElementsAre("-2", "9", "10", "123456789012345678"));
}

TEST(ZoneGroups, TextStandsByItsBytes) {
    EXPECT_THAT(texts_of(ZoneGroups({Value("b"), Value("ä"), Value("B"), Value("10"), Value("9")})),
                ElementsAre("10", "9", "B", "b", "ä"));
}

TEST(ZoneGroups, LetterCaseAndBlanksTellValuesApart) {
    EXPECT_EQ(ZoneGroups({Value("a"), Value("A"), Value(" a")}).count(), 3U);
}

TEST(ZoneGroups, NullAndEmptyTextAreTheFirstGroupTogether) {
    const ZoneGroups groups({Value("a"), Value(), Value("")});
    EXPECT_THAT(texts_of(groups), ElementsAre("", "a"));
    EXPECT_THAT(groups.group_of(), ElementsAre(1, 0, 0));
}

TEST(ZoneGroups, NullStandsBeforeNegativeNumbers) {
    EXPECT_THAT(texts_of(ZoneGroups({number(-5), Value()})), ElementsAre("", "-5"));
}

TEST(ZoneGroups, NoFeaturesAreNoGroups) {
    EXPECT_THAT(texts_of(ZoneGroups(std::vector<Value>{})), IsEmpty());
}

TEST(ZoneKeys, WithoutDensityTheKeyIsTheValue) {
    const ZoneGroups groups({Value("b"), Value("a")});
    const ZoneKeys keys(groups);
    EXPECT_EQ(keys.text(keys.key(0, counting::kNoOverlay)), "b");
    EXPECT_EQ(keys.text(keys.key(1, counting::kNoOverlay)), "a");
}

TEST(ZoneKeys, WithDensityTheKeyEndsInTheDigitOfTheCoveringPolygon) {
    const ZoneGroups groups({number(7)});
    const ZoneKeys keys(groups, {3, 1});
    EXPECT_EQ(keys.text(keys.key(0, 0)), "7#3");
    EXPECT_EQ(keys.text(keys.key(0, 1)), "7#1");
}

TEST(ZoneKeys, APieceThatNoDensityPolygonCoversDropsOut) {
    const ZoneGroups groups({number(7)});
    EXPECT_EQ(ZoneKeys(groups, {1}).key(0, counting::kNoOverlay), ZoneKeys::kNoKey);
}

TEST(ZoneKeys, AscendByValueThenByDigit) {
    const ZoneGroups groups({number(10), number(9)});
    const ZoneKeys keys(groups, {1, 2, 3});
    EXPECT_LT(keys.key(1, 0), keys.key(1, 1));
    EXPECT_LT(keys.key(1, 2), keys.key(0, 0));
}

}  // namespace
}  // namespace kestrel

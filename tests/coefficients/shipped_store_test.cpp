// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "base/files.h"
#include "coefficients/basISModelPropsUtil.h"
#include "coefficients/basUtil.h"
#include "coefficients/indented_text.h"
#include "tests/coefficients/sets.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using testing::ElementsAre;
using Range = std::array<float, 3>;

class ShippedStore : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(basUtil::GetISModelProperties(m_props, m_path)); }

    /// High, Medium and Low of a class.
    Range range_of(const std::string& set, std::int32_t id) const {
        for (const auto& member : basISModelPropsUtil::find_set(m_props, set)->LCClasses) {
            if (member->ID == id) return {member->LCHigh, member->LCMed, member->LCLow};
        }
        ADD_FAILURE() << set << " has no class " << id;
        return {};
    }

    test::ScriptedInteraction m_user;
    std::string m_path = std::string(KESTREL_SOURCE_DIR) + "/etc/isprops.xml";
    clsISModelProperties m_props;
};

TEST_F(ShippedStore, IsWhatTheWriterGivesForItsContent) {
    const test::TemporaryFolder folder;
    const CoefficientStore store = CoefficientStore::at(folder / "isprops.xml");
    ASSERT_TRUE(basUtil::PutISModelProperties(m_props, store));
    EXPECT_EQ(base::read_file(store.path), base::read_file(m_path));
}

TEST_F(ShippedStore, LeavesMostOfTheLimitToTheUser) {
    EXPECT_LT(m_props.XML().size(), kMaxStoreCharacters / 4);
}

TEST_F(ShippedStore, HoldsTheClassesOfBothLegends) {
    EXPECT_THAT(test::outline(m_props),
                ElementsAre("NLCD legend: 11 12 21 22 23 24 31 41 42 43 51 52 71 72 73 74 81 82 90 95",
                            "CORINE legend: 111 112 121 122 123 124 131 132 133 141 142 211 212 213 221 222 223 231 "
                            "241 242 243 244 311 312 313 321 322 323 324 331 332 333 334 335 411 412 421 422 423 511 "
                            "512 521 522 523"));
}

TEST_F(ShippedStore, DevelopedClassesHaveTheBoundsOfTheirDefinitions) {
    EXPECT_EQ(range_of("NLCD legend", 21), (Range{19, 9.5F, 0}));
    EXPECT_EQ(range_of("NLCD legend", 22), (Range{49, 34.5F, 20}));
    EXPECT_EQ(range_of("NLCD legend", 23), (Range{79, 64.5F, 50}));
    EXPECT_EQ(range_of("NLCD legend", 24), (Range{100, 90, 80}));
    EXPECT_EQ(range_of("CORINE legend", 111), (Range{100, 90, 80}));
    EXPECT_EQ(range_of("CORINE legend", 112), (Range{80, 55, 30}));
    EXPECT_EQ(range_of("CORINE legend", 121), (Range{100, 75, 50}));
    for (const std::int32_t id : {122, 123, 124})
        EXPECT_EQ(range_of("CORINE legend", id), (Range{100, 50, 0})) << id;
    for (const std::int32_t id : {131, 132, 133})
        EXPECT_EQ(range_of("CORINE legend", id), (Range{0, 0, 0})) << id;
    for (const std::int32_t id : {141, 142})
        EXPECT_EQ(range_of("CORINE legend", id), (Range{30, 15, 0})) << id;
}

TEST_F(ShippedStore, ClassesThatAreNotDevelopedAreZero) {
    for (const auto& set : m_props.ISLCDefs) {
        for (const auto& member : set->LCClasses) {
            const bool developed = (member->ID >= 21 && member->ID <= 24) || (member->ID >= 111 && member->ID <= 142);
            if (!developed) {
                EXPECT_EQ(range_of(set->LCType, member->ID), (Range{0, 0, 0})) << member->ID;
            }
        }
    }
}

TEST_F(ShippedStore, NamesSurviveTheTextFormats) {
    for (const auto& set : m_props.ISLCDefs) {
        EXPECT_EQ(set->LCType.find_first_of(",#"), std::string::npos);
        for (const auto& member : set->LCClasses) {
            EXPECT_FALSE(member->LCName.empty()) << member->ID;
            EXPECT_EQ(member->LCName.find_first_of(",#"), std::string::npos) << member->LCName;
        }
    }
}

}  // namespace
}  // namespace kestrel

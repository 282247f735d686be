// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/coefficient_lookup.h"

#include <gtest/gtest.h>

#include "tests/support/scripted_interaction.h"

namespace kestrel {
namespace {

TextList list_of(std::initializer_list<const char*> texts) {
    TextList list;
    for (const char* text : texts) {
        list.Add(text);
    }
    return list;
}

LandClassDictionary partly_numeric_classes() {
    LandClassDictionary result;
    result.add("2", list_of({"Developed", "90", "80.5", "70"}));
    result.add("5", list_of({"Grassland", "3", "a few", "1"}));
    result.add("7", list_of({"Roads", "100"}));
    result.add("9", list_of({"Barren", "-9999", "0", "1e2"}));
    return result;
}

double coefficient(std::optional<CoefficientOption> option, const char* code, const char* key) {
    const LandClassDictionary known = partly_numeric_classes();
    return CoefficientLookup(option, known).coefficient(code, key);
}

TEST(CoefficientLookup, HighMediumAndLowHoldInEveryZone) {
    EXPECT_EQ(coefficient(CoefficientOption::high, "2", "12#3"), 90);
    EXPECT_EQ(coefficient(CoefficientOption::medium, "2", "12#3"), 80.5);
    EXPECT_EQ(coefficient(CoefficientOption::low, "2", "12#1"), 70);
}

TEST(CoefficientLookup, ByDensityGoesByTheKeysLastDigit) {
    EXPECT_EQ(coefficient(CoefficientOption::by_density, "2", "12#1"), 90);
    EXPECT_EQ(coefficient(CoefficientOption::by_density, "2", "12#2"), 80.5);
    EXPECT_EQ(coefficient(CoefficientOption::by_density, "2", "12#3"), 70);
}

TEST(CoefficientLookup, WithoutAnOptionThereIsNoCoefficient) {
    EXPECT_EQ(coefficient(std::nullopt, "2", "12#2"), -9999);
}

TEST(CoefficientLookup, AClassThatTheSetLacksHasNone) {
    EXPECT_EQ(coefficient(CoefficientOption::high, "3", "12"), -9999);
    EXPECT_EQ(coefficient(CoefficientOption::high, "02", "12"), -9999);
}

TEST(CoefficientLookup, APositionThatTheEntryLacksHasNone) {
    EXPECT_EQ(coefficient(CoefficientOption::high, "7", "12"), 100);
    EXPECT_EQ(coefficient(CoefficientOption::medium, "7", "12"), -9999);
    EXPECT_EQ(coefficient(CoefficientOption::by_density, "2", "12#9"), -9999);
}

TEST(CoefficientLookup, WhatIsNoNumberIsNoCoefficient) {
    EXPECT_EQ(coefficient(CoefficientOption::medium, "5", "12"), -9999);
    EXPECT_EQ(coefficient(CoefficientOption::by_density, "2", "twelve"), -9999);
    EXPECT_EQ(coefficient(CoefficientOption::by_density, "2", ""), -9999);
}

TEST(CoefficientLookup, TheDigitZeroNamesTheClassNameWhichIsNoNumber) {
    EXPECT_EQ(coefficient(CoefficientOption::by_density, "2", "10"), -9999);
}

TEST(CoefficientLookup, AStoredMinus9999IsTakenForNone) {
    EXPECT_EQ(coefficient(CoefficientOption::high, "9", "12"), -9999);
    EXPECT_EQ(coefficient(CoefficientOption::medium, "9", "12"), 0);
    EXPECT_EQ(coefficient(CoefficientOption::low, "9", "12"), 100);
}

TEST(CoefficientLookup, FailuresAreNeverReported) {
    const test::ScriptedInteraction said;
    coefficient(CoefficientOption::medium, "5", "12");
    coefficient(CoefficientOption::by_density, "2", "");
    EXPECT_TRUE(said.call_stacks.empty());
    EXPECT_TRUE(said.boxes.empty());
}

TEST(CoefficientLookup, AMissingClassLeavesNoEntryBehind) {
    const LandClassDictionary known = partly_numeric_classes();
    CoefficientLookup(CoefficientOption::high, known).coefficient("3", "12");
    EXPECT_EQ(known.size(), 4U);
}

}  // namespace
}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/dictionary.h"

#include <gtest/gtest.h>

namespace kestrel::base {

namespace {

std::vector<std::string> keys_of(const Dictionary<int>& dictionary) {
    std::vector<std::string> keys;
    for (const auto& [key, item] : dictionary) {
        keys.push_back(key);
    }
    return keys;
}

TEST(Dictionary, KeepsTheOrderOfInsertion) {
    Dictionary<int> dictionary;
    for (const char* key : {"21", "3", "110", "-1"}) {
        dictionary.add(key, 0);
    }
    EXPECT_EQ(keys_of(dictionary), (std::vector<std::string>{"21", "3", "110", "-1"}));
}

TEST(Dictionary, ComparesKeysExactly) {
    Dictionary<int> dictionary;
    dictionary.add("a", 1);
    dictionary.add("A", 2);
    dictionary.add("a ", 3);
    dictionary.add("", 4);
    EXPECT_EQ(dictionary.size(), 4U);
    EXPECT_EQ(*dictionary.find("A"), 2);
    EXPECT_EQ(*dictionary.find(""), 4);
}

TEST(Dictionary, RefusesASecondEntryForAKeyAndKeepsTheFirst) {
    Dictionary<int> dictionary;
    dictionary.add("11", 1);
    try {
        dictionary.add("11", 2);
        FAIL() << "nothing was thrown";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 457);
        EXPECT_EQ(error.description(), "This key is already associated with an element of this collection");
        EXPECT_EQ(error.line(), __LINE__ - 5);
    }
    EXPECT_EQ(*dictionary.find("11"), 1);
    EXPECT_EQ(dictionary.size(), 1U);
}

TEST(Dictionary, ReadingAMissingKeyLeavesAnEmptyEntryBehind) {
    Dictionary<std::vector<std::string>> dictionary;
    EXPECT_TRUE(dictionary["82"].empty());
    EXPECT_EQ(dictionary.size(), 1U);
    EXPECT_TRUE(dictionary.contains("82"));
    EXPECT_THROW(dictionary.add("82", {}), RuntimeError);
}

TEST(Dictionary, FindLeavesNoTrace) {
    const Dictionary<int> dictionary;
    EXPECT_EQ(dictionary.find("82"), nullptr);
    EXPECT_FALSE(dictionary.contains("82"));
    EXPECT_TRUE(dictionary.empty());
}

TEST(Dictionary, ItemsCanBeChangedInPlace) {
    Dictionary<int> dictionary;
    dictionary["a"] = 5;
    dictionary["a"] += 1;
    EXPECT_EQ(*dictionary.find("a"), 6);
    EXPECT_EQ(dictionary.size(), 1U);
}

TEST(Dictionary, FindsEveryOneOfManyKeys) {
    Dictionary<int> dictionary;
    for (int i = 0; i < 5000; ++i) {
        dictionary.add(std::to_string(i), i);
    }
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(*dictionary.find(std::to_string(i)), i);
    }
}

}  // namespace

}  // namespace kestrel::base

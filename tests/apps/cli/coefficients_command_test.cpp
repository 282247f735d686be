// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/coefficients_command.h"

#include <gtest/gtest.h>

#include <memory>

#include "coefficients/clsLCClass.h"

namespace kestrel::cli {
namespace {

struct ClassRow {
    std::int32_t code;
    const char* name;
    float high;
    float medium;
    float low;
};

void add_set(clsISModelProperties& store, const std::string& name, const std::vector<ClassRow>& rows) {
    auto set = std::make_shared<clsISLCDef>();
    set->LCType = name;
    for (const ClassRow& row : rows) {
        auto land_class = std::make_shared<clsLCClass>();
        land_class->ID = row.code;
        land_class->LCName = row.name;
        land_class->LCHigh = row.high;
        land_class->LCMed = row.medium;
        land_class->LCLow = row.low;
        set->LCClasses.Add(land_class);
    }
    store.ISLCDefs.Add(set);
}

TEST(CoefficientTables, ListTheSetsWithTheirClassCounts) {
    clsISModelProperties store;
    add_set(store, "Küste", {{1, "a", 3, 2, 1}, {2, "b", 3, 2, 1}});
    add_set(store, "Inland", {});
    EXPECT_EQ(sets_table(store),
              "Set     Classes\n"
              "Küste         2\n"
              "Inland        0\n");
}

TEST(CoefficientTables, ShowTheClassesOfASet) {
    clsISModelProperties store;
    add_set(store, "Default", {{21, "Developed, Low Intensity", 35, 25, 12.5F}, {-4, "Forêt", 100, 33.3F, 0}});
    EXPECT_EQ(classes_table(*store.ISLCDefs.Item(1)),
              " Value  ClassName                   High  Medium     Low\n"
              "    21  Developed, Low Intensity      35      25    12.5\n"
              "    -4  Forêt                        100    33.3       0\n");
}

TEST(CheckStore, FindsNothingInAGoodStore) {
    clsISModelProperties store;
    add_set(store, "Default", {{21, "Developed", 100, 25, 12.5F}, {41, "Forest", 0, 0, 0}});
    EXPECT_TRUE(check_store(store, "").errors.empty());
    EXPECT_TRUE(check_store(store, "").notes.empty());
}

TEST(CheckStore, FindsSetsOfOneName) {
    clsISModelProperties store;
    add_set(store, "Urban", {{1, "a", 3, 2, 1}});
    add_set(store, "Urban", {{2, "b", 3, 2, 1}});
    EXPECT_EQ(check_store(store, "").errors,
              (std::vector<std::string>{"2 sets are called 'Urban'; a run takes the classes of all of them."}));
}

TEST(CheckStore, FindsAClassThatStandsTwiceInASet) {
    clsISModelProperties store;
    add_set(store, "Urban", {{21, "a", 3, 2, 1}, {21, "b", 3, 2, 1}, {22, "c", 3, 2, 1}});
    EXPECT_EQ(check_store(store, "").errors, (std::vector<std::string>{"Set 'Urban': class 21 stands in it 2 times."}));
}

TEST(CheckStore, FindsCoefficientsOutsideOfZeroToAHundred) {
    clsISModelProperties store;
    add_set(store, "Urban", {{21, "a", 100.5F, 2, -1}});
    EXPECT_EQ(
        check_store(store, "").errors,
        (std::vector<std::string>{"Set 'Urban', class 21 (a): the High coefficient is 100.5, not between 0 and 100.",
                                  "Set 'Urban', class 21 (a): the Low coefficient is -1, not between 0 and 100."}));
}

TEST(CheckStore, NotesCoefficientsThatDoNotFall) {
    clsISModelProperties store;
    add_set(store, "Urban", {{21, "a", 10, 20, 30}, {22, "b", 10, 10, 10}});
    EXPECT_TRUE(check_store(store, "").errors.empty());
    EXPECT_EQ(check_store(store, "").notes,
              (std::vector<std::string>{
                  "Set 'Urban', class 21 (a): the coefficients do not fall from High to Low: 10, 20, 30."}));
}

TEST(CheckStore, FindsNamesThatWouldCutTheParametersOfARun) {
    clsISModelProperties store;
    add_set(store, "Urban", {{21, "Lot #5", 3, 2, 1}});
    EXPECT_EQ(check_store(store, "").errors,
              (std::vector<std::string>{
                  "Set 'Urban', class 21 (Lot #5): the name holds '#', which would cut the parameters of a run."}));
}

TEST(CheckStore, FindsEmptySetsAndEmptyStores) {
    clsISModelProperties store;
    EXPECT_EQ(check_store(store, "").errors, (std::vector<std::string>{"There are no coefficient sets."}));
    add_set(store, "Urban", {});
    EXPECT_EQ(check_store(store, "").errors, (std::vector<std::string>{"Set 'Urban': it has no classes."}));
}

TEST(CheckStore, LooksAtTheNamedSetOnly) {
    clsISModelProperties store;
    add_set(store, "Urban", {});
    add_set(store, "Good", {{1, "a", 3, 2, 1}});
    EXPECT_TRUE(check_store(store, "Good").errors.empty());
    EXPECT_EQ(check_store(store, "Urban").errors.size(), 1U);
}

TEST(CheckStore, NotesAStoreThatIsTooLongToBeSaved) {
    clsISModelProperties store;
    add_set(store, "Urban", {{1, "a", 3, 2, 1}});
    const std::size_t size = store.XML().size();
    // Two bytes a character: it is characters that count.
    const auto fill = [&](std::size_t count) {
        std::string name;
        for (std::size_t i = 0; i < count; ++i) {
            name += "é";
        }
        store.ISLCDefs.Item(1)->LCType = name;
    };
    fill(5 + 32767 - size);
    EXPECT_TRUE(check_store(store, "").notes.empty());
    fill(5 + 32768 - size);
    EXPECT_EQ(check_store(store, "").notes,
              (std::vector<std::string>{
                  "The store has 32768 characters. It can be used, but not saved: the limit is 32767."}));
}

}  // namespace
}  // namespace kestrel::cli

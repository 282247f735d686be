// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/clsISTableFunctions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using data::Field;
using data::FieldType;
using data::Table;
using reporting::MessageBox;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class TableFunctions : public testing::Test {
  protected:
    TableFunctions() { base::create_folder(extension / "temp"); }

    static Tabulation tabulation(const std::vector<std::int32_t>& classes) {
        Tabulation result{.cell_area = 1, .keys = {}, .columns = {}};
        for (const std::int32_t land_class : classes) {
            result.columns.push_back({land_class});
        }
        return result;
    }
    std::optional<Table> created(const std::vector<std::int32_t>& classes, const std::string& zone_field = "SHED") {
        const Tabulation tabulated = tabulation(classes);
        return functions.createDBF("areaTemp", zone_field, 2 * tabulated.field_count() - 2, tabulated);
    }
    /// A table with the columns of class 5.
    Table areas(std::initializer_list<std::pair<const char*, double>> rows) {
        Table table = *created({5});
        for (const auto& [key, area] : rows) {
            const std::size_t row = table.add_row(key);
            table.set_number(row, 2, area);
            table.set_number(row, 3, area / 10);
        }
        return table;
    }

    test::TemporaryFolder extension;
    test::ScriptedInteraction said;
    clsISTableFunctions functions{extension.path()};
};

std::vector<std::string> names_of(const Table& table) {
    std::vector<std::string> names;
    for (const Field& field : table.fields()) {
        names.push_back(field.name);
    }
    return names;
}

TEST_F(TableFunctions, EveryAreaColumnIsFollowedByItsImperviousColumn) {
    const std::optional<Table> table = created({2, 5, 11});
    ASSERT_TRUE(table);
    EXPECT_EQ(table->name(), "areaTemp");
    EXPECT_THAT(names_of(*table),
                ElementsAre("OID", "SHED", "area-2", "ISarea-2", "area-5", "ISarea-5", "area-11", "ISarea-11"));
}

TEST_F(TableFunctions, FieldsHaveTheDefinedTypesAndSizes) {
    const std::optional<Table> table = created({2});
    ASSERT_TRUE(table);
    EXPECT_THAT(table->fields(), ElementsAre(Field{"OID", "OID", FieldType::oid, 4, 0, 0},
                                             Field{"SHED", "SHED", FieldType::text, 18, 0, 0},
                                             Field{"area-2", "area-2", FieldType::real, 18, 18, 6},
                                             Field{"ISarea-2", "ISarea-2", FieldType::real, 18, 18, 6}));
}

TEST_F(TableFunctions, ATabulationWithoutClassesGivesATableOfKeys) {
    EXPECT_THAT(names_of(*created({})), ElementsAre("OID", "SHED"));
}

TEST_F(TableFunctions, ClassCodesOfAnyLengthAndSignNameColumns) {
    EXPECT_THAT(
        names_of(*created({-2147483648, 2147483647})),
        ElementsAre("OID", "SHED", "area--2147483648", "ISarea--2147483648", "area-2147483647", "ISarea-2147483647"));
}

TEST_F(TableFunctions, MoreThan255ColumnsAreMade) {
    std::vector<std::int32_t> classes(1000);
    for (std::size_t i = 0; i < classes.size(); ++i) {
        classes[i] = static_cast<std::int32_t>(i);
    }
    EXPECT_EQ(created(classes)->fields().size(), 2002U);
}

TEST_F(TableFunctions, AZoneFieldNamedLikeAnotherColumnMakesRoomForIt) {
    EXPECT_EQ(names_of(*created({5}, "OID"))[1], "OID_1");
    EXPECT_EQ(names_of(*created({5}, "area-5"))[1], "area-5_1");
    EXPECT_EQ(names_of(*created({5}, "ISarea-5"))[1], "ISarea-5_1");
    EXPECT_EQ(names_of(*created({5}, "areacode"))[1], "areacode");
}

TEST_F(TableFunctions, AMissingTempFolderIsTold) {
    base::remove_folder(extension / "temp");
    EXPECT_FALSE(created({5}));
    EXPECT_THAT(said.boxes, ElementsAre(MessageBox{"\rFolder does not exist: " + extension.path() + "/temp"}));
}

TEST_F(TableFunctions, AFailureOfCreateDBFIsReportedWithoutTheFinalS) {
    EXPECT_FALSE(created({5, 5}));
    EXPECT_THAT(said.call_stacks, ElementsAre(HasSubstr("\tcreateDBF clsISTableFunction Line : ")));
}

TEST_F(TableFunctions, DensityVariantsOfAZoneSumIntoOneRow) {
    const std::optional<Table> sum =
        functions.SumTable(areas({{"12#1", 1}, {"12#2", 20}, {"12#3", 300}}), "SHED", "SHED");
    ASSERT_TRUE(sum);
    ASSERT_EQ(sum->row_count(), 1U);
    EXPECT_EQ(sum->key(0), "12");
    EXPECT_DOUBLE_EQ(sum->number(0, 2), 321);
    EXPECT_DOUBLE_EQ(sum->number(0, 3), 32.1);
    EXPECT_EQ(sum->name(), "areaTab");
}

TEST_F(TableFunctions, SumsStandInTheOrderOfTheFirstRowOfEachZone) {
    const std::optional<Table> sum = functions.SumTable(areas({{"9#3", 1}, {"10#1", 2}, {"9#1", 4}}), "SHED", "SHED");
    ASSERT_EQ(sum->row_count(), 2U);
    EXPECT_EQ(sum->key(0), "9");
    EXPECT_DOUBLE_EQ(sum->number(0, 2), 5);
    EXPECT_EQ(sum->key(1), "10");
    EXPECT_DOUBLE_EQ(sum->number(1, 2), 2);
}

TEST_F(TableFunctions, WildcardsAndQuotesInValuesMatchNothingElse) {
    const std::optional<Table> sum = functions.SumTable(
        areas({{"%#1", 1}, {"1_#1", 2}, {"12#1", 4}, {"O'Neil#1", 8}, {"a#1#2", 16}, {"a#1", 32}}), "SHED", "SHED");
    ASSERT_EQ(sum->row_count(), 6U);
    for (const auto& [key, area] : std::initializer_list<std::pair<const char*, double>>{
             {"%", 1}, {"1_", 2}, {"12", 4}, {"O'Neil", 8}, {"a#1", 16}, {"a", 32}}) {
        ASSERT_TRUE(sum->find_row(key)) << key;
        EXPECT_DOUBLE_EQ(sum->number(*sum->find_row(key), 2), area) << key;
    }
}

TEST_F(TableFunctions, TheZoneWithoutValueIsSummedToo) {
    const std::optional<Table> sum = functions.SumTable(areas({{"#1", 1}, {"#2", 2}}), "SHED", "SHED");
    ASSERT_EQ(sum->row_count(), 1U);
    EXPECT_EQ(sum->key(0), "");
    EXPECT_DOUBLE_EQ(sum->number(0, 2), 3);
}

TEST_F(TableFunctions, TheSumsKeyFieldHasTheGivenName) {
    Table table = *created({5}, "new_SHED");
    EXPECT_EQ(functions.SumTable(table, "SHED", "new_SHED")->fields()[1].name, "SHED");
    EXPECT_EQ(functions.SumTable(table, "OID", "new_SHED")->fields()[1].name, "OID_1");
}

TEST_F(TableFunctions, SumTableWithoutTheFieldOfKeysIsReported) {
    EXPECT_FALSE(functions.SumTable(areas({}), "SHED", "OTHER"));
    EXPECT_THAT(said.call_stacks, ElementsAre(HasSubstr("\tSumTable clsISTableFunction Line : ")));
}

TEST_F(TableFunctions, CopyTableFormatCopiesFieldsAndNoRows) {
    const std::optional<Table> copy = functions.CopyTableFormat(areas({{"12#1", 1}}), "areaTab", "SHED");
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->row_count(), 0U);
    EXPECT_EQ(copy->fields(), created({5})->fields());
}

TEST_F(TableFunctions, AFailureOfCopyTableFormatIsReported) {
    const Table source("x", {{.name = "OID"}, {.name = "KEY"}, {.name = "SHED"}});
    EXPECT_FALSE(functions.CopyTableFormat(source, "areaTab", "SHED"));
    EXPECT_THAT(said.call_stacks, ElementsAre(HasSubstr("\tCopyTableFormat clsISTableFunction Line : ")));
}

TEST_F(TableFunctions, BCheckFindsATextFromPositionOneOn) {
    const std::vector<std::string> list{"a", "b", "c"};
    EXPECT_TRUE(functions.bCheck("b", list));
    EXPECT_TRUE(functions.bCheck("c", list));
    EXPECT_FALSE(functions.bCheck("B", list));
    EXPECT_FALSE(functions.bCheck("d", list));
}

TEST_F(TableFunctions, BCheckNeverComparesPositionZero) {
    const std::vector<std::string> list{"a", "b"};
    EXPECT_FALSE(functions.bCheck("a", list));
}

TEST_F(TableFunctions, BCheckOfAnEmptyListIsFalse) {
    EXPECT_FALSE(functions.bCheck("", {}));
}

TEST(AreaColumns, AreToldByTheirPrefixes) {
    EXPECT_TRUE(is_area_column({.name = "area-5"}));
    EXPECT_FALSE(is_area_column({.name = "ISarea-5"}));
    EXPECT_TRUE(is_impervious_column({.name = "ISarea-5"}));
    EXPECT_FALSE(is_impervious_column({.name = "area-5"}));
    EXPECT_FALSE(is_area_column({.name = "Area-5"}));
}

}  // namespace
}  // namespace kestrel

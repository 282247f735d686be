// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/error_of.h"
#include "tests/support/test_files.h"
#include "tests/support/tiny_disk.h"

namespace kestrel::data {

namespace {

using test::error_of;
using test::names_in;
using test::TemporaryFolder;
using test::TinyDisk;

Field area_field(const std::string& name) {
    return {.name = name, .type = FieldType::real, .length = 18, .precision = 18, .scale = 6};
}

Table area_table() {
    return {"areaTemp",
            {{.name = "OID", .type = FieldType::oid, .length = 4},
             {.name = "ZONE", .type = FieldType::text, .length = 18},
             area_field("area-11"),
             area_field("ISarea-11")}};
}

TEST(Table, FieldsAreFoundByTheirExactNames) {
    const Table table = area_table();
    EXPECT_EQ(table.name(), "areaTemp");
    EXPECT_EQ(table.find_field("OID"), 0);
    EXPECT_EQ(table.find_field("ZONE"), 1);
    EXPECT_EQ(table.find_field("area-11"), 2);
    EXPECT_EQ(table.find_field("ISarea-11"), 3);
    EXPECT_EQ(table.find_field("isarea-11"), -1);
    EXPECT_EQ(table.find_field("area"), -1);
    EXPECT_EQ(table.find_field(""), -1);
}

TEST(Table, NeedsAnObjectIdAndAKey) {
    EXPECT_EQ(error_of([] { Table("t", {{.name = "OID"}}); }).number(), 5);
}

TEST(Table, TwoFieldsOfOneNameAreRefused) {
    EXPECT_EQ(error_of([] { Table("t", {{.name = "OID"}, {.name = "OID"}}); }).number(), 457);
    Table table = area_table();
    EXPECT_EQ(error_of([&] { table.add_field(area_field("area-11")); }).number(), 457);
    EXPECT_EQ(table.fields().size(), 4U);
}

TEST(Table, RowsStartWithZeroAndAreFoundByTheirKey) {
    Table table = area_table();
    EXPECT_EQ(table.add_row("b"), 0U);
    EXPECT_EQ(table.add_row("a"), 1U);
    EXPECT_EQ(table.row_count(), 2U);
    EXPECT_EQ(table.find_row("a"), 1U);
    EXPECT_EQ(table.find_row("b"), 0U);
    EXPECT_EQ(table.find_row("c"), std::nullopt);
    EXPECT_EQ(table.key(1), "a");
    EXPECT_EQ(table.number(1, 3), 0);
}

TEST(Table, KeysAreComparedExactlyAndNeverAsAQuery) {
    Table table = area_table();
    for (const char* key : {"O'Brien", "100%", "a_b", "axb", "", " ", "12#1", "A", "a", "\xC3\xBC"}) {
        table.add_row(key);
    }
    EXPECT_EQ(table.find_row("O'Brien"), 0U);
    EXPECT_EQ(table.find_row("100%"), 1U);
    EXPECT_EQ(table.find_row("a_b"), 2U);
    EXPECT_EQ(table.find_row(""), 4U);
    EXPECT_EQ(table.find_row("a"), 8U);
    EXPECT_EQ(table.find_row("12#%"), std::nullopt);
}

TEST(Table, LongKeysAreNotCut) {
    Table table = area_table();
    const std::string key(400, 'x');
    table.add_row(key + "1");
    table.add_row(key + "2");
    EXPECT_EQ(table.find_row(key + "2"), 1U);
    EXPECT_EQ(table.key(0), key + "1");
}

TEST(Table, ASecondRowOfTheSameKeyIsRefused) {
    Table table = area_table();
    table.add_row("12");
    EXPECT_EQ(error_of([&] { table.add_row("12"); }).number(), 457);
    EXPECT_EQ(table.row_count(), 1U);
    table.set_number(0, 2, 1);
    EXPECT_EQ(table.number(0, 2), 1);
}

TEST(Table, ManyRowsAreAddedAtOnce) {
    Table table = area_table();
    table.add_rows({"b", "a"});
    table.set_number(0, 2, 1.5);
    EXPECT_EQ(table.number(0, 3), 0);
    const Table before = table;
    table.add_rows({"c", "d", "e"});
    EXPECT_EQ(table.add_row("f"), 5U);
    table.set_number(4, 2, 2.5);
    EXPECT_THAT(table.numbers(2), testing::ElementsAre(1.5, 0, 0, 0, 2.5, 0));
    EXPECT_THAT(table.numbers(3), testing::ElementsAre(0, 0, 0, 0, 0, 0));
    EXPECT_EQ(table.find_row("a"), 1U);
    EXPECT_EQ(table.find_row("e"), 4U);
    EXPECT_THAT(before.numbers(2), testing::ElementsAre(1.5, 0));
    EXPECT_EQ(before.find_row("c"), std::nullopt);
}

TEST(Table, OfManyRowsThoseFromASecondKeyOnAreRefused) {
    for (const bool filled : {false, true}) {
        Table table = area_table();
        if (filled) {
            table.add_row("0");
        }
        EXPECT_EQ(error_of([&] { table.add_rows({"1", "2", "1", "3"}); }).number(), 457);
        const std::size_t rows = filled ? 3 : 2;
        EXPECT_EQ(table.row_count(), rows);
        EXPECT_EQ(table.numbers(2).size(), rows);
        EXPECT_EQ(table.find_row("3"), std::nullopt);
        EXPECT_EQ(table.add_row("4"), rows);
        EXPECT_EQ(table.add_field(area_field("area-82")), 4);
        for (const int field : {2, 3, 4}) {
            table.set_number(rows, field, field);
            EXPECT_EQ(table.numbers(field).back(), field);
        }
    }
}

TEST(Table, NumbersAreRoundedToTheScaleOfTheirField) {
    Table table = area_table();
    table.add_row("12");
    table.set_number(0, 2, 1.23456789);
    table.set_number(0, 3, 0.0000004);
    EXPECT_EQ(table.number(0, 2), 1.234568);
    EXPECT_EQ(table.number(0, 3), 0);
    const int whole = table.add_field({.name = "COUNT", .type = FieldType::real, .length = 9, .scale = 0});
    table.set_number(0, whole, 7.6);
    EXPECT_EQ(table.number(0, whole), 8);
}

TEST(Table, ManyNumbersOfAFieldAreSetAsOneIs) {
    Table table = area_table();
    table.add_rows({"1", "2", "3", "4"});
    const Table before = table;
    Table::NumberSetter setter = table.number_setter(2);
    const std::vector<double> values{1.23456789, 0, -0.0000004, 1e15};
    for (std::size_t row = 0; row < values.size(); ++row) {
        setter.set(row, values[row]);
        table.set_number(row, 3, values[row]);
        EXPECT_EQ(table.number(row, 2), table.number(row, 3));
    }
    EXPECT_EQ(table.number(0, 2), 1.234568);
    EXPECT_EQ(before.number(0, 2), 0);
    EXPECT_EQ(error_of([&] { setter.set(4, 1); }).number(), 9);
    EXPECT_EQ(error_of([&] { static_cast<void>(table.number_setter(1)); }).number(), 9);
}

TEST(Table, AFieldThatIsAddedLaterStartsWithZeroInEveryRow) {
    Table table = area_table();
    table.add_row("1");
    table.add_row("2");
    EXPECT_EQ(table.add_field(area_field("area-82")), 4);
    EXPECT_EQ(table.find_field("area-82"), 4);
    EXPECT_EQ(table.number(0, 4), 0);
    EXPECT_EQ(table.number(1, 4), 0);
    table.add_row("3");
    table.set_number(2, 4, 5);
    EXPECT_EQ(table.number(2, 4), 5);
}

TEST(Table, PositionsThatDoNotExistAreError9) {
    Table table = area_table();
    table.add_row("1");
    EXPECT_EQ(error_of([&] { static_cast<void>(table.key(1)); }).number(), 9);
    EXPECT_EQ(error_of([&] { static_cast<void>(table.number(1, 2)); }).number(), 9);
    EXPECT_EQ(error_of([&] { static_cast<void>(table.number(0, 4)); }).number(), 9);
    EXPECT_EQ(error_of([&] { static_cast<void>(table.number(0, -1)); }).number(), 9);
    EXPECT_EQ(error_of([&] { table.set_number(0, 4, 1); }).number(), 9);
    EXPECT_EQ(error_of([&] { table.set_number(5, 2, 1); }).number(), 9);
}

TEST(Table, ObjectIdAndKeyAreNoNumberFields) {
    Table table = area_table();
    table.add_row("1");
    EXPECT_EQ(error_of([&] { static_cast<void>(table.number(0, 0)); }).number(), 9);
    EXPECT_EQ(error_of([&] { table.set_number(0, 1, 1); }).number(), 9);
}

TEST(Table, HoldsMoreColumnsThanADbaseFile) {
    Table table = area_table();
    for (int code = 0; code < 600; ++code) {
        table.add_field(area_field("area-" + std::to_string(code + 1000)));
    }
    table.add_row("1");
    table.set_number(0, 603, 2.5);
    EXPECT_EQ(table.number(0, table.find_field("area-1599")), 2.5);
}

// --- the dBASE form

int number_at(const std::string& bytes, std::size_t position, int size) {
    int value = 0;
    for (int i = size; i-- > 0;) {
        value = value * 256 + static_cast<unsigned char>(bytes.at(position + static_cast<std::size_t>(i)));
    }
    return value;
}

/// Name, type, width and scale of the fields, as the header tells them.
std::vector<std::string> header_of(const std::string& dbf) {
    std::vector<std::string> fields;
    for (std::size_t position = 32; dbf.at(position) != '\r'; position += 32) {
        fields.push_back(std::string(dbf.substr(position, 11).c_str()) + " " + dbf[position + 11] + " " +
                         std::to_string(number_at(dbf, position + 16, 1)) + "." +
                         std::to_string(number_at(dbf, position + 17, 1)));
    }
    return fields;
}

std::string record_of(const std::string& dbf, int row) {
    const int length = number_at(dbf, 10, 2);
    return dbf.substr(static_cast<std::size_t>(number_at(dbf, 8, 2) + row * length), static_cast<std::size_t>(length));
}

TEST(WriteDbf, HasKeyAndNumbersWithTheirDefinitions) {
    const TemporaryFolder folder;
    Table table = area_table();
    table.add_row("12#1");
    table.set_number(0, 2, 1234.5678901);
    table.set_number(0, 3, -0.5);
    write_dbf(table, folder / "areaTemp.dbf");
    EXPECT_EQ(names_in(folder.path()), (std::vector<std::string>{"areaTemp.cpg", "areaTemp.dbf"}));
    EXPECT_EQ(base::read_file(folder / "areaTemp.cpg"), "UTF-8");
    const std::string dbf = base::read_file(folder / "areaTemp.dbf");
    EXPECT_EQ(header_of(dbf), (std::vector<std::string>{"ZONE C 18.0", "area-11 N 18.6", "ISarea-11 N 18.6"}));
    EXPECT_EQ(number_at(dbf, 4, 4), 1);
    EXPECT_EQ(record_of(dbf, 0), " 12#1                     1234.567890         -0.500000");
}

TEST(WriteDbf, LongNamesAreCutAndStayDistinct) {
    const TemporaryFolder folder;
    Table table = area_table();
    table.add_field(area_field("ISarea-10001"));
    table.add_field(area_field("ISarea-10002"));
    write_dbf(table, folder / "t.dbf");
    const std::vector<std::string> fields = header_of(base::read_file(folder / "t.dbf"));
    ASSERT_EQ(fields.size(), 5U);
    EXPECT_EQ(fields[3], "ISarea-100 N 18.6");
    EXPECT_NE(fields[4], fields[3]);
}

TEST(WriteDbf, AKeyIsAsWideAsTheLongestAndCutAt254BytesBetweenCharacters) {
    const TemporaryFolder folder;
    Table table = area_table();
    table.add_row(std::string(30, 'x'));
    write_dbf(table, folder / "t.dbf");
    EXPECT_EQ(header_of(base::read_file(folder / "t.dbf"))[0], "ZONE C 30.0");
    table.add_row(std::string(253, 'x') + "\xC3\xBC");
    write_dbf(table, folder / "t.dbf");
    const std::string dbf = base::read_file(folder / "t.dbf");
    EXPECT_EQ(header_of(dbf)[0], "ZONE C 254.0");
    EXPECT_EQ(record_of(dbf, 1).substr(0, 255), " " + std::string(253, 'x') + " ");
}

TEST(WriteDbf, ATableWithoutRowsIsAFileWithoutRecords) {
    const TemporaryFolder folder;
    write_dbf(area_table(), folder / "t.dbf");
    EXPECT_EQ(number_at(base::read_file(folder / "t.dbf"), 4, 4), 0);
}

TEST(WriteDbf, ReplacesAnExistingFile) {
    const TemporaryFolder folder;
    base::write_file(folder / "t.dbf", "something else");
    Table table = area_table();
    table.add_row("1");
    write_dbf(table, folder / "t.dbf");
    EXPECT_EQ(number_at(base::read_file(folder / "t.dbf"), 4, 4), 1);
}

TEST(WriteDbf, AMissingFolderIsPathNotFound) {
    const TemporaryFolder folder;
    EXPECT_EQ(error_of([&] { write_dbf(area_table(), folder / "no/t.dbf"); }).number(), 76);
}

TEST(WriteDbf, AFullDeviceLeavesNoHalfWrittenFile) {
    const TinyDisk disk;
    if (!disk.mounted()) {
        GTEST_SKIP() << "NOT TESTED: a small disk can be mounted by root only";
    }
    Table table = area_table();
    for (int i = 0; i < 20000; ++i) {
        table.add_row(std::to_string(i));
    }
    EXPECT_EQ(error_of([&] { write_dbf(table, disk / "t.dbf"); }).number(), 61);
    EXPECT_EQ(names_in(disk.path()), std::vector<std::string>{});
}

}  // namespace

}  // namespace kestrel::data

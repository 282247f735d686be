// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/dbase_records.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "base/files.h"
#include "data/shapefile_writer.h"
#include "tests/support/test_files.h"

namespace kestrel::data {
namespace {

using test::TemporaryFolder;

std::string new_table(const TemporaryFolder& folder, const std::vector<Field>& fields) {
    ShapefileWriter(folder / "out.shp", fields, {}).close();
    return folder / "out.dbf";
}

/// The records as they stand behind the header.
std::vector<std::string> records_in(const std::string& path, std::size_t size) {
    const std::string bytes = base::read_file(path);
    std::vector<std::string> records;
    for (std::size_t at = static_cast<unsigned char>(bytes[8]) + 256U * static_cast<unsigned char>(bytes[9]);
         at + size <= bytes.size(); at += size) {
        records.push_back(bytes.substr(at, size));
    }
    return records;
}

TEST(DbaseRecords, RealsAreWrittenAsPrintfWrites) {
    std::mt19937_64 random(1);
    const TemporaryFolder folder;
    DbaseRecords records(new_table(folder, {{"R", "", FieldType::real, 30, 30, 6}}));
    std::vector<std::string> expected;
    for (int i = 0; i < 20000; ++i) {
        double value = std::ldexp(static_cast<double>(random() % 2000000) - 1e6, static_cast<int>(random() % 60) - 40);
        if (i % 4 == 0) {
            value = std::round(value * 1e6) / 1e6;
        } else if (i % 4 == 1) {
            value = (std::floor(value * 1e6) + 0.5) / 1e6;  // as near to the middle as a double comes
        }
        const int decimals = static_cast<int>(random() % 13);
        std::string text = fmt::format("{:.{}f}", value, decimals);
        if (text.find_first_of("123456789") == std::string::npos) {
            text.erase(0, text[0] == '-' ? 1 : 0);  // there is no zero below zero
        }
        ASSERT_EQ(records.set_real(0, value, decimals), text.size() <= 30) << text;
        if (text.size() <= 30) {
            records.append();
            expected.push_back(fmt::format(" {:>30}", text));
        }
    }
    records.close();
    EXPECT_EQ(records_in(folder / "out.dbf", 31), expected);
}

TEST(DbaseRecords, GrowingFieldsKeepAllThatWasWritten) {
    std::mt19937_64 random(2);
    for (int round = 0; round < 60; ++round) {
        const TemporaryFolder folder;
        DbaseRecords records(new_table(
            folder, {{"T", "", FieldType::text, 2}, {"I", "", FieldType::integer, 3}, {"U", "", FieldType::text, 1}}));
        std::vector<std::string> texts;
        std::vector<std::string> integers;
        for (int i = 0; i < 40; ++i) {
            texts.emplace_back(random() % 12, static_cast<char>('a' + i % 26));
            const auto value = static_cast<std::int64_t>(random()) >> (random() % 64);
            integers.push_back(std::to_string(value));
            records.set_text(0, texts.back());
            if (i % 7 == 0) {
                records.set_null_number(1);
                integers.back() = "*";
            } else {
                records.set_integer(1, value);
            }
            records.set_text(2, texts.back());
            records.append();
            if (random() % 8 == 0) {
                records.flush();
            }
        }
        const auto text_width = static_cast<std::size_t>(records.width(0));
        const auto integer_width = static_cast<std::size_t>(records.width(1));
        records.close();
        const auto stored =
            records_in(folder / "out.dbf", 1 + 2 * text_width + integer_width - (text_width > 2 ? 0 : 1));
        ASSERT_EQ(stored.size(), texts.size());
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const std::string digits = integers[i] == "*" ? std::string(integer_width, '*') : integers[i];
            EXPECT_EQ(stored[i].substr(0, 1 + text_width + integer_width),
                      fmt::format(" {:<{}}{:>{}}", texts[i], text_width, digits, integer_width));
            EXPECT_EQ(stored[i].substr(1 + text_width + integer_width, texts[i].size()), texts[i]);
        }
    }
}

TEST(DbaseRecords, LargestIntegersHaveRoom) {
    const TemporaryFolder folder;
    DbaseRecords records(new_table(folder, {{"I", "", FieldType::big_integer, 1}}));
    for (const std::int64_t value : {std::int64_t{7}, std::numeric_limits<std::int64_t>::max(),
                                     std::numeric_limits<std::int64_t>::min(), std::int64_t{0}}) {
        records.set_integer(0, value);
        records.append();
    }
    records.close();
    EXPECT_EQ(records_in(folder / "out.dbf", 21),
              (std::vector<std::string>{"                    7", "  9223372036854775807", " -9223372036854775808",
                                        "                    0"}));
}

}  // namespace
}  // namespace kestrel::data

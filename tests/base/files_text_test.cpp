// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/error_of.h"
#include "tests/support/test_files.h"
#include "tests/support/tiny_disk.h"

namespace kestrel::base {
namespace {

using test::error_of;
using test::names_in;
using test::TemporaryFolder;
using test::TinyDisk;

using Lines = std::vector<std::string>;

TEST(Utf8, ValidTextStaysAndALeadingByteOrderMarkGoes) {
    EXPECT_EQ(to_utf8("Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x8C\x8D"), "Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x8C\x8D");
    EXPECT_EQ(to_utf8("\xEF\xBB\xBFName"), "Name");
    EXPECT_EQ(to_utf8("a\xEF\xBB\xBF"), "a\xEF\xBB\xBF");
    EXPECT_EQ(to_utf8(""), "");
    EXPECT_EQ(to_utf8(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TEST(Utf8, OtherTextIsTakenAsWindows1252) {
    EXPECT_EQ(to_utf8("Z\xFCrich"), "Z\xC3\xBCrich");
    EXPECT_EQ(to_utf8("\x80 5 \x96 10 \x93x\x94"), "\xE2\x82\xAC 5 \xE2\x80\x93 10 \xE2\x80\x9Cx\xE2\x80\x9D");
    EXPECT_EQ(to_utf8("\x99\x9F\xFF"), "\xE2\x84\xA2\xC5\xB8\xC3\xBF");
}

TEST(Utf8, OneBadByteTurnsTheWholeTextIntoWindows1252) {
    EXPECT_EQ(to_utf8("\xC3\xBC\xFC"), "\xC3\x83\xC2\xBC\xC3\xBC");
}

TEST(Utf8, BytesWithoutACharacterBecomeControlCodes) {
    EXPECT_EQ(to_utf8("\x81\x8D\x8F\x90\x9D"), "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D");
}

TEST(Utf8, OverlongFormsSurrogatesAndWhatLiesBeyondUnicodeAreNotValid) {
    // Not valid, so every byte is converted by itself and the text grows.
    for (const std::string text : {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                                   "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE2\x82", "\xC3", "\x80", "\xC3\x28"}) {
        EXPECT_GT(to_utf8(text).size(), text.size()) << ::testing::PrintToString(text);
    }
    for (const std::string text : {"\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
                                   "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(to_utf8(text), text) << ::testing::PrintToString(text);
    }
}

TEST(SplitLines, EndAtCrLfOrLf) {
    EXPECT_EQ(split_lines("a\r\nb\nc"), (Lines{"a", "b", "c"}));
    EXPECT_EQ(split_lines("a\r\n"), Lines{"a"});
    EXPECT_EQ(split_lines("a\n\r\n\nb\n"), (Lines{"a", "", "", "b"}));
    EXPECT_EQ(split_lines(""), Lines{});
    EXPECT_EQ(split_lines("\n"), Lines{""});
}

TEST(SplitLines, ALoneCarriageReturnIsPartOfTheLine) {
    EXPECT_EQ(split_lines("a\rb\r\r\n"), Lines{"a\rb\r"});
}

TEST(TextWriter, EndsEveryLineWithCrLfAndWritesNoByteOrderMark) {
    const TemporaryFolder folder;
    TextWriter writer(folder / "file");
    writer.write_line("Value,ClassName");
    writer.write_line("");
    writer.write_line("\xC3\xBC");
    writer.close();
    EXPECT_EQ(read_file(folder / "file"), "Value,ClassName\r\n\r\n\xC3\xBC\r\n");
}

TEST(TextWriter, ReplacesALongerFile) {
    const TemporaryFolder folder;
    write_file(folder / "file", std::string(1000, 'x'));
    TextWriter writer(folder / "file");
    writer.close();
    EXPECT_EQ(read_file(folder / "file"), "");
}

TEST(TextWriter, WritesManyLinesInOrder) {
    const TemporaryFolder folder;
    std::string expected;
    TextWriter writer(folder / "file");
    for (int i = 0; i < 30000; ++i) {
        writer.write_line(std::to_string(i));
        expected += std::to_string(i) + "\r\n";
    }
    writer.close();
    EXPECT_EQ(read_file(folder / "file"), expected);
}

TEST(TextWriter, DestructionWritesWhatIsLeft) {
    const TemporaryFolder folder;
    TextWriter(folder / "file").write_line("x");
    EXPECT_EQ(read_file(folder / "file"), "x\r\n");
}

TEST(TextWriter, CannotBeOpenedInAMissingFolder) {
    const TemporaryFolder folder;
    const RuntimeError error = error_of([&] { TextWriter writer(folder / "no/file"); });
    EXPECT_EQ(error.number(), 76);
    EXPECT_EQ(error.line(), __LINE__ - 2);
}

TEST(TextWriter, AFullDeviceIsNoticedAtTheLatestOnClosing) {
    const TinyDisk disk;
    if (!disk.mounted()) {
        GTEST_SKIP() << "NOT TESTED: a small disk can be mounted by root only";
    }
    disk.fill();
    TextWriter writer(disk / "report");
    writer.write_line("x");
    const RuntimeError error = error_of([&] { writer.close(); });
    EXPECT_EQ(error.number(), 61);
    EXPECT_NE(error.description().find(disk / "report"), std::string::npos);
    EXPECT_EQ(error.line(), __LINE__ - 3);
}

TEST(TextWriter, AFullDeviceIsNoticedWhileWriting) {
    TextWriter writer("/dev/full");
    const RuntimeError error = error_of([&] {
        for (int i = 0; i < 100000; ++i) {
            writer.write_line("x");
        }
    });
    EXPECT_EQ(error.number(), 61);
    // The rest is not tried again.
    EXPECT_EQ(error_of([&] { writer.close(); }).number(), 0);
}

TEST(TextReader, ReadsLinesOfEitherKindAndBothEncodings) {
    const TemporaryFolder folder;
    write_file(folder / "file",
               "\xEF\xBB\xBF"
               "a\r\n\nZ\xC3\xBCrich");
    TextReader reader(folder / "file");
    EXPECT_EQ(reader.read_line(), "a");
    EXPECT_EQ(reader.read_line(), "");
    EXPECT_EQ(reader.read_line(), "Z\xC3\xBCrich");
    EXPECT_EQ(reader.read_line(), std::nullopt);
    EXPECT_EQ(reader.read_line(), std::nullopt);
    write_file(folder / "file", "Z\xFCrich\r\n");
    EXPECT_EQ(TextReader(folder / "file").read_line(), "Z\xC3\xBCrich");
}

TEST(TextReader, AMissingFileIsFileNotFound) {
    const TemporaryFolder folder;
    EXPECT_EQ(error_of([&] { TextReader reader(folder / "missing"); }).number(), 53);
}

}  // namespace
}  // namespace kestrel::base

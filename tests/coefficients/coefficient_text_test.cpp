// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "coefficients/coefficient_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "base/files.h"
#include "tests/coefficients/sets.h"
#include "tests/support/error_of.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using test::classes_of;
using test::ClassValues;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

class CoefficientText : public testing::Test {
  protected:
    /// What is wrong with a file of these bytes.
    std::optional<TextFault> fault(const std::string& bytes) {
        base::write_file(m_path, bytes);
        clsLCClasses classes;
        return read_coefficient_text(m_path, classes);
    }

    /// The classes of a file in which nothing is wrong.
    std::vector<ClassValues> read(const std::string& bytes) {
        base::write_file(m_path, bytes);
        clsLCClasses classes;
        EXPECT_EQ(read_coefficient_text(m_path, classes), std::nullopt) << bytes;
        return classes_of(classes);
    }

    test::TemporaryFolder m_folder;
    std::string m_path = m_folder / "set.csv";
};

TEST_F(CoefficientText, ReadsAClassFromEveryLine) {
    EXPECT_THAT(read("21,Developed Low Intensity,35,25,12.5\r\n41,Forest,0,1e-1,33.3\r\n"),
                ElementsAre(ClassValues{21, "Developed Low Intensity", 35, 25, 12.5F},
                            ClassValues{41, "Forest", 0, 0.1F, 33.3F}));
}

TEST_F(CoefficientText, AppendsToTheClassesThatAreThere) {
    base::write_file(m_path, "2,b,0,0,0");
    clsLCClasses classes;
    classes.Add(test::land_class(1, "a", 0, 0, 0));
    EXPECT_EQ(read_coefficient_text(m_path, classes), std::nullopt);
    EXPECT_THAT(classes_of(classes), ElementsAre(ClassValues{1, "a", 0, 0, 0}, ClassValues{2, "b", 0, 0, 0}));
}

TEST_F(CoefficientText, HeaderIsSkippedInAnyLetterCaseAndWhereverItStands) {
    EXPECT_THAT(
        read("Value,ClassName,High,Medium,Low\n11,a,1,2,3\nvalue,x,1,2,3\nVALUE,,,,\n  vAlUe,x,y,z,\n12,b,0,0,0"),
        ElementsAre(ClassValues{11, "a", 1, 2, 3}, ClassValues{12, "b", 0, 0, 0}));
}

TEST_F(CoefficientText, EmptyFileAndHeaderAloneHaveNoClasses) {
    EXPECT_THAT(read(""), IsEmpty());
    EXPECT_THAT(read("Value,ClassName,High,Medium,Low\r\n"), IsEmpty());
    EXPECT_THAT(read("\xEF\xBB\xBF"), IsEmpty());
}

TEST_F(CoefficientText, ValueZeroIsAcceptedAndWhatNamesZero) {
    EXPECT_THAT(read("0,Water,0,0,0\n-0,Water,-0,0,0\n1e-400,Water,1e-400,0,0"),
                ElementsAre(ClassValues{0, "Water", 0, 0, 0}, ClassValues{0, "Water", 0, 0, 0},
                            ClassValues{0, "Water", 0, 0, 0}));
}

TEST_F(CoefficientText, LargestValueAndLargestCoefficientsAreAccepted) {
    EXPECT_THAT(read("2147483647,Water,100,100,100"), ElementsAre(ClassValues{2147483647, "Water", 100, 100, 100}));
}

TEST_F(CoefficientText, NameMayBeEmpty) {
    EXPECT_THAT(read("11,,1,2,3"), ElementsAre(ClassValues{11, "", 1, 2, 3}));
}

TEST_F(CoefficientText, SpacesRoundTheLineGoAndThoseOfTheNameStay) {
    EXPECT_THAT(read("   11,  Open  Water ,1,2,3   \n"), ElementsAre(ClassValues{11, "  Open  Water ", 1, 2, 3}));
}

TEST_F(CoefficientText, BlanksRoundNumbersDoNotMatter) {
    EXPECT_THAT(read("\t11\t,a, 1 ,\t2,3\t\n"), ElementsAre(ClassValues{11, "a", 1, 2, 3}));
}

TEST_F(CoefficientText, NumbersMayHaveSignsPointsAndExponents) {
    EXPECT_THAT(read("+1.1e1,a,5.,.5,1E+1\n12.0,b,1000e-1,007,+0"),
                ElementsAre(ClassValues{11, "a", 5, 0.5F, 10}, ClassValues{12, "b", 100, 7, 0}));
}

TEST_F(CoefficientText, NameIsTakenAsItStands) {
    EXPECT_THAT(read("11,\"Open\tWater\" <&> #1;'%_\\,1,2,3"),
                ElementsAre(ClassValues{11, "\"Open\tWater\" <&> #1;'%_\\", 1, 2, 3}));
}

TEST_F(CoefficientText, RepeatedValuesAreAllTaken) {
    EXPECT_THAT(read("11,a,1,2,3\n11,b,4,5,6"),
                ElementsAre(ClassValues{11, "a", 1, 2, 3}, ClassValues{11, "b", 4, 5, 6}));
}

TEST_F(CoefficientText, LinesEndWithCrLfOrLfAndTheLastWithoutAnEndCounts) {
    EXPECT_THAT(
        read("11,a,1,2,3\r\n12,b,1,2,3\n13,c,1,2,3"),
        ElementsAre(ClassValues{11, "a", 1, 2, 3}, ClassValues{12, "b", 1, 2, 3}, ClassValues{13, "c", 1, 2, 3}));
}

TEST_F(CoefficientText, LeadingByteOrderMarkIsDropped) {
    EXPECT_THAT(read("\xEF\xBB\xBFValue,ClassName,High,Medium,Low\n11,for\xC3\xAAt,1,2,3"),
                ElementsAre(ClassValues{11, "for\xC3\xAAt", 1, 2, 3}));
    EXPECT_THAT(read("\xEF\xBB\xBF"
                     "11,a,1,2,3"),
                ElementsAre(ClassValues{11, "a", 1, 2, 3}));
}

TEST_F(CoefficientText, WhatIsNotUtf8IsWindows1252) {
    EXPECT_THAT(read("11,for\xEAt \x80,1,2,3"), ElementsAre(ClassValues{11, "for\xC3\xAAt \xE2\x82\xAC", 1, 2, 3}));
}

// Order of checks

TEST_F(CoefficientText, FieldsAreCountedBeforeTheHeaderIsSkipped) {
    EXPECT_EQ(fault("Value,ClassName,High,Medium"), TextFault::field_count);
    EXPECT_EQ(fault("Value"), TextFault::field_count);
}

TEST_F(CoefficientText, FieldsAreCountedBeforeTheyAreRead) {
    EXPECT_EQ(fault("-1,Water,abc,101"), TextFault::field_count);
}

TEST_F(CoefficientText, EachFieldIsCheckedWhollyBeforeTheNext) {
    EXPECT_EQ(fault("-1,Water,abc,0,0"), TextFault::class_id);
    EXPECT_EQ(fault("x,Water,101,0,0"), TextFault::format);
    EXPECT_EQ(fault("1.5,Water,101,0,0"), TextFault::class_id);
    EXPECT_EQ(fault("11,Water,101,abc,0"), TextFault::coefficient);
    EXPECT_EQ(fault("11,Water,abc,101,0"), TextFault::format);
    EXPECT_EQ(fault("11,Water,0,abc,101"), TextFault::format);
    EXPECT_EQ(fault("11,Water,0,-1,abc"), TextFault::coefficient);
    EXPECT_EQ(fault("11,Wa\0ter,0,0,101"s), TextFault::coefficient);
}

TEST_F(CoefficientText, FirstWrongLineDecides) {
    EXPECT_EQ(fault("11,Water,101,0,0\n\n"), TextFault::coefficient);
    EXPECT_EQ(fault("11,Water,1,0,0\n\n11,Water,101,0,0\n"), TextFault::field_count);
}

// Bad files

struct BadFile {
    const char* name;
    std::string bytes;
    TextFault fault;
};

void PrintTo(const BadFile& file, std::ostream* stream) {
    *stream << testing::PrintToString(file.bytes);
}

class BadCoefficientText : public testing::TestWithParam<BadFile> {};

TEST_P(BadCoefficientText, IsRefusedForItsFault) {
    const test::TemporaryFolder folder;
    base::write_file(folder / "bad.csv", GetParam().bytes);
    clsLCClasses classes;
    EXPECT_EQ(read_coefficient_text(folder / "bad.csv", classes), GetParam().fault);
}

std::vector<BadFile> bad_field_counts() {
    constexpr TextFault kFault = TextFault::field_count;
    return {{"TooFewFields", "11,Water,1,2", kFault},
            {"TooManyFields", "11,Water,1,2,3,4", kFault},
            {"TrailingComma", "11,Water,1,2,3,", kFault},
            {"BlankLastLine", "11,Water,1,2,3\r\n\r\n", kFault},
            {"BlankFirstLine", "\r\n11,Water,1,2,3\r\n", kFault},
            {"LineOfSpaces", "11,Water,1,2,3\r\n   \r\n", kFault},
            {"LineOfCommas", std::string(100000, ','), kFault},
            {"CrOnly", "Value,ClassName,High,Medium,Low\r11,Water,1,2,3\r21,Urban,1,2,3\r", kFault},
            {"QuotedComma", "11,\"Developed, Low\",1,2,3", kFault},
            {"ThousandsSeparator", "1,100,Water,1,2,3", kFault},
            {"DecimalCommas", "11,Water,12,5,1,0", kFault},
            {"Semicolons", "11;Water;1;2;3", kFault},
            {"Tabs", "11\tWater\t1\t2\t3", kFault},
            {"Xml", "<ISModelProperties><ISLCDefs/></ISModelProperties>", kFault},
            {"Binary", "\x89PNG\r\n\x1A\n\0\0\0\rIHDR"s, kFault}};
}

std::vector<BadFile> bad_formats() {
    constexpr TextFault kFault = TextFault::format;
    return {{"Utf16LittleEndian",
             "\xFF\xFE"
             "1\0"
             "1\0,\0a\0,\0"
             "1\0,\0"
             "2\0,\0"
             "3\0\r\0\n\0"s,
             kFault},
            {"Utf16BigEndian",
             "\xFE\xFF\0"
             "1\0"
             "1\0,\0a\0,\0"
             "1\0,\0"
             "2\0,\0"
             "3\0\r\0\n"s,
             kFault},
            {"Utf16Header", "\xFF\xFEV\0a\0l\0u\0e\0,\0a\0,\0b\0,\0c\0,\0d\0\r\0\n\0"s, kFault},
            {"Utf16WithoutMark",
             "1\0"
             "1\0,\0a\0,\0"
             "1\0,\0"
             "2\0,\0"
             "3\0"s,
             kFault},
            {"NulInAValue",
             "1\0"
             "1,Water,1,2,3"s,
             kFault},
            {"NulAfterACoefficient", "11,Water,1,2,3\0"s, kFault},
            {"NulInTheName", "11,Wa\0ter,1,2,3"s, kFault},
            {"EscapeInTheName", "11,Wa\x1Bter,1,2,3", kFault},
            {"CrInTheName", "11,Wa\rter,1,2,3", kFault},
            {"CrOnlyWithOneLine", "11,Water,1,2,3\r", kFault},
            {"TwoCrsBeforeTheLf", "11,Water,1,2,3\r\r\n", kFault},
            {"SecondByteOrderMark",
             "\xEF\xBB\xBF\xEF\xBB\xBF"
             "11,Water,1,2,3",
             kFault},
            {"QuotedNumbers", "\"11\",\"Water\",\"1\",\"2\",\"3\"", kFault},
            {"QuotedHeader", "\"Value\",\"ClassName\",\"High\",\"Medium\",\"Low\"", kFault},
            {"MisspeltHeader", "Values,ClassName,High,Medium,Low", kFault},
            {"ShortHeader", "Val,ClassName,High,Medium,Low", kFault},
            {"HeaderAfterATab", "\tValue,ClassName,High,Medium,Low", kFault},
            {"HeaderWithABlank", "Value ,ClassName,High,Medium,Low", kFault},
            {"ApostropheInThousands", "1'100,Water,1,2,3", kFault},
            {"SpaceInThousands", "1 100,Water,1,2,3", kFault},
            {"NoBreakSpace", "11,Water,1\xC2\xA0,2,3", kFault},
            {"EmptyValue", ",Water,1,2,3", kFault},
            {"EmptyCoefficient", "11,Water,1,,3", kFault},
            {"EmptyLastCoefficient", "11,Water,1,2, ", kFault},
            {"TextAsValue", "abc,Water,1,2,3", kFault},
            {"TextAsCoefficient", "11,Water,abc,0,0", kFault},
            {"PercentSign", "11,Water,35%,0,0", kFault},
            {"InfAsValue", "inf,Water,1,2,3", kFault},
            {"InfAsCoefficient", "11,Water,INF,2,3", kFault},
            {"Nan", "11,Water,1,nan,3", kFault},
            {"NanWithSign", "11,Water,1,2,-NaN", kFault},
            {"Hexadecimal", "0x0B,Water,1,2,3", kFault},
            {"HexadecimalOfBasic", "&H0B,Water,1,2,3", kFault},
            {"HexadecimalFloat", "11,Water,0x1p3,2,3", kFault},
            {"ExponentLetterD", "11,Water,1d1,2,3", kFault},
            {"ExponentWithoutDigits", "11,Water,1e,2,3", kFault},
            {"TwoPoints", "11,Water,1.2.3,2,3", kFault},
            {"TwoSigns", "11,Water,+-1,2,3", kFault},
            {"TrailingSign", "11,Water,1-,2,3", kFault},
            {"Brackets", "11,Water,(1),2,3", kFault},
            {"ArabicDigits", "\xD9\xA1,Water,1,2,3", kFault},
            {"FullWidthDigits", "\xEF\xBC\x91,Water,1,2,3", kFault}};
}

std::vector<BadFile> bad_numbers() {
    return {{"NegativeValue", "-1,Water,0,0,0", TextFault::class_id},
            {"FractionalValue", "1.5,Water,0,0,0", TextFault::class_id},
            {"SmallFraction", "1e-3,Water,0,0,0", TextFault::class_id},
            {"ValueOf2To31", "2147483648,Water,0,0,0", TextFault::class_id},
            {"ValueJustOver2To31", "2147483647.5,Water,0,0,0", TextFault::class_id},
            {"ValueOfManyDigits", std::string(400, '9') + ",Water,0,0,0", TextFault::class_id},
            {"ValueBeyondADouble", "1e400,Water,0,0,0", TextFault::class_id},
            {"NegativeValueBeyondADouble", "-1e400,Water,0,0,0", TextFault::class_id},
            {"CoefficientOver100", "11,Water,100.5,0,0", TextFault::coefficient},
            {"MediumOver100", "11,Water,0,101,0", TextFault::coefficient},
            {"LowOver100", "11,Water,0,0,1e3", TextFault::coefficient},
            {"CoefficientThatOnlyASingleRoundsTo100", "11,Water,100.0000001,0,0", TextFault::coefficient},
            {"NegativeCoefficient", "11,Water,0,0,-0.001", TextFault::coefficient},
            {"CoefficientBeyondASingle", "11,Water,1e39,0,0", TextFault::coefficient},
            {"CoefficientBeyondADouble", "11,Water,1e400,0,0", TextFault::coefficient},
            {"NegativeCoefficientBeyondADouble", "11,Water,0,-1e400,0", TextFault::coefficient}};
}

std::string name_of(const testing::TestParamInfo<BadFile>& info) {
    return info.param.name;
}
INSTANTIATE_TEST_SUITE_P(FieldCount, BadCoefficientText, testing::ValuesIn(bad_field_counts()), name_of);
INSTANTIATE_TEST_SUITE_P(Format, BadCoefficientText, testing::ValuesIn(bad_formats()), name_of);
INSTANTIATE_TEST_SUITE_P(Numbers, BadCoefficientText, testing::ValuesIn(bad_numbers()), name_of);

// Large files

std::string repeated(const std::string& line, std::size_t bytes) {
    std::string text;
    while (text.size() < bytes)
        text += line;
    return text;
}

TEST_F(CoefficientText, FileOfTheLimitIsReadWhole) {
    const std::string line = "11,Water,1,2,3\r\n";  // 16 bytes, so the last line ends at the limit
    EXPECT_EQ(read(repeated(line, std::size_t{1024} * 1024)).size(), 65536U);
}

TEST_F(CoefficientText, LargerFileOfGoodLinesIsAnOverflowThatNamesTheFile) {
    base::write_file(m_path, repeated("11,Water,1,2,3\r\n", 1024 * 1024 + 1));
    clsLCClasses classes;
    const base::RuntimeError error = test::error_of([&] { read_coefficient_text(m_path, classes); });
    EXPECT_EQ(error.number(), 6);
    EXPECT_EQ(error.description(),
              "Overflow: \"" + m_path + "\" is larger than 1048576 bytes, more than a coefficient store holds");
}

TEST_F(CoefficientText, WrongLineIsFoundBeforeTheSizeOfTheFile) {
    EXPECT_EQ(fault("11,Water,101,0,0\n" + repeated("11,Water,1,2,3\n", std::size_t{2} * 1024 * 1024)),
              TextFault::coefficient);
}

TEST_F(CoefficientText, LineOfAGigabyteHasNoFiveFields) {
    base::write_file(m_path, "Value,ClassName,High,Medium,Low\n11,Water,1,2,3");
    std::filesystem::resize_file(m_path, std::uintmax_t{1} << 30);
    clsLCClasses classes;
    EXPECT_EQ(read_coefficient_text(m_path, classes), TextFault::field_count);
}

TEST_F(CoefficientText, LongNameWithinTheLimitIsRead) {
    const std::string name(500000, 'x');
    EXPECT_THAT(read("11," + name + ",1,2,3"), ElementsAre(ClassValues{11, name, 1, 2, 3}));
}

TEST_F(CoefficientText, MissingFileIsFileNotFound) {
    clsLCClasses classes;
    EXPECT_EQ(test::error_of([&] { read_coefficient_text(m_folder / "none.csv", classes); }).number(), 53);
}

// Writing

TEST(CoefficientTextOf, HasAHeaderAndALinePerClassInOrder) {
    clsISLCDef set;
    set.LCClasses.Add(test::land_class(21, "Developed Low Intensity", 35, 25, 12.5F));
    set.LCClasses.Add(test::land_class(0, "", 100, 33.3F, 0.05F));
    EXPECT_EQ(coefficient_text(&set),
              "Value,ClassName,High,Medium,Low\r\n21,Developed Low Intensity,35,25,12.5\r\n0,,100,33.3,0.05\r\n");
}

TEST(CoefficientTextOf, NumbersHaveNoSpaceAndNoThousandsSeparator) {
    clsISLCDef set;
    set.LCClasses.Add(test::land_class(2147483647, "a", 12345678, 0, 100));
    set.LCClasses.Add(test::land_class(-1234567, "b", 1e-10F, -0.F, 1.F / 3));
    EXPECT_EQ(coefficient_text(&set),
              "Value,ClassName,High,Medium,Low\r\n2147483647,a,12345678,0,100\r\n-1234567,b,1e-10,0,0.33333334\r\n");
}

TEST(CoefficientTextOf, NothingIsTheHeaderAlone) {
    EXPECT_EQ(coefficient_text(nullptr), "Value,ClassName,High,Medium,Low\r\n");
}

TEST_F(CoefficientText, NameWithACommaIsWrittenAsItIsAndCannotBeReadBack) {
    clsISLCDef set;
    set.LCClasses.Add(test::land_class(21, "Developed, Low", 3, 2, 1));
    const std::string text = coefficient_text(&set);
    EXPECT_EQ(text, "Value,ClassName,High,Medium,Low\r\n21,Developed, Low,3,2,1\r\n");
    EXPECT_EQ(fault(text), TextFault::field_count);
}

}  // namespace
}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "parameters/clsReadParams.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string_view>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel::test {

/// Sees what the class reads but does not tell.
class ReadParamsPeer {
  public:
    static const base::Dictionary<std::string>& parameters(const clsReadParams& reader) { return *reader.m_parameters; }
};

}  // namespace kestrel::test

namespace kestrel {
namespace {

using reporting::Buttons;
using reporting::Icon;
using reporting::MessageBox;
using test::ReadParamsPeer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Texts = std::vector<std::string>;

template <typename Dictionary>
Texts keys_of(const Dictionary& dictionary) {
    Texts keys;
    for (const auto& [key, item] : dictionary) {
        keys.push_back(key);
    }
    return keys;
}

Texts texts_of(const TextList& list) {
    return {list.begin(), list.end()};
}

/// The number of the error that `call` throws; 0 when it throws none.
template <typename Call>
int error_of(Call call) {
    try {
        static_cast<void>(call());
    } catch (const base::RuntimeError& error) {
        return error.number();
    }
    return 0;
}

class ReadParams : public testing::Test {
  protected:
    ReadParams() { base::create_folder(m_extension / "temp"); }

    /// Reads a file of these bytes.
    void read(const std::string& bytes) {
        base::write_file(m_extension / "temp/model_params.txt", bytes);
        m_reader.ReadParameters(m_extension.path(), "model_params.txt");
    }

    const base::Dictionary<std::string>& parameters() const { return ReadParamsPeer::parameters(m_reader); }

    /// Nothing was said to the user.
    void expect_silence() const {
        EXPECT_THAT(m_user.boxes, IsEmpty());
        EXPECT_THAT(m_user.call_stacks, IsEmpty());
    }

    /// One report, of this number for the reading procedure, and no box.
    void expect_report(const std::string& number) const {
        EXPECT_THAT(m_user.boxes, IsEmpty());
        ASSERT_EQ(m_user.call_stacks.size(), 1U);
        EXPECT_THAT(
            m_user.call_stacks[0],
            StartsWith(
                "Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\tReadParameters clsReadParams Line : "));
        EXPECT_THAT(m_user.call_stacks[0], HasSubstr("\r\nError Number \r\n\t" + number + "\r\nDescription\r\n\t"));
    }

    test::ScriptedInteraction m_user;
    test::TemporaryFolder m_extension;
    clsReadParams m_reader;
};

TEST_F(ReadParams, WorkedExampleReadsBackThroughEveryProperty) {
    read(base::read_file(test::fixture_path("parameters/worked_example.txt")));
    expect_silence();
    EXPECT_EQ(m_reader.AnalysisTheme(), "subwatersheds");
    EXPECT_EQ(m_reader.AnalysisFieldName(), "SHED_ID");
    EXPECT_EQ(m_reader.lcTheme(), "landcover_2001");
    EXPECT_EQ(m_reader.LCUnits(), "Meters");
    EXPECT_EQ(m_reader.PopulationDensity(), "3");
    EXPECT_EQ(m_reader.PopDensityTheme(), "blockgroups");
    EXPECT_EQ(m_reader.PopDensityFldName(), "POP_DEN");
    EXPECT_EQ(m_reader.PopDensityHigh(), "10");
    EXPECT_EQ(m_reader.PopDensityLow(), "2");
    EXPECT_EQ(m_reader.OutThemeName(), "Subsheds IS");
    const auto classes = m_reader.LandClasses();
    EXPECT_THAT(keys_of(*classes), ElementsAre("2", "5"));
    EXPECT_THAT(texts_of(*classes->find("2")), ElementsAre("High Intensity Developed", "90", "85", "80"));
    EXPECT_THAT(texts_of(*classes->find("5")), ElementsAre("Grassland", "2", "1.5", "1"));
    const auto scenarios = m_reader.DevScenarios();
    EXPECT_THAT(keys_of(*scenarios), ElementsAre("2"));
    EXPECT_THAT(texts_of(*scenarios->find("2")), ElementsAre("new_parcels", "High Intensity Developed", "2"));
}

TEST_F(ReadParams, EveryOtherLineLandsInTheParameterDictionary) {
    read(base::read_file(test::fixture_path("parameters/worked_example.txt")));
    EXPECT_THAT(keys_of(parameters()), ElementsAre("VIEW", "LCTHEME", "LCUNITS", "ANALYSISTHEME", "ANALYSISUNIT",
                                                   "POPDENSITY", "POPDENSITYTHEME", "POPDENSITYFLD", "POPDENSITYHIGH",
                                                   "POPDENSITYMED", "POPDENSITYLOW", "OUTTHEME", "OUTTHEMENAME"));
    EXPECT_EQ(*parameters().find("OUTTHEME"), "subsheds_is");
}

TEST_F(ReadParams, ViewIsStoredWithAnEmptyValue) {
    read("VIEW#\r\n");
    ASSERT_NE(parameters().find("VIEW"), nullptr);
    EXPECT_EQ(*parameters().find("VIEW"), "");
    expect_silence();
}

TEST_F(ReadParams, SecondBoundOfTheMediumBandIsDropped) {
    read("POPDENSITYMED#2#10\r\n");
    ASSERT_NE(parameters().find("POPDENSITYMED"), nullptr);
    EXPECT_EQ(*parameters().find("POPDENSITYMED"), "2");
}

TEST_F(ReadParams, MissingSettingReadsAsEmptyAndLeavesAnEmptyEntryBehind) {
    read("POPDENSITY#0\r\n");
    EXPECT_EQ(m_reader.PopDensityTheme(), "");
    EXPECT_THAT(keys_of(parameters()), ElementsAre("POPDENSITY", "POPDENSITYTHEME"));
    EXPECT_EQ(*parameters().find("POPDENSITYTHEME"), "");
    EXPECT_EQ(m_reader.PopDensityTheme(), "");
    EXPECT_EQ(parameters().size(), 2U);
}

TEST_F(ReadParams, EmptyFileLeavesThreeEmptyDictionaries) {
    read("");
    expect_silence();
    EXPECT_TRUE(parameters().empty());
    EXPECT_TRUE(m_reader.LandClasses()->empty());
    EXPECT_TRUE(m_reader.DevScenarios()->empty());
}

TEST_F(ReadParams, ScenariosAreKeyedByTheirOwnNumbers) {
    read("DS#1#a#Grass#5\r\nDS#3#c#Roads#2\r\n");
    const auto scenarios = m_reader.DevScenarios();
    EXPECT_THAT(keys_of(*scenarios), ElementsAre("1", "3"));
    EXPECT_THAT(texts_of(*scenarios->find("3")), ElementsAre("c", "Roads", "2"));
}

TEST_F(ReadParams, NumberSignInAClassNameShiftsTheCoefficients) {
    read("CLASS#2#Lot #7#90#85#80\r\n");
    const TextList& list = *m_reader.LandClasses()->find("2");
    EXPECT_EQ(list.Count(), 5);
    EXPECT_EQ(list.Item(1), "Lot ");
    EXPECT_EQ(list.Item(2), "7");
    EXPECT_EQ(list.Item(3), "90");
}

TEST_F(ReadParams, NumberSignInALayerNameCutsIt) {
    read("LCTHEME#land#cover\r\n");
    EXPECT_EQ(m_reader.lcTheme(), "land");
}

TEST_F(ReadParams, EmptyFieldsAreKept) {
    read("CLASS#2####\r\nDS##\r\n");
    expect_silence();
    EXPECT_THAT(texts_of(*m_reader.LandClasses()->find("2")), ElementsAre("", "", "", ""));
    EXPECT_THAT(texts_of(*m_reader.DevScenarios()->find("")), ElementsAre(""));
}

TEST_F(ReadParams, LineWithoutFieldsAfterTheKeyGivesAnEmptyList) {
    read("CLASS#2\r\n");
    expect_silence();
    EXPECT_EQ(m_reader.LandClasses()->find("2")->Count(), 0);
}

TEST_F(ReadParams, NothingIsTrimmed) {
    read("LCTHEME# land cover \t\r\n");
    EXPECT_EQ(m_reader.lcTheme(), " land cover \t");
}

TEST_F(ReadParams, KeywordsAndKeysAreComparedExactly) {
    read("class#1\r\nds#2\r\nlctheme#small\r\nLCTHEME#capital\r\nCLASS#1#a\r\nCLASS# 1#b\r\nCLASS#01#c\r\n");
    expect_silence();
    EXPECT_EQ(m_reader.lcTheme(), "capital");
    EXPECT_THAT(keys_of(parameters()), ElementsAre("class", "ds", "lctheme", "LCTHEME"));
    EXPECT_THAT(keys_of(*m_reader.LandClasses()), ElementsAre("1", " 1", "01"));
    EXPECT_TRUE(m_reader.DevScenarios()->empty());
}

TEST_F(ReadParams, LinesMayEndInLineFeedsAloneAndTheLastInNothing) {
    read("LCTHEME#a\nLCUNITS#Feet");
    EXPECT_EQ(m_reader.lcTheme(), "a");
    EXPECT_EQ(m_reader.LCUnits(), "Feet");
    expect_silence();
}

TEST_F(ReadParams, ByteOrderMarkIsNoPartOfTheFirstKeyword) {
    read("\xEF\xBB\xBFLCTHEME#Z\xC3\xBCrich\r\n");
    EXPECT_EQ(m_reader.lcTheme(), "Z\u00fcrich");
    expect_silence();
}

TEST_F(ReadParams, FileThatIsNotUtf8IsWindows1252) {
    read("LCTHEME#Z\xFCrich\r\nCLASS#2#\x80#1#2#3\r\n");
    EXPECT_EQ(m_reader.lcTheme(), "Z\u00fcrich");
    EXPECT_EQ(m_reader.LandClasses()->find("2")->Item(1), "\u20ac");
    expect_silence();
}

TEST_F(ReadParams, MissingFileIsToldInACriticalBoxAndTheDictionariesStayEmpty) {
    m_reader.ReadParameters(m_extension.path(), "model_params.txt");
    EXPECT_THAT(m_user.boxes,
                ElementsAre(MessageBox{"A 'model_params.txt' does not exist in " + m_extension.path() +
                                           "\\temp. \r This file is required to perform an Kestrel analysis.",
                                       "Missing: Model_Params File", Icon::critical, Buttons::ok}));
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
    EXPECT_EQ(m_reader.AnalysisTheme(), "");
    EXPECT_TRUE(m_reader.LandClasses()->empty());
    EXPECT_TRUE(m_reader.DevScenarios()->empty());
}

TEST_F(ReadParams, MissingTempFolderIsToldLikeAMissingFile) {
    m_reader.ReadParameters("/nowhere", "other.txt");
    EXPECT_THAT(
        m_user.boxes,
        ElementsAre(MessageBox{
            "A 'other.txt' does not exist in /nowhere\\temp. \r This file is required to perform an Kestrel analysis.",
            "Missing: Model_Params File", Icon::critical, Buttons::ok}));
}

TEST_F(ReadParams, DuplicateKeywordIsReportedAndWhatWasReadStays) {
    read("LCTHEME#a\r\nLCTHEME#b\r\nLCUNITS#Feet\r\n");
    expect_report("457");
    EXPECT_EQ(m_reader.lcTheme(), "a");
    EXPECT_EQ(m_reader.LCUnits(), "");
}

TEST_F(ReadParams, DuplicateClassCodeIsReportedAndWhatWasReadStays) {
    read("CLASS#2#a#1#2#3\r\nCLASS#2#b#4#5#6\r\nCLASS#3#c#7#8#9\r\n");
    expect_report("457");
    EXPECT_THAT(keys_of(*m_reader.LandClasses()), ElementsAre("2"));
    EXPECT_EQ(m_reader.LandClasses()->find("2")->Item(1), "a");
}

TEST_F(ReadParams, CoefficientOptionIsOneOfFourOrNone) {
    const std::pair<std::string, std::optional<CoefficientOption>> options[]{{"0", CoefficientOption::high},
                                                                             {"1", CoefficientOption::medium},
                                                                             {"2", CoefficientOption::low},
                                                                             {"3", CoefficientOption::by_density},
                                                                             {"4", std::nullopt},
                                                                             {"", std::nullopt},
                                                                             {"20", std::nullopt},
                                                                             {"00", std::nullopt},
                                                                             {" 1", std::nullopt},
                                                                             {"High", std::nullopt}};
    for (const auto& [text, option] : options) {
        read("POPDENSITY#" + text + "\r\n");
        EXPECT_EQ(m_reader.PopulationDensity(), text);
        EXPECT_EQ(m_reader.coefficient_option(), option) << text;
    }
}

TEST_F(ReadParams, DuplicateScenarioNumberIsReportedAndWhatWasReadStays) {
    read("LCTHEME#a\r\nDS#1#x#Grass#5\r\nDS#1#y#Roads#2\r\nLCUNITS#Feet\r\n");
    expect_report("457");
    EXPECT_EQ(m_reader.DevScenarios()->find("1")->Item(1), "x");
    EXPECT_EQ(m_reader.lcTheme(), "a");
    EXPECT_EQ(m_reader.LCUnits(), "");
}

TEST_F(ReadParams, LineWithoutNumberSignIsReportedAndWhatWasReadStays) {
    for (const char* line : {"LCUNITS", "CLASS", "DS", " "}) {
        m_user.call_stacks.clear();
        read("LCTHEME#a\r\n" + std::string(line) + "\r\nANALYSISTHEME#b\r\n");
        expect_report("9");
        EXPECT_EQ(m_reader.lcTheme(), "a") << line;
        EXPECT_EQ(m_reader.AnalysisTheme(), "") << line;
    }
}

TEST_F(ReadParams, EmptyLineIsReportedAndWhatWasReadStays) {
    read("LCTHEME#a\r\n\r\nLCUNITS#Feet\r\n");
    expect_report("9");
    EXPECT_EQ(m_reader.lcTheme(), "a");
    EXPECT_EQ(m_reader.LCUnits(), "");
}

TEST_F(ReadParams, ReadingAgainStartsOver) {
    read("LCTHEME#a\r\nLCUNITS#Feet\r\nCLASS#2#a\r\nDS#1#x\r\n");
    read("LCTHEME#b\r\n");
    expect_silence();
    EXPECT_EQ(m_reader.lcTheme(), "b");
    EXPECT_EQ(m_reader.LCUnits(), "");
    EXPECT_TRUE(m_reader.LandClasses()->empty());
    EXPECT_TRUE(m_reader.DevScenarios()->empty());
}

TEST_F(ReadParams, MissingFileDropsWhatWasReadBefore) {
    read("LCTHEME#a\r\n");
    m_reader.ReadParameters(m_extension.path(), "missing.txt");
    EXPECT_EQ(m_reader.lcTheme(), "");
}

TEST_F(ReadParams, DictionariesAreSharedAndNotCopied) {
    read("CLASS#2#a\r\nDS#1#x\r\n");
    EXPECT_EQ(m_reader.LandClasses(), m_reader.LandClasses());
    EXPECT_EQ(m_reader.DevScenarios(), m_reader.DevScenarios());
    m_reader.LandClasses()->add("3", TextList());
    EXPECT_EQ(m_reader.LandClasses()->size(), 2U);
    const auto kept = m_reader.DevScenarios();
    m_reader.FlushParameters();
    EXPECT_THAT(keys_of(*kept), ElementsAre("1"));
}

/// The errors of all property reads, in the order of the properties.
std::vector<int> errors_of_properties(const clsReadParams& reader) {
    return {error_of([&] { return reader.AnalysisTheme(); }),     error_of([&] { return reader.AnalysisFieldName(); }),
            error_of([&] { return reader.lcTheme(); }),           error_of([&] { return reader.LCUnits(); }),
            error_of([&] { return reader.PopulationDensity(); }), error_of([&] { return reader.PopDensityTheme(); }),
            error_of([&] { return reader.PopDensityFldName(); }), error_of([&] { return reader.PopDensityHigh(); }),
            error_of([&] { return reader.PopDensityLow(); }),     error_of([&] { return reader.LandClasses(); }),
            error_of([&] { return reader.DevScenarios(); }),      error_of([&] { return reader.OutThemeName(); })};
}

TEST_F(ReadParams, EveryPropertyReadFailsAfterFlushParameters) {
    read(base::read_file(test::fixture_path("parameters/worked_example.txt")));
    EXPECT_EQ(errors_of_properties(m_reader), std::vector<int>(12, 0));
    m_reader.FlushParameters();
    EXPECT_EQ(errors_of_properties(m_reader), std::vector<int>(12, 91));
    expect_silence();
}

TEST_F(ReadParams, EveryPropertyReadFailsBeforeReadParameters) {
    EXPECT_EQ(errors_of_properties(clsReadParams()), std::vector<int>(12, 91));
}

TEST_F(ReadParams, FlushingTwiceOrBeforeReadingIsHarmless) {
    m_reader.FlushParameters();
    m_reader.FlushParameters();
    read("LCTHEME#a\r\n");
    EXPECT_EQ(m_reader.lcTheme(), "a");
}

TEST(TextListOfAParameterLine, PositionsCountFromOneAndOthersAreOutOfRange) {
    TextList list;
    EXPECT_EQ(error_of([&] { return list.Item(1); }), 9);
    list.Add("a");
    list.Add("b");
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(list.Item(1), "a");
    EXPECT_EQ(list.Item(2), "b");
    for (const int position : {-1, 0, 3}) {
        EXPECT_EQ(error_of([&] { return list.Item(position); }), 9) << position;
    }
}

/// `text` after one to eight random changes of single bytes, stretches and lines.
std::string mutated(std::string text, std::mt19937& random) {
    using namespace std::string_view_literals;
    static constexpr std::string_view kBytes = "##\r\n\n\0 CLASDS0129\xE4\xFF\xC2"sv;
    const auto below = [&random](std::size_t bound) { return bound == 0 ? 0 : random() % bound; };
    for (std::size_t changes = 1 + below(8); changes > 0; --changes) {
        const std::size_t position = below(text.size() + 1);
        const std::size_t length = std::min(below(20), text.size() - position);
        switch (below(5)) {
            case 0:
                text.insert(position, 1, kBytes[below(kBytes.size())]);
                break;
            case 1:
                text.erase(position, length);
                break;
            case 2:
                text.insert(below(text.size() + 1), text.substr(position, length));
                break;
            case 3:
                text.replace(position, length, length, kBytes[below(kBytes.size())]);
                break;
            default:
                text.resize(position);
                break;
        }
    }
    return text;
}

TEST_F(ReadParams, AnyMutationOfAFileIsReadOrReportedAndTheReaderStaysUsable) {
    const std::string whole = base::read_file(test::fixture_path("parameters/worked_example.txt"));
    std::mt19937 random(20031115);
    std::size_t reported = 0;
    for (int i = 0; i < 500; ++i) {
        m_user.call_stacks.clear();
        const std::string bytes = mutated(whole, random);
        SCOPED_TRACE("mutation " + std::to_string(i) + ":\n" + bytes);
        ASSERT_NO_THROW(read(bytes));
        ASSERT_THAT(m_user.boxes, IsEmpty());
        ASSERT_LE(m_user.call_stacks.size(), 1U);
        reported += m_user.call_stacks.size();
        ASSERT_EQ(errors_of_properties(m_reader), std::vector<int>(12, 0));
        // What was read is no more than the lines that there are, and every key is found again.
        const std::size_t lines = base::split_lines(base::to_utf8(bytes)).size();
        ASSERT_LE(m_reader.LandClasses()->size() + m_reader.DevScenarios()->size(), lines);
        for (const auto& [key, item] : *m_reader.LandClasses()) {
            ASSERT_EQ(m_reader.LandClasses()->find(key), &item);
        }
    }
    // Both ways occur, or the mutations are too weak or too strong.
    EXPECT_GT(reported, 50U);
    EXPECT_LT(reported, 450U);

    m_user.call_stacks.clear();
    read(whole);
    expect_silence();
    EXPECT_EQ(m_reader.OutThemeName(), "Subsheds IS");
    EXPECT_EQ(m_reader.LandClasses()->size(), 2U);
}

}  // namespace
}  // namespace kestrel

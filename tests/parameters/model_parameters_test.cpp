// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "parameters/model_parameters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "coefficients/clsISModelProperties.h"
#include "parameters/clsReadParams.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using base::read_file;
using base::split_lines;
using reporting::MessageBox;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Lines = std::vector<std::string>;

struct ClassOf {
    std::int32_t code;
    std::string name;
    float high;
    float medium;
    float low;
};

void add_set(clsISModelProperties& store, const std::string& name, const std::vector<ClassOf>& classes) {
    const auto set = std::make_shared<clsISLCDef>();
    set->LCType = name;
    for (const ClassOf& entry : classes) {
        const auto land_class = std::make_shared<clsLCClass>();
        land_class->ID = entry.code;
        land_class->LCName = entry.name;
        land_class->LCHigh = entry.high;
        land_class->LCMed = entry.medium;
        land_class->LCLow = entry.low;
        set->LCClasses.Add(land_class);
    }
    store.ISLCDefs.Add(set);
}

Lines items_of(const TextList& list) {
    return {list.begin(), list.end()};
}

ModelParameters choices_with_option(std::optional<CoefficientOption> option) {
    ModelParameters choices;
    choices.land_cover_layer = "landcover_2001";
    choices.land_cover_units = "Meters";
    choices.analysis_layer = "subwatersheds";
    choices.analysis_field = "SHED_ID";
    choices.coefficient_option = option;
    choices.density_layer = "blockgroups";
    choices.density_field = "POP_DEN";
    choices.density_high = "10";
    choices.density_medium = {"2", "10"};
    choices.density_low = "2";
    choices.output_path = "subsheds_is";
    choices.layer_name = "Subsheds IS";
    return choices;
}

class WriteModelParameters : public testing::Test {
  protected:
    WriteModelParameters() {
        base::create_folder(m_temp);
        add_set(m_store, "Other", {{7, "Other", 1, 1, 1}});
        add_set(m_store, "C-CAP", {{2, "High Intensity Developed", 90, 85, 80}, {5, "Grassland", 2, 1.5F, 1}});
    }

    bool write(const ModelParameters& choices, const std::string& set_name = "C-CAP") {
        return write_model_parameters(m_temp, "model_params.txt", choices, m_store, set_name, "");
    }

    Lines lines() const { return split_lines(read_file(m_temp + "/model_params.txt")); }

    /// The lines of the file that begin with `keyword`.
    Lines lines_of(const std::string& keyword) const {
        Lines found;
        for (const std::string& line : lines()) {
            if (line.starts_with(keyword + "#")) {
                found.push_back(line);
            }
        }
        return found;
    }

    test::ScriptedInteraction m_user;
    test::TemporaryFolder m_extension;
    std::string m_temp = m_extension / "temp";
    clsISModelProperties m_store;
};

TEST_F(WriteModelParameters, WorkedExampleMatchesTheFixture) {
    ModelParameters choices = choices_with_option(CoefficientOption::by_density);
    choices.scenarios = {{2, "new_parcels", "High Intensity Developed", "2"}};
    EXPECT_TRUE(write(choices));
    EXPECT_EQ(read_file(m_temp + "/model_params.txt"), read_file(test::fixture_path("parameters/worked_example.txt")));
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
}

TEST_F(WriteModelParameters, WithoutScenariosAndWithoutMatchingSetOnlyTheSettingsAreWritten) {
    EXPECT_TRUE(write(choices_with_option(CoefficientOption::medium), "missing"));
    EXPECT_THAT(lines(), ElementsAre("VIEW#", "LCTHEME#landcover_2001", "LCUNITS#Meters", "ANALYSISTHEME#subwatersheds",
                                     "ANALYSISUNIT#SHED_ID", "POPDENSITY#1", "OUTTHEME#subsheds_is",
                                     "OUTTHEMENAME#Subsheds IS"));
}

TEST_F(WriteModelParameters, DensityOptionAddsItsFiveLinesAfterThatOfTheOption) {
    EXPECT_TRUE(write(choices_with_option(CoefficientOption::by_density), "missing"));
    EXPECT_THAT(lines(), ElementsAre("VIEW#", "LCTHEME#landcover_2001", "LCUNITS#Meters", "ANALYSISTHEME#subwatersheds",
                                     "ANALYSISUNIT#SHED_ID", "POPDENSITY#3", "POPDENSITYTHEME#blockgroups",
                                     "POPDENSITYFLD#POP_DEN", "POPDENSITYHIGH#10", "POPDENSITYMED#2#10",
                                     "POPDENSITYLOW#2", "OUTTHEME#subsheds_is", "OUTTHEMENAME#Subsheds IS"));
}

TEST_F(WriteModelParameters, OtherOptionsWriteNoDensityLines) {
    const std::pair<std::optional<CoefficientOption>, std::string> options[]{{CoefficientOption::high, "0"},
                                                                             {CoefficientOption::medium, "1"},
                                                                             {CoefficientOption::low, "2"},
                                                                             {std::nullopt, "4"}};
    for (const auto& [option, name] : options) {
        EXPECT_TRUE(write(choices_with_option(option)));
        EXPECT_THAT(lines_of("POPDENSITY"), ElementsAre("POPDENSITY#" + name));
        EXPECT_THAT(read_file(m_temp + "/model_params.txt"), testing::Not(HasSubstr("POPDENSITYTHEME")));
    }
}

TEST_F(WriteModelParameters, HighOptionLeavesTheDensityLayerEmptyForTheReader) {
    EXPECT_TRUE(write(choices_with_option(CoefficientOption::high)));
    clsReadParams reader;
    reader.ReadParameters(m_extension.path(), "model_params.txt");
    EXPECT_EQ(reader.PopulationDensity(), "0");
    EXPECT_EQ(reader.PopDensityTheme(), "");
}

TEST_F(WriteModelParameters, BoundsAreWrittenAsTyped) {
    ModelParameters choices = choices_with_option(CoefficientOption::by_density);
    choices.density_high = " 1e3";
    choices.density_medium = {"200.50 ", ""};
    choices.density_low = "+200.50";
    EXPECT_TRUE(write(choices));
    EXPECT_THAT(lines_of("POPDENSITYHIGH"), ElementsAre("POPDENSITYHIGH# 1e3"));
    EXPECT_THAT(lines_of("POPDENSITYMED"), ElementsAre("POPDENSITYMED#200.50 #"));
    EXPECT_THAT(lines_of("POPDENSITYLOW"), ElementsAre("POPDENSITYLOW#+200.50"));
}

TEST_F(WriteModelParameters, ScenariosCarryTheirOwnNumbersAndLeaveGaps) {
    ModelParameters choices = choices_with_option(CoefficientOption::medium);
    choices.scenarios = {{1, "newmall", "Roads", "2"}, {3, "park", "Grassland", "5"}};
    EXPECT_TRUE(write(choices));
    EXPECT_THAT(lines_of("DS"), ElementsAre("DS#1#newmall#Roads#2", "DS#3#park#Grassland#5"));
    clsReadParams reader;
    reader.ReadParameters(m_extension.path(), "model_params.txt");
    const auto scenarios = reader.DevScenarios();
    ASSERT_EQ(scenarios->size(), 2U);
    EXPECT_EQ(scenarios->begin()->first, "1");
    EXPECT_EQ((scenarios->begin() + 1)->first, "3");
}

TEST_F(WriteModelParameters, ClassesOfEverySetOfTheNameAreWrittenOneAfterTheOther) {
    add_set(m_store, "C-CAP", {{5, "Grass", 3, 2, 1}});
    EXPECT_TRUE(write(choices_with_option(CoefficientOption::medium)));
    EXPECT_THAT(lines_of("CLASS"), ElementsAre("CLASS#2#High Intensity Developed#90#85#80", "CLASS#5#Grassland#2#1.5#1",
                                               "CLASS#5#Grass#3#2#1"));
}

TEST_F(WriteModelParameters, SetNameIsComparedExactly) {
    for (const char* name : {"c-cap", "C-CAP ", " C-CAP", "C-CA", ""}) {
        EXPECT_TRUE(write(choices_with_option(CoefficientOption::medium), name));
        EXPECT_THAT(lines_of("CLASS"), IsEmpty()) << name;
    }
}

TEST_F(WriteModelParameters, SetWithoutClassesWritesNoClassLine) {
    add_set(m_store, "empty", {});
    EXPECT_TRUE(write(choices_with_option(CoefficientOption::medium), "empty"));
    EXPECT_THAT(lines_of("CLASS"), IsEmpty());
}

TEST_F(WriteModelParameters, CoefficientsAreWrittenInTheShortestFormThatReadsBack) {
    add_set(m_store, "numbers", {{-7, "a", 0.5F, 12, 33.3F}, {2147483647, "b", 0, 100, 0.001F}});
    EXPECT_TRUE(write(choices_with_option(CoefficientOption::medium), "numbers"));
    EXPECT_THAT(lines_of("CLASS"), ElementsAre("CLASS#-7#a#0.5#12#33.3", "CLASS#2147483647#b#0#100#0.001"));
}

TEST_F(WriteModelParameters, ValuesAreNeitherEscapedNorTrimmed) {
    ModelParameters choices = choices_with_option(CoefficientOption::medium);
    choices.land_cover_layer = " land#cover ";
    add_set(m_store, "names", {{2, "Lot #7, \"new\"", 90, 85, 80}});
    EXPECT_TRUE(write(choices, "names"));
    EXPECT_THAT(lines_of("LCTHEME"), ElementsAre("LCTHEME# land#cover "));
    EXPECT_THAT(lines_of("CLASS"), ElementsAre("CLASS#2#Lot #7, \"new\"#90#85#80"));
}

TEST_F(WriteModelParameters, ViewNameIsWrittenWhenThereIsOne) {
    EXPECT_TRUE(write_model_parameters(m_temp, "other.txt", choices_with_option(CoefficientOption::medium), m_store,
                                       "C-CAP", "Layers"));
    EXPECT_TRUE(read_file(m_temp + "/other.txt").starts_with("VIEW#Layers\r\nLCTHEME#"));
}

TEST_F(WriteModelParameters, EarlierFileIsReplaced) {
    base::write_file(m_temp + "/model_params.txt", std::string(10000, 'x'));
    EXPECT_TRUE(write(choices_with_option(CoefficientOption::medium), "missing"));
    EXPECT_EQ(lines().size(), 8U);
}

TEST_F(WriteModelParameters, MissingWorkingFolderIsToldInAPlainBoxAndNothingIsWritten) {
    const std::string folder = m_extension / "missing";
    EXPECT_FALSE(write_model_parameters(folder, "model_params.txt", choices_with_option(CoefficientOption::medium),
                                        m_store, "C-CAP", ""));
    EXPECT_THAT(m_user.boxes,
                ElementsAre(MessageBox{"Working directory (" + folder + ") defined in ArcView project does not exist.",
                                       "", reporting::Icon::none, reporting::Buttons::ok}));
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
    EXPECT_FALSE(base::folder_exists(folder));
}

TEST_F(WriteModelParameters, MissingWorkingFolderLeavesTheFileOfAnEarlierRun) {
    EXPECT_TRUE(write(choices_with_option(CoefficientOption::medium)));
    const std::string before = read_file(m_temp + "/model_params.txt");
    EXPECT_FALSE(write_model_parameters(m_temp + "/model_params.txt", "model_params.txt",
                                        choices_with_option(CoefficientOption::low), m_store, "C-CAP", ""));
    EXPECT_EQ(read_file(m_temp + "/model_params.txt"), before);
    EXPECT_EQ(m_user.boxes.size(), 1U);
}

TEST_F(WriteModelParameters, FileThatCannotBeMadeIsReported) {
    base::create_folder(m_temp + "/model_params.txt");
    EXPECT_FALSE(write(choices_with_option(CoefficientOption::medium)));
    EXPECT_THAT(m_user.boxes, IsEmpty());
    ASSERT_EQ(m_user.call_stacks.size(), 1U);
    EXPECT_THAT(
        m_user.call_stacks[0],
        StartsWith(
            "Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\tWriteParamsToFile basISModelUtil Line : "));
    EXPECT_THAT(m_user.call_stacks[0], HasSubstr("\r\nError Number \r\n\t75\r\nDescription\r\n\t"));
}

TEST_F(WriteModelParameters, FullDeviceIsReported) {
    EXPECT_FALSE(
        write_model_parameters("/dev", "full", choices_with_option(CoefficientOption::medium), m_store, "C-CAP", ""));
    ASSERT_EQ(m_user.call_stacks.size(), 1U);
    EXPECT_THAT(m_user.call_stacks[0], HasSubstr("\r\nError Number \r\n\t61\r\nDescription\r\n\t"));
}

TEST_F(WriteModelParameters, WhatIsWrittenReadsBackTheSame) {
    ModelParameters choices = choices_with_option(CoefficientOption::by_density);
    choices.scenarios = {{1, "newmall", "Grassland", "5"}, {4, "Straße 1", "Übergang", "-3"}};
    add_set(m_store, "round trip", {{-3, "Übergang", 33.3F, 0.1F, 1e-7F}, {21, "", 100, 0, 12.5F}});
    EXPECT_TRUE(write(choices, "round trip"));
    clsReadParams reader;
    reader.ReadParameters(m_extension.path(), "model_params.txt");
    EXPECT_THAT((Lines{reader.AnalysisTheme(), reader.AnalysisFieldName(), reader.lcTheme(), reader.LCUnits(),
                       reader.PopulationDensity(), reader.PopDensityTheme(), reader.PopDensityFldName(),
                       reader.PopDensityHigh(), reader.PopDensityLow(), reader.OutThemeName()}),
                ElementsAre("subwatersheds", "SHED_ID", "landcover_2001", "Meters", "3", "blockgroups", "POP_DEN", "10",
                            "2", "Subsheds IS"));
    const auto scenarios = reader.DevScenarios();
    EXPECT_THAT(items_of(*scenarios->find("1")), ElementsAre("newmall", "Grassland", "5"));
    EXPECT_THAT(items_of(*scenarios->find("4")), ElementsAre("Straße 1", "Übergang", "-3"));
    const auto classes = reader.LandClasses();
    EXPECT_THAT(items_of(*classes->find("-3")), ElementsAre("Übergang", "33.3", "0.1", "1e-07"));
    EXPECT_THAT(items_of(*classes->find("21")), ElementsAre("", "100", "0", "12.5"));
    EXPECT_THAT(m_user.call_stacks, IsEmpty());
}

}  // namespace
}  // namespace kestrel

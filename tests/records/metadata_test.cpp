// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "records/metadata.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "base/errors.h"
#include "base/files.h"
#include "tests/records/sample_run.h"
#include "tests/support/file_size_limit.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using base::read_file;
using base::split_lines;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using Lines = std::vector<std::string>;

Contact sample_contact() {
    Contact contact;
    contact.street_address = "12 Harbour Road";
    contact.city = "Marlin";
    contact.state = "Oregon";
    contact.postal_code = "97000";
    contact.country = "USA";
    contact.telephone = "+1 555 0100";
    contact.fax = "+1 555 0101";
    contact.e_mail = "gis@example.org";
    contact.hours = "Monday to Friday, 8 to 16";
    contact.web_page = "https://www.example.org/kestrel";
    return contact;
}

OutputRecord planar_output() {
    OutputRecord output;
    output.extent = {712000, 4101000, 745250.25, 4155000.5};
    output.field_names = {"FID", "Shape", "SHED_ID", "TotHects", "TotISHec", "pctIS", "Complete"};
    output.analysis_values = {"12", "7", "7"};
    return output;
}

OutputRecord geographic_output() {
    OutputRecord output = planar_output();
    output.extent = {-113.25, 37.0625, -112.5, 37.5};
    output.decimal_degrees = true;
    return output;
}

RunRecord run_with_scenarios(CoefficientOption option) {
    RunRecord run = test::sample_run(option);
    run.scenarios = test::sample_scenarios();
    return run;
}

class Metadata : public testing::Test {
  protected:
    std::string metadata_of(const RunRecord& run, const OutputRecord& output = planar_output(),
                            const Contact& contact = sample_contact()) const {
        write_metadata(m_path, run, output, contact);
        return read_file(m_path);
    }

    /// The lines from the first that is `first` (which must be there) up to and without the next that is `end`.
    static Lines section(const std::string& text, const std::string& first, const std::string& end) {
        const Lines lines = split_lines(text);
        const auto begin = std::find(lines.begin(), lines.end(), first);
        EXPECT_NE(begin, lines.end()) << first;
        return {begin, std::find(begin, lines.end(), end)};
    }

    static std::ptrdiff_t count_of(const std::string& text, const std::string& line) {
        const Lines lines = split_lines(text);
        return std::count(lines.begin(), lines.end(), line);
    }

    test::TemporaryFolder m_folder;
    std::string m_path = m_folder / "is_out1.met";
};

TEST_F(Metadata, MediumOptionOnAPlanarMapMatchesTheFixture) {
    EXPECT_EQ(metadata_of(test::sample_run(CoefficientOption::medium)),
              read_file(test::fixture_path("records/medium_planar.met")));
}

TEST_F(Metadata, MediumOptionWithScenariosOnAGeographicMapMatchesTheFixture) {
    EXPECT_EQ(metadata_of(run_with_scenarios(CoefficientOption::medium), geographic_output()),
              read_file(test::fixture_path("records/medium_scenarios_geographic.met")));
}

TEST_F(Metadata, DensityOptionOnAPlanarMapMatchesTheFixture) {
    EXPECT_EQ(metadata_of(test::sample_run(CoefficientOption::by_density)),
              read_file(test::fixture_path("records/density_planar.met")));
}

TEST_F(Metadata, DensityOptionWithScenariosOnAGeographicMapMatchesTheFixture) {
    EXPECT_EQ(metadata_of(run_with_scenarios(CoefficientOption::by_density), geographic_output()),
              read_file(test::fixture_path("records/density_scenarios_geographic.met")));
}

TEST_F(Metadata, ExistingFileOfTheSameNameIsOverwritten) {
    base::write_file(m_path, std::string(100000, 'x'));
    EXPECT_EQ(metadata_of(test::sample_run(CoefficientOption::medium)),
              read_file(test::fixture_path("records/medium_planar.met")));
}

TEST_F(Metadata, AbstractIsOneLineThatTellsItsContentAndEndsWithTheWebPage) {
    const Lines lines = split_lines(metadata_of(test::sample_run(CoefficientOption::medium)));
    const std::string& abstract = lines.at(7);
    EXPECT_TRUE(abstract.starts_with("    Abstract: The Marlin Institute developed Kestrel in partnership with "));
    EXPECT_THAT(abstract, HasSubstr("municipal officials"));
    EXPECT_THAT(abstract, HasSubstr("an extension for ArcView\xC2\xAE version 8.x."));
    EXPECT_THAT(abstract, HasSubstr("the process_step section of this metadata"));
    EXPECT_TRUE(abstract.ends_with("https://www.example.org/kestrel"));
    EXPECT_TRUE(lines.at(8).starts_with("   Purpose: This shapefile generated from Kestrel "));
}

TEST_F(Metadata, MissingContactValuesAreLeftToBeEntered) {
    const std::string text = metadata_of(test::sample_run(CoefficientOption::medium), planar_output(), Contact());
    EXPECT_THAT(section(text, "          Contact_Address:", ""),
                ElementsAre("          Contact_Address:", "            Address_Type: mailing and physical address",
                            "            Address: <enter value>", "            City: <enter value>",
                            "            State_or_Province: <enter value>", "            Postal_Code: <enter value>",
                            "            Country: <enter value>", "          Contact_Voice_Telephone: <enter value>"));
    EXPECT_THAT(
        section(text, "    Contact_Address:",
                "Metadata_Standard_Name: FGDC Content Standards for Digital Geospatial Metadata"),
        ElementsAre("    Contact_Address:", "      Address_Type: mailing and physical address",
                    "      Address: <enter value>", "      City: <enter value>",
                    "      State_or_Province: <enter value>", "      Postal_Code: <enter value>",
                    "      Country: <enter value>", "    Contace_Voice_Telephone: <enter value>",
                    "    Contact_Facsimile_Telephone: <enter value>",
                    "    Contact_Electronic_Mail_Address: <enter value>", "    Hours_of_Service: <enter value>"));
}

TEST_F(Metadata, BoundsOfAProjectedLayerAreWrittenAsStored) {
    EXPECT_THAT(
        section(metadata_of(test::sample_run(CoefficientOption::medium)), "    Bounding_Coordinates:", "  Keywords:"),
        ElementsAre("    Bounding_Coordinates:", "      West_Bounding_Coordinate: 712000",
                    "      East_Bounding_Coordinate: 745250.25", "      North_Bounding_Coordinate: 4155000.5",
                    "      South_Bounding_Coordinate: 4101000"));
}

TEST_F(Metadata, BoundsHaveAtMostFifteenDigitsAndNoGrouping) {
    OutputRecord output = planar_output();
    output.extent = {1.0 / 3, -1234567.125, 2.0 / 3, 12345678.9};
    EXPECT_THAT(
        section(metadata_of(test::sample_run(CoefficientOption::medium), output),
                "    Bounding_Coordinates:", "  Keywords:"),
        ElementsAre("    Bounding_Coordinates:", "      West_Bounding_Coordinate: 0.333333333333333",
                    "      East_Bounding_Coordinate: 0.666666666666667", "      North_Bounding_Coordinate: 12345678.9",
                    "      South_Bounding_Coordinate: -1234567.125"));
}

TEST_F(Metadata, BoundsOfAnOutputWithoutAnyShapeAreLeftToBeEntered) {
    OutputRecord output = planar_output();
    output.extent = {};
    EXPECT_THAT(
        section(metadata_of(test::sample_run(CoefficientOption::medium), output),
                "    Bounding_Coordinates:", "  Keywords:"),
        ElementsAre("    Bounding_Coordinates:", "      West_Bounding_Coordinate: <enter value>",
                    "      East_Bounding_Coordinate: <enter value>", "      North_Bounding_Coordinate: <enter value>",
                    "      South_Bounding_Coordinate: <enter value>"));
}

TEST_F(Metadata, EveryFeatureHasItsBlockEvenWhenValuesAreEqual) {
    OutputRecord output = planar_output();
    output.analysis_values = Lines(12, "7");
    const std::string text = metadata_of(test::sample_run(CoefficientOption::medium), output);
    EXPECT_EQ(count_of(text, "          Enumerated_Domain_Value: 7"), 12);
    // Two more for the values of the field that tells complete zones.
    EXPECT_EQ(count_of(text, "        Enumerated_Domain:"), 14);
}

TEST_F(Metadata, ValuesKeepTheirOrderAndAreWrittenAsTheyAre) {
    OutputRecord output = planar_output();
    output.analysis_values = {"upper", "", " lower: #1 "};
    const std::string text = metadata_of(test::sample_run(CoefficientOption::medium), output);
    EXPECT_THAT(text, HasSubstr("      Attribute_Domain_Values:\r\n"
                                "        Enumerated_Domain:\r\n          Enumerated_Domain_Value: upper\r\n"
                                "          Enumerated_Domain_Definition: number\r\n"
                                "          Enumerated_Domain_Definition_Source: Unknown\r\n"
                                "        Enumerated_Domain:\r\n          Enumerated_Domain_Value: \r\n"
                                "          Enumerated_Domain_Definition: number\r\n"
                                "          Enumerated_Domain_Definition_Source: Unknown\r\n"
                                "        Enumerated_Domain:\r\n          Enumerated_Domain_Value:  lower: #1 \r\n"));
}

TEST_F(Metadata, DecimalDegreesYieldFourLinesWithoutAnEmptyOneAfterThem) {
    EXPECT_THAT(metadata_of(test::sample_run(CoefficientOption::medium), geographic_output()),
                HasSubstr("\r\n  Horizontal_Coordinate_System_Definition:\r\n    Geographic:\r\n"
                          "      Latitude_Resolution: <enter value>\r\n      Longitude_Resolution: <enter value>\r\n"
                          "      Geographic_Coordinate_Units: <enter value>\r\n"
                          "Entity_and_Attribute_Information:\r\n"));
}

TEST_F(Metadata, OtherMapUnitsYieldNineLinesThatEndWithAnEmptyOne) {
    EXPECT_THAT(metadata_of(test::sample_run(CoefficientOption::medium)),
                HasSubstr("\r\n  Horizontal_Coordinate_System_Definition:\r\n    Planar:\r\n"
                          "      <enter map projection or grid coordinate system information>\r\n"
                          "      Planar_Coordinate_Information:\r\n"
                          "        Planar_Coordinate_Encoding_Method: <enter value>\r\n"
                          "        Coordinate_Represenstation:\r\n          Abscissa_Resolution: <enter value>\r\n"
                          "          Ordinate_Resolution: <enter value>\r\n"
                          "        Planar_Distance_Units: <enter value>\r\n\r\n"
                          "Entity_and_Attribute_Information:\r\n"));
}

TEST_F(Metadata, HighOptionYieldsOneStatementLine) {
    EXPECT_THAT(
        metadata_of(test::sample_run(CoefficientOption::high)),
        HasSubstr(
            "\r\n    \r\n         This analysis applied the high population coefficient to all calculations of impervious surface area.\r\n\r\n"));
}

TEST_F(Metadata, MediumOptionYieldsOneStatementLine) {
    EXPECT_THAT(
        metadata_of(test::sample_run(CoefficientOption::medium)),
        HasSubstr(
            "\r\n    \r\n         This analysis applied the medium population coefficient to all calculations of impervious surface area.\r\n\r\n"));
}

TEST_F(Metadata, LowOptionYieldsOneStatementLineAndNoCutOffs) {
    const std::string text = metadata_of(test::sample_run(CoefficientOption::low));
    EXPECT_THAT(
        text,
        HasSubstr(
            "\r\n    \r\n         This analysis applied the low population coefficient to all calculations of impervious surface area.\r\n\r\n"));
    EXPECT_THAT(text, Not(HasSubstr(">=")));
    EXPECT_THAT(text, Not(HasSubstr("<=")));
}

TEST_F(Metadata, UnknownOptionYieldsTheFourLinesOfDensity) {
    EXPECT_THAT(
        metadata_of(test::sample_run(std::nullopt)),
        HasSubstr(
            "\r\n    \r\n         The population coefficient applied for each impervious surface area calculation was identified using the value of the  field within the  theme. The cutoffs for each population density calculation were defined as:\r\n"
            "         High >= \r\n         Medium between  and \r\n         Low <= \r\n\r\n"));
}

TEST_F(Metadata, WithoutScenariosTheWebPageFollowsTheStatement) {
    const std::string text = metadata_of(test::sample_run(CoefficientOption::low));
    EXPECT_THAT(text, HasSubstr("calculations of impervious surface area.\r\n\r\n         More details "));
    EXPECT_EQ(count_of(text, "  "), 0);
}

TEST_F(Metadata, ScenariosNameTheTargetClassAndEndWithAFullStop) {
    const std::string text = metadata_of(run_with_scenarios(CoefficientOption::low));
    EXPECT_THAT(text,
                HasSubstr("\r\n      -changed land cover class within newmall theme to High Intensity Developed.\r\n"
                          "      -changed land cover class within new_park theme to Grassland.\r\n"));
    EXPECT_EQ(count_of(text, "  "), 1);
}

TEST_F(Metadata, WithoutClassesTheTableIsItsHeading) {
    RunRecord run = test::sample_run(CoefficientOption::medium);
    run.classes.clear();
    EXPECT_THAT(metadata_of(run), HasSubstr("\r\n\r\n           Values,ClassName,High,Medium.Low\r\n    \r\n"));
}

TEST_F(Metadata, FieldsAfterTheSixthHaveALabelAndNoDefinition) {
    OutputRecord output = planar_output();
    output.field_names.insert(output.field_names.end(), {"Extra1", "Extra2"});
    EXPECT_THAT(metadata_of(test::sample_run(CoefficientOption::medium), output),
                HasSubstr("\r\n          Enumerated_Domain_Definition: N=no the area calculations are NOT complete\r\n"
                          "          Enumerated_Domain_Definition_Source: Kestrel\r\n"
                          "    Attribute:\r\n      Attribute_Label: Extra1\r\n\r\n"
                          "    Attribute:\r\n      Attribute_Label: Extra2\r\n\r\n"
                          " \r\nMetadata_Reference_Information:\r\n"));
}

TEST_F(Metadata, DefinitionsFollowThePositionAndNotTheName) {
    OutputRecord output = planar_output();
    output.field_names = {"FID", "Shape", "pctIS", "Complete"};
    const std::string text = metadata_of(test::sample_run(CoefficientOption::medium), output);
    EXPECT_THAT(text, HasSubstr("      Attribute_Label: pctIS\r\n\r\n      Attribute_Definition: Analysis field\r\n"));
    EXPECT_THAT(
        text,
        HasSubstr(
            "      Attribute_Label: Complete\r\n\r\n      Attribute_Definition: Total Area within polygon defined by the analysis field\r\n"));
}

TEST_F(Metadata, ObjectIdAndShapeAloneWriteNoAttribute) {
    for (const Lines& names : {Lines(), Lines{"FID"}, Lines{"FID", "Shape"}}) {
        OutputRecord output = planar_output();
        output.field_names = names;
        EXPECT_THAT(metadata_of(test::sample_run(CoefficientOption::medium), output),
                    HasSubstr("      Entity_Type_Definition_Source: Marlin Institute\r\n \r\n"))
            << names.size();
    }
}

TEST_F(Metadata, MetadataDateIsTheLongForm) {
    EXPECT_THAT(split_lines(metadata_of(test::sample_run(CoefficientOption::medium))),
                Contains("  Metadata_Date: Thursday November 6, 2003 02:15:07 PM"));
}

TEST_F(Metadata, FullDeviceFailsAndIsLeftToTheCaller) {
    try {
        write_metadata("/dev/full", test::sample_run(CoefficientOption::medium), planar_output(), sample_contact());
        FAIL() << "nothing was thrown";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 61);
    }
}

TEST_F(Metadata, LinesWrittenBeforeAFailureStay) {
    OutputRecord output = planar_output();
    output.analysis_values = Lines(5000, "7");
    const std::string whole = metadata_of(test::sample_run(CoefficientOption::medium), output);
    {
        const test::FileSizeLimit limit(100000);
        EXPECT_THROW(write_metadata(m_path, test::sample_run(CoefficientOption::medium), output, sample_contact()),
                     base::RuntimeError);
    }
    EXPECT_EQ(read_file(m_path), whole.substr(0, 100000));
}

TEST_F(Metadata, MissingFolderFailsAndIsLeftToTheCaller) {
    try {
        write_metadata(m_folder / "missing/is_out1.met", test::sample_run(CoefficientOption::medium), planar_output(),
                       sample_contact());
        FAIL() << "nothing was thrown";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 76);
    }
}

}  // namespace
}  // namespace kestrel

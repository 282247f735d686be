// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/real/comparison.h"

namespace kestrel::test {
namespace {

using ::testing::ElementsAre;

class RealRunByField : public RealData {
  protected:
    /// Compares the run, and reads its output.
    static OutputFile output_by(const std::string& zones, const std::string& field) {
        RunSettings settings;
        settings.zones = real_file(zones);
        settings.field = field;
        expect_run_as_counted(settings);
        return read_output(WholeRun(settings).output());
    }

    static std::vector<std::string> values_of(const OutputFile& output) {
        std::vector<std::string> values;
        for (const OutputRow& row : output.rows) {
            values.push_back(row.value);
        }
        return values;
    }
};

TEST_F(RealRunByField, OfWholeNumbersListsThemAscendingAsNumbersWithZeroAmongThem) {
    const OutputFile output = output_by("sheds.shp", "SHED_ID");
    EXPECT_THAT(values_of(output), ElementsAre("0", "3", "7", "12", "15", "18", "21", "24", "27", "30", "33", "36",
                                               "39", "42", "45", "60", "9001", "9002"));
    EXPECT_THAT(output.field_names, ElementsAre("SHED_ID", "TotHects", "TotISHec", "pctIS", "Complete"));
    EXPECT_EQ(output.field_type, "Integer");
    EXPECT_EQ(output.field_width, 9);
    EXPECT_EQ(output.authority_code, "26912");
}

TEST_F(RealRunByField, OfTextKeepsApostrophesSignsAccentsAndThirtyTwoCharacters) {
    const OutputFile output = output_by("sheds.shp", "SHED_NAME");
    EXPECT_THAT(
        values_of(output),
        ElementsAre("Campus Plan", "Cañada Larga", "Coyote Draw", "Deer Spring", "East Gate", "Far Reservoir",
                    "Hop Meadow", "Juniper & Sage", "Lower Basin of the Long Dry Wash", "Mesa Rim", "North Alder Fork",
                    "O'Dell Hollow", "Pinyon", "Red Bench", "Sandy Bench", "Sector #7", "Slickrock", "Twin Potholes",
                    "Upper Basin of the Long Dry Wash", "Weir House", "White Cliffs"));
    EXPECT_EQ(output.field_type, "String");
    EXPECT_EQ(output.field_width, 60);
}

TEST_F(RealRunByField, OfTextWithANumberSignAndByDensityKeepsTheWholeValue) {
    RunSettings settings;
    settings.field = "SHED_NAME";
    settings.option = kByDensity;
    expect_run_as_counted(settings);
}

TEST_F(RealRunByField, OfAGeoPackageLayerIsAsOfTheShapefile) {
    RunSettings settings;
    settings.zones = real_file("sheds.gpkg|layername=sheds");
    expect_run_as_counted(settings);
    const OutputFile of_package = read_output(WholeRun(settings).output());
    const OutputFile of_shapefile = read_output(WholeRun(RunSettings()).output());
    ASSERT_EQ(of_package.rows.size(), of_shapefile.rows.size());
    for (std::size_t i = 0; i < of_package.rows.size(); ++i) {
        EXPECT_EQ(of_package.rows[i].value, of_shapefile.rows[i].value);
        EXPECT_EQ(of_package.rows[i].total_area, of_shapefile.rows[i].total_area);
        EXPECT_EQ(of_package.rows[i].impervious_area, of_shapefile.rows[i].impervious_area);
        EXPECT_EQ(of_package.rows[i].percent, of_shapefile.rows[i].percent);
        EXPECT_EQ(of_package.rows[i].complete, of_shapefile.rows[i].complete);
    }
}

TEST_F(RealRunByField, OfALongNameIsStoredUnderItsFirstEightCharactersAndZero) {
    const OutputFile output = output_by("sheds.gpkg|layername=sheds", "WATERSHED_DESCRIPTION");
    EXPECT_EQ(output.field_names.front(), "WATERSHE_0");
    EXPECT_EQ(output.field_type, "String");
    EXPECT_EQ(output.rows.size(), 21U);
    EXPECT_EQ(output.rows[0].value, "Catchment of Campus Plan");
    EXPECT_EQ(output.rows[8].value, "Catchment of Lower Basin of the Long Dry Wash");
    EXPECT_EQ(output.rows[15].value, "Catchment of Sector #7");
}

TEST_F(RealRunByField, OfTheSecondLongNameWithTheSameBeginningIsStoredUnderOne) {
    const OutputFile output = output_by("sheds.gpkg|layername=sheds", "WATERSHED_IDENTIFIER");
    EXPECT_EQ(output.field_names.front(), "WATERSHE_1");
    EXPECT_EQ(output.field_type, "Integer64");
    EXPECT_EQ(output.field_width, 18);
    EXPECT_EQ(output.rows.front().value, "5000000000");
    EXPECT_EQ(output.rows.back().value, "5000009002");
}

TEST_F(RealRunByField, OfALongNameAndByDensityIsAsCounted) {
    RunSettings settings;
    settings.zones = real_file("sheds.gpkg|layername=sheds");
    settings.field = "WATERSHED_IDENTIFIER";
    settings.option = kByDensity;
    expect_run_as_counted(settings);
}

TEST_F(RealRunByField, InFeetNamesTheAreaFieldsAfterAcres) {
    RunSettings settings;
    settings.units = "Feet";
    const WholeRun run(settings);
    EXPECT_THAT(read_output(run.output()).field_names,
                ElementsAre("SHED_ID", "TotAcres", "TotISAcr", "pctIS", "Complete"));
    EXPECT_EQ(run.result.area_unit, "acres");
}

}  // namespace
}  // namespace kestrel::test

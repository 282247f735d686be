// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/output_layer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel {
namespace {

using data::Colour;
using ::testing::ElementsAre;

std::string class_label(double percent) {
    const data::ClassBreaksRenderer legend = output_legend();
    const int position = legend.class_of(percent);
    return position < 0 ? "none" : legend.classes.at(static_cast<std::size_t>(position)).label;
}

TEST(OutputLegend, HasThreeClassesOnThePercentage) {
    const data::ClassBreaksRenderer legend = output_legend();
    EXPECT_EQ(legend.field, "pctIS");
    EXPECT_THAT(legend.classes, ElementsAre(data::ClassBreaksRenderer::Class{9.99, "< 10%", Colour{170, 255, 0}},
                                            data::ClassBreaksRenderer::Class{25, "10% - 25%", Colour{255, 255, 190}},
                                            data::ClassBreaksRenderer::Class{100, "> 25%", Colour{255, 0, 0}}));
}

TEST(OutputLegend, NineNinetyNineIsBelowTen) {
    EXPECT_EQ(class_label(9.99), "< 10%");
}

TEST(OutputLegend, AnythingAboveNineNinetyNineIsInTheMiddle) {
    EXPECT_EQ(class_label(9.995), "10% - 25%");
    EXPECT_EQ(class_label(10), "10% - 25%");
}

TEST(OutputLegend, TwentyFiveIsInTheMiddleAndMoreAbove) {
    EXPECT_EQ(class_label(25), "10% - 25%");
    EXPECT_EQ(class_label(25.01), "> 25%");
    EXPECT_EQ(class_label(100), "> 25%");
}

TEST(OutputLegend, ZonesWithoutAreaAreInTheLowestClass) {
    EXPECT_EQ(class_label(0), "< 10%");
}

TEST(OutputLayer, PositionsCountObjectIdAndShape) {
    OutputLayer layer;
    layer.fields = {
        {.name = "SHED"}, {.name = "TotAcres"}, {.name = "TotISAcr"}, {.name = "pctIS"}, {.name = "Complete"}};
    EXPECT_THAT(layer.field_names(), ElementsAre("FID", "Shape", "SHED", "TotAcres", "TotISAcr", "pctIS", "Complete"));
}

TEST(OutputLayer, ValuesStandInTheOrderOfTheFields) {
    const ZoneGroups groups({std::string("a"), std::string("b")});
    OutputLayer layer;
    layer.groups = &groups;
    layer.total_area = {10, 20};
    layer.impervious_area = {1, 5};
    layer.percent = {10, 25};
    layer.complete = {true, false};
    EXPECT_THAT(layer.values(1), ElementsAre(data::Value("b"), data::Value(20.0), data::Value(5.0), data::Value(25.0),
                                             data::Value("N")));
    EXPECT_EQ(layer.values(0).back(), data::Value("Y"));
}

using data::Field;
using data::FieldType;

TEST(OutputFields, FeetGiveAcres) {
    EXPECT_THAT(output_area_fields("Feet"), ElementsAre(Field{"TotAcres", "TotalAcres", FieldType::real, 18, 18, 6},
                                                        Field{"TotISAcr", "TotalISAcres", FieldType::real, 18, 18, 6},
                                                        Field{"pctIS", "pctIS", FieldType::real, 10, 10, 2},
                                                        Field{"Complete", "Complete", FieldType::text, 1, 0, 0}));
}

TEST(OutputFields, EverythingElseGivesHectares) {
    for (const char* units : {"Meters", "feet", ""}) {
        EXPECT_EQ(output_area_fields(units)[0], (Field{"TotHects", "TotalHectares", FieldType::real, 18, 18, 6}));
        EXPECT_EQ(output_area_fields(units)[1], (Field{"TotISHec", "TotalISHectares", FieldType::real, 18, 18, 6}));
    }
}

Field analysis_field(const Field& source, const std::vector<data::Value>& values) {
    const std::vector<Field> table{source};
    return output_analysis_field(source, ZoneGroups(values), table, "Meters");
}

TEST(OutputAnalysisField, HasTheAnalysisFieldsNameAsAlias) {
    const Field field = analysis_field({.name = "WATERSHED_CODE", .type = FieldType::text, .length = 12}, {});
    EXPECT_EQ(field.name, "WATERSHE_0");
    EXPECT_EQ(field.alias, "WATERSHED_CODE");
}

TEST(OutputAnalysisField, HasTheTypeAndWidthOfTheSource) {
    EXPECT_EQ(analysis_field({.name = "A", .type = FieldType::text, .length = 12}, {std::string("x")}).length, 12);
    EXPECT_EQ(analysis_field({.name = "A", .type = FieldType::small_integer, .length = 4}, {}).length, 4);
    EXPECT_EQ(analysis_field({.name = "A", .type = FieldType::small_integer, .length = 4}, {}).type,
              FieldType::small_integer);
}

TEST(OutputAnalysisField, TextOfUnlimitedWidthIsAsWideAsItsWidestValue) {
    const Field source{.name = "A", .type = FieldType::text};
    EXPECT_EQ(analysis_field(source, {std::string("four"), std::string("thirteen more")}).length, 13);
    EXPECT_EQ(analysis_field(source, {std::string(300, 'x')}).length, 254);
    EXPECT_EQ(analysis_field(source, {}).length, 1);
}

TEST(OutputAnalysisField, WholeNumbersOf64BitsHave18DigitsUnlessAValueNeedsMore) {
    const Field source{.name = "A", .type = FieldType::big_integer};
    EXPECT_EQ(analysis_field(source, {std::int64_t{5}}).length, 18);
    EXPECT_EQ(analysis_field(source, {std::int64_t{-1234567890123456789}}).length, 20);
}

TEST(OutputAnalysisField, WholeNumbersOf32BitsHave9DigitsUnlessAValueNeedsMore) {
    const Field source{.name = "A", .type = FieldType::integer};
    EXPECT_EQ(analysis_field(source, {std::int64_t{5}}).length, 9);
    EXPECT_EQ(analysis_field(source, {std::int64_t{-2147483648}}).length, 11);
}

TEST(OutputAnalysisField, NamedLikeAnotherOutputFieldIsRenamed) {
    EXPECT_EQ(analysis_field({.name = "TOTHECTS", .type = FieldType::text}, {}).name, "TOTHECTS_0");
    EXPECT_EQ(analysis_field({.name = "pctis", .type = FieldType::text}, {}).name, "pctis_0");
    EXPECT_EQ(analysis_field({.name = "TotAcres", .type = FieldType::text}, {}).name, "TotAcres");
}

}  // namespace
}  // namespace kestrel

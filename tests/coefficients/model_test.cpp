// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "base/errors.h"
#include "tests/coefficients/sets.h"

namespace kestrel {
namespace {

using base::RuntimeError;
using data::XmlDocument;
using data::XmlElement;
using test::add_default_set;
using test::add_set;
using test::land_class;
using test::outline;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kDefault =
    "<ISModelProperties><ISLCDefs><ISLCDef><LCType>Default</LCType><LCClasses>"
    "<LCClass ID=\"21\"><LCName>Developed, Low Intensity</LCName><LCHigh>35</LCHigh><LCMed>25</LCMed>"
    "<LCLow>12.5</LCLow></LCClass>"
    "<LCClass ID=\"41\"><LCName>Forest</LCName><LCHigh>0</LCHigh><LCMed>0</LCMed><LCLow>0</LCLow></LCClass>"
    "</LCClasses></ISLCDef></ISLCDefs></ISModelProperties>";

/// A store text around one class element.
std::string store_of(const std::string& class_element) {
    return "<ISModelProperties><ISLCDefs><ISLCDef><LCType>S</LCType><LCClasses>" + class_element +
           "</LCClasses></ISLCDef></ISLCDefs></ISModelProperties>";
}

/// Number of the error with which `text` is refused; 0 when it loads.
std::int32_t refusal(const std::string& text) {
    clsISModelProperties props;
    add_set(props, "Before", {land_class(7, "Seven", 1, 2, 3)});
    try {
        props.XML(text);
    } catch (const RuntimeError& error) {
        EXPECT_THAT(outline(props), ElementsAre("Before: 7")) << "a failed load changed the tree";
        return error.number();
    }
    return 0;
}

float reread(float value) {
    clsLCClass written;
    written.LCHigh = value;
    clsLCClass read;
    read.XML(written.XML());
    return read.LCHigh;
}

TEST(clsLCClass, BeginsWithZerosAndAnEmptyName) {
    const clsLCClass made;
    EXPECT_EQ(made.ID, 0);
    EXPECT_EQ(made.LCName, "");
    EXPECT_EQ(made.LCHigh, 0);
    EXPECT_EQ(made.LCMed, 0);
    EXPECT_EQ(made.LCLow, 0);
}

TEST(clsISModelProperties, BeginsWithoutSets) {
    EXPECT_EQ(clsISModelProperties().ISLCDefs.Count(), 0);
    EXPECT_EQ(clsISLCDef().LCType, "");
    EXPECT_EQ(clsISLCDef().LCClasses.Count(), 0);
}

TEST(FNodeName, IsTheElementNameOfEachClass) {
    EXPECT_EQ(clsISModelProperties::FNodeName(), "ISModelProperties");
    EXPECT_EQ(clsISLCDefs::FNodeName(), "ISLCDefs");
    EXPECT_EQ(clsISLCDef::FNodeName(), "ISLCDef");
    EXPECT_EQ(clsLCClasses::FNodeName(), "LCClasses");
    EXPECT_EQ(clsLCClass::FNodeName(), "LCClass");
}

TEST(Collection, CountsFromOneInTheOrderOfAdding) {
    clsLCClasses classes;
    classes.Add(land_class(5, "five", 0, 0, 0));
    classes.Add(land_class(3, "three", 0, 0, 0));
    EXPECT_EQ(classes.Count(), 2);
    EXPECT_EQ(classes.Item(1)->ID, 5);
    EXPECT_EQ(classes.Item(2)->ID, 3);
    std::vector<std::int32_t> seen;
    for (const auto& member : classes)
        seen.push_back(member->ID);
    EXPECT_THAT(seen, ElementsAre(5, 3));
}

TEST(Collection, PositionOutOfRangeIsError9) {
    clsISModelProperties props;
    add_set(props, "One");
    for (const std::int32_t position : {0, 2, -1, std::numeric_limits<std::int32_t>::max()}) {
        try {
            props.ISLCDefs.Item(position);
            ADD_FAILURE() << position;
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), 9);
            EXPECT_EQ(error.description(), "Subscript out of range");
        }
        EXPECT_THROW(props.ISLCDefs.Remove(position), RuntimeError);
    }
    EXPECT_EQ(props.ISLCDefs.Count(), 1);
}

TEST(Collection, RemoveMovesLaterMembersUp) {
    clsISModelProperties props;
    for (const char* name : {"A", "B", "C"})
        add_set(props, name);
    props.ISLCDefs.Remove(2);
    EXPECT_EQ(props.ISLCDefs.Count(), 2);
    EXPECT_EQ(props.ISLCDefs.Item(2)->LCType, "C");
}

TEST(Collection, ChangeThroughItemChangesTheStoredMember) {
    clsISModelProperties props;
    add_default_set(props);
    props.ISLCDefs.Item(1)->LCClasses.Item(2)->LCName = "Wood";
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCClasses.Item(2)->LCName, "Wood");
    EXPECT_THAT(props.XML(), testing::HasSubstr("<LCName>Wood</LCName>"));
}

TEST(Collection, TakesDuplicatesAndAnyValues) {
    clsISModelProperties props;
    const auto same = land_class(-5, "", -1, 1000, 0);
    add_set(props, "S", {same, same});
    add_set(props, "S");
    EXPECT_THAT(outline(props), ElementsAre("S: -5 -5", "S:"));
}

TEST(Collection, NothingCannotBeAdded) {
    clsISLCDefs sets;
    try {
        sets.Add(nullptr);
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 91);
    }
    EXPECT_EQ(sets.Count(), 0);
}

TEST(XML, WritesTheWholeTreeInDocumentOrder) {
    clsISModelProperties props;
    add_default_set(props);
    EXPECT_EQ(props.XML(), kDefault);
}

TEST(XML, EveryClassWritesItsOwnElement) {
    clsISModelProperties props;
    add_set(props, "S", {land_class(1, "Water", 0, 0, 0)});
    const std::string water =
        "<LCClass ID=\"1\"><LCName>Water</LCName><LCHigh>0</LCHigh><LCMed>0</LCMed><LCLow>0</LCLow></LCClass>";
    const std::string set = "<ISLCDef><LCType>S</LCType><LCClasses>" + water + "</LCClasses></ISLCDef>";
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCClasses.Item(1)->XML(), water);
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCClasses.XML(), "<LCClasses>" + water + "</LCClasses>");
    EXPECT_EQ(props.ISLCDefs.Item(1)->XML(), set);
    EXPECT_EQ(props.ISLCDefs.XML(), "<ISLCDefs>" + set + "</ISLCDefs>");
    EXPECT_EQ(clsISModelProperties().XML(), "<ISModelProperties><ISLCDefs/></ISModelProperties>");
}

TEST(XML, EveryClassReadsItsOwnElement) {
    clsISModelProperties written;
    add_default_set(written);
    clsLCClass land;
    land.XML(written.ISLCDefs.Item(1)->LCClasses.Item(1)->XML());
    EXPECT_EQ(land.ID, 21);
    EXPECT_EQ(land.LCName, "Developed, Low Intensity");
    EXPECT_EQ(land.LCHigh, 35);
    EXPECT_EQ(land.LCMed, 25);
    EXPECT_EQ(land.LCLow, 12.5F);
    clsLCClasses classes;
    classes.XML(written.ISLCDefs.Item(1)->LCClasses.XML());
    EXPECT_EQ(classes.Count(), 2);
    clsISLCDef set;
    set.XML(written.ISLCDefs.Item(1)->XML());
    EXPECT_EQ(set.LCType, "Default");
    EXPECT_EQ(set.LCClasses.Count(), 2);
    clsISLCDefs sets;
    sets.XML(written.ISLCDefs.XML());
    EXPECT_EQ(sets.Count(), 1);
    clsISModelProperties props;
    props.XML(written.XML());
    EXPECT_EQ(props.XML(), kDefault);
}

TEST(XML, NameOfTheRootElementDoesNotMatter) {
    clsISModelProperties props;
    props.XML("<Other><ISLCDefs><ISLCDef><LCType>A</LCType></ISLCDef></ISLCDefs></Other>");
    EXPECT_THAT(outline(props), ElementsAre("A:"));
    clsLCClass land;
    land.XML("<Other ID='5'><LCHigh>3</LCHigh><LCMed>2</LCMed><LCLow>1</LCLow></Other>");
    EXPECT_EQ(land.ID, 5);
}

TEST(CreateNode, WithParentBecomesItsLastChild) {
    XmlElement parent = XmlDocument::with_root("Parent").root();
    parent.append("First");
    clsISLCDef set;
    set.LCType = "S";
    EXPECT_EQ(set.CreateNode(parent).name(), "ISLCDef");
    EXPECT_EQ(parent.xml(), "<Parent><First/><ISLCDef><LCType>S</LCType><LCClasses/></ISLCDef></Parent>");
}

TEST(CreateNode, WithoutParentIsTheRootOfANewDocument) {
    EXPECT_EQ(clsLCClasses().CreateNode().xml(), "<LCClasses/>");
}

TEST(CreateNode, NameThatXmlCannotHoldIsAnErrorThatPassesToTheCaller) {
    clsISModelProperties props;
    add_set(props, "bell \a");
    try {
        static_cast<void>(props.XML());
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 5);
    }
}

TEST(LoadNode, OfNoElementDoesNothing) {
    clsISModelProperties props;
    add_default_set(props);
    props.LoadNode({});
    props.ISLCDefs.LoadNode({});
    props.ISLCDefs.Item(1)->LoadNode({});
    props.ISLCDefs.Item(1)->LCClasses.LoadNode({});
    props.ISLCDefs.Item(1)->LCClasses.Item(1)->LoadNode({});
    EXPECT_EQ(props.XML(), kDefault);
}

TEST(LoadNode, SetWithoutClassesReadsBackAsASetWithoutClasses) {
    clsISModelProperties written;
    add_set(written, "Empty");
    EXPECT_EQ(written.XML(),
              "<ISModelProperties><ISLCDefs><ISLCDef><LCType>Empty</LCType><LCClasses/></ISLCDef></ISLCDefs>"
              "</ISModelProperties>");
    clsISModelProperties props;
    props.XML(written.XML());
    EXPECT_THAT(outline(props), ElementsAre("Empty:"));
}

TEST(LoadNode, LoadingTwiceDoesNotDouble) {
    clsISModelProperties props;
    props.XML(kDefault);
    props.XML(kDefault);
    EXPECT_EQ(props.XML(), kDefault);
    const XmlElement sets = XmlDocument::parse(kDefault).root().child("ISLCDefs");
    props.ISLCDefs.LoadNode(sets);
    EXPECT_EQ(props.XML(), kDefault);
}

TEST(LoadNode, EqualSetNamesAndEqualClassValuesAreKeptInFileOrder) {
    clsISModelProperties written;
    add_set(written, "Same", {land_class(1, "a", 1, 0, 0), land_class(1, "b", 2, 0, 0)});
    add_set(written, "Same", {land_class(2, "c", 3, 0, 0)});
    clsISModelProperties props;
    props.XML(written.XML());
    EXPECT_THAT(outline(props), ElementsAre("Same: 1 1", "Same: 2"));
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCClasses.Item(2)->LCName, "b");
}

TEST(LoadNode, MissingClassIdFailsTheWholeLoad) {
    EXPECT_EQ(
        refusal(store_of("<LCClass ID='1'><LCHigh>1</LCHigh><LCMed>1</LCMed><LCLow>1</LCLow></LCClass>"
                         "<LCClass><LCName>n</LCName><LCHigh>1</LCHigh><LCMed>1</LCMed><LCLow>1</LCLow></LCClass>")),
        13);
}

TEST(LoadNode, MissingOrEmptyCoefficientFailsTheWholeLoad) {
    EXPECT_EQ(refusal(store_of("<LCClass ID='1'><LCMed>1</LCMed><LCLow>1</LCLow></LCClass>")), 13);
    EXPECT_EQ(refusal(store_of("<LCClass ID='1'><LCHigh>1</LCHigh><LCLow>1</LCLow></LCClass>")), 13);
    EXPECT_EQ(refusal(store_of("<LCClass ID='1'><LCHigh>1</LCHigh><LCMed>1</LCMed></LCClass>")), 13);
    EXPECT_EQ(refusal(store_of("<LCClass ID='1'><LCHigh/><LCMed>1</LCMed><LCLow>1</LCLow></LCClass>")), 13);
}

TEST(LoadNode, TextThatIsNoNumberFailsTheWholeLoad) {
    EXPECT_EQ(refusal(store_of("<LCClass ID='x'><LCHigh>1</LCHigh><LCMed>1</LCMed><LCLow>1</LCLow></LCClass>")), 13);
    EXPECT_EQ(refusal(store_of("<LCClass ID='1'><LCHigh>1,5</LCHigh><LCMed>1</LCMed><LCLow>1</LCLow></LCClass>")), 13);
    EXPECT_EQ(refusal(store_of("<LCClass ID='1'><LCHigh>nan</LCHigh><LCMed>1</LCMed><LCLow>1</LCLow></LCClass>")), 13);
    EXPECT_EQ(
        refusal(store_of("<LCClass ID='3000000000'><LCHigh>1</LCHigh><LCMed>1</LCMed><LCLow>1</LCLow></LCClass>")), 6);
}

TEST(LoadNode, ClassValueIsRoundedHalfToEven) {
    for (const auto& [text, value] : {std::pair{"2.5", 2}, std::pair{"3.5", 4}, std::pair{"-7", -7}}) {
        clsLCClass land;
        land.XML("<LCClass ID='" + std::string(text) +
                 "'><LCHigh>1</LCHigh><LCMed>1</LCMed><LCLow>1</LCLow></LCClass>");
        EXPECT_EQ(land.ID, value) << text;
    }
}

TEST(LoadNode, FailedLoadOfOneClassOrSetLeavesItAsItWas) {
    const auto land = land_class(7, "Seven", 1, 2, 3);
    EXPECT_THROW(land->XML("<LCClass ID='8'><LCName>Eight</LCName><LCHigh>9</LCHigh></LCClass>"), RuntimeError);
    EXPECT_EQ(land->ID, 7);
    EXPECT_EQ(land->LCName, "Seven");
    EXPECT_EQ(land->LCHigh, 1);
    clsISLCDef set;
    set.LCType = "Before";
    EXPECT_THROW(set.XML("<ISLCDef><LCType>After</LCType><LCClasses><LCClass/></LCClasses></ISLCDef>"), RuntimeError);
    EXPECT_EQ(set.LCType, "Before");
}

TEST(LoadNode, MissingNamesAreEmpty) {
    clsISModelProperties props;
    props.XML(
        "<ISModelProperties><ISLCDefs><ISLCDef><LCClasses><LCClass ID='1'><LCHigh>1</LCHigh><LCMed>2</LCMed>"
        "<LCLow>3</LCLow></LCClass></LCClasses></ISLCDef></ISLCDefs></ISModelProperties>");
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCType, "");
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCClasses.Item(1)->LCName, "");
    EXPECT_EQ(props.ISLCDefs.Item(1)->LCClasses.Item(1)->LCLow, 3);
}

TEST(LoadNode, MissingCollectionElementLeavesTheCollectionUnchanged) {
    clsISModelProperties props;
    add_default_set(props);
    props.XML("<ISModelProperties/>");
    EXPECT_EQ(props.XML(), kDefault);
    props.ISLCDefs.Item(1)->XML("<ISLCDef><LCType>Renamed</LCType></ISLCDef>");
    EXPECT_THAT(outline(props), ElementsAre("Renamed: 21 41"));
}

TEST(LoadNode, EmptyCollectionElementEmptiesTheCollection) {
    clsISModelProperties props;
    add_default_set(props);
    props.XML("<ISModelProperties><ISLCDefs/></ISModelProperties>");
    EXPECT_THAT(outline(props), IsEmpty());
}

TEST(LoadNode, OnlyTheFirstSetsElementIsRead) {
    clsISModelProperties props;
    props.XML(
        "<ISModelProperties><Other/><ISLCDefs><ISLCDef><LCType>A</LCType></ISLCDef></ISLCDefs>"
        "<ISLCDefs><ISLCDef><LCType>B</LCType></ISLCDef></ISLCDefs></ISModelProperties>");
    EXPECT_THAT(outline(props), ElementsAre("A:"));
}

TEST(LoadNode, ValuesAreReadWithoutSurroundingWhiteSpace) {
    clsLCClass land;
    land.XML(
        "<LCClass ID=\" 21 \">\r\n <LCName>\r\n  Low  Density \r\n </LCName><LCHigh>\r\n\t35\r\n</LCHigh>"
        "<LCMed> 25 </LCMed><LCLow>\n12.5\n</LCLow></LCClass>");
    EXPECT_EQ(land.ID, 21);
    EXPECT_EQ(land.LCName, "Low  Density");
    EXPECT_EQ(land.LCHigh, 35);
    EXPECT_EQ(land.LCLow, 12.5F);
}

TEST(GetNodeText, IsEmptyWhenNothingIsSelected) {
    const XmlElement element = XmlDocument::parse("<LCClass ID='4'><LCName>a</LCName></LCClass>").root();
    EXPECT_EQ(clsLCClass::GetNodeText(element, "LCName"), "a");
    EXPECT_EQ(clsLCClass::GetNodeText(element, "@ID"), "4");
    EXPECT_EQ(clsLCClass::GetNodeText(element, "LCHigh"), "");
    EXPECT_EQ(clsLCClass::GetNodeText(element, "@LCName"), "");
    EXPECT_EQ(clsISModelProperties::GetNodeText({}, "LCName"), "");
}

TEST(Coefficients, SurviveWritingAndReadingAsSingles) {
    for (const float value : {12.5F, 33.3F, 0.1F, 100.F, 1.F / 3, 16777216.F, 1e-10F, 1e20F,
                              std::numeric_limits<float>::max(), std::numeric_limits<float>::denorm_min(), -7.25F}) {
        EXPECT_EQ(reread(value), value);
    }
}

TEST(Coefficients, AreWrittenInTheirShortestForm) {
    EXPECT_THAT(land_class(21, "", 12.5F, 0, 100)->XML(),
                "<LCClass ID=\"21\"><LCName/><LCHigh>12.5</LCHigh><LCMed>0</LCMed><LCLow>100</LCLow></LCClass>");
    EXPECT_THAT(land_class(-3, "", 33.3F, 0.05F, -0.F)->XML(),
                "<LCClass ID=\"-3\"><LCName/><LCHigh>33.3</LCHigh><LCMed>0.05</LCMed><LCLow>0</LCLow></LCClass>");
}

}  // namespace
}  // namespace kestrel

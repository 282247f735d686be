// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/clsISDSAdjustment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "engine/clsISTableFunctions.h"
#include "tests/support/small_world.h"

namespace kestrel {
namespace {

using data::Table;
using data::Value;
using reporting::Answer;
using reporting::Buttons;
using reporting::Icon;
using reporting::MessageBox;
using test::Box;
using test::Shape;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// A zone "1" that covers the land cover, one scenario over a part of it, and a main table that a test fills.
class Adjustment : public testing::Test {
  protected:
    Adjustment() {
        add_class("2", {"Developed", "90", "80", "-9999"});
        add_class("5", {"Grassland", "2", "2", "2"});
        add_class("7", {"Roads", "100", "100", "100"});
    }
    void add_class(const std::string& code, std::initializer_list<const char*> texts) {
        TextList list;
        for (const char* text : texts) {
            list.Add(text);
        }
        classes.add(code, list);
    }
    void lay_out(const std::string& cells, const std::vector<Box>& scenario) {
        world.land_cover(cells);
        zones = RunZones{.zones = test::shared_polygons_of({{{Box{0, 0, 100, 100}}}}, world.cell),
                         .density = {},
                         .scenarios = {test::shared_polygons_of({Shape{scenario}}, world.cell)},
                         .keys = ZoneKeys(groups)};
        theme = {.name = "plans", .same_projection = true, .position = 0, .failure = {}};
    }
    /// The area table of the whole zones.
    Table tabulated(CoefficientOption option = CoefficientOption::high) {
        return *engine_for(option).isGetLCArea(world.extension.path(), analysis(), cover, "Value", "SHED", false,
                                               "Meters", classes, "tmpZone", "areaTemp");
    }
    std::optional<Table> adjusted(Table table, const std::string& target,
                                  CoefficientOption option = CoefficientOption::high) {
        clsISDSAdjustment adjustment({.working_folder = world.extension.path(),
                                      .analysis = analysis(),
                                      .land_cover = &cover,
                                      .units = "Meters",
                                      .option = option,
                                      .areas = &engine_for(option)});
        return adjustment.isDSAdjustment(std::move(table), theme, "SHED", target, "2dsZone", "2dsarea", "2dsInt",
                                         classes);
    }
    AreaTheme analysis() const { return {.name = "sheds", .fields = {{.name = "SHED"}}, .zones = &*zones}; }
    clsISGetLCArea& engine_for(CoefficientOption option) {
        if (engine.counts() == nullptr) {
            engine.Initialise(&world.application, option, 1);
            // The pass, so that there are counts even where a test makes its main table by hand.
            engine.isGetLCArea(world.extension.path(), analysis(), cover, "Value", "SHED", false, "Meters", classes,
                               "tmpZone", "areaTemp");
        }
        return engine;
    }
    static double number(const Table& table, const std::string& column, const std::string& key = "1") {
        return table.number(table.find_row(key).value(), table.find_field(column));
    }

    test::SmallWorld world;
    hosting::HeadlessRasterLayer cover{"cover", world.folder / "cover.tif"};
    LandClassDictionary classes;
    ZoneGroups groups{std::vector<Value>{std::int64_t{1}}};
    std::optional<RunZones> zones;
    ScenarioTheme theme;
    clsISGetLCArea engine;
};

TEST_F(Adjustment, TwoHectaresOfGrasslandBecomeDeveloped) {
    lay_out("5 5 5 5\n2 2 2 5\n", {Box{0, 1, 2, 2}});
    const Table before = tabulated();
    const auto after = adjusted(before, "2");
    ASSERT_TRUE(after);
    EXPECT_DOUBLE_EQ(number(before, "area-5") - number(*after, "area-5"), 2);
    EXPECT_DOUBLE_EQ(number(before, "ISarea-5") - number(*after, "ISarea-5"), 0.04);
    EXPECT_DOUBLE_EQ(number(*after, "area-2"), 3 + 2);
    EXPECT_DOUBLE_EQ(number(*after, "ISarea-2"), (3 + 2) * 0.9);
}

TEST_F(Adjustment, SubtractsValuesRoundedToThreeDecimalsAndGivesTheUnroundedSum) {
    world.cell = 2;  // a cell is 0.0004 hectares
    lay_out("5\n", {Box{0, 0, 1, 1}});
    Table table = tabulated();
    table.set_number(0, table.find_field("area-5"), 10.12345);
    const auto after = adjusted(table, "2");
    ASSERT_TRUE(after);
    EXPECT_DOUBLE_EQ(number(*after, "area-5"), 10.123);
    EXPECT_DOUBLE_EQ(number(*after, "area-2"), 0.0004);
    EXPECT_DOUBLE_EQ(number(*after, "ISarea-2"), 0.00036);
}

TEST_F(Adjustment, RoundsHalfToEven) {
    world.cell = 2;
    for (const auto& [before, rounded] : std::initializer_list<std::pair<double, double>>{
             {1.0005, 1}, {1.0015, 1.002}, {1.0025, 1.002}, {1.000501, 1.001}}) {
        Adjustment::engine.Reset();
        lay_out("5\n", {Box{0, 0, 1, 1}});
        Table table = tabulated();
        table.set_number(0, table.find_field("area-5"), before);
        const auto after = adjusted(table, "2");
        ASSERT_TRUE(after);
        EXPECT_DOUBLE_EQ(number(*after, "area-5"), rounded) << before;
    }
}

TEST_F(Adjustment, APartThatIsOfTheTargetClassAlreadyStaysAsItIs) {
    lay_out("2 2 5 5\n", {Box{0, 0, 3, 1}});
    const auto after = adjusted(tabulated(), "2");
    ASSERT_TRUE(after);
    EXPECT_DOUBLE_EQ(number(*after, "area-2"), 3);
    EXPECT_DOUBLE_EQ(number(*after, "area-5"), 1);
    EXPECT_DOUBLE_EQ(number(*after, "ISarea-2"), 2.7);
}

TEST_F(Adjustment, ATargetClassThatTheLandCoverLacksGetsNewColumns) {
    lay_out("2 5\n", {Box{1, 0, 2, 1}});
    const auto after = adjusted(tabulated(), "7");
    ASSERT_TRUE(after);
    ASSERT_EQ(after->fields().size(), 8U);
    EXPECT_EQ(after->fields()[6], (data::Field{"area-7", "area-7", data::FieldType::real, 18, 18, 6}));
    EXPECT_EQ(after->fields()[7].name, "ISarea-7");
    EXPECT_DOUBLE_EQ(number(*after, "area-7"), 1);
    EXPECT_DOUBLE_EQ(number(*after, "ISarea-7"), 1);
}

TEST_F(Adjustment, TheTargetsImperviousAreaIsRecomputedAndNotIncremented) {
    lay_out("2 5\n", {Box{1, 0, 2, 1}});
    Table table = tabulated();
    table.set_number(0, table.find_field("ISarea-2"), 55);
    const auto after = adjusted(table, "2");
    ASSERT_TRUE(after);
    EXPECT_DOUBLE_EQ(number(*after, "ISarea-2"), 1.8);
}

TEST_F(Adjustment, NodataCellsInsideTheScenarioGiveNothing) {
    lay_out("5 . 5\n", {Box{0, 0, 2, 1}});
    const auto after = adjusted(tabulated(), "7");
    ASSERT_TRUE(after);
    EXPECT_DOUBLE_EQ(number(*after, "area-7"), 1);
    EXPECT_DOUBLE_EQ(number(*after, "area-5"), 1);
}

TEST_F(Adjustment, OutsideEveryZoneThereIsNoOverlayAndTheTableIsUnchanged) {
    lay_out("5 5\n", {Box{200, 200, 201, 201}});
    const Table before = tabulated();
    const auto after = adjusted(before, "7");
    ASSERT_TRUE(after);
    EXPECT_THAT(world.said.boxes,
                ElementsAre(MessageBox{"The Analysis Layer and the Development Scenario (plans) do not overlap.",
                                       "No Overlay", Icon::information}));
    EXPECT_EQ(after->fields(), before.fields());
    EXPECT_EQ(number(*after, "area-5"), number(before, "area-5"));
}

TEST_F(Adjustment, AScenarioThatHoldsNoCellCentreDoesNotOverlap) {
    lay_out("5 5\n", {Box{0.1, 0.1, 0.3, 0.3}});
    EXPECT_TRUE(adjusted(tabulated(), "7"));
    ASSERT_EQ(world.said.boxes.size(), 1U);
    EXPECT_EQ(world.said.boxes[0].title, "No Overlay");
}

MessageBox question_about_projection() {
    return {
        "The Analysis Layer and the Development Scenario (plans) are not in the same projection.\rWould you like to continue with the analysis without this scenario?",
        "Projection", Icon::none, Buttons::ok_cancel};
}

TEST_F(Adjustment, AnotherProjectionIsSkippedAfterOk) {
    lay_out("5 5\n", {Box{0, 0, 1, 1}});
    theme.same_projection = false;
    theme.position.reset();
    world.said.answers = {Answer::ok};
    const Table before = tabulated();
    const auto after = adjusted(before, "7");
    EXPECT_THAT(world.said.boxes, ElementsAre(question_about_projection()));
    ASSERT_TRUE(after);
    EXPECT_EQ(after->fields(), before.fields());
}

TEST_F(Adjustment, AnotherProjectionEndsTheRunAfterCancel) {
    lay_out("5 5\n", {Box{0, 0, 1, 1}});
    theme.same_projection = false;
    theme.position.reset();
    world.said.answers = {Answer::cancel};
    EXPECT_FALSE(adjusted(tabulated(), "7"));
    EXPECT_THAT(world.said.boxes, ElementsAre(question_about_projection()));
}

TEST_F(Adjustment, TheProjectionIsAskedForBeforeTheOverlap) {
    lay_out("5 5\n", {Box{200, 200, 201, 201}});
    theme.same_projection = false;
    world.said.answers = {Answer::ok};
    EXPECT_TRUE(adjusted(tabulated(), "7"));
    EXPECT_THAT(world.said.boxes, ElementsAre(question_about_projection()));
}

MessageBox invalid_coefficient(const std::string& code) {
    return {"No coefficients defined in the selected Coefficient Set for the land cover class " + code + "!",
            "Invalid Coefficient", Icon::critical};
}

TEST_F(Adjustment, ATargetOfMinus9999InTheZonesPositionStopsTheRun) {
    lay_out("5 5\n", {Box{0, 0, 1, 1}});
    EXPECT_FALSE(adjusted(tabulated(CoefficientOption::low), "2", CoefficientOption::low));
    EXPECT_THAT(world.said.boxes, ElementsAre(invalid_coefficient("2")));
}

TEST_F(Adjustment, ATargetThatTheSetLacksStopsTheRun) {
    lay_out("5 5\n", {Box{0, 0, 1, 1}});
    EXPECT_FALSE(adjusted(tabulated(), "99"));
    EXPECT_THAT(world.said.boxes, ElementsAre(invalid_coefficient("99")));
}

TEST_F(Adjustment, TheOverlapIsCheckedBeforeTheTargetsCoefficient) {
    lay_out("5 5\n", {Box{200, 200, 201, 201}});
    EXPECT_TRUE(adjusted(tabulated(), "99"));
    ASSERT_EQ(world.said.boxes.size(), 1U);
    EXPECT_EQ(world.said.boxes[0].title, "No Overlay");
}

TEST_F(Adjustment, AFailureIsToldAndReported) {
    lay_out("5 5\n", {Box{0, 0, 1, 1}});
    theme.failure = std::make_exception_ptr(base::RuntimeError(53, "no such file"));
    EXPECT_FALSE(adjusted(tabulated(), "7"));
    EXPECT_THAT(
        world.said.boxes,
        ElementsAre(MessageBox{"Error occurred while adjusting area calculations for selected 'Development Scenarios'.",
                               "Error: Development Scenarios Adjustment"}));
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("\tisDSAdjustment clsISDSAdjustment Line : ")));
    EXPECT_THAT(world.said.call_stacks, ElementsAre(HasSubstr("\t53\r\nDescription\r\n\tno such file")));
}

TEST_F(Adjustment, ZonesOutsideTheScenarioKeepTheirRow) {
    lay_out("5 5\n", {Box{0, 0, 1, 1}});
    Table table = tabulated();
    const std::size_t other = table.add_row("2");
    table.set_number(other, table.find_field("area-5"), 3.123456);
    const auto after = adjusted(table, "7");
    ASSERT_TRUE(after);
    EXPECT_DOUBLE_EQ(number(*after, "area-5", "2"), 3.123456);
    EXPECT_EQ(number(*after, "area-7", "2"), 0);
}

}  // namespace
}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/analysis/form_rules.h"

#include <gtest/gtest.h>

#include "base/errors.h"
#include "tests/support/error_of.h"
#include "tests/support/scripted_interaction.h"

namespace kestrel {
namespace {

using reporting::Icon;
using reporting::MessageBox;

constexpr const char* kNumeric = "Numeric value must be entered in field.";

DensityState whole_density() {
    return {.layer_chosen = true, .field_chosen = true, .high = "10", .low = "2"};
}

FormState whole_form() {
    return {.analysis_layer_chosen = true,
            .land_cover_chosen = true,
            .units_chosen = true,
            .set_chosen = true,
            .analysis_field_chosen = true,
            .coefficient_option = CoefficientOption::high,
            .output = "/data/roads.shp"};
}

/// Text of the refusal; empty when there is none. Every refusal is a warning without a title.
template <typename State>
std::string text(const State& state) {
    const auto refusal = first_refusal(state);
    if (!refusal) return {};
    EXPECT_EQ(refusal->box, (MessageBox{refusal->box.text, "", Icon::exclamation}));
    return refusal->box.text;
}

TEST(DensityRules, NothingIsRefusedWhenEverythingIsThere) {
    EXPECT_EQ(text(whole_density()), "");
}

TEST(DensityRules, AreCheckedInOrder) {
    DensityState state{.high = "x", .low = "x"};
    EXPECT_EQ(text(state), "No Population Density theme selected, please select from dropdown list.");
    EXPECT_EQ(first_refusal(state)->control, DensityControl::cboPDenTheme);
    state.layer_chosen = true;
    EXPECT_EQ(text(state), "No Populaiton Density field selected, please select from dropdown list.");
    EXPECT_EQ(first_refusal(state)->control, DensityControl::cboPDenFld);
    state.field_chosen = true;
    EXPECT_EQ(text(state), kNumeric);
    EXPECT_EQ(first_refusal(state)->control, DensityControl::txtHigh);
    state.high = "1";
    EXPECT_EQ(text(state), kNumeric);
    EXPECT_EQ(first_refusal(state)->control, DensityControl::txtLow);
    state.low = "2";
    EXPECT_EQ(text(state), "Population density \"Low\" value must be less than the \"High\" value.");
    state.high = "3";
    EXPECT_EQ(text(state), "");
}

TEST(DensityRules, EmptyAndNonNumericBoundsAreRefused) {
    for (const char* typed : {"", " ", "ten", "1,000", "0x10", "inf"}) {
        DensityState state = whole_density();
        state.high = typed;
        EXPECT_EQ(text(state), kNumeric) << typed;
        state = whole_density();
        state.low = typed;
        EXPECT_EQ(text(state), kNumeric) << typed;
    }
}

TEST(DensityRules, AnExponentIsNumeric) {
    DensityState state = whole_density();
    state.high = "1e3";
    EXPECT_EQ(text(state), "");
}

TEST(DensityRules, EqualBoundsPass) {
    DensityState state = whole_density();
    state.low = "10.0";
    EXPECT_EQ(text(state), "");
}

TEST(DensityRules, BoundsAreComparedAsNumbers) {
    DensityState state = whole_density();
    state.high = "9";
    state.low = "10";
    EXPECT_NE(text(state), "");
    state.high = "10";
    state.low = "9";
    EXPECT_EQ(text(state), "");
}

TEST(DensityRules, ABoundBeyondADoubleOverflows) {
    DensityState state = whole_density();
    state.high = "1e999";
    EXPECT_EQ(test::error_of([&] { first_refusal(state); }).number(), base::kOverflow);
}

TEST(FormRules, NothingIsRefusedWhenEverythingIsThere) {
    EXPECT_EQ(text(whole_form()), "");
}

TEST(FormRules, AreCheckedInOrder) {
    FormState state{.highest_row = 0, .scenarios = {{.applied = true}}};
    const auto expect = [&state](const char* expected, FormControl control) {
        EXPECT_EQ(text(state), expected);
        EXPECT_EQ(first_refusal(state)->control, control) << expected;
    };
    expect("No Analysis theme selected, please select from dropdown list.", FormControl::cboAnalysisTheme);
    state.analysis_layer_chosen = true;
    expect("No Land Cover theme selected, please select from dropdown list.", FormControl::cboLCTheme);
    state.land_cover_chosen = true;
    expect("Land Cover units not defined, please select from dropdown list.", FormControl::cboLCUnits);
    state.units_chosen = true;
    expect("Land Cover Type not defined, please select from dropdown list.", FormControl::cboLCType);
    state.set_chosen = true;
    expect("Analysis unit not defined, please select from dropdown list.", FormControl::cboAnalysisUnit);
    state.analysis_field_chosen = true;
    expect("Population Density option not defined, please select option.", FormControl::optPopDensity);
    state.coefficient_option = CoefficientOption::by_density;
    expect("No Population Density theme selected, please select from dropdown list.", FormControl::density);
    state.density = whole_density();
    expect("Output Theme not defined, please enter a name.", FormControl::txtOutputTheme);
    state.output = "/data/roads.shp";
    expect("No theme selected, please select from dropdown list.", FormControl::cboDSTheme);
    state.scenarios[0].layer_chosen = true;
    expect("No class selected, please select from dropdown list.", FormControl::cboDSToClass);
    state.scenarios[0].class_chosen = true;
    EXPECT_EQ(text(state), "");
}

TEST(FormRules, TheDensityIsLookedAtWithCalculateOnly) {
    for (const auto option : {CoefficientOption::high, CoefficientOption::medium, CoefficientOption::low}) {
        FormState state = whole_form();
        state.coefficient_option = option;
        EXPECT_EQ(text(state), "");
    }
}

TEST(FormRules, ARowThatIsNotAppliedMayBeIncomplete) {
    FormState state = whole_form();
    state.highest_row = 0;
    state.scenarios = {{}};
    EXPECT_EQ(text(state), "");
}

TEST(FormRules, RowsAreCheckedOnlyWhenThereIsExactlyOne) {
    FormState state = whole_form();
    state.highest_row = 1;
    state.scenarios = {{.applied = true}, {.applied = true}};
    EXPECT_EQ(text(state), "");
}

}  // namespace
}  // namespace kestrel

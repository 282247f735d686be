// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/analysis/form_rules.h"

#include <array>

#include "base/conversions.h"
#include "forms/analysis/form_texts.h"

namespace kestrel {

namespace {

template <typename State, typename Control>
struct Rule {
    bool (*broken)(const State&);
    Control control;
    const char* text;
};

using DensityRule = Rule<DensityState, DensityControl>;
using FormRule = Rule<FormState, FormControl>;

/// Rows are checked only when there is exactly one. Intended; do not "fix".
const ScenarioState* only_applied_row(const FormState& form) {
    return form.highest_row == 0 && form.scenarios[0].applied ? form.scenarios.data() : nullptr;
}

constexpr std::array<DensityRule, 5> kDensityRules{{
    {[](const DensityState& d) { return !d.layer_chosen; }, DensityControl::cboPDenTheme, form_texts::kNoDensityTheme},
    {[](const DensityState& d) { return !d.field_chosen; }, DensityControl::cboPDenFld, form_texts::kNoDensityField},
    {[](const DensityState& d) { return !base::numeric(d.high); }, DensityControl::txtHigh, form_texts::kNotNumeric},
    {[](const DensityState& d) { return !base::numeric(d.low); }, DensityControl::txtLow, form_texts::kNotNumeric},
    // Equal bounds pass, although the text speaks of "less than". Intended; do not "fix".
    {[](const DensityState& d) { return base::to_double(d.high) < base::to_double(d.low); }, DensityControl::txtLow,
     form_texts::kLowAboveHigh},
}};

constexpr std::array<FormRule, 6> kFirstFormRules{{
    {[](const FormState& f) { return !f.analysis_layer_chosen; }, FormControl::cboAnalysisTheme,
     form_texts::kNoAnalysisTheme},
    {[](const FormState& f) { return !f.land_cover_chosen; }, FormControl::cboLCTheme, form_texts::kNoLandCoverTheme},
    {[](const FormState& f) { return !f.units_chosen; }, FormControl::cboLCUnits, form_texts::kNoUnits},
    {[](const FormState& f) { return !f.set_chosen; }, FormControl::cboLCType, form_texts::kNoSet},
    {[](const FormState& f) { return !f.analysis_field_chosen; }, FormControl::cboAnalysisUnit,
     form_texts::kNoAnalysisUnit},
    {[](const FormState& f) { return !f.coefficient_option; }, FormControl::optPopDensity,
     form_texts::kNoDensityOption},
}};

constexpr std::array<FormRule, 3> kLastFormRules{{
    {[](const FormState& f) { return f.output.empty(); }, FormControl::txtOutputTheme, form_texts::kNoOutput},
    {[](const FormState& f) { return only_applied_row(f) != nullptr && !only_applied_row(f)->layer_chosen; },
     FormControl::cboDSTheme, form_texts::kNoScenarioTheme},
    {[](const FormState& f) { return only_applied_row(f) != nullptr && !only_applied_row(f)->class_chosen; },
     FormControl::cboDSToClass, form_texts::kNoScenarioClass},
}};

template <typename Refusal, typename Rules, typename State>
std::optional<Refusal> first_broken(const Rules& rules, const State& state) {
    for (const auto& rule : rules) {
        if (rule.broken(state)) {
            return Refusal{rule.control, form_texts::warning(rule.text)};
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<DensityRefusal> first_refusal(const DensityState& state) {
    return first_broken<DensityRefusal>(kDensityRules, state);
}

std::optional<FormRefusal> first_refusal(const FormState& state) {
    if (const auto refusal = first_broken<FormRefusal>(kFirstFormRules, state)) {
        return refusal;
    }
    if (state.coefficient_option == CoefficientOption::by_density) {
        if (const auto refusal = first_refusal(state.density)) {
            return FormRefusal{FormControl::density, refusal->box};
        }
    }
    return first_broken<FormRefusal>(kLastFormRules, state);
}

}  // namespace kestrel

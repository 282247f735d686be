// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "coefficients/coefficient_option.h"
#include "reporting/interaction.h"

/// \file
/// What the parameter form and the density dialog refuse: ordered rules over what their controls hold.
namespace kestrel {

/// What the density dialog holds.
struct DensityState {
    bool layer_chosen = false;
    bool field_chosen = false;
    // As typed.
    std::string high{};
    std::string low{};
};

enum class DensityControl { cboPDenTheme, cboPDenFld, txtHigh, txtLow };

struct DensityRefusal {
    DensityControl control;
    reporting::MessageBox box;
};

/// The first rule that the dialog breaks. \throws RuntimeError 6 when a bound is beyond a double.
std::optional<DensityRefusal> first_refusal(const DensityState& state);

struct ScenarioState {
    bool applied = false;
    bool layer_chosen = false;
    bool class_chosen = false;
};

/// What the parameter form holds.
struct FormState {
    bool analysis_layer_chosen = false;
    bool land_cover_chosen = false;
    bool units_chosen = false;
    bool set_chosen = false;
    bool analysis_field_chosen = false;
    /// Nothing when none is chosen.
    std::optional<CoefficientOption> coefficient_option{};
    /// Looked at with CoefficientOption::by_density only.
    DensityState density{};
    std::string output{};
    /// -1 when there is no scenario row.
    std::int16_t highest_row = -1;
    std::vector<ScenarioState> scenarios{};
};

enum class FormControl {
    cboAnalysisTheme,
    cboLCTheme,
    cboLCUnits,
    cboLCType,
    cboAnalysisUnit,
    optPopDensity,
    txtOutputTheme,
    cboDSTheme,
    cboDSToClass,
    /// The density dialog refused.
    density,
};

struct FormRefusal {
    FormControl control;
    reporting::MessageBox box;
};

/// The first rule that the form breaks. \throws RuntimeError as above.
std::optional<FormRefusal> first_refusal(const FormState& state);

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "reporting/interaction.h"

/// \file
/// What the parameter form and the population density dialog say to the user.
namespace kestrel::form_texts {

using reporting::Buttons;
using reporting::FileDialog;
using reporting::Icon;
using reporting::InputBox;
using reporting::MessageBox;

// Opening.

/// \param extension_folder stands before "\etc" as it is, whatever its separators.
inline MessageBox store_not_loaded(const std::string& extension_folder) {
    return {
        "Failed To Load XML - verify the file 'isprops.xml' is located in the " + extension_folder + "\\etc folder.",
        "", Icon::critical, Buttons::ok_cancel};
}

// Scenarios.

inline MessageBox no_set_for_scenarios() {
    return {"No Land Cover Type defined, please select from the dropdown list before adding Development Scenarios"};
}

inline InputBox scenario_to_delete() {
    return {"Enter number of scenario to delete:", "Delete Scenario"};
}

inline MessageBox no_such_scenario() {
    return {"Invalid scenario number", "", Icon::exclamation};
}

// The output's name.

/// \param folder that is used instead.
inline MessageBox other_output_folder(const std::string& folder) {
    return {"Either no path was specified or the path does not exist. \rThe output layer will be created in " + folder +
                ".",
            "Output Location", Icon::information};
}

inline FileDialog output_file() {
    return {FileDialog::Kind::save, "Select Output Shapefile", "Shapefile (*.shp)|*.shp", ".shp"};
}

inline MessageBox no_output_name() {
    return {"Please specify an output name.", "Shapefile Name", Icon::information};
}

inline MessageBox no_shapefile_name() {
    return {"Please enter a shapefile name.", "Shapefile Name?"};
}

// Validation, in the order of the checks.

inline MessageBox warning(const char* text) {
    return {text, "", Icon::exclamation};
}

inline constexpr const char* kNoAnalysisTheme = "No Analysis theme selected, please select from dropdown list.";
inline constexpr const char* kNoLandCoverTheme = "No Land Cover theme selected, please select from dropdown list.";
inline constexpr const char* kNoUnits = "Land Cover units not defined, please select from dropdown list.";
inline constexpr const char* kNoSet = "Land Cover Type not defined, please select from dropdown list.";
inline constexpr const char* kNoAnalysisUnit = "Analysis unit not defined, please select from dropdown list.";
inline constexpr const char* kNoDensityOption = "Population Density option not defined, please select option.";
inline constexpr const char* kNoOutput = "Output Theme not defined, please enter a name.";
inline constexpr const char* kNoScenarioTheme = "No theme selected, please select from dropdown list.";
inline constexpr const char* kNoScenarioClass = "No class selected, please select from dropdown list.";

inline constexpr const char* kNoDensityTheme =
    "No Population Density theme selected, please select from dropdown list.";
inline constexpr const char* kNoDensityField =
    "No Populaiton Density field selected, please select from dropdown list.";  // sic
inline constexpr const char* kNotNumeric = "Numeric value must be entered in field.";
inline constexpr const char* kLowAboveHigh = "Population density \"Low\" value must be less than the \"High\" value.";

// The run.

inline constexpr const char* kWaiting = "Performing Impervious Surface Analysis.  Please wait...";

/// \param reason why the output cannot go where it was to go, as a sentence.
inline MessageBox output_refused(const std::string& reason) {
    return warning((reason + " Give another output name.").c_str());
}

/// \param reason why the extension folder cannot be used, without a full stop.
inline MessageBox folder_refused(const std::string& reason) {
    return warning(("The run cannot be started. " + reason + ".").c_str());
}

}  // namespace kestrel::form_texts

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <fmt/format.h>

#include <string>
#include <vector>

#include "reporting/interaction.h"

/// \file
/// What the coefficient editor and the dialog for new sets say to the user.
namespace kestrel::editor_texts {

using reporting::Buttons;
using reporting::FileDialog;
using reporting::Icon;
using reporting::MessageBox;

// Changes that are not saved.

inline MessageBox save_before_quit() {
    return {
        "Changes to the coefficient set have not been saved. \r\n Click 'Yes' to save changes, 'No' to quit, or 'Cancel' to return.",
        "", Icon::none, Buttons::yes_no_cancel};
}

/// When the host ends or switches the extension off, from which there is no return.
inline MessageBox save_before_end() {
    return {
        "Changes to the coefficient set have not been saved. \r\n Click 'Yes' to save changes, or 'No' to give them up.",
        "", Icon::none, Buttons::yes_no};
}

inline MessageBox save_before_new() {
    return {
        "Changes to the current coefficient set must be saved before adding a new coefficient set. \r\n Click 'Yes' to save changes and proceed, or 'No' to return.",
        "", Icon::none, Buttons::yes_no};
}

inline MessageBox save_before_import() {
    return {
        "Changes to the current coefficient set must be saved before importng a new coefficient set. \r\n Click 'Yes' to save changes and proceed, or 'No' to return.",  // sic
        "", Icon::none, Buttons::yes_no};
}

inline MessageBox save_before_export() {
    return {
        "Changes to the current coefficient set must be saved before export a new coefficient set. \r\n Click 'Yes' to save changes and proceed, or 'No' to return.",  // sic
        "", Icon::none, Buttons::yes_no};
}

inline MessageBox save_before_merge() {
    return {
        "Changes to the current coefficient set must be saved before adding new coefficient sets. \r\n Click 'Yes' to save changes and proceed, or 'No' to return.",
        "", Icon::none, Buttons::yes_no};
}

/// \param name of the set that is being left.
inline MessageBox save_before_other_set(const std::string& name) {
    return {
        "Changes to the current coefficient set must be saved before displaying another coefficient set. \r\n Click 'Yes' to save changes to " +
            name + " and proceed, or 'No' to return.",
        "", Icon::none, Buttons::yes_no};
}

// Files.

inline constexpr const char* kTextFiles = "Coefficient Text File(*.txt;*.csv)|*.txt;*.csv";

inline FileDialog import_file() {
    return {FileDialog::Kind::open, "Impervious Surface Coefficient File to Import", kTextFiles};
}

inline FileDialog export_file() {
    return {FileDialog::Kind::save, "Export Impervious Surface Coefficients into Filename", kTextFiles, ".txt"};
}

inline FileDialog merge_file() {
    return {FileDialog::Kind::open, "Kestrel Coefficient File to Merge", "Kestrel Coefficient File (*.xml)|*.xml"};
}

// Cells.

inline MessageBox value_no_integer() {
    return {"Invalid value entered - Class Value must be an integer.", "", Icon::exclamation};
}

inline MessageBox coefficient_not_numeric() {
    return {"Invalid value entered - Coefficients must be numeric.", "", Icon::exclamation};
}

inline MessageBox coefficient_out_of_range() {
    return {"Invalid value entered - Coefficients must be between 0-100.", "", Icon::exclamation};
}

inline constexpr const char* kNoSuchColumn = "The grid has no more columns to the right.";

inline MessageBox pasted_cells_refused(int refused, int cells, const std::vector<std::string>& reasons) {
    return {fmt::format("{} of {} pasted cells could not be taken and keep their text:\r\n\r\n{}", refused, cells,
                        fmt::join(reasons, "\r\n")),
            "Paste", Icon::exclamation};
}

// Rows.

inline MessageBox row_has_data(int row) {
    return {fmt::format("There is data in Row {} ! Delete anyway?", row), "Delete Row!", Icon::none, Buttons::yes_no};
}

// New sets.

/// \param name as it was typed.
inline MessageBox set_not_unique(const std::string& name) {
    return {"Coefficient Set must be unique - '" + name + "' is already defined.", "", Icon::exclamation};
}

}  // namespace kestrel::editor_texts

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "coefficients/coefficient_text.h"
#include "reporting/interaction.h"

/// \file
/// What the import of a coefficient set asks and says.
namespace kestrel::import_texts {

inline constexpr const char* kUnsuccessful = "Coefficient Import Unsuccessful";

inline reporting::InputBox set_name() {
    return {"Enter new Coefficient Set name", "Import"};
}

inline reporting::MessageBox name_taken() {
    return {"Coefficient Set name must be unique. Please reenter.", "", reporting::Icon::exclamation,
            reporting::Buttons::ok};
}

inline std::string sentence(TextFault fault, const std::string& path) {
    switch (fault) {
        case TextFault::field_count:
            return "Incorrect number of fields detected in your import file " + path + ". ";
        case TextFault::format:
            return "Invalid or incorrectly formated data in import file " + path + ". ";  // sic
        case TextFault::class_id:
            return "Invalid class ID in the Value column within import file " + path +
                   ". Class ID must be a positive integer. ";
        case TextFault::coefficient:
            break;
    }
    return "Invalid coefficient in import file " + path + ". Coefficients must be between 0-100 (inclusive). ";
}

inline reporting::MessageBox refused(TextFault fault, const std::string& path) {
    return {
        sentence(fault, path) +
            "Expecting an ascii comma-separated file containing rows with the following columns 'Value,ClassName,High,Medium,Low'. All fields must be numeric except 'ClassName'.",
        kUnsuccessful, reporting::Icon::critical, reporting::Buttons::ok};
}

}  // namespace kestrel::import_texts

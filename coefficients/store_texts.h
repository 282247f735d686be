// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "coefficients/coefficient_store.h"
#include "reporting/interaction.h"

/// \file
/// What loading, saving and merging of coefficient stores say to the user. The answer to these boxes changes nothing.
namespace kestrel::store_texts {

inline reporting::MessageBox load_failed(const CoefficientStore& store) {
    return {"Failed To Load XML - verify the file 'isprops.xml' is located in the '" + store.shown_name + "'.", "",
            reporting::Icon::critical, reporting::Buttons::ok_cancel};
}

inline reporting::MessageBox merge_load_failed() {
    return {"Failed To Load XML - Invalid file format.", "", reporting::Icon::exclamation,
            reporting::Buttons::ok_cancel};
}

/// \param title empty for the application's own.
inline reporting::MessageBox save_failed(const CoefficientStore& store, const std::string& title = {}) {
    return {"Failed To Save XML - verify the permissions to write to file '" + store.shown_name + "'.", title,
            reporting::Icon::critical, reporting::Buttons::ok_cancel};
}

inline reporting::MessageBox duplicates_renamed() {
    return {"Coefficient sets were found with the duplicate names. A '2' was appended to the names of all duplicates.",
            "", reporting::Icon::information, reporting::Buttons::ok};
}

}  // namespace kestrel::store_texts

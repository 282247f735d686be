// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "coefficients/coefficient_store.h"
#include "platform/contracts/interaction.h"

/// \file
/// What loading, saving and merging of coefficient stores say to the user. The answer to these boxes changes nothing.
namespace kestrel::store_texts {

inline platform::MessageBox load_failed(const CoefficientStore& store) {
    return {"Failed To Load XML - verify the file 'isprops.xml' is located in the '" + store.shown_name + "'.", "",
            platform::Icon::critical, platform::Buttons::ok_cancel};
}

inline platform::MessageBox merge_load_failed() {
    return {"Failed To Load XML - Invalid file format.", "", platform::Icon::exclamation, platform::Buttons::ok_cancel};
}

/// \param title empty for the application's own.
inline platform::MessageBox save_failed(const CoefficientStore& store, const std::string& title = {}) {
    return {"Failed To Save XML - verify the permissions to write to file '" + store.shown_name + "'.", title,
            platform::Icon::critical, platform::Buttons::ok_cancel};
}

inline platform::MessageBox duplicates_renamed() {
    return {"Coefficient sets were found with the duplicate names. A '2' was appended to the names of all duplicates.",
            "", platform::Icon::information, platform::Buttons::ok};
}

}  // namespace kestrel::store_texts

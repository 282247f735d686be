// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// \file
/// Controls by their names, which is what tests find them by.
namespace kestrel {

template <typename Control>
Control* named(const QString& name, Control* control) {
    control->setObjectName(name);
    return control;
}

/// Name of an element of an array of controls: "chkDSApply(0)".
inline QString element_name(const char* array, std::size_t position) {
    return QString("%1(%2)").arg(array).arg(position);
}

}  // namespace kestrel

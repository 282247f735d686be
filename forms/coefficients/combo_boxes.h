// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>

#include "coefficients/clsISModelProperties.h"

/// \file
/// Lists of coefficient sets in combo boxes.

namespace kestrel::basUtil {

/// Lists the name of every set of `props`, in order, and selects none. Tells nobody that the selection changed.
void LoadLCTypeCombobox(QComboBox& combo, const clsISModelProperties& props);

}  // namespace kestrel::basUtil

namespace kestrel::basISModelPropsUtil {

/// Whether an entry of the list equals `text`, letter case aside.
bool inComboBox(const QComboBox& combo, const QString& text);

}  // namespace kestrel::basISModelPropsUtil

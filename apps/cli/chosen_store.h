// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "coefficients/clsISModelProperties.h"

namespace kestrel::cli {

/// Loads the store at `path` into `store`, or refuses.
void load_store(const std::string& path, clsISModelProperties& store);

/// The set called `name`; without a name, the store's only set. Refuses with a list of the sets that there are.
std::string chosen_set(const clsISModelProperties& store, const std::string& path, const std::string& name);

}  // namespace kestrel::cli

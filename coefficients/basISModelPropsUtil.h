// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "coefficients/clsISModelProperties.h"
#include "coefficients/coefficient_store.h"

/// \file
/// What can be done with whole coefficient sets.
namespace kestrel::basISModelPropsUtil {

/// Takes the name of a set that was added, for the list of sets that the user sees; may be empty.
using SetAdded = std::function<void(const std::string& name)>;

/// The first set of this very name, or nothing.
std::shared_ptr<clsISLCDef> find_set(const clsISModelProperties& props, std::string_view name);

/// Adds every set of the store file at `path` to `props` and saves `props` to `store`. A set whose name is taken gets
/// "2" appended, once only. Says itself what fails; sets stay in `props` also when they cannot be saved.
/// \return whether sets were merged and saved.
bool MergeCoeffsFromFile(clsISModelProperties& props, const std::string& path, const CoefficientStore& store,
                         const SetAdded& set_added);

}  // namespace kestrel::basISModelPropsUtil

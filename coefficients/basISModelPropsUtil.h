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

/// Writes the first set called `set_name` to the text file at `path`, replacing any file; the header line alone when
/// there is no such set. A failure is reported and leaves the file as it was.
/// \return whether the file was written.
bool ExportCoeffsToFile(const clsISModelProperties& props, std::string_view set_name, const std::string& path);

/// Asks for the name of a new set, again while the name is taken, fills it from the text file at `path`, appends it to
/// `props` and saves `props` to `store`. Nothing happens when no name is given. Says itself what fails; `props` is then
/// as it was, but a set that was read and cannot be saved stays in it.
/// \return whether a set was imported and saved.
bool ImportCoeffsFromFile(clsISModelProperties& props, const std::string& path, const CoefficientStore& store,
                          const SetAdded& set_added);

}  // namespace kestrel::basISModelPropsUtil

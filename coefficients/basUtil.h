// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "coefficients/clsISModelProperties.h"
#include "coefficients/coefficient_store.h"

/// \file
/// The coefficient store: loading and saving.
namespace kestrel::basUtil {

/// Loads the store file at `path` into `props`.
/// \return false, with `props` as it was, when there is no such file or it is no well-formed XML (a notice tells why),
///         or when it holds a value that is no number (reported).
bool GetISModelProperties(clsISModelProperties& props, const std::string& path);

/// Writes `props` to the store, under a lock of its folder. A store that is there and loads is copied to
/// CoefficientStore::copy_of() first.
/// \return false after a failure (reported). A tree whose flat text is longer than kMaxStoreCharacters is error 6; the
///         file is then left cut, and the report names the copy.
bool PutISModelProperties(const clsISModelProperties& props, const CoefficientStore& store);

/// The names of the sets, in order: what a list of coefficient sets shows.
std::vector<std::string> set_names(const clsISModelProperties& props);

}  // namespace kestrel::basUtil

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/errors.h"

/// \file
/// For this folder's own sources: how GDAL is started, and how its errors become ours.
namespace kestrel::platform {

/// Registers the drivers once for the process, and keeps GDAL from printing errors and from raising its own.
/// Every function that opens something through GDAL or OGR calls it first.
void start_gdal();

/// The error of the GDAL or OGR call that just failed on this thread: library failure, or the number that fits when the
/// operating system gave the reason, with `what` and GDAL's own message as description.
RuntimeError gdal_error(const std::string& what, int line = __builtin_LINE());

}  // namespace kestrel::platform

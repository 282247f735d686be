// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/errors.h"

/// \file
/// Private to this room: how GDAL is started, and how its errors become ours.
namespace kestrel::data {

/// Registers the drivers once for the process, and keeps GDAL from printing errors and from taking much memory for its
/// cache. A host that has started GDAL before keeps its own settings. Every function that opens something through GDAL
/// or OGR calls it first.
void start_gdal();

/// The error of the GDAL or OGR call that just failed on this thread: library failure, or the number that fits when
/// GDAL names the operating system's reason, with `what` and GDAL's own message as description.
base::RuntimeError gdal_error(const std::string& what, int line = __builtin_LINE());

/// The error of a GDALOpenEx() with GDAL_OF_VERBOSE_ERROR that just failed on `source`: as gdal_error(), but a file
/// that may not be read is told from one that is no data set (GDAL takes them for the same).
base::RuntimeError gdal_open_error(const std::string& what, const std::string& source, int line = __builtin_LINE());

/// Whether a call since the last CPLErrorReset() on this thread failed, though its own answer may not say so.
bool gdal_failed();

}  // namespace kestrel::data

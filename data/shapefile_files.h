// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

/// \file
/// Private to this room: the files of a shapefile as files.
namespace kestrel::data {

/// Whether the device that holds `folder` has no room left.
bool device_full(const std::string& folder);

/// Checks that a shapefile that was just closed is whole: its files have the size that their headers state and hold the
/// given number of features. The library does not say when the last of its buffers could not be written.
/// \param referenced whether there must be a .prj.
/// \throws RuntimeError 61 when the device is full, 57 otherwise.
void check_shapefile_files(const std::string& path, std::int64_t features, bool referenced);

}  // namespace kestrel::data

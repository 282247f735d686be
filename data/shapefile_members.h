// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace kestrel::data {

/// Files that make up the shapefile at `path`, those that exist, sorted: .shp, .shx, .dbf, .prj, .cpg, .qix, .sbn,
/// .sbx, .shp.xml and their like, in any letter case. A folder of such a name is none of them.
std::vector<std::string> shapefile_members(const std::string& path);

}  // namespace kestrel::data

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/shapefile_members.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "base/errors.h"
#include "base/files.h"
#include "base/text.h"

namespace kestrel::data {

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 18> kExtensions{".shp", ".shx", ".dbf", ".prj", ".cpg", ".qix",
                                                       ".sbn", ".sbx", ".idm", ".ind", ".fbn", ".fbx",
                                                       ".ain", ".aih", ".ixs", ".mxs", ".qpj", ".shp.xml"};

/// Whether `rest` is an extension of a shapefile's files, an attribute index (.FIELD.atx) included.
bool member_extension(std::string_view text) {
    const std::string rest = base::lower_case(text);
    return std::find(kExtensions.begin(), kExtensions.end(), rest) != kExtensions.end() ||
           (rest.starts_with('.') && rest.ends_with(".atx"));
}

}  // namespace

std::vector<std::string> shapefile_members(const std::string& path) {
    const std::string folder = base::folder_of(path);
    const std::string base = base::base_name_of(path);
    std::vector<std::string> members;
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? "." : folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        std::error_code ignored;
        if (name.starts_with(base) && member_extension(name.substr(base.size())) && !entry->is_directory(ignored)) {
            members.push_back(base::join_path(folder, name));
        }
    }
    if (error && error != std::errc::no_such_file_or_directory) {
        throw base::system_error(error.value(), folder);
    }
    std::sort(members.begin(), members.end());
    return members;
}

}  // namespace kestrel::data

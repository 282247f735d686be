// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "parameters/run_output.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "base/files.h"
#include "data/shapefile_members.h"

namespace kestrel {

namespace fs = std::filesystem;

namespace {

/// The file system's limit, with the ending of the longest file that bears the name.
bool too_long(const std::string& base_name) {
    constexpr std::size_t kLongestName = 255;
    return base_name.size() + std::string_view(".shp").size() > kLongestName;
}

bool same_place(const fs::path& output, const fs::path& input) {
    const auto matches = [&](const fs::path& one, const fs::path& other) {
        return one.parent_path() == other.parent_path() && one.stem() == other.stem();
    };
    const auto in_real_folder = [](const fs::path& path) {
        return fs::path(base::real_path(path.parent_path().string())) / path.filename();
    };
    return matches(base::real_path(output.string()), base::real_path(input.string())) ||
           matches(in_real_folder(output), in_real_folder(input));
}

}  // namespace

std::string RunOutput::path() const {
    return base::join_path(folder, file_name);
}

std::vector<std::string> RunOutput::records() const {
    return {base::join_path(folder, layer_name + ".prm"), base::join_path(folder, layer_name + ".met"),
            base::join_path(folder, layer_name + ".lyr"),
            base::join_path(folder, base::base_name_of(file_name) + ".qml")};
}

std::vector<std::string> existing_files(const RunOutput& output) {
    std::vector<std::string> files = data::shapefile_members(output.path());
    for (const std::string& record : output.records()) {
        if (base::file_exists(record)) {
            files.push_back(record);
        }
    }
    return files;
}

std::optional<std::string> wrong_name(const RunOutput& output) {
    if (output.layer_name.find_first_of("/\\\r\n") != std::string::npos) {
        return fmt::format(
            "'{}' cannot be a layer's name: the run report and the metadata are files of that name, so it may hold no "
            "slash",
            output.layer_name);
    }
    for (const std::string& base : {base::base_name_of(output.file_name), output.layer_name}) {
        if (too_long(base)) {
            return fmt::format("'{}' is too long for the name of a file", base);
        }
    }
    return std::nullopt;
}

std::optional<std::string> unusable_folder(const RunOutput& output) {
    if (!base::folder_exists(output.folder)) {
        return fmt::format("The folder of the output does not exist: '{}'.", output.folder);
    }
    if (!base::folder_writable(output.folder)) {
        return fmt::format("The folder of the output cannot be written to: '{}'.", output.folder);
    }
    std::vector<std::string> places = output.records();
    places.push_back(output.path());
    for (const char* extension : {".shx", ".dbf", ".prj", ".cpg"}) {
        places.push_back(base::join_path(output.folder, base::base_name_of(output.file_name) + extension));
    }
    for (const std::string& place : places) {
        if (base::folder_exists(place)) {
            return fmt::format("'{}' is a folder, where a file of the output would stand.", place);
        }
    }
    return std::nullopt;
}

std::optional<std::string> replaced_input(const RunOutput& output, const std::vector<std::string>& inputs) {
    const std::vector<std::string> outputs = existing_files(output);
    for (const std::string& input : inputs) {
        std::error_code ignored;  // names that are no paths are nobody's files
        if (!fs::exists(input, ignored)) {
            continue;
        }
        const bool replaced = std::any_of(outputs.begin(), outputs.end(),
                                          [&](const std::string& file) { return same_file(file, input); });
        if (replaced || same_place(output.path(), input)) {
            return fmt::format("The output '{}' would replace the input '{}', or files that belong to it.",
                               output.path(), input);
        }
    }
    return std::nullopt;
}

bool same_file(const std::string& one, const std::string& other) {
    std::error_code ignored;  // what does not exist is no file
    return fs::equivalent(one, other, ignored);
}

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "running/output_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "base/files.h"
#include "data/shapefile_members.h"

namespace kestrel::running {

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

using Cause = RunRefusal::Cause;

/// What is wrong with the folder of the output.
std::optional<RunRefusal> fault_of_folder(const RunOutput& output) {
    if (!base::folder_exists(output.folder)) {
        return RunRefusal{Cause::missing_folder,
                          fmt::format("The folder of the output does not exist: '{}'.", output.folder)};
    }
    if (!base::folder_writable(output.folder)) {
        return RunRefusal{Cause::unusable_folder,
                          fmt::format("The folder of the output cannot be written to: '{}'.", output.folder)};
    }
    std::vector<std::string> places = output.records();
    places.push_back(output.path());
    for (const char* extension : {".shx", ".dbf", ".prj", ".cpg"}) {
        places.push_back(base::join_path(output.folder, base::base_name_of(output.file_name) + extension));
    }
    for (const std::string& place : places) {
        if (base::folder_exists(place)) {
            return RunRefusal{Cause::unusable_folder,
                              fmt::format("'{}' is a folder, where a file of the output would stand.", place)};
        }
    }
    return std::nullopt;
}

/// The first input that the output would replace.
std::optional<RunRefusal> fault_of_inputs(const RunOutput& output, const std::vector<std::string>& inputs) {
    const std::vector<std::string> outputs = existing_files(output);
    for (const std::string& input : inputs) {
        std::error_code ignored;  // names that are no paths are nobody's files
        if (!fs::exists(input, ignored)) {
            continue;
        }
        const bool replaced = std::any_of(outputs.begin(), outputs.end(),
                                          [&](const std::string& file) { return base::same_file(file, input); });
        if (replaced || same_place(output.path(), input)) {
            return RunRefusal{Cause::replaced_input,
                              fmt::format("The output '{}' would replace the input '{}', or files that belong to it.",
                                          output.path(), input)};
        }
    }
    return std::nullopt;
}

/// Of a file that there is one of, or of many: the shapefile itself, and how many more.
std::string summary_of(std::vector<std::string> files, const std::string& shapefile) {
    std::stable_partition(files.begin(), files.end(), [&](const std::string& file) { return file == shapefile; });
    const std::size_t more = files.size() - 1;
    return "'" + files.front() + "'" +
           (more == 0 ? "" : fmt::format(" and {} more {} of that name", more, more == 1 ? "file" : "files"));
}

std::optional<RunRefusal> fault_of_replacing(const RunOutput& output, Replacing replacing) {
    const std::vector<std::string> files = existing_files(output);
    if (files.empty() || replacing == Replacing::allowed) {
        return std::nullopt;
    }
    return RunRefusal{Cause::existing_output,
                      fmt::format("The output exists already: {}.", summary_of(files, output.path()))};
}

}  // namespace

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

std::optional<RunRefusal> first_reason_against(const RunOutput& output, const std::vector<std::string>& inputs,
                                               Replacing replacing) {
    if (auto reason = wrong_name(output)) {
        return RunRefusal{Cause::output_name, std::move(*reason)};
    }
    if (auto fault = fault_of_folder(output)) {
        return fault;
    }
    if (auto fault = fault_of_inputs(output, inputs)) {
        return fault;
    }
    return fault_of_replacing(output, replacing);
}

}  // namespace kestrel::running

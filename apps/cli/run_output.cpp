// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run_output.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "apps/cli/refusal.h"
#include "platform/files.h"
#include "platform/shapefile_writer.h"

namespace kestrel::cli {

namespace fs = std::filesystem;

namespace {

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string lower_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return 'A' <= c && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

std::string with_extension(const std::string& name) {
    if (lower_case(name).ends_with(".shp")) {
        return name;
    }
    return name + (name.ends_with(".") ? "shp" : ".shp");
}

/// With links resolved as far as the path exists.
fs::path real_path(const fs::path& path) {
    std::error_code error;
    const fs::path result = fs::weakly_canonical(path, error);
    return error ? fs::absolute(path) : result;
}

/// The file system's limit, with the ending of the longest file that bears the name.
bool too_long(const std::string& base_name) {
    constexpr std::size_t kLongestName = 255;
    return base_name.size() + std::string_view(".shp").size() > kLongestName;
}

/// Of a file that there is one of, or of many: the shapefile itself, and how many more.
std::string summary_of(std::vector<std::string> files, const std::string& shapefile) {
    std::stable_partition(files.begin(), files.end(), [&](const std::string& file) { return file == shapefile; });
    const std::size_t more = files.size() - 1;
    return "'" + files.front() + "'" +
           (more == 0 ? "" : fmt::format(" and {} more {} of that name", more, more == 1 ? "file" : "files"));
}

std::vector<std::string> existing_files(const RunOutput& output) {
    std::vector<std::string> files = platform::shapefile_members(output.path());
    for (const std::string& record : output.records()) {
        if (platform::file_exists(record)) {
            files.push_back(record);
        }
    }
    return files;
}

bool same_place(const fs::path& output, const fs::path& input) {
    const auto matches = [&](const fs::path& one, const fs::path& other) {
        return one.parent_path() == other.parent_path() && one.stem() == other.stem();
    };
    return matches(real_path(output), real_path(input)) || matches(real_path(output.parent_path()) / output.filename(),
                                                                   real_path(input.parent_path()) / input.filename());
}

}  // namespace

std::string RunOutput::path() const {
    return platform::join_path(folder, file_name);
}

std::vector<std::string> RunOutput::records() const {
    return {platform::join_path(folder, layer_name + ".prm"), platform::join_path(folder, layer_name + ".met"),
            platform::join_path(folder, layer_name + ".lyr"),
            platform::join_path(folder, platform::base_name_of(file_name) + ".qml")};
}

RunOutput output_of(const std::string& text, const std::string& layer_name) {
    const std::string given = trimmed(text);
    const std::string name = platform::file_name_of(given);
    if (name.empty() || name == "." || name == ".." || lower_case(name) == ".shp") {
        throw std::invalid_argument("'" + text + "' has no file name: write DIR/NAME.shp");
    }
    if (platform::folder_exists(given) && !lower_case(name).ends_with(".shp")) {
        throw std::invalid_argument("'" + text + "' is a folder: write " + platform::join_path(given, "NAME.shp"));
    }
    if (layer_name.find_first_of("/\\\r\n") != std::string::npos) {
        throw std::invalid_argument("'" + layer_name + "' cannot be a layer's name: the run report and the metadata " +
                                    "are files of that name, so it may hold no slash");
    }
    RunOutput output;
    // An empty path has no absolute form of its own; "." is the present folder.
    const std::string folder = given.size() == name.size() ? "." : given.substr(0, given.size() - name.size());
    output.folder = fs::absolute(folder).lexically_normal().string();
    if (output.folder.size() > 1 && output.folder.ends_with('/')) {
        output.folder.pop_back();
    }
    output.file_name = with_extension(name);
    output.layer_name = layer_name.empty() ? platform::base_name_of(output.file_name) : layer_name;
    for (const std::string& base : {platform::base_name_of(output.file_name), output.layer_name}) {
        if (too_long(base)) {
            throw std::invalid_argument("'" + base + "' is too long for the name of a file");
        }
    }
    return output;
}

void check_folder(const RunOutput& output) {
    if (!platform::folder_exists(output.folder)) {
        refuse("The folder of the output does not exist: '{}'. Make it, or give another --output.", output.folder);
    }
    if (!platform::folder_writable(output.folder)) {
        refuse("The folder of the output cannot be written to: '{}'. Give another --output.", output.folder);
    }
    std::vector<std::string> places = output.records();
    places.push_back(output.path());
    for (const char* extension : {".shx", ".dbf", ".prj", ".cpg"}) {
        places.push_back(platform::join_path(output.folder, platform::base_name_of(output.file_name) + extension));
    }
    for (const std::string& place : places) {
        if (platform::folder_exists(place)) {
            refuse("'{}' is a folder, where a file of the output would stand. Give another --output.", place);
        }
    }
}

void check_not_an_input(const RunOutput& output, const std::vector<std::string>& inputs) {
    std::vector<std::string> outputs = existing_files(output);
    for (const std::string& input : inputs) {
        std::error_code ignored;  // names that are no paths are nobody's files
        if (!fs::exists(input, ignored)) {
            continue;
        }
        const bool replaced = std::any_of(outputs.begin(), outputs.end(), [&](const std::string& file) {
            return fs::equivalent(file, input, ignored);
        });
        if (replaced || same_place(output.path(), input)) {
            refuse("The output '{}' would replace the input '{}', or files that belong to it. Give another --output.",
                   output.path(), input);
        }
    }
}

void check_replacement(const RunOutput& output, bool overwrite) {
    const std::vector<std::string> files = existing_files(output);
    if (!files.empty() && !overwrite) {
        refuse("The output exists already: {}. Give --overwrite to replace it, or another --output.",
               summary_of(files, output.path()));
    }
}

}  // namespace kestrel::cli

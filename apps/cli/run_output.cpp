// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run_output.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "apps/cli/refusal.h"
#include "base/files.h"
#include "base/text.h"
#include "data/shapefile_writer.h"

namespace kestrel::cli {

namespace fs = std::filesystem;

namespace {

std::string with_extension(const std::string& name) {
    if (base::lower_case(name).ends_with(".shp")) {
        return name;
    }
    return name + (name.ends_with(".") ? "shp" : ".shp");
}

/// Of a file that there is one of, or of many: the shapefile itself, and how many more.
std::string summary_of(std::vector<std::string> files, const std::string& shapefile) {
    std::stable_partition(files.begin(), files.end(), [&](const std::string& file) { return file == shapefile; });
    const std::size_t more = files.size() - 1;
    return "'" + files.front() + "'" +
           (more == 0 ? "" : fmt::format(" and {} more {} of that name", more, more == 1 ? "file" : "files"));
}

}  // namespace

RunOutput output_of(const std::string& text, const std::string& layer_name) {
    const std::string given = std::string(base::trimmed(text));
    const std::string name = base::file_name_of(given);
    if (name.empty() || name == "." || name == ".." || base::lower_case(name) == ".shp") {
        throw std::invalid_argument("'" + text + "' has no file name: write DIR/NAME.shp");
    }
    if (base::folder_exists(given) && !base::lower_case(name).ends_with(".shp")) {
        throw std::invalid_argument("'" + text + "' is a folder: write " + base::join_path(given, "NAME.shp"));
    }
    RunOutput output;
    // An empty path has no absolute form of its own; "." is the present folder.
    const std::string folder = given.size() == name.size() ? "." : given.substr(0, given.size() - name.size());
    output.folder = fs::absolute(folder).lexically_normal().string();
    if (output.folder.size() > 1 && output.folder.ends_with('/')) {
        output.folder.pop_back();
    }
    output.file_name = with_extension(name);
    output.layer_name = layer_name.empty() ? base::base_name_of(output.file_name) : layer_name;
    if (const auto reason = wrong_name(output)) {
        throw std::invalid_argument(*reason);
    }
    return output;
}

void check_folder(const RunOutput& output) {
    if (const auto reason = unusable_folder(output)) {
        const bool missing = !base::folder_exists(output.folder);
        refuse("{} {} another --output.", *reason, missing ? "Make it, or give" : "Give");
    }
}

void check_not_an_input(const RunOutput& output, const std::vector<std::string>& inputs) {
    if (const auto reason = replaced_input(output, inputs)) {
        refuse("{} Give another --output.", *reason);
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

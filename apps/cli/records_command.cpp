// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/records_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <vector>

#include "apps/cli/refusal.h"
#include "base/files.h"

namespace kestrel::cli {

namespace fs = std::filesystem;

namespace {

/// Names of the files with this extension in `folder`, sorted.
std::vector<std::string> names_with(const std::string& folder, const std::string& extension) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (entry->path().extension() == extension) {
            names.push_back(entry->path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

[[noreturn]] void refuse_missing(const std::string& folder, const std::string& name, const std::string& extension) {
    const std::vector<std::string> others = names_with(folder, extension);
    const std::string kind = extension == ".met" ? "metadata file" : "run report";
    if (others.empty()) {
        refuse("There is no {} '{}' in the folder '{}', nor any other.", kind, name, folder);
    }
    refuse(
        "There is no {} '{}' in the folder '{}'. The folder has: '{}'. If one of them belongs to the layer, give its "
        "name without the ending as --layer-name.",
        kind, name, folder, fmt::join(others, "', '"));
}

}  // namespace

int print_record(const RecordsRequest& request, std::ostream& out) {
    const std::string extension = request.metadata ? ".met" : ".prm";
    const std::string given = base::folder_of(request.shapefile);
    const std::string folder = given.empty() ? "." : given;
    const std::string base = base::base_name_of(base::file_name_of(request.shapefile));
    if (base.empty()) {
        refuse("'{}' names no shapefile. Give the output of a run, such as results/sheds_is.shp.", request.shapefile);
    }
    if (!base::folder_exists(folder)) {
        refuse("There is no folder '{}'.", folder);
    }
    const std::string name = base + extension;
    std::string path = base::join_path(folder, name);
    if (!base::file_exists(path) && !request.layer_name.empty()) {
        path = base::join_path(folder, request.layer_name + extension);
    }
    if (!base::file_exists(path)) {
        refuse_missing(folder, name, extension);
    }
    base::TextReader reader(path);
    while (const auto line = reader.read_line()) {
        out << *line << "\n";
    }
    return kDone;
}

void add_records_command(CLI::App& app, Action& action) {
    CLI::App* command = app.add_subcommand("records", "Prints the run report or the metadata of an output");
    const auto request = std::make_shared<RecordsRequest>();
    command->add_option("FILE", request->shapefile, "Output shapefile of a run")->required()->type_name("");
    command->add_flag("--metadata", request->metadata, "Prints the metadata instead of the run report");
    command->add_option("--layer-name", request->layer_name, "Name of the output layer, when it is not the file's")
        ->type_name("NAME");
    command->footer("Example:\n  kestrel records results/sheds_is.shp --metadata");
    command->callback([request, &action] { action = [request] { return print_record(*request, std::cout); }; });
}

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/coefficients_exchange.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "apps/cli/chosen_store.h"
#include "apps/cli/coefficients_subcommand.h"
#include "apps/cli/refusal.h"
#include "base/files.h"
#include "coefficients/basISModelPropsUtil.h"
#include "coefficients/clsLCClass.h"
#include "reporting/interaction.h"

namespace kestrel::cli {

namespace {

/// The store at `path` for one who writes it. The store of an extension folder shares that folder's lock.
CoefficientStore store_at(const std::string& path) {
    CoefficientStore store = CoefficientStore::at(path);
    if (base::file_name_of(path) == "isprops.xml" && base::file_name_of(store.lock_folder) == "etc") {
        const std::string extension_folder = base::folder_of(store.lock_folder);
        store.lock_folder = extension_folder.empty() ? "." : extension_folder;
    }
    return store;
}

int import_set(const CoefficientsOptions& options) {
    if (!base::file_exists(options.file)) {
        refuse("There is no file '{}' to import.", options.file);
    }
    clsISModelProperties store;
    const std::string path = load_chosen_store(options, store);
    if (!basISModelPropsUtil::ImportCoeffsFromFile(store, options.file, store_at(path), {})) {
        return kRefused;
    }
    std::cout << fmt::format("Imported the set '{}' with {} classes into the coefficient store {}\n", options.name,
                             basISModelPropsUtil::find_set(store, options.name)->LCClasses.Count(), path);
    return kDone;
}

void check_export_file(const CoefficientsOptions& options, const std::string& store) {
    std::error_code ignored;  // a file that is not there is no other one
    if (std::filesystem::equivalent(options.file, store, ignored)) {
        refuse("'{}' is the coefficient store itself. Give another file to export to.", options.file);
    }
    const std::string folder = base::folder_of(options.file);
    if (!folder.empty() && !base::folder_exists(folder)) {
        refuse("The folder of the file does not exist: '{}'. Make it, or give another file.", folder);
    }
    if (base::folder_exists(options.file)) {
        refuse("'{}' is a folder. Give a file to export to.", options.file);
    }
    if (base::file_exists(options.file) && !options.overwrite) {
        refuse("The file exists already: '{}'. Give --overwrite to replace it, or another file.", options.file);
    }
}

void note_names_that_do_not_return(const clsISLCDef& set) {
    for (const auto& land_class : set.LCClasses) {
        if (land_class->LCName.find_first_of(",\r\n") != std::string::npos) {
            reporting::current_interaction().notice(
                fmt::format("The name of class {} holds a comma or a line end, so the file cannot be imported: '{}'",
                            land_class->ID, land_class->LCName));
        }
    }
}

int export_set(const CoefficientsOptions& options) {
    clsISModelProperties store;
    const std::string path = load_chosen_store(options, store);
    const std::string name = chosen_set(store, path, options.set);
    check_export_file(options, path);
    if (!basISModelPropsUtil::ExportCoeffsToFile(store, name, options.file)) {
        return kRefused;
    }
    const auto set = basISModelPropsUtil::find_set(store, name);
    note_names_that_do_not_return(*set);
    std::cout << fmt::format("Exported the set '{}' with {} classes to {}\n", name, set->LCClasses.Count(),
                             options.file);
    return kDone;
}

int merge(const CoefficientsOptions& options) {
    if (!base::file_exists(options.file)) {
        refuse("There is no file '{}' to merge.", options.file);
    }
    clsISModelProperties store;
    const std::string path = load_chosen_store(options, store);
    std::vector<std::string> added;
    if (!basISModelPropsUtil::MergeCoeffsFromFile(store, options.file, store_at(path),
                                                  [&added](const std::string& name) { added.push_back(name); })) {
        return kRefused;
    }
    std::cout << fmt::format("Merged {} sets into the coefficient store {}\n", added.size(), path);
    for (const std::string& name : added) {
        std::cout << "  " << name << "\n";
    }
    return kDone;
}

/// What is wrong with a name on the command line; empty when nothing is.
std::string fault_of_name(const std::string& name) {
    constexpr const char* kBlanks = " \t\r\n";
    if (name.empty()) {
        return "is empty";
    }
    const bool blank_end = name.find_first_not_of(kBlanks) != 0 || name.find_last_not_of(kBlanks) != name.size() - 1;
    return blank_end ? "begins or ends with a blank, which a store does not keep" : "";
}

void add_import(CLI::App& parent, Action& action) {
    const auto options = std::make_shared<CoefficientsOptions>();
    CLI::App* command = add_coefficients_subcommand(
        parent,
        {"import", "Makes a new set from a text file and saves the store",
         "Example:\n  kestrel coefficients import county.csv --name County\n\n"
         "FILE is comma-separated text: a line per class with its value, its name and the coefficients High, Medium\n"
         "and Low in percent. A line that begins with Value is a header.",
         import_set},
        options, action);
    command->add_option("FILE", options->file, "Coefficient text file")->required();
    command->add_option("--name", options->name, "Name of the new set")
        ->required()
        ->check(CLI::Validator(fault_of_name, ""))
        ->type_name("NAME");
}

void add_export(CLI::App& parent, Action& action) {
    const auto options = std::make_shared<CoefficientsOptions>();
    CLI::App* command = add_coefficients_subcommand(
        parent,
        {"export", "Writes a set to a text file",
         "Example:\n  kestrel coefficients export --set 'NLCD legend' legend.csv", export_set},
        options, action);
    add_set_option(*command, *options);
    command->add_option("FILE", options->file, "Text file to write")->required();
    command->add_flag("--overwrite", options->overwrite, "Replaces a file that exists");
}

void add_merge(CLI::App& parent, Action& action) {
    const auto options = std::make_shared<CoefficientsOptions>();
    CLI::App* command = add_coefficients_subcommand(parent,
                                                    {"merge", "Adds every set of another store and saves the store",
                                                     "Example:\n  kestrel coefficients merge neighbours.xml\n\n"
                                                     "A set whose name is taken gets a 2 appended to its name.",
                                                     merge},
                                                    options, action);
    command->add_option("FILE", options->file, "Coefficient store to take the sets from")->required();
}

}  // namespace

void add_exchange_commands(CLI::App& parent, Action& action) {
    add_import(parent, action);
    add_export(parent, action);
    add_merge(parent, action);
}

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/coefficients_command.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <utility>

#include "apps/cli/chosen_store.h"
#include "apps/cli/console_interaction.h"
#include "apps/cli/refusal.h"
#include "apps/cli/text_width.h"
#include "apps/cli/user_files.h"
#include "coefficients/basISModelPropsUtil.h"
#include "coefficients/clsLCClass.h"
#include "coefficients/indented_text.h"
#include "platform/conversions.h"
#include "platform/files.h"

namespace kestrel::cli {

using platform::text_of;

namespace {

struct Options {
    std::string store{};
    std::string set{};
    std::string file{};
    std::string name{};
    bool overwrite = false;
};

/// Tells what the routines say on standard error. Their input box, which asks for a name until it is a new one, gets
/// the name of the command line once and is then cancelled.
class CommandInteraction final : public platform::Interaction {
  public:
    explicit CommandInteraction(std::string name) : m_name(std::move(name)) {}

    /// Boxes about coefficients ask nothing, whatever their buttons: they are only closed.
    platform::Answer message_box(const platform::MessageBox& box) override {
        return m_console.message_box({box.text, box.title, box.icon, platform::Buttons::ok});
    }
    std::string input_box(const platform::InputBox&) override { return std::exchange(m_name, {}); }
    std::optional<std::string> file_dialog(const platform::FileDialog& dialog) override {
        return m_console.file_dialog(dialog);
    }
    void show_call_stack(std::string_view text) override { m_console.show_call_stack(text); }
    std::unique_ptr<platform::WaitingWindow> waiting_window(std::string_view text) override {
        return m_console.waiting_window(text);
    }
    void show_help() override { m_console.show_help(); }
    void notice(std::string_view text) override { m_console.notice(text); }
    void beep() override {}

  private:
    std::string m_name;
    ConsoleProgress m_progress{std::cerr, false};
    ConsoleInteraction m_console{std::cerr, m_progress, {}};
};

void check_coefficients(const clsISLCDef& set, const clsLCClass& land_class, StoreFindings& findings) {
    const std::string where = fmt::format("Set '{}', class {} ({})", set.LCType, land_class.ID, land_class.LCName);
    for (const auto& [name, value] : {std::pair{"High", land_class.LCHigh}, std::pair{"Medium", land_class.LCMed},
                                      std::pair{"Low", land_class.LCLow}}) {
        if (!(value >= 0 && value <= 100)) {
            findings.errors.push_back(
                fmt::format("{}: the {} coefficient is {}, not between 0 and 100.", where, name, text_of(value)));
        }
    }
    if (land_class.LCHigh < land_class.LCMed || land_class.LCMed < land_class.LCLow) {
        findings.notes.push_back(fmt::format("{}: the coefficients do not fall from High to Low: {}, {}, {}.", where,
                                             text_of(land_class.LCHigh), text_of(land_class.LCMed),
                                             text_of(land_class.LCLow)));
    }
    if (land_class.LCName.find('#') != std::string::npos) {
        findings.errors.push_back(
            fmt::format("{}: the name holds '#', which would cut the parameters of a run.", where));
    }
}

void check_set(const clsISLCDef& set, StoreFindings& findings) {
    if (set.LCClasses.Count() == 0) {
        findings.errors.push_back(fmt::format("Set '{}': it has no classes.", set.LCType));
    }
    std::map<std::int32_t, int> counts;
    for (const auto& land_class : set.LCClasses) {
        ++counts[land_class->ID];
        check_coefficients(set, *land_class, findings);
    }
    for (const auto& [code, count] : counts) {
        if (count > 1) {
            findings.errors.push_back(
                fmt::format("Set '{}': class {} stands in it {} times.", set.LCType, code, count));
        }
    }
}

std::size_t characters_of(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string with_store(const Options& options, clsISModelProperties& store) {
    const std::string path = options.store.empty() ? user_store() : options.store;
    load_store(path, store);
    return path;
}

int list(const Options& options) {
    clsISModelProperties store;
    const std::string path = with_store(options, store);
    std::cout << "Coefficient sets of " << path << "\n\n" << sets_table(store);
    return kDone;
}

int show(const Options& options) {
    clsISModelProperties store;
    const std::string path = with_store(options, store);
    const std::string name = chosen_set(store, path, options.set);
    std::cout << "Coefficients of the set '" << name << "', in percent\n\n"
              << classes_table(*basISModelPropsUtil::find_set(store, name));
    return kDone;
}

int check(const Options& options) {
    clsISModelProperties store;
    const std::string path = with_store(options, store);
    if (!options.set.empty()) {
        chosen_set(store, path, options.set);
    }
    const StoreFindings findings = check_store(store, options.set);
    for (const std::string& error : findings.errors) {
        std::cout << "error: " << error << "\n";
    }
    for (const std::string& note : findings.notes) {
        std::cout << "note: " << note << "\n";
    }
    std::cout << fmt::format("{}: {} errors, {} notes.\n", path, findings.errors.size(), findings.notes.size());
    return findings.errors.empty() ? kDone : kRefused;
}

/// The store at `path` for one who writes it. The store of an extension folder shares that folder's lock.
CoefficientStore store_at(const std::string& path) {
    CoefficientStore store = CoefficientStore::at(path);
    if (platform::file_name_of(path) == "isprops.xml" && platform::file_name_of(store.lock_folder) == "etc") {
        const std::string extension_folder = platform::folder_of(store.lock_folder);
        store.lock_folder = extension_folder.empty() ? "." : extension_folder;
    }
    return store;
}

int import_set(const Options& options) {
    if (!platform::file_exists(options.file)) {
        refuse("There is no file '{}' to import.", options.file);
    }
    clsISModelProperties store;
    const std::string path = with_store(options, store);
    if (!basISModelPropsUtil::ImportCoeffsFromFile(store, options.file, store_at(path), {})) {
        return kRefused;
    }
    std::cout << fmt::format("Imported the set '{}' with {} classes into the coefficient store {}\n", options.name,
                             basISModelPropsUtil::find_set(store, options.name)->LCClasses.Count(), path);
    return kDone;
}

void check_export_file(const Options& options, const std::string& store) {
    std::error_code ignored;  // a file that is not there is no other one
    if (std::filesystem::equivalent(options.file, store, ignored)) {
        refuse("'{}' is the coefficient store itself. Give another file to export to.", options.file);
    }
    if (platform::file_exists(options.file) && !options.overwrite) {
        refuse("The file exists already: '{}'. Give --overwrite to replace it, or another file.", options.file);
    }
}

void note_names_that_do_not_return(const clsISLCDef& set) {
    for (const auto& land_class : set.LCClasses) {
        if (land_class->LCName.find_first_of(",\r\n") != std::string::npos) {
            platform::interaction().notice(
                fmt::format("The name of class {} holds a comma or a line end, so the file cannot be imported: '{}'",
                            land_class->ID, land_class->LCName));
        }
    }
}

int export_set(const Options& options) {
    clsISModelProperties store;
    const std::string path = with_store(options, store);
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

int merge(const Options& options) {
    clsISModelProperties store;
    const std::string path = with_store(options, store);
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

struct Command {
    const char* name;
    const char* description;
    const char* example;
    int (*act)(const Options&);
};

/// Adds the command with what all of them have; the caller adds options of its own.
CLI::App* add_command(CLI::App& parent, const Command& command, const std::shared_ptr<Options>& options,
                      Action& action) {
    CLI::App* added = parent.add_subcommand(command.name, command.description);
    added->add_option("--store", options->store, "Coefficient store; by default your own")->type_name("FILE");
    added->footer(command.example);
    added->callback([options, act = command.act, &action] {
        action = [options, act] {
            CommandInteraction interaction(options->name);
            const platform::ScopedInteraction scope(interaction);
            return act(*options);
        };
    });
    return added;
}

void add_set_option(CLI::App& command, Options& options) {
    command.add_option("--set", options.set, "Coefficient set")->type_name("NAME");
}

void add_reading_commands(CLI::App& parent, Action& action) {
    const auto options = std::make_shared<Options>();
    add_command(
        parent,
        {"list", "Lists the sets of a store", "Example:\n  kestrel coefficients list --store isprops.xml", list},
        options, action);
    add_set_option(*add_command(parent,
                                {"show", "Prints the coefficients of a set",
                                 "Example:\n  kestrel coefficients show --set 'NLCD legend'", show},
                                options, action),
                   *options);
    add_set_option(*add_command(parent,
                                {"check", "Looks for what would break a run; exit status 1 when something would",
                                 "Example:\n  kestrel coefficients check --store isprops.xml", check},
                                options, action),
                   *options);
}

void add_import(CLI::App& parent, Action& action) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = add_command(
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
    const auto options = std::make_shared<Options>();
    CLI::App* command =
        add_command(parent,
                    {"export", "Writes a set to a text file",
                     "Example:\n  kestrel coefficients export --set 'NLCD legend' legend.csv", export_set},
                    options, action);
    add_set_option(*command, *options);
    command->add_option("FILE", options->file, "Text file to write")->required();
    command->add_flag("--overwrite", options->overwrite, "Replaces a file that exists");
}

void add_merge(CLI::App& parent, Action& action) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = add_command(parent,
                                    {"merge", "Adds every set of another store and saves the store",
                                     "Example:\n  kestrel coefficients merge neighbours.xml\n\n"
                                     "A set whose name is taken gets a 2 appended to its name.",
                                     merge},
                                    options, action);
    command->add_option("FILE", options->file, "Coefficient store to take the sets from")->required();
}

}  // namespace

std::string sets_table(const clsISModelProperties& store) {
    int width = display_width("Set");
    for (const auto& set : store.ISLCDefs) {
        width = std::max(width, display_width(set->LCType));
    }
    std::string text = padded_right("Set", width) + "  Classes\n";
    for (const auto& set : store.ISLCDefs) {
        text += padded_right(set->LCType, width) + "  " + padded_left(text_of(set->LCClasses.Count()), 7) + "\n";
    }
    return text;
}

std::string classes_table(const clsISLCDef& set) {
    int width = display_width("ClassName");
    for (const auto& land_class : set.LCClasses) {
        width = std::max(width, display_width(land_class->LCName));
    }
    const auto line = [width](const std::string& code, const std::string& name, const std::string& high,
                              const std::string& medium, const std::string& low) {
        return padded_left(code, 6) + "  " + padded_right(name, width) + "  " + padded_left(high, 6) + "  " +
               padded_left(medium, 6) + "  " + padded_left(low, 6) + "\n";
    };
    std::string text = line("Value", "ClassName", "High", "Medium", "Low");
    for (const auto& land_class : set.LCClasses) {
        text += line(text_of(land_class->ID), land_class->LCName, text_of(land_class->LCHigh),
                     text_of(land_class->LCMed), text_of(land_class->LCLow));
    }
    return text;
}

StoreFindings check_store(const clsISModelProperties& store, const std::string& set_name) {
    StoreFindings findings;
    std::map<std::string, int> names;
    for (const auto& set : store.ISLCDefs) {
        if (set_name.empty() || set->LCType == set_name) {
            ++names[set->LCType];
            check_set(*set, findings);
        }
    }
    if (store.ISLCDefs.Count() == 0) {
        findings.errors.emplace_back("There are no coefficient sets.");
    }
    for (const auto& [name, count] : names) {
        if (count > 1) {
            findings.errors.push_back(
                fmt::format("{} sets are called '{}'; a run takes the classes of all of them.", count, name));
        }
    }
    if (const std::size_t size = characters_of(store.XML()); size > kMaxStoreCharacters) {
        findings.notes.push_back(fmt::format(
            "The store has {} characters. It can be used, but not saved: the limit is {}.", size, kMaxStoreCharacters));
    }
    return findings;
}

void add_coefficients_command(CLI::App& app, Action& action) {
    CLI::App* command = app.add_subcommand("coefficients", "Looks at coefficient sets, and changes them");
    command->require_subcommand(1);
    command->footer("Example:\n  kestrel coefficients list");
    add_reading_commands(*command, action);
    add_import(*command, action);
    add_export(*command, action);
    add_merge(*command, action);
}

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/coefficients_command.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <utility>

#include "apps/cli/chosen_store.h"
#include "apps/cli/coefficients_exchange.h"
#include "apps/cli/coefficients_subcommand.h"
#include "apps/cli/refusal.h"
#include "apps/cli/text_width.h"
#include "base/conversions.h"
#include "base/text.h"
#include "coefficients/basISModelPropsUtil.h"
#include "coefficients/clsLCClass.h"
#include "coefficients/indented_text.h"

namespace kestrel::cli {

using base::text_of;

namespace {

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

int list(const CoefficientsOptions& options) {
    clsISModelProperties store;
    const std::string path = load_chosen_store(options, store);
    std::cout << "Coefficient sets of " << path << "\n\n" << sets_table(store);
    return kDone;
}

int show(const CoefficientsOptions& options) {
    clsISModelProperties store;
    const std::string path = load_chosen_store(options, store);
    const std::string name = chosen_set(store, path, options.set);
    std::cout << "Coefficients of the set '" << name << "', in percent\n\n"
              << classes_table(*basISModelPropsUtil::find_set(store, name));
    return kDone;
}

int check(const CoefficientsOptions& options) {
    clsISModelProperties store;
    const std::string path = load_chosen_store(options, store);
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

void add_reading_commands(CLI::App& parent, Action& action) {
    const auto options = std::make_shared<CoefficientsOptions>();
    add_coefficients_subcommand(
        parent,
        {"list", "Lists the sets of a store", "Example:\n  kestrel coefficients list --store isprops.xml", list},
        options, action);
    add_set_option(*add_coefficients_subcommand(parent,
                                                {"show", "Prints the coefficients of a set",
                                                 "Example:\n  kestrel coefficients show --set 'NLCD legend'", show},
                                                options, action),
                   *options);
    add_set_option(
        *add_coefficients_subcommand(parent,
                                     {"check", "Looks for what would break a run; exit status 1 when something would",
                                      "Example:\n  kestrel coefficients check --store isprops.xml", check},
                                     options, action),
        *options);
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
    if (const std::size_t size = base::character_count(store.XML()); size > kMaxStoreCharacters) {
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
    add_exchange_commands(*command, action);
}

}  // namespace kestrel::cli

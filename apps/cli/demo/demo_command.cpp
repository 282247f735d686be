// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/demo/demo_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iostream>
#include <memory>

#include "apps/cli/chosen_store.h"
#include "apps/cli/console_interaction.h"
#include "apps/cli/demo/demo_land.h"
#include "apps/cli/refusal.h"
#include "apps/cli/user_files.h"
#include "base/files.h"
#include "coefficients/clsISLCDef.h"
#include "coefficients/clsLCClass.h"

namespace kestrel::cli {

namespace fs = std::filesystem;

namespace {

constexpr const char* kStoreName = "isprops.xml";
constexpr const char* kCommandName = "run_demo.sh";
constexpr int kSmallestSide = 40;
constexpr int kLargestSide = 100000;

std::optional<int> side_from(std::string_view text) {
    int side = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), side);
    const bool good = error == std::errc() && end == text.data() + text.size();
    return good && side >= kSmallestSide && side <= kLargestSide ? std::optional<int>(side) : std::nullopt;
}

/// `text` as one word of a shell's command line.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return result + "'";
}

bool knows_all_classes(const clsISLCDef& set) {
    const auto classes = demo_classes();
    return std::all_of(classes.begin(), classes.end(), [&](const data::RasterClass& one) {
        return std::any_of(set.LCClasses.begin(), set.LCClasses.end(),
                           [&](const auto& known) { return known->ID == one.value; });
    });
}

/// The first set of the store with coefficients for the whole legend.
std::string fitting_set(const std::string& store_path) {
    clsISModelProperties store;
    load_store(store_path, store);
    for (const auto& set : store.ISLCDefs) {
        if (knows_all_classes(*set)) {
            return set->LCType;
        }
    }
    refuse(
        "The coefficient store '{}' has no set for the classes of the demonstration: 11, 21 to 24, 31, 41 to 43, "
        "52, 71, 81, 82, 90 and 95.",
        store_path);
}

std::string command_text(const std::string& folder, const std::string& set) {
    const auto path = [&](const std::string& name) { return quoted(base::join_path(folder, name)); };
    const auto scenario = [&](const std::string& name, const std::string& code) {
        return quoted(base::join_path(folder, name) + ":" + code);
    };
    return "kestrel run --land-cover " + path(kDemoLandCover) + " \\\n    --zones " + path(kDemoWatersheds) +
           " --field NAME \\\n    --store " + path(kStoreName) + " --set " + quoted(set) +
           " \\\n    --option density --density-layer " + path(kDemoBlocks) +
           " --density-field POP_DEN \\\n    --density-high 1500 --density-low 250 \\\n    --scenario " +
           scenario(kDemoMall, "24") + " --scenario " + scenario(kDemoSubdivision, "22") + " \\\n    --output " +
           path("watersheds_is.shp");
}

void make_empty_folder(const std::string& folder) {
    std::error_code error;
    if (fs::exists(folder, error) && (!fs::is_directory(folder, error) || !fs::is_empty(folder, error))) {
        refuse("'{}' exists and is no empty folder. Give a new folder for the demonstration.", folder);
    }
    base::create_folders(folder);
}

}  // namespace

std::optional<DemoSize> demo_size_from(const std::string& text) {
    if (text == "small") {
        return DemoSize{};
    }
    if (text == "medium") {
        return DemoSize{.columns = 6000, .rows = 4800};
    }
    const std::size_t cross = text.find('x');
    if (cross == std::string::npos) {
        return std::nullopt;
    }
    const std::optional<int> columns = side_from(std::string_view(text).substr(0, cross));
    const std::optional<int> rows = side_from(std::string_view(text).substr(cross + 1));
    return columns && rows ? std::optional<DemoSize>({.columns = *columns, .rows = *rows}) : std::nullopt;
}

int make_demo(const std::string& given_folder, const DemoSize& size, std::ostream& out) {
    const std::string folder = fs::absolute(given_folder).lexically_normal().string();
    const std::string store = user_store();
    const std::string set = fitting_set(store);
    make_empty_folder(folder);
    write_demo_land_cover(folder, size);
    write_demo_watersheds(folder, size);
    write_demo_blocks(folder, size);
    write_demo_scenarios(folder, size);
    base::copy_file(store, base::join_path(folder, kStoreName));
    const std::string command = command_text(folder, set);
    base::write_file(base::join_path(folder, kCommandName), "#!/bin/sh\n" + command + " \"$@\"\n");
    out << "The demonstration lies in " << folder << ": land cover of " << size.columns << " x " << size.rows
        << " cells, watersheds,\ncensus blocks with population density, and two development scenarios. Run it with\n\n"
        << command << "\n\nThe same command stands in " << kCommandName << ", which takes further options.\n";
    return kDone;
}

void add_demo_command(CLI::App& app, Action& action) {
    struct Options {
        std::string folder;
        std::string size = "small";
        std::uint64_t seed = 1;
    };
    CLI::App* command = app.add_subcommand("demo", "Makes data to try Kestrel with");
    const auto options = std::make_shared<Options>();
    command->add_option("DIR", options->folder, "New or empty folder for the data")->required()->type_name("");
    command->add_option("--size", options->size, "small (1500x1200 cells), medium (6000x4800), or COLSxROWS")
        ->check([](const std::string& text) {
            return demo_size_from(text) ? std::string()
                                        : "'" + text + "' is neither small nor medium nor COLSxROWS of 40 to 100000";
        })
        ->type_name("SIZE");
    command->add_option("--seed", options->seed, "Another number makes another country")->type_name("N");
    command->footer(
        "Example:\n  kestrel demo try_kestrel\n  sh try_kestrel/run_demo.sh\n  sh try_kestrel/run_demo.sh --overwrite");
    command->callback([options, &action] {
        action = [options] {
            ConsoleProgress progress(std::cerr, false);
            ConsoleInteraction console(std::cerr, progress, {});
            const reporting::ScopedInteraction scope(console);
            DemoSize size = demo_size_from(options->size).value_or(DemoSize{});
            size.seed = options->seed;
            return make_demo(options->folder, size, std::cout);
        };
    });
}

}  // namespace kestrel::cli

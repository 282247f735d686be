// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run_command.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "apps/cli/run.h"
#include "apps/cli/run_output.h"
#include "apps/cli/run_request.h"
#include "base/conversions.h"

namespace kestrel::cli {

namespace {

constexpr const char* kExample =
    "Example:\n"
    "  kestrel run --land-cover nlcd.tif --zones watersheds.gpkg --field SHED_ID --option medium \\\n"
    "      --set 'NLCD legend' --scenario new_mall.shp:24 --output results/sheds_is.shp\n\n"
    "SRC is a path, or path|layername=NAME for one layer of several.\n"
    "Exit status: 0 the output is finished, 1 there is none (the messages say why), 2 the command line is wrong,\n"
    "130 the run was cancelled.";

/// What is wrong with a selection; empty when nothing is. A run without one takes all zones, which nobody wants who
/// meant to give one.
std::string fault_of_selection(const std::string& text) {
    const bool empty = text.find_first_not_of(" \t\r\n") == std::string::npos;
    return empty ? "is empty; leave it out to take all zones" : "";
}

/// \param name one of those that the command line admits.
CoefficientOption option_named(const std::string& name) {
    if (name == "high") {
        return CoefficientOption::high;
    }
    if (name == "medium") {
        return CoefficientOption::medium;
    }
    return name == "low" ? CoefficientOption::low : CoefficientOption::by_density;
}

void add_input_options(CLI::App& command, RunRequest& request) {
    command.add_option("--land-cover", request.land_cover, "Land-cover raster, of class codes")
        ->required()
        ->type_name("FILE");
    command.add_option("--units", request.units, "Units of the raster: Meters or Feet; by default its own")
        ->check(CLI::IsMember({"Meters", "Feet"}))
        ->type_name("UNIT");
    command.add_option("--zones", request.zones, "Polygons to analyse")->required()->type_name("SRC");
    command.add_option("--field", request.field, "Field of the zones that groups them: whole numbers or text")
        ->required()
        ->type_name("NAME");
    command.add_option("--where", request.where, "Takes only the zones for which this holds")
        ->check(CLI::Validator(fault_of_selection, ""))
        ->type_name("SQL");
    command.add_option("--store", request.store, "Coefficient store; by default your own")->type_name("FILE");
    command.add_option("--set", request.set, "Coefficient set; may be left out when the store holds one only")
        ->type_name("NAME");
}

void add_model_options(CLI::App& command, RunRequest& request, std::vector<std::string>& scenarios) {
    command
        .add_option_function<std::string>(
            "--option", [&request](const std::string& name) { request.option = option_named(name); },
            "Which coefficients to take: high, medium or low, or by density")
        ->required()
        ->check(CLI::IsMember({"high", "medium", "low", "density"}))
        ->type_name("NAME");
    command.add_option("--density-layer", request.density_layer, "Polygons with a population density")
        ->type_name("SRC");
    command.add_option("--density-field", request.density_field, "Number field of that layer")->type_name("NAME");
    command.add_option("--density-high", request.density_high, "Density from which the High coefficients hold")
        ->type_name("X");
    command.add_option("--density-low", request.density_low, "Density up to which the Low coefficients hold")
        ->type_name("Y");
    // One value for each --scenario, so that a path with spaces or commas stays whole.
    command.add_option("--scenario", scenarios, "Counts the land inside these polygons as class CODE; may be repeated")
        ->expected(1)
        ->take_all()
        ->type_name("SRC:CODE");
}

void add_output_options(CLI::App& command, RunRequest& request) {
    command.add_option("--output", request.output, "Output shapefile")->required()->type_name("DIR/NAME.shp");
    command
        .add_option("--layer-name", request.layer_name,
                    "Name of the output layer and its records; by default the file's")
        ->type_name("NAME");
    command.add_flag("--overwrite", request.overwrite, "Replaces an output that exists");
    command.add_flag("--yes", request.yes, "Answers questions with OK or Yes, not with Cancel or No");
    command.add_flag("--quiet", request.quiet, "No progress and no notices; the table lists every zone");
    command.add_flag("--json", request.json, "Prints the result as JSON instead of a table");
    command.add_flag("--keep-temp", request.keep_temp, "Keeps the working tables in a folder beside the output");
    command.add_flag("--allow-degrees", request.allow_degrees, "Takes a raster in degrees, whose areas mean nothing");
    command.add_option("--threads", request.threads, "Threads to use; 0 for as many as there are cores")
        ->check(CLI::Range(0, 1024))
        ->type_name("N");
    command
        .add_option("--extension-folder", request.extension_folder,
                    "Folder to work in; by default a private one for each run")
        ->type_name("DIR");
}

void check_cut_off(const std::string& option, const std::string& value) {
    if (!base::numeric(value)) {
        throw CLI::ValidationError(option, "'" + value + "' is no number");
    }
}

void check_density(const RunRequest& request) {
    const std::pair<const char*, const std::string*> options[]{{"--density-layer", &request.density_layer},
                                                               {"--density-field", &request.density_field},
                                                               {"--density-high", &request.density_high},
                                                               {"--density-low", &request.density_low}};
    for (const auto& [option, value] : options) {
        if (request.by_density() && value->empty()) {
            throw CLI::ValidationError(option, "is required with --option density");
        }
        if (!request.by_density() && !value->empty()) {
            throw CLI::ValidationError(option, "is for --option density only");
        }
    }
    if (request.by_density()) {
        check_cut_off("--density-high", request.density_high);
        check_cut_off("--density-low", request.density_low);
        if (base::to_double(request.density_high) < base::to_double(request.density_low)) {
            throw CLI::ValidationError("--density-high",
                                       "is below --density-low: " + request.density_high + " < " + request.density_low);
        }
    }
}

/// What the options cannot check one by one.
void check_request(RunRequest& request, const std::vector<std::string>& scenarios) {
    check_density(request);
    request.scenarios.clear();
    for (const std::string& scenario : scenarios) {
        try {
            request.scenarios.push_back(parse_scenario(scenario));
        } catch (const std::invalid_argument& error) {
            throw CLI::ValidationError("--scenario", error.what());
        }
    }
    try {
        output_of(request.output, request.layer_name);
    } catch (const std::invalid_argument& error) {
        throw CLI::ValidationError("--output", error.what());
    }
}

}  // namespace

void add_run_command(CLI::App& app, Action& action) {
    CLI::App* command = app.add_subcommand("run", "Estimates the impervious surface of zones");
    const auto request = std::make_shared<RunRequest>();
    const auto scenarios = std::make_shared<std::vector<std::string>>();
    add_input_options(*command, *request);
    add_model_options(*command, *request, *scenarios);
    add_output_options(*command, *request);
    command->footer(kExample);
    command->callback([request, scenarios, &action] {
        check_request(*request, *scenarios);
        action = [request] { return run(*request, std::cout, std::cerr, ::isatty(STDERR_FILENO) == 1); };
    });
}

}  // namespace kestrel::cli

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <ostream>
#include <string>

#include "apps/cli/run_command.h"

namespace kestrel::cli {

/// Adds `kestrel records` to `app`; parsing it sets `action`.
void add_records_command(CLI::App& app, Action& action);

/// Which record of an output to print.
struct RecordsRequest {
    std::string shapefile;
    /// Of the output layer; the records bear its name. Empty when it is the shapefile's.
    std::string layer_name{};
    bool metadata = false;
};

/// Prints the run report, or the metadata, that lies beside a shapefile. The shapefile's name is looked for first, then
/// the layer's. Refuses when there is none, and says which ones there are.
int print_record(const RecordsRequest& request, std::ostream& out);

}  // namespace kestrel::cli

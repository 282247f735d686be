// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <ostream>

#include "apps/cli/run_request.h"

namespace kestrel::cli {

/// Carries out one run without a screen: checks, builds the map and the parameter file, and executes the model.
/// \param out takes the table or the JSON object.
/// \param err takes what is said to the user; `on_terminal` tells whether a progress line can be drawn there.
/// \return the exit status.
/// \throws RuntimeError for what is refused before the run, unless the request asks for JSON: that tells it.
int run(const RunRequest& request, std::ostream& out, std::ostream& err, bool on_terminal);

}  // namespace kestrel::cli

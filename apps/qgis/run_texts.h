// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "contracts/run_result.h"

/// \file
/// What is told of a run's end.
namespace kestrel::qgis {

/// One sentence on a run that has finished.
std::string finished_text(const contracts::RunResult& result);

/// The figures of a finished run: a line for each zone, each class of the legend and each file.
std::string finished_details(const contracts::RunResult& result);

/// One sentence on a run that has not.
std::string unfinished_text(const contracts::RunResult& result);

}  // namespace kestrel::qgis

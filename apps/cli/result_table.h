// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

#include "contracts/run_result.h"

namespace kestrel::cli {

/// More zones than this are shortened to the first and the last of them.
inline constexpr std::size_t kMostZonesInTable = 30;
inline constexpr std::size_t kZonesAtEachEnd = 10;

/// What is worth knowing of a zone besides its figures, joined by "; "; empty when there is nothing.
std::string remarks_of(const contracts::ZoneResult& zone);

/// The table at the end of a finished run: a line a zone, totals, the classes of the legend, the files written.
/// \param every_zone also of many zones each one has its line.
std::string result_table(const contracts::RunResult& result, bool every_zone);

/// The classes without coefficients that ended a run, each with its cells, and a hint where a code looks like NODATA
/// that the raster does not declare; empty when there are none.
std::string unknown_classes_text(const contracts::RunResult& result);

}  // namespace kestrel::cli

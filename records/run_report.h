// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "records/run_record.h"

namespace kestrel {

/// Writes the run report, a short list of the run's settings for people, replacing an existing file.
///
/// \param path of the file, which ends in ".prm".
/// \throws RuntimeError when the file cannot be made or written; the lines written until then stay.
void write_run_report(const std::string& path, const RunRecord& record);

}  // namespace kestrel

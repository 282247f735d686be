// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "base/clock.h"
#include "engine/model_run.h"
#include "records/metadata.h"
#include "records/run_record.h"

namespace kestrel {

/// What the run report and the metadata say of a run's settings.
/// \throws RuntimeError 9 when a class or a scenario of the parameter file has too few fields.
RunRecord record_of(const ModelRun& run, const base::LocalTime& time);

/// What the metadata says of the finished output.
OutputRecord output_record_of(const ModelRun& run);

}  // namespace kestrel

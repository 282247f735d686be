// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/progress.h"
#include "contracts/map.h"
#include "contracts/run_result.h"
#include "running/carry_out_run.h"

namespace kestrel::hosting {

/// What a run without a desktop has beside its order: the map.
struct HeadlessMapContents {
    /// From the top. The parameters name layers of it.
    std::vector<std::shared_ptr<contracts::Layer>> layers{};
    contracts::DistanceUnits distance_units = contracts::kUnknownUnits;
};

struct HeadlessEnding {
    running::RunEnding run{};
    /// Says by `finished` whether there is an output.
    contracts::RunResult result{};
};

/// Carries a run out in the calling thread, which has an interaction, by running::carry_out_run().
/// \param order its `begins` is this function's own; where the parameter file names the output is filled in.
HeadlessEnding carry_out_headless(const HeadlessMapContents& map, running::RunOrder order,
                                  const std::string& extension_folder, base::Progress& progress);

/// The working folder of one run, which is removed at its end, so that runs side by side never meet.
class PrivateRunFolder {
  public:
    /// \param contact_file the contact values that the run writes into its metadata; may be missing.
    /// \throws RuntimeError when there is no place for one.
    explicit PrivateRunFolder(const std::string& contact_file);
    ~PrivateRunFolder();
    PrivateRunFolder(const PrivateRunFolder&) = delete;
    PrivateRunFolder& operator=(const PrivateRunFolder&) = delete;

    const std::string& path() const noexcept { return m_path; }

  private:
    std::string m_path;
};

}  // namespace kestrel::hosting

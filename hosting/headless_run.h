// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/progress.h"
#include "coefficients/clsISModelProperties.h"
#include "contracts/map.h"
#include "contracts/run_result.h"
#include "parameters/model_parameters.h"
#include "parameters/run_output.h"

namespace kestrel {

/// A run without a desktop: everything that it needs, checked by whoever asks for it.
struct HeadlessRun {
    /// The map, from the top. The parameters name layers of it.
    std::vector<std::shared_ptr<contracts::Layer>> layers{};
    contracts::DistanceUnits distance_units = contracts::kUnknownUnits;
    /// All but the output.
    ModelParameters parameters{};
    /// Its folder exists.
    RunOutput output;
    /// Where the coefficients are taken from.
    const clsISModelProperties& store;
    std::string set_name;
    /// Threads that the run may use; 0 for as many as there are cores.
    int threads = 0;
    /// Keeps the working data in a folder beside the output.
    bool keep_temp = false;
};

struct HeadlessEnding {
    /// Says by `finished` whether there is an output.
    contracts::RunResult result{};
    /// Where the working data are kept; empty when they are not.
    std::string kept_folder{};
};

/// Carries a run out in the calling thread, which has an interaction. At its end an older output is gone or back in its
/// place.
/// \param extension_folder which nobody else uses meanwhile.
HeadlessEnding execute(const HeadlessRun& run, const std::string& extension_folder, base::Progress& progress);

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

}  // namespace kestrel

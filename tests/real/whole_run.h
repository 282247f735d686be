// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "contracts/run_result.h"
#include "reporting/interaction.h"
#include "tests/real/run_settings.h"
#include "tests/support/test_files.h"

namespace kestrel::test {

/// One whole run on the headless host: the parameter file written, the model executed, and all that came of it.
/// Everything lies in a folder that goes with the object.
class WholeRun {
  public:
    explicit WholeRun(const RunSettings& settings);

    /// Path of the output shapefile, whether or not it is there.
    std::string output() const { return m_folder / "out/result.shp"; }
    std::vector<std::string> output_files() const { return names_in(m_folder / "out"); }
    std::vector<std::string> temporary_files() const { return names_in(m_folder / "ext/temp"); }

    std::vector<reporting::MessageBox> boxes;
    std::vector<std::string> call_stacks;
    contracts::RunResult result;

  private:
    TemporaryFolder m_folder;
};

/// Name of a source's layer in the map: the layer's own, or the file's without folder and extension.
std::string layer_name_of(const std::string& source);

}  // namespace kestrel::test

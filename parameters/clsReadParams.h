// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/dictionary.h"
#include "coefficients/coefficient_option.h"
#include "parameters/text_list.h"

namespace kestrel {

/// The classes of the chosen coefficient set. Key: the class code as text; item: class name, High, Medium and Low
/// coefficient, at 1 to 4.
using LandClassDictionary = base::Dictionary<TextList>;
/// The development scenarios. Key: the scenario's number as text; item: layer name, name of the class that the scenario
/// changes to, code of that class, at 1 to 3.
using ScenarioDictionary = base::Dictionary<TextList>;

namespace test {
class ReadParamsPeer;
}

/// Reads the settings of a run back from the model parameter file.
///
/// Calling order: construct, ReadParameters(), any number of property reads, FlushParameters(). Every value is the text
/// of the file, as it stands there; whoever uses it converts it. A setting that the file lacks reads as an empty text,
/// and has an empty entry from then on.
///
/// Property reads have no handler of their own: before ReadParameters() and after FlushParameters() they throw
/// RuntimeError 91 to the caller. The medium bounds of the density, the output shapefile and the view name are read but
/// cannot be asked for.
class clsReadParams {
  public:
    std::string AnalysisTheme() const;
    std::string AnalysisFieldName() const;
    std::string lcTheme() const;
    std::string LCUnits() const;
    /// The coefficient option: "0" High, "1" Medium, "2" Low, "3" by population density.
    std::string PopulationDensity() const;
    /// The same as what it means; nothing for any other text.
    std::optional<CoefficientOption> coefficient_option() const;
    std::string PopDensityTheme() const;
    std::string PopDensityFldName() const;
    std::string PopDensityHigh() const;
    std::string PopDensityLow() const;
    /// The dictionary itself, not a copy; it outlives FlushParameters() in the hands of who took it.
    std::shared_ptr<LandClassDictionary> LandClasses() const;
    /// The dictionary itself, as above.
    std::shared_ptr<ScenarioDictionary> DevScenarios() const;
    std::string OutThemeName() const;

    /// Drops what was read before and reads the file `FileName` in the `temp` folder of the extension folder
    /// `PathName`. A missing file is told in a box, a line that cannot be taken is reported; reading then ends, and
    /// what came before that line stays. Never throws.
    void ReadParameters(const std::string& PathName, const std::string& FileName);
    /// Releases the three dictionaries.
    void FlushParameters();

  private:
    friend class test::ReadParamsPeer;

    std::string parameter(const std::string& keyword) const;
    void read_line(const std::string& line);
    /// Fields 2 to the last of a split line, in order.
    static TextList ParamCol(const std::vector<std::string>& fields);

    std::string m_path_name;
    std::string m_file_name;
    std::shared_ptr<base::Dictionary<std::string>> m_parameters;
    std::shared_ptr<LandClassDictionary> m_land_classes;
    std::shared_ptr<ScenarioDictionary> m_scenarios;
};

}  // namespace kestrel

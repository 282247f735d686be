// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "coefficients/coefficient_option.h"
#include "contracts/application.h"
#include "data/raster.h"
#include "data/table.h"
#include "engine/coefficient_lookup.h"
#include "engine/land_cover_counts.h"
#include "engine/run_zones.h"
#include "engine/tabulation.h"
#include "parameters/clsReadParams.h"

namespace kestrel {

/// The polygons whose areas are to be found: the run's zones, whole or inside one scenario.
struct AreaTheme {
    /// The analysis layer's name, as the user knows it.
    std::string name;
    /// The fields of its table, among which a long zone field finds its short name.
    std::vector<data::Field> fields;
    const RunZones* zones = nullptr;
    /// Position among the scenarios of `zones`; nothing for the whole zones.
    std::optional<std::uint32_t> scenario{};
};

/// Finds the area and the impervious area of every land-cover class in every zone.
///
/// One pass over the land cover, made when areas are first asked for, serves all calls of a run.
class clsISGetLCArea {
  public:
    /// Prepares for a run; what an earlier run counted is forgotten.
    /// \param option the coefficient option.
    /// \param threads that the pass may use; 0 for as many as there are cores.
    void Initialise(contracts::Application* pApp, std::optional<CoefficientOption> option, int threads);
    /// Forgets the run.
    void Reset();

    /// \param pWorkspace the extension folder.
    /// \param ValueField name of the land cover's class field, "Value".
    /// \param ZoneField name of the zone field.
    /// \param popDS whether zones are split by population density; their keys then end in "#" and a digit.
    /// \param LCUnits "Feet" or "Meters"; anything else makes every area 0.
    /// \param dictCL the classes of the chosen coefficient set.
    /// \param tmpZone name of the zone grid.
    /// \param areaTemp name of the table.
    /// \return the area table; nothing after a failure that was told, or when the run was cancelled.
    std::optional<data::Table> isGetLCArea(const std::string& pWorkspace, const AreaTheme& AnalysisTheme,
                                           const contracts::RasterLayer& lcTheme, const std::string& ValueField,
                                           const std::string& ZoneField, bool popDS, const std::string& LCUnits,
                                           const LandClassDictionary& dictCL, const std::string& tmpZone,
                                           const std::string& areaTemp);

    /// The counts of the run's pass; nothing before it was made.
    LandCoverCounts* counts() noexcept { return m_counts ? &*m_counts : nullptr; }
    /// The classes without coefficients that ended the last call, with their cells.
    const std::vector<contracts::UnknownClass>& unknown_classes() const noexcept { return m_unknown_classes; }

  private:
    bool SwitchOnRasterAnalysis();
    data::RasterDataset OpenRasterDataset(const std::string& source);
    void ConvertShapeToRaster(const AreaTheme& AnalysisTheme, const std::string& source);
    std::optional<Tabulation> TabulateAreas(const AreaTheme& AnalysisTheme, const contracts::RasterLayer& lcTheme);
    bool CalculateAreas(const Tabulation& tabulation, double factor, const LandClassDictionary& dictCL,
                        data::Table& table);
    std::string AnalysisFieldValues(const Tabulation& table, std::size_t id);
    void list_unknown_classes(const Tabulation& tabulation, const CoefficientLookup& lookup, const std::string& key);

    contracts::Application* m_application = nullptr;
    std::optional<CoefficientOption> m_option;
    int m_threads = 0;
    std::optional<LandCoverCounts> m_counts;
    std::vector<contracts::UnknownClass> m_unknown_classes;
};

/// Acres in a square foot for "Feet", hectares in a square metre for "Meters", 0 for anything else.
double area_factor(const std::string& units);

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <unordered_map>

#include "coefficients/coefficient_option.h"
#include "contracts/layer.h"
#include "data/table.h"
#include "engine/clsISGetLCArea.h"
#include "engine/coefficient_lookup.h"
#include "parameters/clsReadParams.h"

namespace kestrel {

/// A development scenario as it was prepared for the pass over the land cover. What was found out then is told when the
/// scenario's turn comes.
struct ScenarioTheme {
    /// The scenario layer's name.
    std::string name;
    /// Whether analysis layer and scenario have the same projection; the scenario is left out of the pass otherwise.
    bool same_projection = true;
    /// Position among the scenarios of the run's zones, when it takes part in the pass.
    std::optional<std::uint32_t> position;
    /// Why it could not be prepared.
    std::exception_ptr failure;
};

/// What a scenario adjustment needs of the run.
struct AdjustmentContext {
    /// The extension folder.
    std::string working_folder;
    AreaTheme analysis;
    const contracts::RasterLayer* land_cover = nullptr;
    std::string units;
    std::optional<CoefficientOption> option;
    clsISGetLCArea* areas = nullptr;
};

/// Applies development scenarios to an area table: a virtual reclassification of the land cover.
class clsISDSAdjustment {
  public:
    explicit clsISDSAdjustment(AdjustmentContext context) : m_context(std::move(context)) {}

    /// \param pTable the area table as earlier scenarios left it.
    /// \param analysisFldName name of the zone field.
    /// \param dcID code of the class that the scenario changes to.
    /// \param ZoneName, aTemp, dsInt names of the scenario's working data.
    /// \return the adjusted table; the unchanged one when the scenario is left out; nothing when the run is to stop.
    std::optional<data::Table> isDSAdjustment(data::Table pTable, const ScenarioTheme& DSTheme,
                                              const std::string& analysisFldName, const std::string& dcID,
                                              const std::string& ZoneName, const std::string& aTemp,
                                              const std::string& dsInt, const LandClassDictionary& dictClasses);

  private:
    /// Area inside the scenario, by zone.
    using ScenarioAreas = std::unordered_map<std::string, double>;

    static ScenarioAreas take_away(data::Table& table, const data::Table& inside);
    bool give_to_target(data::Table& table, const data::Table& inside, const ScenarioAreas& areas,
                        const std::string& dcID, const LandClassDictionary& dictClasses) const;

    AdjustmentContext m_context;
};

}  // namespace kestrel

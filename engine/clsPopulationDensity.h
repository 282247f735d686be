// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "contracts/map.h"
#include "data/feature_class.h"
#include "data/field.h"
#include "engine/polygon_layer.h"

namespace kestrel {

/// The analysis layer split by the population density layer: both layers of polygons, and the density class of each
/// density polygon. A piece is where two of them meet; pieces are laid out cell by cell while the land cover is read,
/// never as polygons.
struct DensityIntersection {
    PolygonLayer density;
    /// 1 High, 2 Medium, 3 Low, for each density polygon.
    std::vector<std::uint8_t> class_digits;
};

/// Prepares the option that chooses coefficients by population density.
class clsPopulationDensity {
  public:
    /// \param analysis the analysis features, with their values.
    /// \param pMap holds the density layer.
    /// \param PopDensityHigh, PopDensityLow the cut-offs, as typed.
    clsPopulationDensity(const contracts::Map& pMap, const PolygonLayer& analysis, std::string PopDensityTheme,
                         std::string PopDensityFldName, std::string PopDensityHigh, std::string PopDensityLow);

    /// Runs the preparation. \return false when the systems differ by name, nothing overlaps, after a reported failure,
    /// or when `progress` answered stop. \param threads that may be used; 0 for as many as there are cores.
    bool DensityCalculation(base::Progress& progress, int threads);

    /// The 10-byte name of a long field name, by the rule of basUtil::SetFieldName().
    std::string SetFieldName(const std::string& name, std::span<const data::Field> table);

    // What DensityCalculation() made.
    const DensityIntersection& NewAnalysisTheme() const { return m_intersection; }
    const data::Field& NewAnalysisField() const { return m_new_field; }
    const std::string& NewAnalysisFieldName() const { return m_new_field.name; }
    const std::string& NewAliasName() const { return m_new_field.alias; }
    const std::string& OldAnalysisFldName() const { return m_analysis.field.name; }

  private:
    const contracts::Map& m_map;
    const PolygonLayer& m_analysis;
    std::string m_density_layer;
    std::string m_density_field;
    std::string m_high;
    std::string m_low;
    DensityIntersection m_intersection;
    data::Field m_new_field;
};

/// Class digit of a density: 1 from `high` on, otherwise 2 above `low`, otherwise 3. High is tested first, so with
/// `high` at or below `low` there is no Medium.
std::uint8_t density_class(double density, const std::string& high, const std::string& low);

/// The zone key of a piece: the analysis value, "#", and the digit.
std::string density_zone_key(const std::string& analysis_value, std::uint8_t digit);

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/clsPopulationDensity.h"

#include <fmt/format.h>

#include "base/conversions.h"
#include "base/errors.h"
#include "engine/basUtil.h"
#include "engine/engine_texts.h"
#include "polygons/overlap.h"
#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel {

using data::FeatureClass;
using data::Field;
using data::Value;

namespace {

constexpr const char* kModule = "clsPopulationDensity";

FeatureClass density_source(const contracts::Map& map, const std::string& name) {
    const auto layer = std::dynamic_pointer_cast<contracts::FeatureLayer>(basUtil::FindLayer(name, map));
    if (!layer) {
        throw base::RuntimeError(base::kObjectVariableNotSet, fmt::format("The map has no polygon layer \"{}\"", name));
    }
    return layer->feature_class();
}

}  // namespace

std::uint8_t density_class(double density, const std::string& high, const std::string& low) {
    if (density >= base::to_double(high)) {
        return 1;
    }
    return density > base::to_double(low) ? 2 : 3;
}

std::string density_zone_key(const std::string& analysis_value, std::uint8_t digit) {
    return fmt::format("{}#{}", analysis_value, digit);
}

clsPopulationDensity::clsPopulationDensity(const contracts::Map& pMap, const PolygonLayer& analysis,
                                           std::string PopDensityTheme, std::string PopDensityFldName,
                                           std::string PopDensityHigh, std::string PopDensityLow)
    : m_map(pMap),
      m_analysis(analysis),
      m_density_layer(std::move(PopDensityTheme)),
      m_density_field(std::move(PopDensityFldName)),
      m_high(std::move(PopDensityHigh)),
      m_low(std::move(PopDensityLow)) {}

bool clsPopulationDensity::DensityCalculation(base::Progress& progress, int threads) try {
    const FeatureClass density = density_source(m_map, m_density_layer);
    const data::SpatialReference& reference = density.spatial_reference();
    if (reference.known() && m_analysis.reference.known() && !reference.same_name(m_analysis.reference)) {
        return false;
    }
    // In an intersection a field whose name both layers have would be called by that name and "_1"; either way it is
    // the density layer's own.
    m_intersection.density = read_polygon_layer(density, m_density_layer, m_density_field, progress, threads);
    if (progress.cancelled() || !polygons::overlap(*m_analysis.polygons, *m_intersection.density.polygons)) {
        return false;
    }
    for (const Value& value : m_intersection.density.values) {
        m_intersection.class_digits.push_back(density_class(data::number_of(value), m_high, m_low));
    }
    const std::string& name = m_analysis.field.name;
    m_new_field = basUtil::CreateFields("new_" + name.substr(0, 6), "new_" + name.substr(0, 6), data::FieldType::text,
                                        m_analysis.field.length + 8, 0, 0);
    return true;
} catch (...) {
    return reported<bool>({"DensityCalculation", kModule});
}

std::string clsPopulationDensity::SetFieldName(const std::string& name, std::span<const Field> table) {
    return basUtil::SetFieldName(name, table);
}

}  // namespace kestrel

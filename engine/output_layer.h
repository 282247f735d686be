// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/progress.h"
#include "data/class_breaks.h"
#include "data/field.h"
#include "data/spatial_reference.h"
#include "engine/zone_keys.h"
#include "polygons/dissolved_polygons.h"

namespace kestrel {

/// The output of a run while it is being filled: one feature for each group of analysis features of one value.
struct OutputLayer {
    /// Positions of the fields, counting the object id as 0 and the shape as 1.
    static constexpr std::size_t kFirstField = 2;

    polygons::DissolvedPolygons polygons;
    data::SpatialReference reference;
    const ZoneGroups* groups = nullptr;
    /// The analysis field first, then what AddNewFields() adds.
    std::vector<data::Field> fields;
    std::vector<double> total_area;
    std::vector<double> impervious_area;
    std::vector<double> percent;
    std::vector<bool> complete;

    /// The stored values of feature `i`, in the order of the fields.
    std::vector<data::Value> values(std::size_t i) const;
    /// Names of all fields by position, object id and shape included.
    std::vector<std::string> field_names() const;
    /// Writes the shapefile. \param progress hears the share of the features that is written; when it answers stop, the
    /// files are incomplete.
    void write(const std::string& path, base::Progress& progress) const;
};

/// The fields of total area, impervious area, percentage and completeness, named after the units: acres for "Feet",
/// hectares for all others.
std::vector<data::Field> output_area_fields(const std::string& units);

/// The analysis field as the output holds it: the source's type and width, wide enough for every value, under a name
/// that fits a shapefile and that none of output_area_fields() has.
/// \param table the fields of the analysis layer.
data::Field output_analysis_field(data::Field source, const ZoneGroups& groups, std::span<const data::Field> table,
                                  const std::string& units);

/// The legend of every output: three classes on the percentage of impervious surface.
data::ClassBreaksRenderer output_legend();

}  // namespace kestrel

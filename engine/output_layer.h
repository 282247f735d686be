// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/zone_keys.h"
#include "platform/class_breaks.h"
#include "platform/field.h"
#include "platform/polygons.h"
#include "platform/spatial_reference.h"

namespace kestrel {

/// The output of a run while it is being filled: one feature for each group of analysis features of one value.
struct OutputLayer {
    /// Positions of the fields, counting the object id as 0 and the shape as 1.
    static constexpr std::size_t kFirstField = 2;

    platform::PolygonSet polygons;
    platform::SpatialReference reference;
    const ZoneGroups* groups = nullptr;
    /// The analysis field first, then what AddNewFields() adds.
    std::vector<platform::Field> fields;
    std::vector<double> total_area;
    std::vector<double> impervious_area;
    std::vector<double> percent;
    std::vector<bool> complete;

    /// The stored values of feature `i`, in the order of the fields.
    std::vector<platform::Value> values(std::size_t i) const;
    /// Names of all fields by position, object id and shape included.
    std::vector<std::string> field_names() const;
    /// Writes the shapefile.
    void write(const std::string& path) const;
};

/// The legend of every output: three classes on the percentage of impervious surface.
platform::ClassBreaksRenderer output_legend();

}  // namespace kestrel

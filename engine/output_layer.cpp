// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/output_layer.h"

#include "platform/conversions.h"
#include "platform/shapefile_writer.h"

namespace kestrel {

using platform::Value;

std::vector<Value> OutputLayer::values(std::size_t i) const {
    return {groups->value(i), total_area[i], impervious_area[i], percent[i], std::string(complete[i] ? "Y" : "N")};
}

std::vector<std::string> OutputLayer::field_names() const {
    std::vector<std::string> names{"FID", "Shape"};
    for (const platform::Field& field : fields) {
        names.push_back(field.name);
    }
    return names;
}

void OutputLayer::write(const std::string& path) const {
    platform::ShapefileWriter writer(path, fields, reference);
    for (std::size_t i = 0; i < polygons.feature_count(); ++i) {
        writer.insert(polygons, i, values(i));
    }
    writer.close();
}

platform::ClassBreaksRenderer output_legend() {
    return {
        .field = "pctIS",
        .classes = {{9.99, "< 10%", {170, 255, 0}}, {25, "10% - 25%", {255, 255, 190}}, {100, "> 25%", {255, 0, 0}}}};
}

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/output_layer.h"

#include <algorithm>

#include "base/text.h"
#include "data/shapefile_writer.h"
#include "engine/basUtil.h"

namespace kestrel {

using data::Field;
using data::FieldType;
using data::Value;

namespace {

/// Some milliseconds of writing.
constexpr std::size_t kFeaturesPerReport = 4096;

/// Gives the field the width of its source, or more where a value needs it.
void set_width(Field& field, const ZoneGroups& groups) {
    std::size_t widest = 1;
    for (std::size_t i = 0; i < groups.count(); ++i) {
        widest = std::max(widest, groups.text(i).size());
    }
    if (field.type == FieldType::text) {
        field.length = std::clamp(std::max(field.length, static_cast<int>(widest)), 1, 254);
        return;
    }
    const int usual = field.type == FieldType::big_integer ? 18 : 9;
    field.length = std::max(field.length > 0 && field.length <= 18 ? field.length : usual, static_cast<int>(widest));
    field.precision = field.length;
    field.scale = 0;
}

}  // namespace

std::vector<Field> output_area_fields(const std::string& units) {
    const bool feet = units == "Feet";
    const auto create = basUtil::CreateFields;
    return {
        create(feet ? "TotAcres" : "TotHects", feet ? "TotalAcres" : "TotalHectares", FieldType::real, 18, 18, 6),
        create(feet ? "TotISAcr" : "TotISHec", feet ? "TotalISAcres" : "TotalISHectares", FieldType::real, 18, 18, 6),
        create("pctIS", "pctIS", FieldType::real, 10, 10, 2), create("Complete", "Complete", FieldType::text, 1, 0, 0)};
}

Field output_analysis_field(Field source, const ZoneGroups& groups, std::span<const Field> table,
                            const std::string& units) {
    source.alias = source.name;
    set_width(source, groups);
    source.name = basUtil::stored_field_name(source.name, table);
    const std::vector<Field> others = output_area_fields(units);
    if (std::any_of(others.begin(), others.end(),
                    [&](const Field& f) { return base::same_but_for_case(f.name, source.name); })) {
        source.name = source.name.substr(0, 8) + "_0";
    }
    return source;
}

std::vector<Value> OutputLayer::values(std::size_t i) const {
    return {groups->value(i), total_area[i], impervious_area[i], percent[i], std::string(complete[i] ? "Y" : "N")};
}

std::vector<std::string> OutputLayer::field_names() const {
    std::vector<std::string> names{"FID", "Shape"};
    for (const data::Field& field : fields) {
        names.push_back(field.name);
    }
    return names;
}

void OutputLayer::write(const std::string& path, base::Progress& progress) const {
    data::ShapefileWriter writer(path, fields, reference);
    const std::size_t count = polygons.feature_count();
    for (std::size_t i = 0; i < count; ++i) {
        if (i % kFeaturesPerReport == 0 &&
            !progress.report(static_cast<double>(i) / static_cast<double>(count), "Writing the output")) {
            break;
        }
        const polygons::DissolvedPolygons::Feature feature = polygons.feature(i);
        writer.insert(feature.set, feature.position, values(i));
    }
    writer.close();
}

data::ClassBreaksRenderer output_legend() {
    return {
        .field = "pctIS",
        .classes = {{9.99, "< 10%", {170, 255, 0}}, {25, "10% - 25%", {255, 255, 190}}, {100, "> 25%", {255, 0, 0}}}};
}

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/basUtil.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/conversions.h"
#include "base/errors.h"
#include "base/files.h"
#include "base/text.h"
#include "engine/engine_texts.h"
#include "polygons/intersect.h"
#include "polygons/repair.h"
#include "reporting/error_report.h"

namespace kestrel::basUtil {

using contracts::Layer;
using data::FeatureClass;
using data::Field;
using data::FieldType;
using data::PolygonFeatures;
using data::Value;

namespace {

constexpr const char* kModule = "basUtil";
constexpr std::size_t kLongestName = 10;  // of a dBASE field, in bytes
constexpr std::size_t kFlushAfter = 100;

/// The fields as a shapefile can hold them.
std::vector<Field> storable(std::span<const IntersectedField> fields) {
    std::vector<Field> all;
    for (const IntersectedField& field : fields) {
        all.push_back(field.field);
    }
    std::vector<Field> result = all;
    for (Field& field : result) {
        field.name = stored_field_name(field.name, all);
        if (field.type == FieldType::boolean) {
            field.type = FieldType::small_integer;
        } else if (field.type == FieldType::other) {
            field.type = FieldType::text;
        }
    }
    return result;
}

std::vector<std::string> names_of(std::span<const Field> fields) {
    std::vector<std::string> names;
    for (const Field& field : fields) {
        names.push_back(field.name);
    }
    return names;
}

/// Writes the pieces of an intersection; their "Area" is that of the piece.
class PieceWriter {
  public:
    PieceWriter(const std::string& path, const PolygonFeatures& input, const PolygonFeatures& overlay,
                std::vector<IntersectedField> fields, const data::SpatialReference& reference)
        : m_input(input),
          m_overlay(overlay),
          m_fields(std::move(fields)),
          m_writer(path, storable(m_fields), reference) {}

    void write(std::size_t input, std::size_t overlay, const polygons::PolygonSet& piece) {
        std::vector<Value> values;
        for (const IntersectedField& field : m_fields) {
            const auto position = static_cast<std::size_t>(field.position);
            values.push_back(field.from_overlay ? m_overlay.columns[position][overlay]
                                                : m_input.columns[position][input]);
            if (base::same_but_for_case(field.field.name, "Area")) {
                values.back() = piece.area(0);
            }
        }
        m_writer.insert(piece, 0, values);
    }
    void close() { m_writer.close(); }

  private:
    const PolygonFeatures& m_input;
    const PolygonFeatures& m_overlay;
    std::vector<IntersectedField> m_fields;
    data::ShapefileWriter m_writer;
};

}  // namespace

std::shared_ptr<Layer> FindLayer(const std::string& name, const contracts::Map& map) try {
    for (const auto& layer : map.layers()) {
        if (layer->name() == name) {
            return layer;
        }
        if (const auto* group = dynamic_cast<const contracts::GroupLayer*>(layer.get())) {
            for (const auto& member : group->members()) {
                if (member->name() == name) {
                    return member;
                }
            }
        }
    }
    return nullptr;
} catch (...) {
    return reported<std::shared_ptr<Layer>>({"FindLayer", kModule});
}

Field CreateFields(const std::string& name, const std::string& alias, FieldType type, int length, int precision,
                   int scale) try {
    return {.name = name, .alias = alias, .type = type, .length = length, .precision = precision, .scale = scale};
} catch (...) {
    return reported<Field>({"CreateFields", kModule});
}

std::string SetFieldName(const std::string& name, std::span<const Field> table) try {
    if (name.size() <= kLongestName) {
        return {};
    }
    const std::string_view prefix = base::first_bytes(name, kLongestName);
    int position = 0;
    for (const Field& field : table) {
        if (base::first_bytes(field.name, kLongestName) != prefix) {
            continue;
        }
        if (field.name == name) {
            break;
        }
        ++position;
    }
    const std::string counter = base::text_of(position);
    // From the 11th field on, a longer counter takes the place of letters: the name must fit.
    const std::size_t letters = std::min<std::size_t>(8, kLongestName - 1 - counter.size());
    return fmt::format("{}_{}", base::first_bytes(name, letters), counter);
} catch (...) {
    return reported<std::string>({"SetFieldName", kModule});
}

std::string stored_field_name(const std::string& name, std::span<const Field> table) {
    return name.size() <= kLongestName ? name : SetFieldName(name, table);
}

Field analysis_value_field(const Field& source) {
    switch (source.type) {
        case FieldType::small_integer:
        case FieldType::integer:
            // A wider number field would read back as a real one.
            return CreateFields("analyfld", "analyfld", FieldType::integer, 9, 9, 0);
        default:
            // Whole numbers of 64 bits keep all their digits as text; text is never cut.
            return CreateFields("analyfld", "analyfld", FieldType::text, std::max(30, source.length), 0, 0);
    }
}

std::unique_ptr<FeatureClass> CreateShapefile(const std::string& analysisFieldName,
                                              const contracts::FeatureLayer& source, const std::string& working_folder,
                                              const std::string& name) try {
    const FeatureClass original = source.feature_class();
    std::vector<std::string> wanted;
    std::vector<Field> fields;
    if (!analysisFieldName.empty()) {
        const int position = original.find_field(analysisFieldName);
        if (position < 0) {
            throw base::RuntimeError(base::kInvalidProcedureCall, fmt::format("The layer \"{}\" has no field \"{}\"",
                                                                              source.name(), analysisFieldName));
        }
        wanted.push_back(analysisFieldName);
        fields.push_back(analysis_value_field(original.fields()[static_cast<std::size_t>(position)]));
    }
    const std::vector<std::int64_t> selected = source.selection().ids();
    const PolygonFeatures features = original.read_polygons(wanted, selected);
    if (!features.columns.empty() && fields.front().type == FieldType::text) {
        for (const Value& value : features.columns.front()) {
            fields.front().length = std::max(fields.front().length, static_cast<int>(data::text_of(value).size()));
        }
    }
    const std::string path = base::join_path(working_folder, name + ".shp");
    data::ShapefileWriter writer(path, fields, original.spatial_reference());
    copy_features(features, writer);
    writer.close();
    return std::make_unique<FeatureClass>(FeatureClass::open({.path = path}));
} catch (...) {
    return reported<std::unique_ptr<FeatureClass>>({"CreateShapefile", kModule});
}

std::size_t copy_features(const PolygonFeatures& source, data::ShapefileWriter& target) {
    std::size_t unflushed = 0;
    for (std::size_t i = 0; i < source.polygons.feature_count(); ++i) {
        target.insert(source.polygons, i, AddFields(source, i));
        if (++unflushed == kFlushAfter) {
            target.flush();
            unflushed = 0;
        }
    }
    target.flush();
    return source.polygons.feature_count();
}

std::vector<Value> AddFields(const PolygonFeatures& source, std::size_t feature) try {
    std::vector<Value> values;
    for (const auto& column : source.columns) {
        const Value& value = column[feature];
        values.push_back(value);
    }
    return values;
} catch (...) {
    return reported<std::vector<Value>>({"AddFields", kModule});
}

std::vector<IntersectedField> intersected_fields(std::span<const Field> input, std::span<const Field> overlay) {
    std::vector<IntersectedField> result;
    for (std::size_t i = 0; i < input.size(); ++i) {
        result.push_back({input[i], false, static_cast<int>(i)});
    }
    for (std::size_t i = 0; i < overlay.size(); ++i) {
        IntersectedField made{overlay[i], true, static_cast<int>(i)};
        const bool shared = std::any_of(input.begin(), input.end(), [&](const Field& field) {
            return base::same_but_for_case(field.name, overlay[i].name);
        });
        if (shared) {
            made.field.name += "_1";
        }
        result.push_back(std::move(made));
    }
    return result;
}

std::unique_ptr<FeatureClass> Intersect(const FeatureClass* input, const FeatureClass* overlay, const std::string& name,
                                        const std::string& working_folder) try {
    if (input == nullptr || overlay == nullptr) {
        reporting::current_interaction().message_box(engine_texts::table_missing());
        return nullptr;
    }
    PolygonFeatures pieces_of = input->read_polygons(names_of(input->fields()));
    PolygonFeatures cut_by = overlay->read_polygons(names_of(overlay->fields()));
    polygons::repair(pieces_of.polygons);
    polygons::repair(cut_by.polygons);
    const std::string path = base::join_path(working_folder, name + ".shp");
    PieceWriter writer(path, pieces_of, cut_by, intersected_fields(input->fields(), overlay->fields()),
                       input->spatial_reference());
    polygons::intersect(pieces_of.polygons, cut_by.polygons,
                        [&](std::size_t i, std::size_t o, const polygons::PolygonSet& piece) {
                            writer.write(i, o, piece);
                            return true;
                        });
    writer.close();
    return std::make_unique<FeatureClass>(FeatureClass::open({.path = path}));
} catch (...) {
    return reported<std::unique_ptr<FeatureClass>>({"Intersect", kModule});
}

}  // namespace kestrel::basUtil

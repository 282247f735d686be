// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/ogr_fields.h"

#include <cpl_string.h>
#include <ogr_feature.h>

#include <string>

#include "base/conversions.h"
#include "base/files.h"

namespace kestrel::data {

namespace {

FieldType integer_type(OGRFieldSubType subtype) {
    switch (subtype) {
        case OFSTBoolean:
            return FieldType::boolean;
        case OFSTInt16:
            return FieldType::small_integer;
        default:
            return FieldType::integer;
    }
}

FieldType type_of(const OGRFieldDefn& field) {
    switch (field.GetType()) {
        case OFTInteger:
            return integer_type(field.GetSubType());
        case OFTInteger64:
            return FieldType::big_integer;
        case OFTReal:
            return field.GetSubType() == OFSTFloat32 ? FieldType::single : FieldType::real;
        case OFTString:
            return FieldType::text;
        default:
            return FieldType::other;
    }
}

/// Text that a source holds in no declared encoding arrives as it is.
std::string utf8(const char* text) {
    return CPLIsUTF8(text, -1) != 0 ? std::string(text) : base::to_utf8(text);
}

}  // namespace

std::vector<Field> fields_of(OGRFeatureDefn& definition) {
    std::vector<Field> fields;
    for (int i = 0; i < definition.GetFieldCount(); ++i) {
        const OGRFieldDefn* const field = definition.GetFieldDefn(i);
        Field& added = fields.emplace_back();
        added.name = field->GetNameRef();
        added.alias = field->GetAlternativeNameRef();
        added.type = type_of(*field);
        added.length = field->GetWidth();
        added.precision = added.type == FieldType::text ? 0 : field->GetWidth();
        added.scale = field->GetPrecision();
    }
    return fields;
}

Value value_of(const OGRFeature& feature, int position, FieldType type) {
    if (!feature.IsFieldSetAndNotNull(position)) {
        return {};
    }
    switch (type) {
        case FieldType::small_integer:
        case FieldType::integer:
        case FieldType::boolean:
        case FieldType::big_integer:
            return std::int64_t{feature.GetFieldAsInteger64(position)};
        case FieldType::single:
            return base::double_of_single(static_cast<float>(feature.GetFieldAsDouble(position)));
        case FieldType::real:
            return feature.GetFieldAsDouble(position);
        default:
            return utf8(feature.GetFieldAsString(position));
    }
}

}  // namespace kestrel::data

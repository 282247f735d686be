// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/clsISTableFunctions.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "base/errors.h"
#include "base/files.h"
#include "engine/basUtil.h"
#include "engine/engine_texts.h"
#include "reporting/error_report.h"
#include "reporting/interaction.h"

namespace kestrel {

using data::Field;
using data::FieldType;
using data::Table;

namespace {

constexpr const char* kModule = "clsISTableFunction";  // without the final s

constexpr std::size_t kDensitySuffix = 2;  // "#" and the digit

/// The part of a tabulation's field name behind the first "_": the class code.
std::string class_value(const std::string& field_name) {
    return field_name.substr(field_name.find('_') + 1);
}

Field area_field(const std::string& name) {
    return basUtil::CreateFields(name, name, FieldType::real, 18, 18, 6);
}

/// The zone field's name where it cannot be taken for another column of the table.
std::string key_name(const std::string& zone_field) {
    const bool taken = zone_field == "OID" || zone_field.starts_with("area-") || zone_field.starts_with("ISarea-");
    return taken ? zone_field + "_1" : zone_field;
}

}  // namespace

bool is_area_column(const Field& field) {
    return field.name.starts_with("area");
}

bool is_impervious_column(const Field& field) {
    return field.name.starts_with("ISarea");
}

std::optional<Table> clsISTableFunctions::createDBF(const std::string& strName, const std::string& pFieldName,
                                                    std::size_t pFieldCount, const Tabulation& tTable) try {
    const std::string folder = base::join_path(m_extension_folder, "temp");
    if (!base::folder_exists(folder)) {
        reporting::current_interaction().message_box(engine_texts::folder_missing(folder));
        return std::nullopt;
    }
    std::vector<Field> fields{basUtil::CreateFields("OID", "OID", FieldType::oid, 4, 0, 0),
                              basUtil::CreateFields(key_name(pFieldName), pFieldName, FieldType::text, 18, 0, 0)};
    for (std::size_t column = 0; fields.size() + 1 < pFieldCount; ++column) {
        const std::string value = class_value(tTable.field_name(column));
        fields.push_back(area_field("area-" + value));
        fields.push_back(area_field("ISarea-" + value));
    }
    return Table(strName, std::move(fields));
} catch (...) {
    return reported<std::optional<Table>>({"createDBF", kModule});
}

std::optional<Table> clsISTableFunctions::SumTable(const Table& TableName, const std::string& FieldName,
                                                   const std::string& OldFldName) try {
    if (TableName.find_field(OldFldName) != 1) {
        throw base::RuntimeError(base::kInvalidProcedureCall,
                                 "The table \"" + TableName.name() + "\" has no zones in \"" + OldFldName + "\"");
    }
    std::optional<Table> result = CopyTableFormat(TableName, "areaTab", FieldName);
    if (!result) {
        return std::nullopt;
    }
    for (std::size_t row = 0; row < TableName.row_count(); ++row) {
        const std::string& key = TableName.key(row);
        const std::string base = key.size() < kDensitySuffix ? key : key.substr(0, key.size() - kDensitySuffix);
        const std::optional<std::size_t> done = result->find_row(base);
        const std::size_t target = done ? *done : result->add_row(base);
        for (int field = 2; field < static_cast<int>(TableName.fields().size()); ++field) {
            result->set_number(target, field, result->number(target, field) + TableName.number(row, field));
        }
    }
    return result;
} catch (...) {
    return reported<std::optional<Table>>({"SumTable", kModule});
}

std::optional<Table> clsISTableFunctions::CopyTableFormat(const Table& source, const std::string& name,
                                                          const std::string& zone_field) try {
    std::vector<Field> fields = source.fields();
    fields.at(1).name = key_name(zone_field);
    fields.at(1).alias = zone_field;
    return Table(name, std::move(fields));
} catch (...) {
    return reported<std::optional<Table>>({"CopyTableFormat", kModule});
}

bool clsISTableFunctions::bCheck(const std::string& text, std::span<const std::string> list) try {
    return !list.empty() && std::find(list.begin() + 1, list.end(), text) != list.end();
} catch (...) {
    return reported<bool>({"bCheck", kModule});
}

}  // namespace kestrel

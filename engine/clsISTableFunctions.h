// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>
#include <string>

#include "data/table.h"
#include "engine/tabulation.h"

namespace kestrel {

/// Makes and sums the per-zone area tables.
///
/// An area table has an object id, the zone's key, and for every class v the columns "area-v" and "ISarea-v", in acres
/// or hectares with 6 decimals.
class clsISTableFunctions {
  public:
    /// \param extension_folder whose folder "temp" must be there while tables are made.
    explicit clsISTableFunctions(std::string extension_folder) : m_extension_folder(std::move(extension_folder)) {}

    /// A new, empty area table with a pair of columns for every class column of the tabulation.
    /// \param pFieldName name of the key field; one that another column has gets "_1" behind it.
    /// \param pFieldCount fields to create: object id, zone field, and two for every class.
    /// \return nothing when the folder "temp" is missing, which is shown, or after a reported failure.
    std::optional<data::Table> createDBF(const std::string& strName, const std::string& pFieldName,
                                         std::size_t pFieldCount, const Tabulation& tTable);

    /// Sums the rows whose keys differ in their density digit only into one row under the key without "#" and digit.
    /// \param TableName the table to sum.
    /// \param FieldName name of the key field of the result.
    /// \param OldFldName name of the key field of `TableName`.
    std::optional<data::Table> SumTable(const data::Table& TableName, const std::string& FieldName,
                                        const std::string& OldFldName);

    /// A new, empty table with the fields of `source`, its key field named after `zone_field`.
    std::optional<data::Table> CopyTableFormat(const data::Table& source, const std::string& name,
                                               const std::string& zone_field);

    /// Whether `text` equals an element of `list` from position 1 on; position 0 is never compared.
    bool bCheck(const std::string& text, std::span<const std::string> list);

  private:
    std::string m_extension_folder;
};

/// Whether a column of an area table holds areas: its name begins with "area".
bool is_area_column(const data::Field& field);
/// Whether it holds impervious areas: its name begins with "ISarea".
bool is_impervious_column(const data::Field& field);

}  // namespace kestrel

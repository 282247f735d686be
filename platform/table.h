// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/field.h"

namespace kestrel::platform {

/// A table in memory with dBASE field definitions, held column by column.
///
/// Field 0 is the object id (the row's position), one text field is the key, the others hold numbers. Every number that
/// is stored is rounded to its field's scale, as dBASE would keep it; text is never cut. Rows are found by the exact
/// text of their key through an index, so nothing in a key can be mistaken for a query.
class Table {
  public:
    /// \param fields in order, the object id first and the key second.
    Table(std::string name, std::vector<Field> fields);

    const std::string& name() const noexcept { return m_name; }
    const std::vector<Field>& fields() const noexcept { return m_fields; }
    /// Position of the field, compared exactly; -1 when there is none.
    int find_field(std::string_view name) const noexcept;
    std::size_t row_count() const noexcept { return m_keys.size(); }

    /// Appends a number field at the end; every row starts from 0 there.
    /// \return its position.
    int add_field(Field field);
    /// Appends a row, numbers 0.
    /// \return its position.
    std::size_t add_row(std::string key);
    /// Position of the first row with this key, or nothing.
    std::optional<std::size_t> find_row(const std::string& key) const;

    const std::string& key(std::size_t row) const { return m_keys.at(row); }
    /// \param field a number field's position.
    double number(std::size_t row, int field) const;
    void set_number(std::size_t row, int field, double value);

  private:
    std::vector<double>& column(int field);
    const std::vector<double>& column(int field) const;

    std::string m_name;
    std::vector<Field> m_fields;
    std::unordered_map<std::string, int> m_field_positions;
    std::vector<std::string> m_keys;
    std::unordered_map<std::string, std::size_t> m_rows;
    std::vector<std::vector<double>> m_numbers;  // of the fields from position 2 on
};

/// Writes a table as a dBASE file, for inspection: names cut to 10 characters, text to 254.
void write_dbf(const Table& table, const std::string& path);

}  // namespace kestrel::platform

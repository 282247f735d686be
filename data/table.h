// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/conversions.h"
#include "data/field.h"

namespace kestrel::data {

/// A table in memory with dBASE field definitions, held column by column.
///
/// Field 0 is the object id (the row's position), one text field is the key, the others hold numbers. Every number that
/// is stored is rounded to its field's scale, as dBASE would keep it; text is never cut. Rows are found by the exact
/// text of their key through an index, so nothing in a key can be mistaken for a query. Positions that do not exist are
/// error 9.
///
/// Copies share what neither of them changes: a table kept for the record costs little. Copies are used on one thread.
class Table {
  public:
    /// \param fields in order, the object id first, the key second, then number fields.
    /// \throws RuntimeError 5 when there are fewer than two fields, 457 when two have the same name.
    Table(std::string name, std::vector<Field> fields, int line = __builtin_LINE());

    const std::string& name() const noexcept { return m_name; }
    void rename(std::string name) { m_name = std::move(name); }
    const std::vector<Field>& fields() const noexcept { return m_fields; }
    /// Position of the field, compared exactly; -1 when there is none.
    int find_field(std::string_view name) const noexcept;
    std::size_t row_count() const noexcept { return m_rows->keys.size(); }

    /// Appends a number field at the end; every row starts from 0 there.
    /// \return its position.
    /// \throws RuntimeError 457 when there is a field of this name.
    int add_field(Field field, int line = __builtin_LINE());
    /// Appends a row, numbers 0.
    /// \return its position.
    /// \throws RuntimeError 457 when there is a row with this key: keys are zones.
    std::size_t add_row(std::string key, int line = __builtin_LINE());
    /// Appends many rows, numbers 0. Of keys that are there already, or twice among these, none is added, nor those
    /// behind it.
    /// \throws RuntimeError 457 for such a key.
    void add_rows(std::vector<std::string> keys, int line = __builtin_LINE());
    /// Position of the row with this key, or nothing.
    std::optional<std::size_t> find_row(std::string_view key) const;
    /// The same, where `likely` is probably the row, as when going through rows in order.
    std::optional<std::size_t> find_row(std::string_view key, std::size_t likely) const;

    const std::string& key(std::size_t row, int line = __builtin_LINE()) const;
    /// \param field a number field's position.
    double number(std::size_t row, int field, int line = __builtin_LINE()) const;
    /// All values of a number field, row by row; until the table is changed.
    std::span<const double> numbers(int field, int line = __builtin_LINE()) const;
    void set_number(std::size_t row, int field, double value, int line = __builtin_LINE());
    /// Sets many numbers of one field, as set_number() does.
    class NumberSetter {
      public:
        /// \throws RuntimeError 9 when there is no such row.
        void set(std::size_t row, double value, int line = __builtin_LINE()) {
            if (row >= m_numbers.size()) {
                refuse_row(row, line);
            }
            m_numbers[row] = base::round_to_scale(value, m_scale);
        }

      private:
        friend class Table;
        NumberSetter(std::span<double> numbers, int scale) : m_numbers(numbers), m_scale(scale) {}
        [[noreturn]] static void refuse_row(std::size_t row, int line);

        std::span<double> m_numbers;
        int m_scale;
    };
    /// For a number field; until the table is changed in other ways, or copied.
    NumberSetter number_setter(int field, int line = __builtin_LINE());

  private:
    /// Position in m_numbers.
    std::size_t column_of(int field, int line) const;
    void check_row(std::size_t row, int line) const;
    std::vector<double>& own_column(std::size_t column);
    void add_key(std::string key, int line);

    /// The keys of the rows, and where they are found: positions of rows, by the hash of their key.
    struct Rows {
        std::vector<std::string> keys;
        std::vector<std::uint32_t> buckets;  // "slots" is a keyword to Qt

        std::uint32_t& slot_of(std::string_view key);
        /// Makes room for that many keys.
        void reserve(std::size_t count);
    };
    using Column = std::vector<double>;

    std::string m_name;
    std::vector<Field> m_fields;
    std::map<std::string, int, std::less<>> m_field_positions;
    std::shared_ptr<Rows> m_rows;
    /// Of the fields from position 2 on; a column that is longer than there are rows has zeros there. Columns that have
    /// no other numbers yet may be one and the same.
    std::vector<std::shared_ptr<Column>> m_numbers;
};

/// Writes a table as a dBASE file, for inspection: without the object id, names cut to 10 characters, text to 254
/// bytes. Replaces an existing file; when it fails, nothing half-written stays.
/// \param path of the .dbf; a .cpg that names the encoding is written beside it.
void write_dbf(const Table& table, const std::string& path);

}  // namespace kestrel::data

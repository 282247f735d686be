// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/table.h"

#include "platform/conversions.h"
#include "platform/errors.h"

#include <utility>

namespace kestrel::platform {

namespace {

/// Object id and key come before the numbers.
constexpr std::size_t kFirstNumberField = 2;

}  // namespace

Table::Table(std::string name, std::vector<Field> fields, int line) : m_name(std::move(name)) {
    if (fields.size() < kFirstNumberField) {
        throw RuntimeError(kInvalidProcedureCall, "A table needs an object id and a key: " + m_name, "Kestrel", line);
    }
    for (Field& field : fields) {
        add_field(std::move(field), line);
    }
}

int Table::find_field(std::string_view name) const noexcept {
    const auto found = m_field_positions.find(name);
    return found == m_field_positions.end() ? -1 : found->second;
}

int Table::add_field(Field field, int line) {
    const auto position = static_cast<int>(m_fields.size());
    if (!m_field_positions.try_emplace(field.name, position).second) {
        throw RuntimeError(kKeyAlreadyExists, "The table " + m_name + " has a field of this name: " + field.name,
                           "Kestrel", line);
    }
    m_fields.push_back(std::move(field));
    if (m_fields.size() > kFirstNumberField) {
        m_numbers.emplace_back(m_keys.size(), 0.0);
    }
    return position;
}

std::size_t Table::add_row(std::string key, int line) {
    const std::size_t row = m_keys.size();
    if (!m_rows.try_emplace(key, row).second) {
        throw RuntimeError(kKeyAlreadyExists, "The table " + m_name + " has a row of this key: " + key, "Kestrel",
                           line);
    }
    m_keys.push_back(std::move(key));
    for (std::vector<double>& column : m_numbers) {
        column.push_back(0);
    }
    return row;
}

std::optional<std::size_t> Table::find_row(const std::string& key) const {
    const auto found = m_rows.find(key);
    return found == m_rows.end() ? std::nullopt : std::optional(found->second);
}

const std::string& Table::key(std::size_t row, int line) const {
    check_row(row, line);
    return m_keys[row];
}

double Table::number(std::size_t row, int field, int line) const {
    check_row(row, line);
    return m_numbers[column_of(field, line)][row];
}

void Table::set_number(std::size_t row, int field, double value, int line) {
    check_row(row, line);
    const std::size_t column = column_of(field, line);
    m_numbers[column][row] = round_to_scale(value, m_fields[static_cast<std::size_t>(field)].scale);
}

std::size_t Table::column_of(int field, int line) const {
    if (field < static_cast<int>(kFirstNumberField) || field >= static_cast<int>(m_fields.size())) {
        throw RuntimeError(kSubscriptOutOfRange,
                           "The table " + m_name + " has no number field " + std::to_string(field), "Kestrel", line);
    }
    return static_cast<std::size_t>(field) - kFirstNumberField;
}

void Table::check_row(std::size_t row, int line) const {
    if (row >= m_keys.size()) {
        throw RuntimeError(kSubscriptOutOfRange, "The table " + m_name + " has no row " + std::to_string(row),
                           "Kestrel", line);
    }
}

}  // namespace kestrel::platform

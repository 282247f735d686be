// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/table.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <utility>

#include "base/errors.h"

namespace kestrel::data {

namespace {

/// Object id and key come before the numbers.
constexpr std::size_t kFirstNumberField = 2;

constexpr std::uint32_t kFree = UINT32_MAX;
constexpr std::size_t kFewestSlots = 16;

/// Makes `shared` the only holder of what it points at.
template <typename Part>
Part& owned(std::shared_ptr<Part>& shared) {
    if (shared.use_count() > 1) {
        shared = std::make_shared<Part>(*shared);
    }
    return *shared;
}

}  // namespace

/// The slot that holds the row of this key, or is free for it.
std::uint32_t& Table::Rows::slot_of(std::string_view key) {
    std::size_t at = std::hash<std::string_view>()(key) & (buckets.size() - 1);
    while (buckets[at] != kFree && keys[buckets[at]] != key) {
        at = (at + 1) & (buckets.size() - 1);
    }
    return buckets[at];
}

void Table::Rows::reserve(std::size_t count) {
    keys.reserve(count);
    buckets.assign(std::max(kFewestSlots, 2 * std::bit_ceil(count)), kFree);
    for (std::uint32_t row = 0; row < keys.size(); ++row) {
        slot_of(keys[row]) = row;
    }
}

Table::Table(std::string name, std::vector<Field> fields, int line)
    : m_name(std::move(name)), m_rows(std::make_shared<Rows>()) {
    if (fields.size() < kFirstNumberField) {
        throw base::RuntimeError(base::kInvalidProcedureCall, "A table needs an object id and a key: " + m_name,
                                 "Kestrel", line);
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
        throw base::RuntimeError(base::kKeyAlreadyExists,
                                 "The table " + m_name + " has a field of this name: " + field.name, "Kestrel", line);
    }
    m_fields.push_back(std::move(field));
    if (m_fields.size() > kFirstNumberField) {
        m_numbers.push_back(std::make_shared<Column>(row_count(), 0.0));
    }
    return position;
}

void Table::add_key(std::string key, int line) {
    Rows& rows = *m_rows;
    const std::size_t row = rows.keys.size();
    if (row == kFree) {
        throw base::RuntimeError(base::kOverflow, "The table " + m_name + " has too many rows", "Kestrel", line);
    }
    if (2 * (row + 1) > rows.buckets.size()) {
        rows.reserve(2 * (row + 1));
    }
    std::uint32_t& slot = rows.slot_of(key);
    if (slot != kFree) {
        throw base::RuntimeError(base::kKeyAlreadyExists, "The table " + m_name + " has a row of this key: " + key,
                                 "Kestrel", line);
    }
    rows.keys.push_back(std::move(key));
    slot = static_cast<std::uint32_t>(row);
}

std::size_t Table::add_row(std::string key, int line) {
    owned(m_rows);
    add_key(std::move(key), line);
    const std::size_t row = row_count() - 1;
    for (std::size_t column = 0; column < m_numbers.size(); ++column) {
        if (m_numbers[column]->size() <= row) {
            own_column(column).push_back(0);
        }
    }
    return row;
}

void Table::add_rows(std::vector<std::string> keys, int line) {
    Rows& rows = owned(m_rows);
    const std::size_t count = rows.keys.size() + keys.size();
    const auto zeros = std::make_shared<Column>(count, 0.0);
    for (std::size_t column = 0; column < m_numbers.size(); ++column) {
        if (rows.keys.empty()) {
            m_numbers[column] = zeros;
        } else if (m_numbers[column]->size() < count) {
            own_column(column).resize(count);
        }
    }
    rows.reserve(count);
    for (std::string& key : keys) {
        add_key(std::move(key), line);
    }
}

std::optional<std::size_t> Table::find_row(std::string_view key) const {
    if (m_rows->buckets.empty()) {
        return std::nullopt;
    }
    const std::uint32_t row = m_rows->slot_of(key);
    return row == kFree ? std::nullopt : std::optional<std::size_t>(row);
}

std::optional<std::size_t> Table::find_row(std::string_view key, std::size_t likely) const {
    return likely < row_count() && m_rows->keys[likely] == key ? likely : find_row(key);
}

std::vector<double>& Table::own_column(std::size_t column) {
    return owned(m_numbers[column]);
}

const std::string& Table::key(std::size_t row, int line) const {
    check_row(row, line);
    return m_rows->keys[row];
}

double Table::number(std::size_t row, int field, int line) const {
    check_row(row, line);
    return (*m_numbers[column_of(field, line)])[row];
}

std::span<const double> Table::numbers(int field, int line) const {
    return std::span(*m_numbers[column_of(field, line)]).first(row_count());
}

void Table::set_number(std::size_t row, int field, double value, int line) {
    check_row(row, line);
    const std::size_t column = column_of(field, line);
    own_column(column)[row] = base::round_to_scale(value, m_fields[static_cast<std::size_t>(field)].scale);
}

Table::NumberSetter Table::number_setter(int field, int line) {
    std::vector<double>& column = own_column(column_of(field, line));
    return {std::span(column).first(row_count()), m_fields[static_cast<std::size_t>(field)].scale};
}

void Table::NumberSetter::refuse_row(std::size_t row, int line) {
    throw base::RuntimeError(base::kSubscriptOutOfRange, "A table has no row " + std::to_string(row), "Kestrel", line);
}

std::size_t Table::column_of(int field, int line) const {
    if (field < static_cast<int>(kFirstNumberField) || field >= static_cast<int>(m_fields.size())) {
        throw base::RuntimeError(base::kSubscriptOutOfRange,
                                 "The table " + m_name + " has no number field " + std::to_string(field), "Kestrel",
                                 line);
    }
    return static_cast<std::size_t>(field) - kFirstNumberField;
}

void Table::check_row(std::size_t row, int line) const {
    if (row >= row_count()) {
        throw base::RuntimeError(base::kSubscriptOutOfRange,
                                 "The table " + m_name + " has no row " + std::to_string(row), "Kestrel", line);
    }
}

}  // namespace kestrel::data

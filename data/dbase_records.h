// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::data {

/// The records of a dBASE table (.dbf) of text and number fields, written one after the other.
///
/// A record is made by one set_...() for each of its fields, in any order, then append(). Fields of text and of whole
/// numbers grow when a value needs more room: what was written before is then laid out anew.
class DbaseRecords {
  public:
    /// \param path of a table that exists and holds no record; the widths of its fields are taken from its header.
    /// \throws RuntimeError (system error) when it cannot be opened.
    explicit DbaseRecords(const std::string& path);
    ~DbaseRecords();

    std::size_t field_count() const noexcept { return m_widths.size(); }
    int width(std::size_t field) const noexcept { return m_widths[field]; }
    /// Size of the file with all that was appended.
    std::int64_t size() const noexcept { return m_header_size + m_count * record_size(); }
    /// Bytes that a record takes.
    std::int64_t record_size() const noexcept { return static_cast<std::int64_t>(m_record.size()); }

    void set_null_text(std::size_t field);
    void set_null_number(std::size_t field);
    /// At most 254 bytes.
    void set_text(std::size_t field, std::string_view text);
    void set_integer(std::size_t field, std::int64_t value);
    /// \return false when the number, written with that many decimals, has no room in the field.
    bool set_real(std::size_t field, double value, int decimals);

    /// Appends the record. \throws RuntimeError 61 when the device is full, or the system's error.
    void append();
    /// Writes what is buffered and states the number of records. \throws RuntimeError as append() does.
    void flush();
    /// Flushes and closes. \throws RuntimeError as append() does.
    void close();

  private:
    struct State;

    char* place(std::size_t field) noexcept { return m_record.data() + m_offsets[field]; }
    void put_right(std::size_t field, std::string_view digits);
    void widen(std::size_t field, int width);
    void lay_out();

    std::unique_ptr<State> m_state;
    std::vector<int> m_widths;
    std::vector<std::size_t> m_offsets;
    std::string m_record;
    std::int64_t m_header_size = 0;
    std::int64_t m_count = 0;
};

}  // namespace kestrel::data

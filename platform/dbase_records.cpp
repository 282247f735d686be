// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/dbase_records.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "platform/files.h"

namespace kestrel::platform {

namespace {

constexpr std::size_t kFixedHeader = 32;
constexpr std::size_t kDescriptor = 32;
constexpr std::size_t kCountAt = 4;
constexpr std::size_t kHeaderSizeAt = 8;
constexpr std::size_t kRecordSizeAt = 10;
constexpr std::size_t kWidthAt = 16;  // in a field's descriptor
constexpr std::size_t kMostHeader = 65536;
constexpr char kEndOfFile = 0x1A;

std::size_t number_at(const std::string& header, std::size_t at) {
    return static_cast<unsigned char>(header.at(at)) + 256U * static_cast<unsigned char>(header.at(at + 1));
}

/// All bytes before the first record.
std::string header_of(const std::string& path) {
    std::string header = read_file_start(path, kMostHeader);
    header.resize(std::min(header.size(), number_at(header, kHeaderSizeAt)));
    return header;
}

/// The digits of a number with a point before the last `decimals` of them; what rounds to zero has no sign.
class Digits {
  public:
    Digits(double value, int decimals) {
        static constexpr std::array kPowers{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
        const bool short_way = decimals >= 0 && decimals < static_cast<int>(kPowers.size());
        const double scaled = short_way ? std::abs(value) * kPowers[static_cast<std::size_t>(decimals)] : 0;
        const double nearest = std::nearbyint(scaled);
        // Away from the middle between two decimals the rounding of the product does not matter.
        if (short_way && scaled < 1e12 && std::abs(std::abs(scaled - nearest) - 0.5) > 1e-3) {
            write(static_cast<std::uint64_t>(nearest), decimals, value < 0);
        } else {
            m_long = fmt::format("{:.{}f}", value, decimals);
            if (m_long.starts_with('-') && m_long.find_first_of("123456789") == std::string::npos) {
                m_long.erase(0, 1);
            }
        }
    }

    std::string_view text() const {
        return m_long.empty() ? std::string_view(m_begin, static_cast<std::size_t>(m_room.end() - m_begin)) : m_long;
    }

  private:
    void write(std::uint64_t number, int decimals, bool negative) {
        const bool zero = number == 0;
        int written = 0;
        do {
            if (written == decimals && decimals > 0) {
                *--m_begin = '.';
            }
            *--m_begin = static_cast<char>('0' + number % 10);
            number /= 10;
            ++written;
        } while (number != 0 || written <= decimals);
        if (negative && !zero) {
            *--m_begin = '-';
        }
    }

    std::array<char, 32> m_room{};
    char* m_begin = m_room.end();
    std::string m_long;
};

}  // namespace

DbaseRecords::DbaseRecords(const std::string& path)
    : m_file(path, static_cast<std::int64_t>(header_of(path).size())), m_header(header_of(path)) {
    for (std::size_t at = kFixedHeader; at + kDescriptor <= m_header.size(); at += kDescriptor) {
        m_widths.push_back(static_cast<unsigned char>(m_header[at + kWidthAt]));
    }
    lay_out();
}

/// Finds where the fields lie in a record. Every record begins with a mark that says that it is not deleted.
void DbaseRecords::lay_out() {
    m_offsets.clear();
    std::size_t offset = 1;
    for (const int width : m_widths) {
        m_offsets.push_back(offset);
        offset += static_cast<std::size_t>(width);
    }
    m_record.resize(offset, ' ');
}

void DbaseRecords::set_null_text(std::size_t field) {
    set_text(field, {});
}

void DbaseRecords::set_null_number(std::size_t field) {
    std::memset(place(field), '*', static_cast<std::size_t>(m_widths[field]));
}

void DbaseRecords::set_text(std::size_t field, std::string_view text) {
    if (text.size() > static_cast<std::size_t>(m_widths[field])) {
        widen(field, static_cast<int>(text.size()));
    }
    std::memset(place(field), ' ', static_cast<std::size_t>(m_widths[field]));
    text.copy(place(field), text.size());
}

void DbaseRecords::put_right(std::size_t field, std::string_view digits) {
    const std::size_t blanks = static_cast<std::size_t>(m_widths[field]) - digits.size();
    std::memset(place(field), ' ', blanks);
    digits.copy(place(field) + blanks, digits.size());
}

void DbaseRecords::set_integer(std::size_t field, std::int64_t value) {
    std::array<char, 24> room{};
    const char* const end = std::to_chars(room.begin(), room.end(), value).ptr;
    const std::string_view digits(room.data(), static_cast<std::size_t>(end - room.data()));
    if (digits.size() > static_cast<std::size_t>(m_widths[field])) {
        widen(field, static_cast<int>(digits.size()));
    }
    put_right(field, digits);
}

bool DbaseRecords::set_real(std::size_t field, double value, int decimals) {
    const Digits digits(value, decimals);
    if (digits.text().size() > static_cast<std::size_t>(m_widths[field])) {
        return false;
    }
    put_right(field, digits.text());
    return true;
}

/// `records` with room added to one field.
std::string DbaseRecords::widened(const std::string& records, std::size_t field, int added, bool at_left) const {
    const std::size_t cut = m_offsets[field] + (at_left ? 0 : static_cast<std::size_t>(m_widths[field]));
    std::string result;
    result.reserve(records.size() + records.size() / m_record.size() * static_cast<std::size_t>(added));
    for (std::size_t at = 0; at < records.size(); at += m_record.size()) {
        const bool is_null = at_left && records[at + cut] == '*';
        result.append(records, at, cut);
        result.append(static_cast<std::size_t>(added), is_null ? '*' : ' ');
        result.append(records, at + cut, m_record.size() - cut);
    }
    return result;
}

void DbaseRecords::widen(std::size_t field, int width) {
    const std::size_t descriptor = kFixedHeader + field * kDescriptor;
    const bool at_left = m_header[descriptor + 11] != 'C';  // numbers stand at the right
    const int added = width - m_widths[field];
    const std::string records = m_file.take_from(static_cast<std::int64_t>(m_header.size()));
    m_file.buffer() = widened(records, field, added, at_left);
    m_record = widened(m_record, field, added, at_left);
    m_header[descriptor + kWidthAt] = static_cast<char>(width);
    m_widths[field] = width;
    lay_out();
    m_header[kRecordSizeAt] = static_cast<char>(m_record.size() & 255);
    m_header[kRecordSizeAt + 1] = static_cast<char>(m_record.size() >> 8);
    m_file.appended();
}

void DbaseRecords::append() {
    m_record[0] = ' ';
    m_file.buffer().append(m_record);
    ++m_count;
    m_file.appended();
}

void DbaseRecords::flush() {
    m_file.flush();
    std::memcpy(m_header.data() + kCountAt, &m_count, sizeof m_count);
    m_file.replace(0, m_header);
}

void DbaseRecords::close() {
    flush();
    m_file.buffer().push_back(kEndOfFile);
    m_file.close();
}

}  // namespace kestrel::platform

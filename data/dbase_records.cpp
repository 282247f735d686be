// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/dbase_records.h"

#include <shapefil.h>

#include <array>
#include <charconv>
#include <cstring>
#include <limits>

#include "data/buffered_file.h"

namespace kestrel::data {

namespace {

struct CloseHandle {
    void operator()(DBFInfo* handle) const { DBFClose(handle); }
};

/// Room for the digits of the largest double with as many decimals as a field can have.
constexpr std::size_t kLongestNumber = std::numeric_limits<double>::max_exponent10 + XBASE_FLD_MAX_WIDTH + 8;

}  // namespace

struct DbaseRecords::State {
    std::string path;
    std::unique_ptr<DBFInfo, CloseHandle> handle;
};

DbaseRecords::DbaseRecords(const std::string& path) : m_state(std::make_unique<State>()) {
    SAHooks hooks{};
    SASetupDefaultHooks(&hooks);
    use_buffered_files(hooks);
    m_state->path = path;
    forget_file_failure();
    m_state->handle.reset(DBFOpenLL(path.c_str(), "rb+", &hooks));
    check_file_failure(m_state->handle != nullptr, path);
    m_header_size = m_state->handle->nHeaderLength;
    lay_out();
}

DbaseRecords::~DbaseRecords() = default;

/// Finds where the fields lie in a record. Every record begins with a mark that says that it is not deleted.
void DbaseRecords::lay_out() {
    const DBFInfo& table = *m_state->handle;
    const auto fields = static_cast<std::size_t>(table.nFields);
    m_widths.assign(table.panFieldSize, table.panFieldSize + fields);
    m_offsets.assign(table.panFieldOffset, table.panFieldOffset + fields);
    m_record.resize(static_cast<std::size_t>(table.nRecordLength), ' ');
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
    std::array<char, kLongestNumber> room;
    const char* const end = std::to_chars(room.begin(), room.end(), value, std::chars_format::fixed, decimals).ptr;
    std::string_view digits(room.data(), static_cast<std::size_t>(end - room.data()));
    if (digits.starts_with('-') && digits.find_first_of("123456789") == std::string_view::npos) {
        digits.remove_prefix(1);  // there is no zero below zero
    }
    if (digits.size() > static_cast<std::size_t>(m_widths[field])) {
        return false;
    }
    put_right(field, digits);
    return true;
}

/// Gives a field more room, in the table with all its records and in the one that is being made.
void DbaseRecords::widen(std::size_t field, int width) {
    DBFInfo* const table = m_state->handle.get();
    const int number = static_cast<int>(field);
    const std::string before = m_record;
    const std::vector<int> widths = m_widths;
    const std::vector<std::size_t> offsets = m_offsets;
    std::array<char, XBASE_FLDNAME_LEN_READ + 1> name{};
    int decimals = 0;
    DBFGetFieldInfo(table, number, name.data(), nullptr, &decimals);
    const char type = DBFGetNativeFieldType(table, number);
    forget_file_failure();
    const bool altered = DBFAlterFieldDefn(table, number, name.data(), type, width, decimals) != 0;
    check_file_failure(altered, m_state->path);
    lay_out();
    m_record.assign(m_record.size(), ' ');
    for (std::size_t i = 0; i < widths.size(); ++i) {
        std::memcpy(place(i), before.data() + offsets[i], static_cast<std::size_t>(widths[i]));
    }
}

void DbaseRecords::append() {
    m_record[0] = ' ';
    DBFInfo* const table = m_state->handle.get();
    forget_file_failure();
    const bool written = DBFWriteTuple(table, static_cast<int>(m_count), m_record.data()) != 0;
    check_file_failure(written, m_state->path);
    ++m_count;
}

void DbaseRecords::flush() {
    DBFInfo* const table = m_state->handle.get();
    forget_file_failure();
    DBFUpdateHeader(table);
    table->sHooks.FFlush(table->fp);
    check_file_failure(true, m_state->path);
}

void DbaseRecords::close() {
    if (m_state->handle != nullptr) {
        flush();
        m_state->handle.reset();
        check_file_failure(true, m_state->path);
    }
}

}  // namespace kestrel::data

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

/// \file
/// For this folder's own sources: numbers as files hold them, and a file that grows at its end.
namespace kestrel::platform {

/// Appends a number with its low byte first, as this machine holds it.
template <typename Number>
void append_little_endian(std::string& bytes, Number number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

/// Appends a 32-bit number with its high byte first.
void append_big_endian(std::string& bytes, std::int64_t number);

/// A file that grows at its end, through a buffer, and whose earlier bytes can be replaced.
class AppendedFile {
  public:
    /// Opens a file that exists; what stands behind `end` is cut off.
    /// \throws RuntimeError (system error) when it cannot be opened.
    AppendedFile(std::string path, std::int64_t end);

    const std::string& path() const noexcept { return m_path; }
    /// Where the next byte goes.
    std::int64_t end() const noexcept { return m_end + static_cast<std::int64_t>(m_buffer.size()); }

    /// The bytes to be appended: callers add theirs, then call appended().
    std::string& buffer() noexcept { return m_buffer; }
    /// Writes the buffer once it is large. \throws RuntimeError 61 when the device is full, or the system's error.
    void appended();
    /// Writes the buffer, whatever its size. \throws RuntimeError as appended() does.
    void flush();
    /// Replaces bytes that have been written; `offset` + size must not lie behind the end.
    void replace(std::int64_t offset, std::string_view bytes);
    /// Gives back everything from `offset` on, and cuts it off.
    std::string take_from(std::int64_t offset);
    /// Closes the file. \throws RuntimeError as appended() does.
    void close();

  private:
    void check(int error_code) const;

    std::string m_path;
    Descriptor m_descriptor;
    std::int64_t m_end;
    std::string m_buffer;
};

}  // namespace kestrel::platform

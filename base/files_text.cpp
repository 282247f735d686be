// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "base/files.h"

#include "base/file_descriptor.h"
#include "base/text.h"

namespace kestrel::base {

namespace {

/// The code point of a Windows-1252 byte. The five bytes without a character stand for the control codes of the same
/// number.
char32_t code_point_1252(unsigned char byte) {
    static constexpr char16_t kUpper[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                            0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
    return byte >= 0x80 && byte < 0xA0 ? kUpper[byte - 0x80] : byte;
}

/// Appends a code point below 0x10000.
void append_utf8(std::string& text, char32_t code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | (code >> 6));
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | (code >> 12));
        text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    }
}

/// The line that starts at `position`, which moves behind its end.
std::string_view next_line(std::string_view text, std::size_t& position) {
    const std::size_t end = text.find('\n', position);
    if (end == std::string_view::npos) {
        const std::string_view last = text.substr(position);
        position = text.size();
        return last;
    }
    std::string_view line = text.substr(position, end - position);
    position = end + 1;
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

}  // namespace

std::string to_utf8(std::string_view bytes) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(kByteOrderMark)) {
        bytes.remove_prefix(kByteOrderMark.size());
    }
    if (valid_utf8(bytes)) {
        return std::string(bytes);
    }
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 8);
    for (const char byte : bytes) {
        append_utf8(text, code_point_1252(static_cast<unsigned char>(byte)));
    }
    return text;
}

std::vector<std::string> split_lines(std::string_view text) {
    std::vector<std::string> lines;
    for (std::size_t position = 0; position < text.size();) {
        lines.emplace_back(next_line(text, position));
    }
    return lines;
}

TextWriter::TextWriter(const std::string& path, int line)
    : m_path(path), m_descriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    if (m_descriptor < 0) {
        throw path_error(errno, path, line);
    }
}

TextWriter::~TextWriter() {
    if (m_descriptor >= 0) {
        static_cast<void>(write_all(m_descriptor, m_buffer));
        ::close(m_descriptor);
    }
}

void TextWriter::write_line(std::string_view text, int line) {
    constexpr std::size_t kBufferSize = 65536;
    m_buffer.append(text).append("\r\n");
    if (m_buffer.size() >= kBufferSize) {
        flush_buffer(line);
    }
}

void TextWriter::close(int line) {
    if (m_descriptor < 0) {
        return;
    }
    flush_buffer(line);
    if (::close(std::exchange(m_descriptor, -1)) != 0) {
        throw path_error(errno, m_path, line);
    }
}

void TextWriter::flush_buffer(int line) {
    const int error = write_all(m_descriptor, m_buffer);
    m_buffer.clear();  // a failed write is not tried again
    if (error != 0) {
        throw path_error(error, m_path, line);
    }
}

TextReader::TextReader(const std::string& path, int line) : m_text(to_utf8(read_file(path, line))) {}

std::optional<std::string> TextReader::read_line() {
    if (m_position >= m_text.size()) {
        return std::nullopt;
    }
    return std::string(next_line(m_text, m_position));
}

}  // namespace kestrel::base

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/appended_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <bit>
#include <cerrno>

namespace kestrel::platform {

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 18;

static_assert(std::endian::native == std::endian::little, "numbers are copied as they lie in memory");

}  // namespace

void append_big_endian(std::string& bytes, std::int64_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<char>(number >> shift & 255));
    }
}

AppendedFile::AppendedFile(std::string path, std::int64_t end)
    : m_path(std::move(path)), m_descriptor(::open(m_path.c_str(), O_RDWR | O_CLOEXEC)), m_end(end) {
    if (!m_descriptor || ::ftruncate(m_descriptor.get(), end) != 0 ||
        ::lseek(m_descriptor.get(), end, SEEK_SET) != end) {
        throw system_error(errno, m_path);
    }
}

void AppendedFile::check(int error_code) const {
    if (error_code != 0) {
        throw system_error(error_code, m_path);
    }
}

void AppendedFile::appended() {
    if (m_buffer.size() >= kBufferSize) {
        flush();
    }
}

void AppendedFile::flush() {
    check(write_all(m_descriptor.get(), m_buffer));
    m_end += static_cast<std::int64_t>(m_buffer.size());
    m_buffer.clear();
}

void AppendedFile::replace(std::int64_t offset, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(m_descriptor.get(), bytes.data(), bytes.size(), offset);
        if (written < 0 && errno != EINTR) {
            check(errno);
        }
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
            offset += written;
        }
    }
}

std::string AppendedFile::take_from(std::int64_t offset) {
    flush();
    std::string bytes(static_cast<std::size_t>(m_end - offset), '\0');
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t got = ::pread(m_descriptor.get(), bytes.data() + done, bytes.size() - done,
                                    offset + static_cast<std::int64_t>(done));
        if (got > 0) {
            done += static_cast<std::size_t>(got);
        } else if (got == 0 || errno != EINTR) {
            check(got == 0 ? EIO : errno);
        }
    }
    check(::ftruncate(m_descriptor.get(), offset) == 0 ? 0 : errno);
    check(::lseek(m_descriptor.get(), offset, SEEK_SET) == offset ? 0 : errno);
    m_end = offset;
    return bytes;
}

void AppendedFile::close() {
    flush();
    check(::close(m_descriptor.release()) == 0 ? 0 : errno);
}

}  // namespace kestrel::platform

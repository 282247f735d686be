// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/buffered_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <string_view>
#include <utility>

#include "base/errors.h"
#include "base/file_descriptor.h"

namespace kestrel::data {

namespace {

/// As the library has them.
using Offset = unsigned long;
using File = int*;

constexpr std::size_t kBufferSize = std::size_t{1} << 18;

/// errno of the first call that failed; 0 for none. The library tells of failures, but not of their reasons.
thread_local int failure = 0;

void fail(int error_code) noexcept {
    if (failure == 0) {
        failure = error_code;
    }
}

/// A file with a window of bytes that are not written yet.
class BufferedFile {
  public:
    explicit BufferedFile(int descriptor) : m_descriptor(descriptor) {}

    std::size_t read(char* bytes, std::size_t size);
    bool write(std::string_view bytes);
    bool seek(Offset offset, int whence);
    Offset position() const noexcept { return m_position; }
    bool flush();
    bool close();

  private:
    base::Descriptor m_descriptor;
    Offset m_position = 0;
    Offset m_buffer_start = 0;
    std::string m_buffer;
};

bool BufferedFile::flush() {
    std::string_view rest = m_buffer;
    Offset offset = m_buffer_start;
    while (!rest.empty()) {
        const ssize_t written = ::pwrite(m_descriptor.get(), rest.data(), rest.size(), static_cast<off_t>(offset));
        if (written < 0 && errno != EINTR) {
            fail(errno);
            m_buffer.clear();  // or it would be tried again with every call
            return false;
        }
        if (written > 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
            offset += static_cast<Offset>(written);
        }
    }
    m_buffer.clear();
    return true;
}

std::size_t BufferedFile::read(char* bytes, std::size_t size) {
    if (!flush()) {
        return 0;
    }
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = ::pread(m_descriptor.get(), bytes + done, size - done, static_cast<off_t>(m_position));
        if (got == 0 || (got < 0 && errno != EINTR)) {
            if (got < 0) {
                fail(errno);
            }
            break;
        }
        if (got > 0) {
            done += static_cast<std::size_t>(got);
            m_position += static_cast<Offset>(got);
        }
    }
    return done;
}

bool BufferedFile::write(std::string_view bytes) {
    const bool adjoins = m_position >= m_buffer_start && m_position <= m_buffer_start + m_buffer.size();
    if ((!adjoins || m_buffer.size() >= kBufferSize) && !flush()) {
        return false;
    }
    if (m_buffer.empty()) {
        m_buffer_start = m_position;
    }
    const std::size_t at = static_cast<std::size_t>(m_position - m_buffer_start);
    m_buffer.replace(at, std::min(bytes.size(), m_buffer.size() - at), bytes);
    m_position += bytes.size();
    return true;
}

bool BufferedFile::seek(Offset offset, int whence) {
    if (whence == SEEK_SET) {
        m_position = offset;
    } else if (whence == SEEK_CUR) {
        m_position += offset;
    } else {
        const off_t end = flush() ? ::lseek(m_descriptor.get(), 0, SEEK_END) : -1;
        if (end < 0) {
            fail(errno);
            return false;
        }
        m_position = static_cast<Offset>(end) + offset;
    }
    return true;
}

bool BufferedFile::close() {
    const bool flushed = flush();
    if (::close(m_descriptor.release()) != 0) {
        fail(errno);
        return false;
    }
    return flushed;
}

BufferedFile& file_of(File file) {
    return *reinterpret_cast<BufferedFile*>(file);
}

}  // namespace

// What the library calls. Nothing may be thrown through it: lack of memory is a failed call.

File open_buffered_file(const char* name, const char* access) try {
    const int flags = std::strchr(access, '+') != nullptr ? O_RDWR : O_RDONLY;
    const int descriptor = ::open(name, flags | O_CLOEXEC);
    if (descriptor < 0) {
        if (errno != ENOENT) {  // the library looks for files that need not be there
            fail(errno);
        }
        return nullptr;
    }
    return reinterpret_cast<File>(new BufferedFile(descriptor));
} catch (const std::exception&) {
    fail(ENOMEM);
    return nullptr;
}

Offset read_buffered_file(void* bytes, Offset size, Offset count, File file) {
    return size == 0 ? 0 : file_of(file).read(static_cast<char*>(bytes), size * count) / size;
}

Offset write_buffered_file(const void* bytes, Offset size, Offset count, File file) try {
    return file_of(file).write({static_cast<const char*>(bytes), size * count}) ? count : 0;
} catch (const std::exception&) {
    fail(ENOMEM);
    return 0;
}

Offset seek_buffered_file(File file, Offset offset, int whence) {
    return file_of(file).seek(offset, whence) ? 0 : static_cast<Offset>(-1);
}

Offset tell_buffered_file(File file) {
    return file_of(file).position();
}

int flush_buffered_file(File file) {
    return file_of(file).flush() ? 0 : EOF;
}

int close_buffered_file(File file) {
    const std::unique_ptr<BufferedFile> owned(&file_of(file));
    return owned->close() ? 0 : EOF;
}

void forget_file_failure() noexcept {
    failure = 0;
}

void check_file_failure(bool good, const std::string& path) {
    if (const int error_code = std::exchange(failure, 0); error_code != 0) {
        throw base::system_error(error_code, path);
    }
    if (!good) {
        throw base::RuntimeError(base::kLibraryFailure, path + " cannot be written");
    }
}

}  // namespace kestrel::data

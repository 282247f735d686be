// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/shapelib_support.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string_view>
#include <utility>

#include "platform/errors.h"
#include "platform/file_descriptor.h"

namespace kestrel::platform {

namespace {

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
    bool seek(SAOffset offset, int whence);
    SAOffset position() const noexcept { return m_position; }
    bool flush();
    bool close();

  private:
    Descriptor m_descriptor;
    SAOffset m_position = 0;
    SAOffset m_buffer_start = 0;
    std::string m_buffer;
};

bool BufferedFile::flush() {
    std::string_view rest = m_buffer;
    SAOffset offset = m_buffer_start;
    while (!rest.empty()) {
        const ssize_t written = ::pwrite(m_descriptor.get(), rest.data(), rest.size(), static_cast<off_t>(offset));
        if (written < 0 && errno != EINTR) {
            fail(errno);
            m_buffer.clear();  // or it would be tried again with every call
            return false;
        }
        if (written > 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
            offset += static_cast<SAOffset>(written);
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
            m_position += static_cast<SAOffset>(got);
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

bool BufferedFile::seek(SAOffset offset, int whence) {
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
        m_position = static_cast<SAOffset>(end) + offset;
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

BufferedFile& file_of(SAFile file) {
    return *reinterpret_cast<BufferedFile*>(file);
}

// What the library calls. Nothing may be thrown through it: lack of memory is a failed call.

SAFile open_file(const char* name, const char* access) try {
    const int flags = std::strchr(access, '+') != nullptr ? O_RDWR : O_RDONLY;
    const int descriptor = ::open(name, flags | O_CLOEXEC);
    if (descriptor < 0) {
        if (errno != ENOENT) {  // the library looks for files that need not be there
            fail(errno);
        }
        return nullptr;
    }
    return reinterpret_cast<SAFile>(new BufferedFile(descriptor));
} catch (const std::exception&) {
    fail(ENOMEM);
    return nullptr;
}

SAOffset read_file_part(void* bytes, SAOffset size, SAOffset count, SAFile file) {
    return size == 0 ? 0 : file_of(file).read(static_cast<char*>(bytes), size * count) / size;
}

SAOffset write_file_part(void* bytes, SAOffset size, SAOffset count, SAFile file) try {
    return file_of(file).write({static_cast<const char*>(bytes), size * count}) ? count : 0;
} catch (const std::exception&) {
    fail(ENOMEM);
    return 0;
}

SAOffset seek_file(SAFile file, SAOffset offset, int whence) {
    return file_of(file).seek(offset, whence) ? 0 : static_cast<SAOffset>(-1);
}

SAOffset tell_file(SAFile file) {
    return file_of(file).position();
}

int flush_file(SAFile file) {
    return file_of(file).flush() ? 0 : EOF;
}

int close_file(SAFile file) {
    const std::unique_ptr<BufferedFile> owned(&file_of(file));
    return owned->close() ? 0 : EOF;
}

/// Its texts go nowhere: check_file_failure() tells what failed, and why.
void hear_nothing(const char*) {}

}  // namespace

SAHooks buffered_file_hooks() {
    SAHooks hooks{};
    SASetupDefaultHooks(&hooks);
    hooks.FOpen = open_file;
    hooks.FRead = read_file_part;
    hooks.FWrite = write_file_part;
    hooks.FSeek = seek_file;
    hooks.FTell = tell_file;
    hooks.FFlush = flush_file;
    hooks.FClose = close_file;
    hooks.Error = hear_nothing;
    return hooks;
}

void forget_file_failure() noexcept {
    failure = 0;
}

void check_file_failure(bool good, const std::string& path) {
    if (const int error_code = std::exchange(failure, 0); error_code != 0) {
        throw system_error(error_code, path);
    }
    if (!good) {
        throw RuntimeError(kLibraryFailure, path + " cannot be written");
    }
}

}  // namespace kestrel::platform

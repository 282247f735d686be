// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <stdlib.h>
#include <strings.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>

#include "base/file_descriptor.h"

namespace kestrel::base {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kSeparators = "/\\";

/// Makes a new file with a hidden name of its own beside `path`.
Descriptor create_sibling(const std::string& path, std::string& sibling) {
    static std::atomic<unsigned> counter{0};
    int descriptor = -1;
    do {
        sibling = join_path(folder_of(path), fmt::format(".kestrel-{}-{}.tmp", ::getpid(), ++counter));
        descriptor = ::open(sibling.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (descriptor < 0 && errno == EEXIST);
    return Descriptor(descriptor);
}

/// Fills the new file and puts it in the place of `path`; 0, or the errno of the failure.
int fill_and_rename(Descriptor& file, const std::string& sibling, const std::string& path, std::string_view bytes) {
    struct stat old = {};
    if (::stat(path.c_str(), &old) == 0 && S_ISREG(old.st_mode)) {
        static_cast<void>(::fchmod(file.get(), old.st_mode & 0777));  // the owner may differ; then the default stays
    }
    if (const int error = write_all(file.get(), bytes)) {
        return error;
    }
    if (::close(file.release()) != 0 || ::rename(sibling.c_str(), path.c_str()) != 0) {
        return errno;
    }
    return 0;
}

/// The first folder that an environment variable of this name, in any letter case, gives; empty when none does.
std::string folder_from_environment(std::string_view name) {
    for (char** variable = ::environ; variable != nullptr && *variable != nullptr; ++variable) {
        const std::string_view entry = *variable;
        if (entry.size() > name.size() && entry[name.size()] == '=' &&
            ::strncasecmp(entry.data(), name.data(), name.size()) == 0) {
            std::string folder(entry.substr(name.size() + 1));
            if (folder_exists(folder)) {
                return folder;
            }
        }
    }
    return {};
}

}  // namespace

RuntimeError path_error(int error_code, const std::string& path, int line) {
    const RuntimeError error = system_error(error_code, path, line);
    const std::string folder = folder_of(path);
    const bool no_folder = error_code == ENOENT && !folder.empty() && !folder_exists(folder);
    return no_folder ? RuntimeError(kPathNotFound, error.description(), error.source(), line) : error;
}

int write_all(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

bool file_exists(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

bool folder_exists(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void create_folder(const std::string& path, int line) {
    if (::mkdir(path.c_str(), 0777) == 0) {
        return;
    }
    const int error = errno;
    if (error != EEXIST || !folder_exists(path)) {
        throw error == ENOENT ? RuntimeError(kPathNotFound, system_error(error, path).description(), "Kestrel", line)
                              : system_error(error, path, line);
    }
}

void create_folders(const std::string& path, int line) {
    std::error_code error;
    fs::create_directories(path, error);
    if (error) {
        throw system_error(error.value(), path, line);
    }
}

void copy_file(const std::string& from, const std::string& to, int line) {
    write_file(to, read_file(from, line), line);
}

void rename_file(const std::string& from, const std::string& to, int line) {
    if (::rename(from.c_str(), to.c_str()) != 0) {
        const int error = errno;
        throw path_error(error, file_exists(from) || folder_exists(from) ? to : from, line);
    }
}

void remove_file(const std::string& path, int line) {
    if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
        throw path_error(errno, path, line);
    }
}

bool folder_writable(const std::string& path) {
    std::string probe = join_path(path, ".kestrel-XXXXXX");
    const Descriptor file(::mkstemp(probe.data()));
    return file && ::unlink(probe.c_str()) == 0;
}

std::string make_unique_folder(const std::string& parent, const std::string& prefix, int line) {
    std::string path = join_path(parent, prefix + "XXXXXX");
    if (::mkdtemp(path.data()) == nullptr) {
        throw path_error(errno, path, line);
    }
    return path;
}

std::string file_name_of(std::string_view path) {
    const std::size_t separator = path.find_last_of(kSeparators);
    return std::string(separator == std::string_view::npos ? path : path.substr(separator + 1));
}

std::string folder_of(std::string_view path) {
    const std::size_t separator = path.find_last_of(kSeparators);
    if (separator == std::string_view::npos) {
        return {};
    }
    return std::string(path.substr(0, separator == 0 ? 1 : separator));
}

std::string base_name_of(std::string_view path) {
    const std::string name = file_name_of(path);
    const std::size_t point = name.rfind('.');
    return point == std::string::npos || point == 0 ? name : name.substr(0, point);
}

std::string real_path(const std::string& path) {
    std::error_code error;
    const fs::path result = fs::weakly_canonical(path, error);
    return (error ? fs::absolute(path) : result).string();
}

bool same_file(const std::string& one, const std::string& other) {
    std::error_code ignored;  // what does not exist is no file
    return fs::equivalent(one, other, ignored);
}

std::string join_path(std::string_view folder, std::string_view name) {
    const bool separated = folder.empty() || kSeparators.find(folder.back()) != std::string_view::npos;
    return fmt::format("{}{}{}", folder, separated ? "" : "/", name);
}

std::string temporary_folder() {
    for (const std::string_view name : {"Temp", "Tmp", "TMPDIR"}) {
        const std::string folder = folder_from_environment(name);
        if (!folder.empty()) {
            return folder;
        }
    }
    return folder_exists("/tmp") ? "/tmp" : "";
}

std::string read_file(const std::string& path, int line) {
    return read_file_start(path, std::string::npos, line);
}

std::string read_file_start(const std::string& path, std::size_t limit, int line) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) {
        throw path_error(errno, path, line);
    }
    std::string bytes;
    struct stat status = {};
    if (::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode)) {
        bytes.reserve(std::min(limit, static_cast<std::size_t>(status.st_size)));
    }
    char block[65536];
    while (true) {
        const ssize_t count = ::read(file.get(), block, std::min(sizeof block, limit - bytes.size()));
        if (count == 0) {
            return bytes;
        }
        if (count > 0) {
            bytes.append(block, static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            throw path_error(errno, path, line);
        }
    }
}

void write_file(const std::string& path, std::string_view bytes, int line) {
    std::error_code ignored;  // of a path that cannot be resolved; making the file says what is wrong
    const fs::path resolved = fs::is_symlink(path, ignored) ? fs::weakly_canonical(path, ignored) : fs::path(path);
    const std::string target = resolved.empty() ? path : resolved.string();
    // The rename would replace a device, and a file that may not be written.
    struct stat status = {};
    if (::stat(target.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        throw RuntimeError(kPathFileAccessError, "This is not a file: " + path, "Kestrel", line);
    }
    if (file_exists(target) && ::access(target.c_str(), W_OK) != 0) {
        throw path_error(errno, path, line);
    }
    std::string sibling;
    Descriptor file = create_sibling(target, sibling);
    if (!file) {
        throw path_error(errno, path, line);
    }
    if (const int error = fill_and_rename(file, sibling, target, bytes)) {
        ::unlink(sibling.c_str());
        throw path_error(error, path, line);
    }
}

FolderLock::FolderLock(const std::string& folder, int line) {
    const std::string path = join_path(folder, ".kestrel.lock");
    Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!file && errno == EACCES) {
        // Made by another user; reading is enough to lock it.
        file.reset(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    }
    if (!file) {
        throw path_error(errno, path, line);
    }
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK) {
            throw path_error(errno, path, line);
        }
        throw RuntimeError(
            kPermissionDenied,
            fmt::format(
                "Another run, or another save of coefficients, is using the folder \"{}\"; try again when it has ended",
                folder),
            "Kestrel", line);
    }
    m_descriptor = file.release();
}

FolderLock::~FolderLock() {
    ::close(m_descriptor);  // releases the lock
}

}  // namespace kestrel::base

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

#include "base/files.h"

#include "base/file_descriptor.h"

namespace kestrel::base {

namespace {

constexpr mode_t kOwnerAll = S_IRWXU;

std::string without_trailing_separators(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

/// Deletes what lies in folders, by descriptors and names relative to them, so that no link that appears meanwhile
/// leads out of the folder. Goes on after a failure and keeps the first one.
class FolderEmptier {
  public:
    void empty(int folder, const std::string& path, std::string_view keep);
    void throw_failure(int line) const {
        if (m_error_code != 0) {
            throw system_error(m_error_code, m_failed_path, line);
        }
    }

  private:
    void remove(int folder, const char* name, const std::string& path);
    static int open_subfolder(int folder, const char* name);
    void fail(const std::string& path) {
        if (m_error_code == 0) {
            m_error_code = errno;
            m_failed_path = path;
        }
    }

    int m_error_code = 0;
    std::string m_failed_path;
};

/// Opens a subfolder, not a link to one, also where the owner has no right to read it yet.
int FolderEmptier::open_subfolder(int folder, const char* name) {
    constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    const int opened = ::openat(folder, name, kFlags);
    if (opened >= 0 || errno != EACCES) {
        return opened;
    }
    if (::fchmodat(folder, name, kOwnerAll, AT_SYMLINK_NOFOLLOW) != 0) {
        errno = EACCES;
        return -1;
    }
    return ::openat(folder, name, kFlags);
}

void FolderEmptier::remove(int folder, const char* name, const std::string& path) {
    if (::unlinkat(folder, name, 0) == 0 || errno == ENOENT) {
        return;
    }
    const int unlink_error = errno;
    const Descriptor subfolder(open_subfolder(folder, name));
    if (!subfolder) {
        // What is no folder, or a link, could not be deleted for the reason that unlink gave.
        errno = errno == ENOTDIR || errno == ELOOP ? unlink_error : errno;
        fail(path);
        return;
    }
    empty(subfolder.get(), path, {});
    if (::unlinkat(folder, name, AT_REMOVEDIR) != 0 && errno != ENOENT) {
        fail(path);
    }
}

void FolderEmptier::empty(int folder, const std::string& path, std::string_view keep) {
    struct stat status = {};
    if (::fstat(folder, &status) == 0 && (status.st_mode & kOwnerAll) != kOwnerAll) {
        // May fail for a folder of another owner; then deleting says what is wrong.
        static_cast<void>(::fchmod(folder, (status.st_mode & 07777) | kOwnerAll));
    }
    Descriptor copy(::fcntl(folder, F_DUPFD_CLOEXEC, 0));  // closedir() closes the descriptor that it was given
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(copy ? ::fdopendir(copy.get()) : nullptr, &::closedir);
    if (listing == nullptr) {
        fail(path);
        return;
    }
    copy.release();
    // Names are gathered first: deleting while reading may skip entries.
    std::vector<std::string> names;
    while (const dirent* entry = ::readdir(listing.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != ".." && (keep.empty() || name != keep)) {
            names.emplace_back(name);
        }
    }
    for (const std::string& name : names) {
        remove(folder, name.c_str(), join_path(path, name));
    }
}

/// Opens a folder to delete in it. \throws RuntimeError 75 for a link and for what is no folder.
Descriptor open_to_empty(const std::string& path, int line) {
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0) {
        throw path_error(errno, path, line);
    }
    if (S_ISLNK(status.st_mode)) {
        throw RuntimeError(kPathFileAccessError, "The folder is a symbolic link and is not emptied: " + path, "Kestrel",
                           line);
    }
    if (!S_ISDIR(status.st_mode)) {
        throw RuntimeError(kPathFileAccessError, "This is not a folder: " + path, "Kestrel", line);
    }
    Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder) {
        throw path_error(errno, path, line);
    }
    return folder;
}

}  // namespace

void empty_folder(const std::string& path, std::string_view keep, int line) {
    // With a separator at its end a link would be followed.
    const std::string folder_path = without_trailing_separators(path);
    const Descriptor folder = open_to_empty(folder_path, line);
    FolderEmptier emptier;
    emptier.empty(folder.get(), folder_path, keep);
    emptier.throw_failure(line);
}

void remove_folder(const std::string& path, int line) {
    const std::string folder_path = without_trailing_separators(path);
    struct stat status = {};
    if (::lstat(folder_path.c_str(), &status) != 0 && errno == ENOENT) {
        return;
    }
    empty_folder(folder_path, {}, line);
    if (::rmdir(folder_path.c_str()) != 0 && errno != ENOENT) {
        throw path_error(errno, folder_path, line);
    }
}

}  // namespace kestrel::base

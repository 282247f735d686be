// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Files, folders and text files. Paths are native. Failures are RuntimeError with the number that fits, the path in
/// the description, and the caller's line: 53 for a missing file, 76 for a missing folder, 70 for lack of permission,
/// 61 for a full device, 75 otherwise.
namespace kestrel::base {

/// Whether there is a file, or a link to one; a folder is none.
bool file_exists(const std::string& path);
bool folder_exists(const std::string& path);
/// Makes one folder; its parent must exist. Nothing happens when it is there already.
void create_folder(const std::string& path, int line = __builtin_LINE());
/// Makes the folder and its missing parents.
void create_folders(const std::string& path, int line = __builtin_LINE());
/// Copies the bytes of a file, replacing `to`; when it fails `to` is as it was.
void copy_file(const std::string& from, const std::string& to, int line = __builtin_LINE());
/// Renames within one file system, replacing `to`.
void rename_file(const std::string& from, const std::string& to, int line = __builtin_LINE());
/// Removes a file that may be missing, also one that is read-only.
void remove_file(const std::string& path, int line = __builtin_LINE());
/// Whether files can be made in the folder, found out by making one.
bool folder_writable(const std::string& path);

/// Empties a folder: files, read-only ones too, links (never what they point at) and subfolders. The folder stays.
/// When something cannot be deleted the rest is deleted nevertheless, and the first failure thrown.
/// \param keep a name directly below the folder that is left as it is; may be empty.
/// \throws RuntimeError 75 when `path` is itself a symbolic link or no folder; then nothing is deleted.
void empty_folder(const std::string& path, std::string_view keep = {}, int line = __builtin_LINE());
/// Removes a folder and what is in it, under the same rules. Nothing happens when it is missing.
void remove_folder(const std::string& path, int line = __builtin_LINE());

/// A new folder below `parent`, which exists: its name is `prefix` and a unique ending, and only its owner may enter.
std::string make_unique_folder(const std::string& parent, const std::string& prefix, int line = __builtin_LINE());

/// The part after the last "/" or "\".
std::string file_name_of(std::string_view path);
/// The part up to and without the last "/" or "\"; "/" for what lies in the root, empty when there is no separator.
std::string folder_of(std::string_view path);
/// The file name without its last extension: "roads.old" for "/data/roads.old.shp".
std::string base_name_of(std::string_view path);
/// `path` with its links resolved as far as it exists; made absolute where the system cannot tell.
std::string real_path(const std::string& path);
/// Whether two paths name one file that exists, links followed.
bool same_file(const std::string& one, const std::string& other);
/// `folder` and `name` with one separator between them; `name` alone when the folder is empty.
std::string join_path(std::string_view folder, std::string_view name);

/// The folder for temporary files: the first of the environment variables Temp and Tmp (any letter case), TMPDIR, and
/// /tmp that names an existing folder. Empty when none does.
std::string temporary_folder();

/// Whole content of a file, as bytes.
std::string read_file(const std::string& path, int line = __builtin_LINE());
/// The first `limit` bytes of a file, or all of a shorter one: for files of which nobody knows how large they are.
std::string read_file_start(const std::string& path, std::size_t limit, int line = __builtin_LINE());
/// Replaces or makes a file with these bytes. A file that is replaced keeps its permissions, a symbolic link stays one;
/// when it fails the old file is as it was and no half-written new one stays.
void write_file(const std::string& path, std::string_view bytes, int line = __builtin_LINE());

/// `bytes` as UTF-8: a leading byte-order mark is dropped, bytes that are not valid UTF-8 as a whole are taken as
/// Windows-1252.
std::string to_utf8(std::string_view bytes);

/// A text as its lines, ended by CR LF or LF; a last line without an end counts.
std::vector<std::string> split_lines(std::string_view text);

/// A text file written line by line, each line ended by CR LF, replacing any existing file.
class TextWriter {
  public:
    explicit TextWriter(const std::string& path, int line = __builtin_LINE());
    /// Closes without throwing; use close() to learn of failures.
    ~TextWriter();
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;
    /// Lines are gathered, so a failure may show only later, at the latest in close().
    void write_line(std::string_view text, int line = __builtin_LINE());
    /// Closes, and checks that everything was written. \throws RuntimeError 61 when the device is full.
    void close(int line = __builtin_LINE());

  private:
    void flush_buffer(int line);

    std::string m_path;
    int m_descriptor = -1;
    std::string m_buffer;
};

/// A text file read line by line: CR LF or LF, to_utf8() applied.
class TextReader {
  public:
    explicit TextReader(const std::string& path, int line = __builtin_LINE());
    /// The next line, or nothing at the end.
    std::optional<std::string> read_line();

  private:
    std::string m_text;
    std::size_t m_position = 0;
};

/// Holds a lock on a folder through the file `.kestrel.lock` in it, until destroyed. Locks of processes that died are
/// void; the file stays.
class FolderLock {
  public:
    /// \throws RuntimeError 70 when another holder has it, or the one that fits when the lock file cannot be made.
    explicit FolderLock(const std::string& folder, int line = __builtin_LINE());
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

  private:
    int m_descriptor = -1;
};

}  // namespace kestrel::base

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Files, folders and text files. Paths are native; failures are RuntimeError with the number that fits and the path
/// in the description.
namespace kestrel::platform {

bool file_exists(const std::string& path);
bool folder_exists(const std::string& path);
/// Makes one folder; its parent must exist. Nothing happens when it is there already.
void create_folder(const std::string& path);
/// Makes the folder and its missing parents.
void create_folders(const std::string& path);
void copy_file(const std::string& from, const std::string& to);
void rename_file(const std::string& from, const std::string& to);
/// Removes a file that may be missing, also one that is read-only.
void remove_file(const std::string& path);
/// Whether files can be made in the folder, found out by making one.
bool folder_writable(const std::string& path);

/// Empties a folder: files, read-only ones too, links (never what they point at) and subfolders. The folder stays.
/// \param keep a name directly below the folder that is left as it is; may be empty.
/// \throws RuntimeError 75 when `path` is itself a symbolic link or no folder; then nothing is deleted.
void empty_folder(const std::string& path, std::string_view keep = {});
/// Removes a folder and what is in it, under the same rules. Nothing happens when it is missing.
void remove_folder(const std::string& path);

/// A new folder with a unique name below `parent`, which exists.
std::string make_unique_folder(const std::string& parent, const std::string& prefix);

/// The part after the last "/" or "\".
std::string file_name_of(std::string_view path);
/// The part up to and without the last "/" or "\"; empty when there is none.
std::string folder_of(std::string_view path);
/// The name without its last extension.
std::string base_name_of(std::string_view path);
/// `folder` and `name` with one separator between them.
std::string join_path(std::string_view folder, std::string_view name);

/// The folder for temporary files: the first of the environment variables Temp and Tmp (any letter case), TMPDIR, and
/// /tmp that names an existing folder. Empty when none does.
std::string temporary_folder();

/// Whole content of a file, as bytes.
std::string read_file(const std::string& path);
/// Replaces or makes a file with these bytes; when it fails no half-written new file stays.
void write_file(const std::string& path, std::string_view bytes);

/// `bytes` as UTF-8: a leading byte-order mark is dropped, bytes that are not valid UTF-8 as a whole are taken as
/// Windows-1252.
std::string to_utf8(std::string_view bytes);

/// A text as its lines, ended by CR LF or LF; a last line without an end counts.
std::vector<std::string> split_lines(std::string_view text);

/// A text file written line by line, each line ended by CR LF, replacing any existing file.
class TextWriter {
  public:
    explicit TextWriter(const std::string& path);
    ~TextWriter();
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;
    void write_line(std::string_view line);
    /// Closes, and checks that everything was written. \throws RuntimeError 61 when the device is full.
    void close();

  private:
    std::string m_path;
    int m_descriptor = -1;
    std::string m_buffer;
    void flush_buffer();
};

/// A text file read line by line: CR LF or LF, to_utf8() applied.
class TextReader {
  public:
    explicit TextReader(const std::string& path);
    /// The next line, or nothing at the end.
    std::optional<std::string> read_line();

  private:
    std::string m_text;
    std::size_t m_position = 0;
};

/// Holds a lock on a folder through the file `.kestrel.lock` in it, until destroyed. Locks of processes that died are
/// void.
class FolderLock {
  public:
    /// \throws RuntimeError 70 when another holder has it, or when the lock file cannot be made.
    explicit FolderLock(const std::string& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

  private:
    int m_descriptor = -1;
};

}  // namespace kestrel::platform

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// \file
/// Private to this room: files as shapelib calls them. It seeks before every record, which would make each record a
/// write of its own; these files gather what is written, and keep the reason of a failure.
namespace kestrel::data {

int* open_buffered_file(const char* name, const char* access);
unsigned long read_buffered_file(void* bytes, unsigned long size, unsigned long count, int* file);
unsigned long write_buffered_file(const void* bytes, unsigned long size, unsigned long count, int* file);
unsigned long seek_buffered_file(int* file, unsigned long offset, int whence);
unsigned long tell_buffered_file(int* file);
int flush_buffered_file(int* file);
int close_buffered_file(int* file);

/// What the library calls to open and to write: its version 1.6 hands one more argument to the first, which is not used
/// here, and constant bytes to the second.
template <typename... Unused>
int* open_file_hook(const char* name, const char* access, Unused...) {
    return open_buffered_file(name, access);
}
template <typename Bytes>
unsigned long write_file_hook(Bytes* bytes, unsigned long size, unsigned long count, int* file) {
    return write_buffered_file(bytes, size, count, file);
}

/// \param hooks the library's; what is not about files stays as it is, but for its error texts, which go nowhere:
///        check_file_failure() tells what failed, and why.
template <typename Hooks>
void use_buffered_files(Hooks& hooks) {
    hooks.FOpen = open_file_hook;
    hooks.FRead = read_buffered_file;
    hooks.FWrite = write_file_hook;
    hooks.FSeek = seek_buffered_file;
    hooks.FTell = tell_buffered_file;
    hooks.FFlush = flush_buffered_file;
    hooks.FClose = close_buffered_file;
    hooks.Error = [](const char*) {};
}

/// Forgets the failures of buffered files of this thread.
void forget_file_failure() noexcept;
/// \throws RuntimeError 61 when the device is full, or the system's error, if a buffered file of this thread has failed
///         since; -2147467259 when `good` is false without one.
void check_file_failure(bool good, const std::string& path);

}  // namespace kestrel::data

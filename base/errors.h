// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <exception>
#include <string>

/// \file
/// The one exception class of run-time errors, and the error numbers in use.
///
/// An error carries what the call-stack report needs: number, source, description, and the line of the source that
/// raised it. Errors of libraries are translated where polygons/ or data/ calls the library, never in its callers.
namespace kestrel::base {

/// Numbers of errors, as reports of errors show them.
enum ErrorNumber : std::int32_t {
    kInvalidProcedureCall = 5,
    kOverflow = 6,
    kOutOfMemory = 7,
    kSubscriptOutOfRange = 9,
    kDivisionByZero = 11,
    kTypeMismatch = 13,
    kFileNotFound = 53,
    kDeviceInputOutputError = 57,
    kDiskFull = 61,
    kPermissionDenied = 70,
    kPathFileAccessError = 75,
    kPathNotFound = 76,
    kObjectVariableNotSet = 91,
    kKeyAlreadyExists = 457,
    /// An unspecified failure of a library; its message is the description.
    kLibraryFailure = -2147467259,
};

class RuntimeError : public std::exception {
  public:
    /// \param line the source line of the throw; 0 when none is known. Left to its default, it is the caller's line.
    RuntimeError(std::int32_t number, std::string description, std::string source = "Kestrel",
                 int line = __builtin_LINE())
        : m_number(number), m_line(line), m_source(std::move(source)), m_description(std::move(description)) {}

    std::int32_t number() const noexcept { return m_number; }
    int line() const noexcept { return m_line; }
    const std::string& source() const noexcept { return m_source; }
    const std::string& description() const noexcept { return m_description; }
    const char* what() const noexcept override { return m_description.c_str(); }

  private:
    std::int32_t m_number;
    int m_line;
    std::string m_source;
    std::string m_description;
};

/// The error of a C library call that failed with `error_code` (an errno value) on `path`: the number that fits the
/// code, a description that names the reason and the path.
RuntimeError system_error(int error_code, const std::string& path, int line = __builtin_LINE());

}  // namespace kestrel::base

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <string>
#include <string_view>
#include <utility>

#include "base/errors.h"

/// \file
/// What functions of files share.
namespace kestrel::base {

/// A file descriptor that closes itself; negative for none.
class Descriptor {
  public:
    explicit Descriptor(int descriptor) noexcept : m_descriptor(descriptor) {}
    ~Descriptor() { reset(-1); }
    Descriptor(Descriptor&& other) noexcept : m_descriptor(other.release()) {}
    Descriptor& operator=(Descriptor&&) = delete;

    explicit operator bool() const noexcept { return m_descriptor >= 0; }
    int get() const noexcept { return m_descriptor; }
    int release() noexcept { return std::exchange(m_descriptor, -1); }
    void reset(int descriptor) noexcept {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
        m_descriptor = descriptor;
    }

  private:
    int m_descriptor;
};

/// The error of a failed call on `path`: what is missing is the file where its folder exists, else the folder.
RuntimeError path_error(int error_code, const std::string& path, int line);

/// Writes all bytes. \return 0, or the errno of the failure.
int write_all(int descriptor, std::string_view bytes);

}  // namespace kestrel::base

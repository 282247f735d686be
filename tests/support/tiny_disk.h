// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "tests/support/test_files.h"

namespace kestrel::test {

/// A file system of its own that is full after some kilobytes, unmounted at the end of its life. Only root may mount
/// one; a test that gets none says so and is skipped.
class TinyDisk {
  public:
    /// \param kilobytes size of the disk, rounded up to whole pages of memory.
    explicit TinyDisk(int kilobytes = 128);
    ~TinyDisk();
    TinyDisk(const TinyDisk&) = delete;
    TinyDisk& operator=(const TinyDisk&) = delete;

    bool mounted() const noexcept { return m_mounted; }
    const std::string& path() const noexcept { return m_folder.path(); }
    std::string operator/(const std::string& name) const { return m_folder / name; }
    /// Leaves no byte free; files without content can still be made.
    void fill() const;

  private:
    TemporaryFolder m_folder;
    bool m_mounted = false;
};

}  // namespace kestrel::test

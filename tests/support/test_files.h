// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace kestrel::test {

/// A new folder below the system's temporary one, removed with all that is in it at the end of its life.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const noexcept { return m_path; }
    /// A path below the folder.
    std::string operator/(const std::string& name) const { return m_path + "/" + name; }

  private:
    std::string m_path;
};

/// Path of a fixture: `name` below tests/fixtures.
std::string fixture_path(const std::string& name);

/// Names directly below `folder`, sorted.
std::vector<std::string> names_in(const std::string& folder);

/// Folder of the real test data: the environment variable KESTREL_REAL_DATA, or `shared/data/zion` beside the
/// checkout; empty where there is none.
std::string real_data_folder();

}  // namespace kestrel::test

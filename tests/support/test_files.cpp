// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/support/test_files.h"

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace kestrel::test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (fs::temp_directory_path() / "kestrel-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary folder: " + pattern);
    }
    m_path = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;  // a folder that stays behind must not hide the test's own failure
    fs::remove_all(m_path, ignored);
}

std::string fixture_path(const std::string& name) {
    return std::string(KESTREL_SOURCE_DIR) + "/tests/fixtures/" + name;
}

std::vector<std::string> names_in(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string real_data_folder() {
    const char* given = std::getenv("KESTREL_REAL_DATA");
    const std::string folder = given != nullptr ? given : std::string(KESTREL_SOURCE_DIR) + "/../shared/data/zion";
    return fs::is_directory(folder) ? folder : std::string();
}

}  // namespace kestrel::test

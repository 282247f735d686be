// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/shapefile_files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "base/errors.h"
#include "base/files.h"

namespace kestrel::data {

namespace {

constexpr std::size_t kHeaderSize = 32;
using Header = std::array<unsigned char, kHeaderSize>;

/// A file that was just written, read-only.
class WrittenFile {
  public:
    explicit WrittenFile(std::string path) : m_path(std::move(path)), m_descriptor(::open(m_path.c_str(), O_RDONLY)) {
        if (m_descriptor < 0) {
            throw base::system_error(errno, m_path);
        }
    }
    ~WrittenFile() { ::close(m_descriptor); }
    WrittenFile(const WrittenFile&) = delete;
    WrittenFile& operator=(const WrittenFile&) = delete;

    void expect(bool whole) const {
        if (!whole) {
            const bool full = device_full(base::folder_of(m_path));
            throw base::RuntimeError(
                full ? base::kDiskFull : base::kDeviceInputOutputError,
                fmt::format("{} was not written completely{}", m_path, full ? ": the device is full" : ""));
        }
    }

    std::int64_t size() const {
        struct stat status = {};
        if (::fstat(m_descriptor, &status) != 0) {
            throw base::system_error(errno, m_path);
        }
        return status.st_size;
    }

    Header header() const {
        Header bytes{};
        expect(::pread(m_descriptor, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
        return bytes;
    }

  private:
    std::string m_path;
    int m_descriptor;
};

std::int64_t little_endian(const Header& bytes, std::size_t at, std::size_t count) {
    std::int64_t result = 0;
    for (std::size_t i = count; i-- > 0;) {
        result = result * 256 + bytes[at + i];
    }
    return result;
}

/// Size in bytes that a .shp or .shx states, in 16-bit words with the high byte first.
std::int64_t stated_size(const Header& bytes) {
    std::int64_t words = 0;
    for (std::size_t i = 24; i < 28; ++i) {
        words = words * 256 + bytes[i];
    }
    return 2 * words;
}

void check_shapes(const std::string& path) {
    const WrittenFile file(path);
    file.expect(file.size() == stated_size(file.header()));
}

void check_index(const std::string& path, std::int64_t features) {
    constexpr std::int64_t kStart = 100;
    constexpr std::int64_t kEntry = 8;
    const WrittenFile file(path);
    file.expect(file.size() == stated_size(file.header()) && file.size() == kStart + kEntry * features);
}

void check_table(const std::string& path, std::int64_t features) {
    const WrittenFile file(path);
    const Header bytes = file.header();
    const std::int64_t records = little_endian(bytes, 4, 4);
    const std::int64_t start = little_endian(bytes, 8, 2);
    const std::int64_t length = little_endian(bytes, 10, 2);
    file.expect(records == features && file.size() >= start + length * records);
}

void check_text(const std::string& path) {
    const WrittenFile file(path);
    file.expect(file.size() > 0);
}

}  // namespace

bool device_full(const std::string& folder) {
    struct statvfs device = {};
    return ::statvfs(folder.empty() ? "." : folder.c_str(), &device) == 0 && device.f_bavail == 0;
}

void check_shapefile_files(const std::string& path, std::int64_t features, bool referenced) {
    const std::string stem = base::join_path(base::folder_of(path), base::base_name_of(path));
    check_shapes(path);
    check_index(stem + ".shx", features);
    check_table(stem + ".dbf", features);
    check_text(stem + ".cpg");
    if (referenced) {
        check_text(stem + ".prj");
    }
}

}  // namespace kestrel::data

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/support/tiny_disk.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <stdexcept>

namespace kestrel::test {

TinyDisk::TinyDisk(int kilobytes) {
    const std::string size = "size=" + std::to_string(kilobytes) + "k";
    m_mounted = ::mount("tmpfs", m_folder.path().c_str(), "tmpfs", MS_NOSUID | MS_NODEV, size.c_str()) == 0;
}

TinyDisk::~TinyDisk() {
    if (m_mounted) {
        ::umount2(m_folder.path().c_str(), MNT_DETACH);
    }
}

void TinyDisk::fill() const {
    const int file = ::open((m_folder / "filler").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (file < 0) {
        throw std::runtime_error("cannot make " + m_folder / "filler");
    }
    for (std::string block(4096, 'x'); !block.empty(); block.resize(block.size() / 2)) {
        while (::write(file, block.data(), block.size()) == static_cast<ssize_t>(block.size())) {
        }
    }
    ::close(file);
}

}  // namespace kestrel::test

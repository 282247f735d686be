// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/errors.h"

#include <cerrno>
#include <cstring>

namespace kestrel::base {

namespace {

std::int32_t number_of(int error_code) {
    switch (error_code) {
        case ENOENT:
            return kFileNotFound;
        case ENOTDIR:
            return kPathNotFound;
        case EACCES:
        case EPERM:
        case EROFS:
            return kPermissionDenied;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return kDiskFull;
        case EIO:
            return kDeviceInputOutputError;
        case ENOMEM:
            return kOutOfMemory;
        default:
            return kPathFileAccessError;
    }
}

}  // namespace

RuntimeError system_error(int error_code, const std::string& path, int line) {
    return {number_of(error_code), std::string(std::strerror(error_code)) + ": " + path, "Kestrel", line};
}

}  // namespace kestrel::base

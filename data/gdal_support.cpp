// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/gdal_support.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <gdal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace kestrel::data {

namespace {

constexpr GIntBig kCacheBytes = GIntBig{64} << 20;

/// Reasons of the operating system that GDAL hands on only as the text of their messages.
constexpr std::array kReasons{ENOSPC, EDQUOT, EFBIG, EACCES, EPERM, EROFS, ENOENT, ENOTDIR, EIO};

bool start() {
    if (GDALGetDriverCount() > 0) {
        return true;
    }
    GDALAllRegister();
    CPLSetErrorHandler(CPLQuietErrorHandler);
    if (CPLGetConfigOption("GDAL_CACHEMAX", nullptr) == nullptr) {
        GDALSetCacheMax64(kCacheBytes);
    }
    return true;
}

std::int32_t number_of(CPLErrorNum error, const std::string& message) {
    for (const int reason : kReasons) {
        if (message.find(std::strerror(reason)) != std::string::npos) {
            return base::system_error(reason, {}).number();
        }
    }
    switch (error) {
        case CPLE_OutOfMemory:
            return base::kOutOfMemory;
        case CPLE_FileIO:
            return base::kDeviceInputOutputError;
        default:
            return base::kLibraryFailure;
    }
}

}  // namespace

void start_gdal() {
    static const bool started = start();
    static_cast<void>(started);
}

base::RuntimeError gdal_error(const std::string& what, int line) {
    const std::string message = CPLGetLastErrorMsg();
    const std::int32_t number = number_of(CPLGetLastErrorNo(), message);
    CPLErrorReset();
    return {number, message.empty() ? what : what + ": " + message, "Kestrel", line};
}

base::RuntimeError gdal_open_error(const std::string& what, const std::string& source, int line) {
    if (::access(source.c_str(), R_OK) != 0 && errno == EACCES) {
        return base::system_error(EACCES, source, line);
    }
    return gdal_error(what, line);
}

bool gdal_failed() {
    return CPLGetLastErrorType() >= CE_Failure;
}

}  // namespace kestrel::data

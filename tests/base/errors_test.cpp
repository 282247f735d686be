// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/errors.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace kestrel::base {

namespace {

TEST(SystemError, HasTheNumberThatFitsTheReason) {
    EXPECT_EQ(system_error(ENOENT, "p").number(), 53);
    EXPECT_EQ(system_error(ENOTDIR, "p").number(), 76);
    EXPECT_EQ(system_error(EACCES, "p").number(), 70);
    EXPECT_EQ(system_error(EPERM, "p").number(), 70);
    EXPECT_EQ(system_error(EROFS, "p").number(), 70);
    EXPECT_EQ(system_error(ENOSPC, "p").number(), 61);
    EXPECT_EQ(system_error(EDQUOT, "p").number(), 61);
    EXPECT_EQ(system_error(EIO, "p").number(), 57);
    EXPECT_EQ(system_error(ENOMEM, "p").number(), 7);
    EXPECT_EQ(system_error(EISDIR, "p").number(), 75);
}

TEST(SystemError, NamesReasonPathAndTheCallersLine) {
    const RuntimeError error = system_error(ENOSPC, "/data/out.shp");
    EXPECT_EQ(error.description(), "No space left on device: /data/out.shp");
    EXPECT_EQ(error.source(), "Kestrel");
    EXPECT_EQ(error.line(), __LINE__ - 3);
    EXPECT_STREQ(error.what(), error.description().c_str());
}

TEST(RuntimeError, CarriesTheLineOfTheThrow) {
    const RuntimeError error(kTypeMismatch, "Type mismatch");
    EXPECT_EQ(error.line(), __LINE__ - 1);
    EXPECT_EQ(error.number(), 13);
    EXPECT_EQ(RuntimeError(kLibraryFailure, "x", "GDAL", 0).number(), -2147467259);
    EXPECT_EQ(RuntimeError(kLibraryFailure, "x", "GDAL", 0).line(), 0);
}

}  // namespace

}  // namespace kestrel::base

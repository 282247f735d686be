// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <shapefil.h>

#include <memory>
#include <string>

/// \file
/// For this folder's own sources: shapefiles by shapelib, record by record, without a write for each.
namespace kestrel::platform {

/// What shapelib reads and writes files through. Writes are gathered: the library seeks before every record, which
/// would make each record a write of its own.
SAHooks buffered_file_hooks();

/// Forgets the failures of buffered files of this thread.
void forget_file_failure() noexcept;
/// \throws RuntimeError 61 when the device is full, or the system's error, if a buffered file of this thread has failed
///         since; -2147467259 when `good` is false without one.
void check_file_failure(bool good, const std::string& path);

struct CloseShapes {
    void operator()(SHPInfo* handle) const { SHPClose(handle); }
};
struct CloseTable {
    void operator()(DBFInfo* handle) const { DBFClose(handle); }
};

using ShapesHandle = std::unique_ptr<SHPInfo, CloseShapes>;
using TableHandle = std::unique_ptr<DBFInfo, CloseTable>;

}  // namespace kestrel::platform

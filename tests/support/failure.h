// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "platform/errors.h"

namespace kestrel::test {

/// The failure that tests put beneath a procedure: error 70 of line 45.
[[noreturn]] inline void fail_denied() {
    throw platform::RuntimeError(platform::kPermissionDenied, "Permission denied", "Kestrel", 45);
}

}  // namespace kestrel::test

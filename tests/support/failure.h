// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "base/errors.h"

namespace kestrel::test {

/// The failure that tests put beneath a procedure: error 70 of line 45.
[[noreturn]] inline void fail_denied() {
    throw base::RuntimeError(base::kPermissionDenied, "Permission denied", "Kestrel", 45);
}

}  // namespace kestrel::test

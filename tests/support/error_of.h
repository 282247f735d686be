// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "base/errors.h"

namespace kestrel::test {

/// The error that the call raises; one of number 0 when it raises none.
template <typename Call>
base::RuntimeError error_of(Call call) {
    try {
        call();
    } catch (const base::RuntimeError& error) {
        return error;
    }
    return {0, "nothing was raised", "", 0};
}

}  // namespace kestrel::test

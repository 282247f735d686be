// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT

/// A library that exports something, but not what hosts ask an extension library for.
extern "C" int kestrel_other_function();
extern "C" int kestrel_other_function() {
    return 0;
}

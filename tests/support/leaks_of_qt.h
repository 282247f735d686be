// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#else
inline void __lsan_disable() {}
inline void __lsan_enable() {}
#endif

namespace kestrel::test {

/// While it lives, what is allocated and not released is nobody's fault: Qt does not release its own texts when an
/// exception passes through its signals.
class LeaksOfQt {
  public:
    LeaksOfQt() { __lsan_disable(); }
    ~LeaksOfQt() { __lsan_enable(); }
    LeaksOfQt(const LeaksOfQt&) = delete;
    LeaksOfQt& operator=(const LeaksOfQt&) = delete;
};

}  // namespace kestrel::test

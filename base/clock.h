// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kestrel::base {

/// A date and time of day in local time.
struct LocalTime {
    int year = 1970;
    int month = 1;  // 1 to 12
    int day = 1;
    int hour = 0;  // 0 to 23
    int minute = 0;
    int second = 0;

    /// "Saturday November 15, 2003 01:55:30 PM": English names in any locale.
    std::string long_form() const;
    /// "20031115"
    std::string date_form() const;
    /// "1355"
    std::string time_form() const;
};

/// Where the present time comes from; passed in so that tests fix it.
class Clock {
  public:
    virtual ~Clock() = default;
    virtual LocalTime now() const = 0;
};

class SystemClock final : public Clock {
  public:
    LocalTime now() const override;
};

}  // namespace kestrel::base

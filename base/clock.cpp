// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/clock.h"

#include <fmt/format.h>

#include <array>
#include <ctime>

namespace kestrel::base {

namespace {

constexpr std::array<const char*, 7> kDays{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                           "Thursday", "Friday", "Saturday"};
constexpr std::array<const char*, 12> kMonths{"January", "February", "March",     "April",   "May",      "June",
                                              "July",    "August",   "September", "October", "November", "December"};

/// Day of the week of a date of the Gregorian calendar, 0 for Sunday (Sakamoto's method).
int weekday(int year, int month, int day) {
    static constexpr std::array<int, 12> kOffsets{0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
    const int y = month < 3 ? year - 1 : year;
    return (y + y / 4 - y / 100 + y / 400 + kOffsets[static_cast<std::size_t>(month - 1)] + day) % 7;
}

}  // namespace

std::string LocalTime::long_form() const {
    const int hour12 = hour % 12 == 0 ? 12 : hour % 12;
    return fmt::format(
        "{} {} {}, {:04} {:02}:{:02}:{:02} {}", kDays[static_cast<std::size_t>(weekday(year, month, day))],
        kMonths[static_cast<std::size_t>(month - 1)], day, year, hour12, minute, second, hour < 12 ? "AM" : "PM");
}

std::string LocalTime::date_form() const {
    return fmt::format("{:04}{:02}{:02}", year, month, day);
}

std::string LocalTime::time_form() const {
    return fmt::format("{:02}{:02}", hour, minute);
}

LocalTime SystemClock::now() const {
    const std::time_t seconds = std::time(nullptr);
    std::tm local{};
    ::tzset();  // localtime_r() need not notice the time zone of the environment
    ::localtime_r(&seconds, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

}  // namespace kestrel::base

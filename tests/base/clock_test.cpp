// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/clock.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <clocale>
#include <ctime>

namespace kestrel::base {

namespace {

TEST(LocalTime, LongFormHasEnglishNamesAndATwelveHourClock) {
    EXPECT_EQ((LocalTime{2003, 11, 15, 13, 55, 30}.long_form()), "Saturday November 15, 2003 01:55:30 PM");
    EXPECT_EQ((LocalTime{2003, 11, 6, 14, 15, 7}.long_form()), "Thursday November 6, 2003 02:15:07 PM");
}

TEST(LocalTime, MidnightAndNoonAreTwelve) {
    EXPECT_EQ((LocalTime{2026, 1, 1, 0, 0, 0}.long_form()), "Thursday January 1, 2026 12:00:00 AM");
    EXPECT_EQ((LocalTime{2026, 1, 1, 12, 0, 0}.long_form()), "Thursday January 1, 2026 12:00:00 PM");
    EXPECT_EQ((LocalTime{2026, 1, 1, 11, 59, 59}.long_form()), "Thursday January 1, 2026 11:59:59 AM");
    EXPECT_EQ((LocalTime{2026, 1, 1, 23, 59, 59}.long_form()), "Thursday January 1, 2026 11:59:59 PM");
}

TEST(LocalTime, DateAndTimeFormsArePadded) {
    const LocalTime early{2003, 1, 5, 7, 3, 9};
    EXPECT_EQ(early.date_form(), "20030105");
    EXPECT_EQ(early.time_form(), "0703");
    EXPECT_EQ((LocalTime{2003, 11, 15, 13, 55, 30}.time_form()), "1355");
    EXPECT_EQ((LocalTime{2003, 11, 15, 0, 5, 0}.time_form()), "0005");
}

TEST(LocalTime, EveryMonthHasItsName) {
    const char* const names[] = {"January", "February", "March",     "April",   "May",      "June",
                                 "July",    "August",   "September", "October", "November", "December"};
    for (int month = 1; month <= 12; ++month) {
        const std::string text = LocalTime{2024, month, 2, 0, 0, 0}.long_form();
        EXPECT_NE(text.find(std::string(" ") + names[month - 1] + " 2, 2024"), std::string::npos) << text;
    }
}

TEST(LocalTime, WeekdaysAgreeWithTheCalendarOfTheSystem) {
    const char* const names[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    // Every day from 1970 to 2106: leap years, the leap year 2000, and the missing one of 2100.
    for (std::time_t seconds = 43200; seconds < 4291747200; seconds += 86400) {
        std::tm day{};
        ::gmtime_r(&seconds, &day);
        const LocalTime time{day.tm_year + 1900, day.tm_mon + 1, day.tm_mday, 12, 0, 0};
        ASSERT_TRUE(time.long_form().starts_with(names[day.tm_wday])) << time.long_form();
    }
}

TEST(LocalTime, LongFormStaysEnglishInAnyLocale) {
    const char* installed = std::setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_EQ((LocalTime{2003, 12, 16, 13, 5, 3}.long_form()), "Tuesday December 16, 2003 01:05:03 PM");
    if (installed != nullptr) {
        std::setlocale(LC_ALL, "C");
    }
}

/// Sets the time zone of the process for its own lifetime.
class TimeZone {
  public:
    explicit TimeZone(const char* zone) {
        const char* before = std::getenv("TZ");
        m_had_one = before != nullptr;
        m_before = m_had_one ? before : "";
        ::setenv("TZ", zone, 1);
    }
    ~TimeZone() {
        if (m_had_one) {
            ::setenv("TZ", m_before.c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

  private:
    bool m_had_one = false;
    std::string m_before;
};

std::time_t seconds_of(const LocalTime& time) {
    std::tm parts{};
    parts.tm_year = time.year - 1900;
    parts.tm_mon = time.month - 1;
    parts.tm_mday = time.day;
    parts.tm_hour = time.hour;
    parts.tm_min = time.minute;
    parts.tm_sec = time.second;
    return ::timegm(&parts);
}

TEST(SystemClock, GivesLocalTimeInTheTimeZoneOfTheEnvironment) {
    const TimeZone zone("XYZ-05:30");  // five and a half hours ahead
    const std::time_t before = std::time(nullptr);
    const std::time_t shown = seconds_of(SystemClock().now());
    const std::time_t after = std::time(nullptr);
    EXPECT_GE(shown, before + std::time_t{5} * 3600 + 1800);
    EXPECT_LE(shown, after + std::time_t{5} * 3600 + 1800);
}

}  // namespace

}  // namespace kestrel::base

// Days and the Gregorian calendar, without limits of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zel {

// Days from 30 December 1899 to a day of the Gregorian calendar, also before it was introduced.
std::int64_t DaysFromCivil(std::int64_t year, int month, int day);

bool IsLeapYear(std::int64_t year);
int DaysOfMonth(std::int64_t year, int month);

struct CivilTime {
    std::int64_t year = 0;
    int month = 1, day = 1;
    int hour = 0, minute = 0, second = 0;
    int dayOfWeek = 0;  // Sunday is 0
    int dayOfYear = 0;  // 1 January is 0
};
// The date and time so many days after 30 December 1899, rounded to whole seconds.
CivilTime CivilFromDays(double days);

// Days since 30 December 1899 of a date, a time or both, as COleDateTime::ParseDateTime reads them.
std::optional<double> ParseDays(std::string_view text);

}  // namespace zel

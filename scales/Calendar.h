// Dates and times of day, counted in whole seconds since 1970-01-01 00:00.
#pragma once

#include <cstdint>

namespace zel {

constexpr std::int64_t kMinute = 60, kHour = 3'600, kDay = 86'400;

struct CivilTime {
    std::int64_t year = 1970;
    int month = 1, day = 1;  // from 1
    int hour = 0, minute = 0, second = 0;
};

CivilTime CivilOf(std::int64_t seconds);
// The first second of a day; months beyond 1 to 12 count on into the years around.
std::int64_t SecondsOfDate(std::int64_t year, std::int64_t month, int day);
// The largest multiple of `step` that is not above `value`.
constexpr std::int64_t FloorTo(std::int64_t value, std::int64_t step) {
    const std::int64_t rest = value % step;
    return value - (rest < 0 ? rest + step : rest);
}

}  // namespace zel

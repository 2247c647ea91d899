#include "scales/Calendar.h"

namespace zel {

// Days are counted in eras of 400 years that begin on a 1st of March, so that the leap day comes last
// (H. Hinnant, "chrono-Compatible Low-Level Date Algorithms", 2013).
namespace {

constexpr std::int64_t kDaysPerEra = 146'097, kDaysTo1970 = 719'468;

}  // namespace

CivilTime CivilOf(std::int64_t seconds) {
    const std::int64_t midnight = FloorTo(seconds, kDay);
    const std::int64_t days = midnight / kDay + kDaysTo1970;
    const std::int64_t era = FloorTo(days, kDaysPerEra) / kDaysPerEra;
    const std::int64_t dayOfEra = days - era * kDaysPerEra;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1'460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t month = (5 * dayOfYear + 2) / 153;  // from March
    const std::int64_t time = seconds - midnight;
    CivilTime civil;
    civil.month = static_cast<int>(month < 10 ? month + 3 : month - 9);
    civil.year = yearOfEra + era * 400 + (civil.month <= 2 ? 1 : 0);
    civil.day = static_cast<int>(dayOfYear - (153 * month + 2) / 5 + 1);
    civil.hour = static_cast<int>(time / kHour);
    civil.minute = static_cast<int>(time / kMinute % 60);
    civil.second = static_cast<int>(time % 60);
    return civil;
}

std::int64_t SecondsOfDate(std::int64_t year, std::int64_t month, int day) {
    const std::int64_t months = FloorTo(month - 1, 12);
    year += months / 12;
    month -= months;
    if (month <= 2) --year;
    const std::int64_t era = FloorTo(year, 400) / 400;
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return (era * kDaysPerEra + dayOfEra - kDaysTo1970) * kDay;
}

}  // namespace zel

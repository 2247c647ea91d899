// Dates and times as people write them.
#pragma once

#include <zel/tables/Table.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace zel::tables {

// A moment, or a length of time, to the nanosecond.
struct Instant {
    std::int64_t seconds = 0;  // since 1970-01-01 00:00 UTC, rounded down
    std::int32_t nanoseconds = 0;
};

// The ways in which the times of one column are written.
enum class TimeForm {
    YEAR_FIRST,   // 2020-01-31, 2020/1/31, 2020.01.31; with a time and a zone
    DAY_FIRST,    // 31.01.2020, 31/1/20
    MONTH_FIRST,  // 1/31/2020
    NAMED,        // 31 Jan 2020, Jan 31, 2020, 31-Jan-20
    MONTHS,       // 2020-01, 01/2020, Jan 2020
    QUARTERS,     // 2020Q1, 2020-Q1, Q1 2020
    WEEKS,        // 2020-W05, 2020-W05-3
    DIGITS,       // 20200131, 20200131T1200
    EPOCH,        // seconds, or milliseconds beyond 10^11, since 1970
    CLOCK,        // 10:00, 1:02:03.5, 5:30 PM; a duration
};
inline constexpr TimeForm kTimeForms[] = {TimeForm::YEAR_FIRST, TimeForm::DAY_FIRST, TimeForm::MONTH_FIRST,
                                          TimeForm::NAMED,      TimeForm::MONTHS,    TimeForm::QUARTERS,
                                          TimeForm::WEEKS,      TimeForm::CLOCK};

// Reads a trimmed text in one form; nothing when it is not of that form or names no day that there is.
// Months, quarters and weeks are their beginnings. Years of two digits are those from 1969 to 2068 (POSIX
// strptime).
std::optional<Instant> ReadTime(std::string_view text, TimeForm form);

// The words for a form.
const char* NameOf(TimeForm form);

}  // namespace zel::tables

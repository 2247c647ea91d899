#include "tables/Times.h"

#include "tables/Numbers.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>

namespace zel::tables {
namespace {

constexpr int kMostYear = 9999;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Takes one thing after another off the beginning of a text.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : text_(text) {}
    bool AtEnd() const { return text_.empty(); }
    char Next() const { return text_.empty() ? '\0' : text_.front(); }
    bool Take(char c) {
        if (Next() != c || text_.empty()) return false;
        text_.remove_prefix(1);
        return true;
    }
    // One of the characters, which is returned; 0 for none.
    char TakeOneOf(std::string_view characters) {
        if (text_.empty() || characters.find(text_.front()) == std::string_view::npos) return 0;
        const char taken = text_.front();
        text_.remove_prefix(1);
        return taken;
    }
    void SkipBlanks() {
        while (Take(' ')) {
        }
    }
    // A number of `least` to `most` digits; how many they were is kept.
    bool TakeDigits(std::size_t least, std::size_t most, int& number) {
        digits_ = 0;
        while (digits_ < most && digits_ < text_.size() && IsDigit(text_[digits_])) ++digits_;
        if (digits_ < least) return false;
        std::from_chars(text_.data(), text_.data() + digits_, number);
        text_.remove_prefix(digits_);
        return true;
    }
    std::size_t Digits() const { return digits_; }
    // Letters up to something else.
    std::string_view TakeWord() {
        std::size_t n = 0;
        while (n < text_.size() && Lower(text_[n]) >= 'a' && Lower(text_[n]) <= 'z') ++n;
        const std::string_view word = text_.substr(0, n);
        text_.remove_prefix(n);
        return word;
    }
    // Word for word, whatever the case.
    bool TakeWord(std::string_view lower) {
        Scanner ahead = *this;
        const std::string_view word = ahead.TakeWord();
        if (word.size() != lower.size()) return false;
        for (std::size_t i = 0; i < word.size(); ++i)
            if (Lower(word[i]) != lower[i]) return false;
        *this = ahead;
        return true;
    }

  private:
    std::string_view text_;
    std::size_t digits_ = 0;
};

// The number of a month by its English name or the first three letters of it; 0 for another word.
int MonthOf(std::string_view word) {
    static constexpr std::array<std::string_view, 12> kMonths = {
        "january", "february", "march",     "april",   "may",      "june",
        "july",    "august",   "september", "october", "november", "december"};
    if (word.size() < 3) return 0;
    if (word.size() == 4 && Lower(word[0]) == 's') word.remove_suffix(1);  // Sept
    for (std::size_t month = 0; month < kMonths.size(); ++month) {
        const std::string_view name = kMonths[month];
        if (word.size() != 3 && word.size() != name.size()) continue;
        bool same = true;
        for (std::size_t i = 0; i < word.size(); ++i) same = same && Lower(word[i]) == name[i];
        if (same) return static_cast<int>(month) + 1;
    }
    return 0;
}

std::optional<Instant> DayOf(int year, int month, int day) {
    const std::chrono::year_month_day date{std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok() || year < 0 || year > kMostYear) return std::nullopt;
    return Instant{std::chrono::sys_seconds(std::chrono::sys_days(date)).time_since_epoch().count(), 0};
}

int FullYear(int year, std::size_t digits) {
    if (digits > 2) return year;
    return year < 69 ? 2000 + year : 1900 + year;
}

// The digits behind the point of a second, as nanoseconds; further ones are passed over.
bool TakeFraction(Scanner& scan, std::int32_t& nanoseconds) {
    int digit = 0;
    std::int32_t scale = 100'000'000;
    if (!IsDigit(scan.Next())) return false;
    for (; scan.TakeDigits(1, 1, digit); scale /= 10) nanoseconds += digit * scale;
    return true;
}

// Hours, minutes and, where they are there, seconds with a fraction, AM or PM.
bool TakeClock(Scanner& scan, int mostHours, Instant& time) {
    int hour = 0, minute = 0, second = 0;
    if (!scan.TakeDigits(1, mostHours > 99 ? 6 : 2, hour) || !scan.Take(':') ||
        !scan.TakeDigits(2, 2, minute))
        return false;
    if (scan.Take(':')) {
        if (!scan.TakeDigits(2, 2, second)) return false;
        if (scan.TakeOneOf(".,") && !TakeFraction(scan, time.nanoseconds)) return false;
    }
    Scanner ahead = scan;
    ahead.SkipBlanks();
    const bool pm = ahead.TakeWord("pm"), am = !pm && ahead.TakeWord("am");
    if (pm || am) {
        if (hour < 1 || hour > 12) return false;
        hour = hour % 12 + (pm ? 12 : 0);
        scan = ahead;
    }
    if (hour > mostHours || minute > 59 || second > 60) return false;
    time.seconds += std::int64_t{hour} * 3600 + minute * 60 + second;
    return true;
}

// "Z", "UTC", "+01:00", "+0100", "+01": nothing is a zone too.
bool TakeZone(Scanner& scan, Instant& time) {
    scan.SkipBlanks();
    if (scan.AtEnd() || scan.TakeWord("z") || scan.TakeWord("utc") || scan.TakeWord("gmt")) return true;
    const char sign = scan.TakeOneOf("+-");
    int hours = 0, minutes = 0;
    if (!sign || !scan.TakeDigits(2, 2, hours)) return false;
    scan.Take(':');
    if (!scan.AtEnd() && !scan.TakeDigits(2, 2, minutes)) return false;
    if (hours > 14 || minutes > 59) return false;
    time.seconds -= (sign == '-' ? -1 : 1) * (hours * 3600 + minutes * 60);
    return true;
}

// What may follow a date: nothing, or a time with a zone.
std::optional<Instant> WithClock(std::optional<Instant> day, Scanner& scan) {
    if (!day) return day;
    scan.Take(',');
    if (scan.TakeOneOf("Tt") || scan.Next() == ' ') {
        scan.SkipBlanks();
        if (!TakeClock(scan, 24, *day)) return std::nullopt;
    }
    return TakeZone(scan, *day) && scan.AtEnd() ? day : std::nullopt;
}

std::optional<Instant> ReadYearFirst(Scanner scan) {
    int year = 0, month = 0, day = 0;
    if (!scan.TakeDigits(4, 4, year)) return std::nullopt;
    const char separator = scan.TakeOneOf("-/.");
    if (!separator || !scan.TakeDigits(1, 2, month) || !scan.Take(separator) || !scan.TakeDigits(1, 2, day))
        return std::nullopt;
    return WithClock(DayOf(year, month, day), scan);
}

std::optional<Instant> ReadYearLast(Scanner scan, bool dayFirst) {
    int first = 0, second = 0, year = 0;
    if (!scan.TakeDigits(1, 2, first)) return std::nullopt;
    const char separator = scan.TakeOneOf("./-");
    if (!separator || !scan.TakeDigits(1, 2, second) || !scan.Take(separator)) return std::nullopt;
    scan.SkipBlanks();
    if (!scan.TakeDigits(2, 4, year) || scan.Digits() == 3) return std::nullopt;
    year = FullYear(year, scan.Digits());
    return WithClock(dayFirst ? DayOf(year, second, first) : DayOf(year, first, second), scan);
}

std::optional<Instant> ReadNamed(Scanner scan) {
    int day = 0, month = 0, year = 0;
    Scanner ahead = scan;
    // A day of the week may stand before.
    if (ahead.TakeWord().size() >= 3 && ahead.Take(',')) scan = ahead;
    scan.SkipBlanks();
    const bool dayFirst = IsDigit(scan.Next());
    if (dayFirst && !scan.TakeDigits(1, 2, day)) return std::nullopt;
    scan.Take('.');
    scan.TakeOneOf("- ");
    month = MonthOf(scan.TakeWord());
    scan.Take('.');
    if (month == 0 || !scan.TakeOneOf("- ")) return std::nullopt;
    if (!dayFirst) {
        if (!scan.TakeDigits(1, 2, day)) return std::nullopt;
        scan.Take(',');
        if (!scan.Take(' ')) return std::nullopt;
    }
    if (!scan.TakeDigits(2, 4, year) || scan.Digits() == 3) return std::nullopt;
    return WithClock(DayOf(FullYear(year, scan.Digits()), month, day), scan);
}

std::optional<Instant> ReadMonth(Scanner scan) {
    int year = 0, month = 0;
    if (!IsDigit(scan.Next())) {  // Jan 2020, January-20
        month = MonthOf(scan.TakeWord());
        scan.Take('.');
        if (month == 0 || !scan.TakeOneOf("- /") || !scan.TakeDigits(2, 4, year) || scan.Digits() == 3)
            return std::nullopt;
        year = FullYear(year, scan.Digits());
    } else {
        int first = 0;
        if (!scan.TakeDigits(1, 4, first)) return std::nullopt;
        const std::size_t digits = scan.Digits();
        if (!scan.TakeOneOf("-/. ")) return std::nullopt;
        if (digits == 4) {  // 2020-01, 2020 Jan
            year = first;
            if (!IsDigit(scan.Next()))
                month = MonthOf(scan.TakeWord());
            else if (!scan.TakeDigits(1, 2, month))
                return std::nullopt;
        } else if (digits > 2 || !scan.TakeDigits(4, 4, year)) {
            return std::nullopt;
        } else {  // 01/2020
            month = first;
        }
    }
    return scan.AtEnd() ? DayOf(year, month, 1) : std::nullopt;
}

std::optional<Instant> ReadQuarter(Scanner scan) {
    int year = 0, quarter = 0;
    const auto takeQuarter = [&] { return scan.TakeOneOf("Qq") && scan.TakeDigits(1, 1, quarter); };
    if (IsDigit(scan.Next())) {
        if (!scan.TakeDigits(4, 4, year)) return std::nullopt;
        scan.TakeOneOf("- ");
        if (!takeQuarter()) return std::nullopt;
    } else {
        if (!takeQuarter()) return std::nullopt;
        scan.TakeOneOf("-/ ");
        if (!scan.TakeDigits(4, 4, year)) return std::nullopt;
    }
    return scan.AtEnd() && quarter >= 1 && quarter <= 4 ? DayOf(year, 3 * quarter - 2, 1) : std::nullopt;
}

// ISO 8601: the first week of a year is the one with its first Thursday; weeks begin with Monday.
std::optional<Instant> ReadWeek(Scanner scan) {
    int year = 0, week = 0, day = 1;
    if (!scan.TakeDigits(4, 4, year)) return std::nullopt;
    scan.TakeOneOf("- ");
    if (!scan.TakeOneOf("Ww") || !scan.TakeDigits(2, 2, week)) return std::nullopt;
    if (scan.Take('-') && !scan.TakeDigits(1, 1, day)) return std::nullopt;
    if (!scan.AtEnd() || week < 1 || week > 53 || day < 1 || day > 7) return std::nullopt;
    const auto mondayOfFirst = [](int y) {
        using namespace std::chrono;
        const sys_days fourth = sys_days(std::chrono::year(y) / January / 4);
        return fourth - (weekday(fourth) - Monday);
    };
    const auto at = mondayOfFirst(year) + std::chrono::days(7 * (week - 1) + day - 1);
    if (week == 53 && at >= mondayOfFirst(year + 1)) return std::nullopt;
    return Instant{std::chrono::sys_seconds(at).time_since_epoch().count(), 0};
}

std::optional<Instant> ReadDigits(Scanner scan) {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (!scan.TakeDigits(4, 4, year) || !scan.TakeDigits(2, 2, month) || !scan.TakeDigits(2, 2, day))
        return std::nullopt;
    std::optional<Instant> at = DayOf(year, month, day);
    if (!at) return at;
    if (scan.TakeOneOf("T ")) {
        if (!scan.TakeDigits(2, 2, hour) || !scan.TakeDigits(2, 2, minute)) return std::nullopt;
        if (IsDigit(scan.Next()) && !scan.TakeDigits(2, 2, second)) return std::nullopt;
        if (hour > 24 || minute > 59 || second > 60) return std::nullopt;
        at->seconds += hour * 3600 + minute * 60 + second;
    }
    return TakeZone(scan, *at) && scan.AtEnd() ? at : std::nullopt;
}

std::optional<Instant> ReadEpoch(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !(std::fabs(value) < 1e14))
        return std::nullopt;
    if (std::fabs(value) >= 1e11) value /= 1000;
    const double whole = std::floor(value);
    return Instant{static_cast<std::int64_t>(whole),
                   static_cast<std::int32_t>(std::floor((value - whole) * 1e6 + 0.5)) * 1000};
}

std::optional<Instant> ReadClock(Scanner scan) {
    Instant length;
    const bool negative = scan.Take('-');
    int days = 0;
    Scanner ahead = scan;
    if (ahead.TakeDigits(1, 5, days) &&
        (ahead.TakeWord("d") || (ahead.Take(' ') && (ahead.TakeWord("days") || ahead.TakeWord("day"))))) {
        length.seconds = std::int64_t{days} * 86400;
        ahead.TakeOneOf(",");
        ahead.SkipBlanks();
        scan = ahead;
    }
    if (!TakeClock(scan, 999'999, length) || !scan.AtEnd()) return std::nullopt;
    if (!negative) return length;
    if (length.nanoseconds == 0) return Instant{-length.seconds, 0};
    return Instant{-length.seconds - 1, 1'000'000'000 - length.nanoseconds};
}

}  // namespace

std::optional<Instant> ReadTime(std::string_view text, TimeForm form) {
    const Scanner scan(text);
    switch (form) {
        case TimeForm::YEAR_FIRST:
            return ReadYearFirst(scan);
        case TimeForm::DAY_FIRST:
            return ReadYearLast(scan, true);
        case TimeForm::MONTH_FIRST:
            return ReadYearLast(scan, false);
        case TimeForm::NAMED:
            return ReadNamed(scan);
        case TimeForm::MONTHS:
            return ReadMonth(scan);
        case TimeForm::QUARTERS:
            return ReadQuarter(scan);
        case TimeForm::WEEKS:
            return ReadWeek(scan);
        case TimeForm::DIGITS:
            return ReadDigits(scan);
        case TimeForm::EPOCH:
            return ReadEpoch(text);
        case TimeForm::CLOCK:
            return ReadClock(scan);
    }
    return std::nullopt;
}

std::optional<double> TimeOf(std::string_view text, DateOrder order) {
    text = Trimmed(text);
    const auto seconds = [](const Instant& time) {
        return static_cast<double>(time.seconds) + time.nanoseconds * 1e-9;
    };
    int year = 0;
    Scanner scan(text);
    if (scan.TakeDigits(4, 4, year) && scan.AtEnd()) return seconds(*DayOf(year, 1, 1));
    const TimeForm ordered = order == DateOrder::DAY_FIRST ? TimeForm::DAY_FIRST : TimeForm::MONTH_FIRST;
    for (const TimeForm form : {TimeForm::YEAR_FIRST, ordered, TimeForm::NAMED, TimeForm::MONTHS,
                                TimeForm::QUARTERS, TimeForm::WEEKS, TimeForm::DIGITS})
        if (const std::optional<Instant> time = ReadTime(text, form)) return seconds(*time);
    return std::nullopt;
}

const char* NameOf(TimeForm form) {
    switch (form) {
        case TimeForm::YEAR_FIRST:
            return "year-month-day";
        case TimeForm::DAY_FIRST:
            return "day.month.year";
        case TimeForm::MONTH_FIRST:
            return "month/day/year";
        case TimeForm::NAMED:
            return "day and name of the month";
        case TimeForm::MONTHS:
            return "months";
        case TimeForm::QUARTERS:
            return "quarters";
        case TimeForm::WEEKS:
            return "weeks";
        case TimeForm::DIGITS:
            return "yearmonthday";
        case TimeForm::EPOCH:
            return "seconds or milliseconds since 1970";
        case TimeForm::CLOCK:
            return "hours:minutes";
    }
    return "";
}

}  // namespace zel::tables

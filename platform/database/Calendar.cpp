#include "platform/database/Calendar.h"

#include <cctype>
#include <cmath>

namespace zel {
namespace {

constexpr std::int64_t kDaysPerEra = 146097;  // 400 years
constexpr std::int64_t kEpoch = 693899;       // 30 December 1899, counted from 1 March of the year 0
constexpr int kSecondsPerDay = 24 * 60 * 60;

std::int64_t FloorDivide(std::int64_t a, std::int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

class DateReader {
  public:
    explicit DateReader(std::string_view text) : text_(text) {
        SkipBlanks();
        while (text_.ends_with(' ')) text_.remove_suffix(1);
    }

    std::optional<double> Read() {
        const std::string_view whole = text_;
        double days = 0, time = 0;
        bool date = ReadIsoDate(days);
        if (!date) {
            text_ = whole;
            date = ReadAmericanDate(days);
        }
        if (date) {
            if (text_.empty()) return days;
            if (!Take('T') && !Take(' ')) return std::nullopt;
            SkipBlanks();
        } else {
            text_ = whole;
        }
        if (!ReadTime(time) || !text_.empty()) return std::nullopt;
        return days + time;
    }

  private:
    void SkipBlanks() {
        while (text_.starts_with(' ')) text_.remove_prefix(1);
    }
    bool Take(char c) {
        if (text_.empty() || text_.front() != c) return false;
        text_.remove_prefix(1);
        return true;
    }
    // Between `least` and `most` digits; how many there were, 0 for too few.
    std::size_t Number(std::size_t least, std::size_t most, int& number) {
        std::size_t count = 0;
        number = 0;
        while (count < most && count < text_.size() && text_[count] >= '0' && text_[count] <= '9')
            number = number * 10 + (text_[count++] - '0');
        if (count < least) return 0;
        text_.remove_prefix(count);
        return count;
    }
    static bool Exists(int year, int month, int day) {
        return month >= 1 && month <= 12 && day >= 1 && day <= DaysOfMonth(year, month);
    }

    bool ReadIsoDate(double& days) {
        const bool negative = Take('-');
        int year = 0, month = 0, day = 0;
        if (!Number(4, 6, year)) return false;
        if (negative) year = -year;
        const char separator = text_.empty() ? '\0' : text_.front();
        if ((separator != '-' && separator != '/') || !Take(separator) || !Number(1, 2, month) ||
            !Take(separator) || !Number(1, 2, day) || !Exists(year, month, day))
            return false;
        days = static_cast<double>(DaysFromCivil(year, month, day));
        return true;
    }

    bool ReadAmericanDate(double& days) {
        int year = 0, month = 0, day = 0;
        if (!Number(1, 2, month) || !Take('/') || !Number(1, 2, day) || !Take('/') || !Number(4, 6, year) ||
            !Exists(year, month, day))
            return false;
        days = static_cast<double>(DaysFromCivil(year, month, day));
        return true;
    }

    bool ReadTime(double& fraction) {
        int hour = 0, minute = 0, second = 0;
        double part = 0;
        if (!Number(1, 2, hour) || !Take(':') || !Number(2, 2, minute)) return false;
        if (Take(':')) {
            if (!Number(2, 2, second)) return false;
            if (Take('.')) part = ReadFraction();
        }
        if (!ReadHalf(hour) || !PassZone() || hour > 23 || minute > 59 || second > 59) return false;
        fraction = (hour * 3600 + minute * 60 + second + part) / kSecondsPerDay;
        return true;
    }

    double ReadFraction() {
        double value = 0, unit = 0.1;
        while (!text_.empty() && std::isdigit(static_cast<unsigned char>(text_.front()))) {
            value += (text_.front() - '0') * unit;
            unit /= 10;
            text_.remove_prefix(1);
        }
        return value;
    }

    // AM or PM, if there is one.
    bool ReadHalf(int& hour) {
        std::string_view rest = text_;
        while (rest.starts_with(' ')) rest.remove_prefix(1);
        if (rest.size() < 2 || (rest[1] | 0x20) != 'm') return true;
        const int half = rest[0] | 0x20;
        if (half != 'a' && half != 'p') return true;
        if (hour < 1 || hour > 12) return false;
        hour = hour % 12 + (half == 'p' ? 12 : 0);
        text_ = rest.substr(2);
        return true;
    }

    bool PassZone() {
        if (Take('Z')) return true;
        if (!Take('+') && !Take('-')) return true;
        int hours = 0, minutes = 0;
        if (!Number(2, 2, hours)) return false;
        if (Take(':')) return Number(2, 2, minutes) == 2;
        Number(2, 2, minutes);
        return true;
    }

    std::string_view text_;
};

}  // namespace

bool IsLeapYear(std::int64_t year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysOfMonth(std::int64_t year, int month) {
    static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return kDays[month - 1] + (month == 2 && IsLeapYear(year) ? 1 : 0);
}

// Years are counted from March, so that the leap day is a year's last.
std::int64_t DaysFromCivil(std::int64_t year, int month, int day) {
    const std::int64_t y = month > 2 ? year : year - 1;
    const std::int64_t era = FloorDivide(y, 400);
    const std::int64_t ofEra = y - era * 400;
    const int monthsSinceMarch = (month + 9) % 12;
    const std::int64_t ofYear = (153 * monthsSinceMarch + 2) / 5 + day - 1;
    return era * kDaysPerEra + ofEra * 365 + ofEra / 4 - ofEra / 100 + ofYear - kEpoch;
}

CivilTime CivilFromDays(double days) {
    CivilTime time;
    constexpr double kMost = 1e9;  // far beyond all calendars, and its seconds still fit
    if (!(std::fabs(days) <= kMost)) return time;
    const auto seconds = static_cast<std::int64_t>(std::floor(days * kSecondsPerDay + 0.5));
    const std::int64_t day = FloorDivide(seconds, kSecondsPerDay);
    const int ofDay = static_cast<int>(seconds - day * kSecondsPerDay);
    time.hour = ofDay / 3600;
    time.minute = ofDay / 60 % 60;
    time.second = ofDay % 60;
    time.dayOfWeek = static_cast<int>(((day + 6) % 7 + 7) % 7);

    const std::int64_t sinceZero = day + kEpoch;
    const std::int64_t era = FloorDivide(sinceZero, kDaysPerEra);
    const std::int64_t ofEra = sinceZero - era * kDaysPerEra;
    const std::int64_t yearOfEra = (ofEra - ofEra / 1460 + ofEra / 36524 - ofEra / 146096) / 365;
    const int ofYear = static_cast<int>(ofEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100));
    const int monthsSinceMarch = (5 * ofYear + 2) / 153;
    time.day = ofYear - (153 * monthsSinceMarch + 2) / 5 + 1;
    time.month = monthsSinceMarch < 10 ? monthsSinceMarch + 3 : monthsSinceMarch - 9;
    time.year = yearOfEra + era * 400 + (time.month <= 2 ? 1 : 0);
    time.dayOfYear = static_cast<int>(day - DaysFromCivil(time.year, 1, 1));
    return time;
}

std::optional<double> ParseDays(std::string_view text) {
    return DateReader(text).Read();
}

}  // namespace zel

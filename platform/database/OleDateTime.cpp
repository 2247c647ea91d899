#include "platform/database/Calendar.h"

#include <zel/platform/OleDateTime.h>

#include <array>
#include <cmath>
#include <string>

namespace {

constexpr int kSecondsPerDay = 24 * 60 * 60;
constexpr double kMostSpan = 3615897;    // days
constexpr double kFirstDay = -657434;    // 1 January 100
constexpr double kBehindLast = 2958466;  // 1 January 10000
constexpr const char* kInvalidDate = "Invalid DateTime";
constexpr const char* kInvalidSpan = "Invalid DateTimeSpan";

// The fraction of a date counts away from zero, so a plain count of days before the first one is folded.
DATE DateFromDays(double days) {
    const double whole = std::floor(days);
    return days >= 0 || whole == days ? days : whole - (days - whole);
}

double DaysFromDate(DATE date) {
    const double whole = std::trunc(date);
    return date >= 0 ? date : whole + (whole - date);
}

LONG WholeSeconds(double days) {
    const double part = (days - std::trunc(days)) * kSecondsPerDay;
    return static_cast<LONG>(std::trunc(part + (part < 0 ? -0.5 : 0.5)));
}

std::string TimeText(const zel::CivilTime& t) {
    CString text;
    text.Format("%d:%02d:%02d %s", t.hour % 12 == 0 ? 12 : t.hour % 12, t.minute, t.second,
                t.hour < 12 ? "AM" : "PM");
    return text.GetString();
}

std::tm ToTm(const zel::CivilTime& t) {
    std::tm tm{};
    tm.tm_year = static_cast<int>(t.year) - 1900;
    tm.tm_mon = t.month - 1;
    tm.tm_mday = t.day;
    tm.tm_hour = t.hour;
    tm.tm_min = t.minute;
    tm.tm_sec = t.second;
    tm.tm_wday = t.dayOfWeek;
    tm.tm_yday = t.dayOfYear;
    return tm;
}

}  // namespace

COleDateTimeSpan::COleDateTimeSpan(LONG days, int hours, int minutes, int seconds)
    : m_span(days + hours / 24.0 + minutes / (24 * 60.0) + seconds / static_cast<double>(kSecondsPerDay)) {
    CheckRange();
}

void COleDateTimeSpan::CheckRange() {
    m_status = m_span >= -kMostSpan && m_span <= kMostSpan ? valid : invalid;
}

LONG COleDateTimeSpan::GetDays() const {
    if (!(std::fabs(m_span) < 2e9)) return 0;
    const LONG carry = WholeSeconds(m_span) / kSecondsPerDay;
    return static_cast<LONG>(m_span) + carry;
}
LONG COleDateTimeSpan::GetHours() const {
    return WholeSeconds(m_span) % kSecondsPerDay / 3600;
}
LONG COleDateTimeSpan::GetMinutes() const {
    return WholeSeconds(m_span) % 3600 / 60;
}
LONG COleDateTimeSpan::GetSeconds() const {
    return WholeSeconds(m_span) % 60;
}

namespace {

// A null operand makes the result null, an invalid one makes it invalid.
COleDateTimeSpan WithStatusOf(COleDateTimeSpan result, const COleDateTimeSpan& a, const COleDateTimeSpan& b) {
    const auto either = [&](COleDateTimeSpan::DateTimeSpanStatus s) {
        return a.GetStatus() == s || b.GetStatus() == s;
    };
    if (either(COleDateTimeSpan::invalid)) result.SetStatus(COleDateTimeSpan::invalid);
    if (either(COleDateTimeSpan::null)) result.SetStatus(COleDateTimeSpan::null);
    return result;
}

}  // namespace

COleDateTimeSpan COleDateTimeSpan::operator+(const COleDateTimeSpan& other) const {
    return WithStatusOf(m_span + other.m_span, *this, other);
}
COleDateTimeSpan COleDateTimeSpan::operator-(const COleDateTimeSpan& other) const {
    return WithStatusOf(m_span - other.m_span, *this, other);
}

CString COleDateTimeSpan::Format(const char* format) const {
    if (m_status == null) return {};
    if (m_status == invalid) return kInvalidSpan;
    std::string text;
    for (const char* c = format; *c; ++c) {
        CString part(*c, 1);
        if (*c == '%' && c[1]) {
            switch (*++c) {
                case 'D':
                    part.Format("%d", GetDays());
                    break;
                case 'H':
                    part.Format("%02d", GetHours());
                    break;
                case 'M':
                    part.Format("%02d", GetMinutes());
                    break;
                case 'S':
                    part.Format("%02d", GetSeconds());
                    break;
                case '%':
                    break;
                default:
                    part += *c;
            }
        }
        text += part;
    }
    return text;
}

COleDateTime::COleDateTime(int year, int month, int day, int hour, int minute, int second) {
    SetDateTime(year, month, day, hour, minute, second);
}

COleDateTime COleDateTime::GetCurrentTime() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

COleDateTime COleDateTime::FromDays(double days) {
    return COleDateTime(DateFromDays(days));
}

double COleDateTime::ToDays() const {
    return DaysFromDate(m_dt);
}

void COleDateTime::CheckRange() {
    const double days = ToDays();
    m_status = days >= kFirstDay && days < kBehindLast ? valid : invalid;
}

int COleDateTime::SetDateTime(int year, int month, int day, int hour, int minute, int second) {
    const bool exists = year >= 100 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 &&
                        day <= zel::DaysOfMonth(year, month) && hour >= 0 && hour < 24 && minute >= 0 &&
                        minute < 60 && second >= 0 && second < 60;
    if (!exists) {
        m_status = invalid;
        return 1;
    }
    const double time = (hour * 3600 + minute * 60 + second) / static_cast<double>(kSecondsPerDay);
    *this = FromDays(static_cast<double>(zel::DaysFromCivil(year, month, day)) + time);
    return 0;
}

int COleDateTime::SetTime(int hour, int minute, int second) {
    return SetDateTime(1899, 12, 30, hour, minute, second);
}

bool COleDateTime::ParseDateTime(const char* text) {
    const auto days = zel::ParseDays(text ? text : "");
    if (days) {
        *this = FromDays(*days);
    } else {
        m_dt = 0;
        m_status = invalid;
    }
    return days.has_value();
}

int COleDateTime::GetYear() const {
    return m_status == valid ? static_cast<int>(zel::CivilFromDays(ToDays()).year) : -1;
}
int COleDateTime::GetMonth() const {
    return m_status == valid ? zel::CivilFromDays(ToDays()).month : -1;
}
int COleDateTime::GetDay() const {
    return m_status == valid ? zel::CivilFromDays(ToDays()).day : -1;
}
int COleDateTime::GetHour() const {
    return m_status == valid ? zel::CivilFromDays(ToDays()).hour : -1;
}
int COleDateTime::GetMinute() const {
    return m_status == valid ? zel::CivilFromDays(ToDays()).minute : -1;
}
int COleDateTime::GetSecond() const {
    return m_status == valid ? zel::CivilFromDays(ToDays()).second : -1;
}
int COleDateTime::GetDayOfWeek() const {
    return m_status == valid ? zel::CivilFromDays(ToDays()).dayOfWeek + 1 : -1;
}
int COleDateTime::GetDayOfYear() const {
    return m_status == valid ? zel::CivilFromDays(ToDays()).dayOfYear + 1 : -1;
}

// The difference of invalid dates is computed too; its own size decides whether it is a valid span.
COleDateTimeSpan COleDateTime::operator-(const COleDateTime& other) const {
    COleDateTimeSpan span(ToDays() - other.ToDays());
    if (m_status == null || other.m_status == null) span.SetStatus(COleDateTimeSpan::null);
    return span;
}

COleDateTime COleDateTime::operator+(const COleDateTimeSpan& span) const {
    COleDateTime result = FromDays(ToDays() + span.m_span);
    if (m_status == invalid || span.GetStatus() == COleDateTimeSpan::invalid) result.SetStatus(invalid);
    if (m_status == null || span.GetStatus() == COleDateTimeSpan::null) result.SetStatus(null);
    return result;
}

COleDateTime COleDateTime::operator-(const COleDateTimeSpan& span) const {
    COleDateTimeSpan back(-span.m_span);
    back.SetStatus(span.GetStatus());
    return *this + back;
}

CString COleDateTime::Format(DWORD flags) const {
    if (m_status == null) return {};
    if (m_status != valid) return kInvalidDate;
    const double days = ToDays();
    const zel::CivilTime t = zel::CivilFromDays(days);
    const bool midnight = t.hour == 0 && t.minute == 0 && t.second == 0;
    CString date;
    date.Format("%d/%d/%d", t.month, t.day, static_cast<int>(t.year));
    if (flags & VAR_DATEVALUEONLY) return date;
    if (flags & VAR_TIMEVALUEONLY) return TimeText(t);
    if (days >= 0 && days < 1 && !midnight) return TimeText(t);
    return midnight ? date : date + " " + TimeText(t).c_str();
}

CString COleDateTime::Format(const char* format) const {
    if (m_status == null) return {};
    if (m_status != valid) return kInvalidDate;
    const std::tm tm = ToTm(zel::CivilFromDays(ToDays()));
    // A closing character tells an empty result from a buffer that is too small.
    const std::string closed = std::string(format) + ".";
    std::string text(64, '\0');
    std::size_t length = 0;
    while ((length = std::strftime(text.data(), text.size(), closed.c_str(), &tm)) == 0)
        text.resize(text.size() * 2);
    text.resize(length - 1);
    return text;
}

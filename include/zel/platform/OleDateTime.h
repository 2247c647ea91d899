// Dates with a time of day, and the spans between them.
#pragma once

#include <zel/platform/String.h>

#include <ctime>

// Days since 30 December 1899, 00:00. The whole part is the day; the fraction, always counted away from zero,
// is the time of day: -1.25 is 29 December 1899, 06:00.
using DATE = double;

inline constexpr DWORD VAR_TIMEVALUEONLY = 1;
inline constexpr DWORD VAR_DATEVALUEONLY = 2;

// A length of time, in days with a fraction. A span beyond some 9900 years either way has the status invalid,
// and keeps its value.
class COleDateTimeSpan {
  public:
    enum DateTimeSpanStatus { valid = 0, invalid = 1, null = 2 };

    COleDateTimeSpan() = default;
    COleDateTimeSpan(double days) : m_span(days) { CheckRange(); }
    COleDateTimeSpan(LONG days, int hours, int minutes, int seconds);

    DateTimeSpanStatus GetStatus() const { return m_status; }
    void SetStatus(DateTimeSpanStatus status) { m_status = status; }

    double GetTotalDays() const { return m_span; }
    double GetTotalHours() const { return m_span * 24; }
    double GetTotalMinutes() const { return m_span * 24 * 60; }
    double GetTotalSeconds() const { return m_span * 24 * 60 * 60; }
    // The parts of the span, rounded to whole seconds, each with the span's sign.
    LONG GetDays() const;
    LONG GetHours() const;
    LONG GetMinutes() const;
    LONG GetSeconds() const;

    COleDateTimeSpan operator+(const COleDateTimeSpan& other) const;
    COleDateTimeSpan operator-(const COleDateTimeSpan& other) const;
    COleDateTimeSpan operator-() const { return COleDateTimeSpan(-m_span); }
    auto operator<=>(const COleDateTimeSpan& other) const { return m_span <=> other.m_span; }
    bool operator==(const COleDateTimeSpan& other) const {
        return m_status == other.m_status && m_span == other.m_span;
    }
    operator double() const { return m_span; }

    // %D %H %M %S are days, hours, minutes and seconds, %% a percent sign. Nothing for a span that is null,
    // "Invalid DateTimeSpan" for one that is invalid.
    CString Format(const char* format) const;

    double m_span = 0;
    DateTimeSpanStatus m_status = valid;

  private:
    void CheckRange();
};

// A date of the Gregorian calendar, from the year 100 to the year 9999, with the time of day. Other values
// are kept and have the status invalid: differences of them are right all the same.
class COleDateTime {
  public:
    enum DateTimeStatus { error = -1, valid = 0, invalid = 1, null = 2 };

    COleDateTime() = default;
    COleDateTime(DATE date) : m_dt(date) { CheckRange(); }
    COleDateTime(int year, int month, int day, int hour, int minute, int second);
    // The local time of the machine.
    static COleDateTime GetCurrentTime();
    // So many days after 30 December 1899, 00:00, before it when negative; a plain count, unlike DATE.
    static COleDateTime FromDays(double days);

    DateTimeStatus GetStatus() const { return m_status; }
    void SetStatus(DateTimeStatus status) { m_status = status; }

    // Rounded to whole seconds; -1 for a date that is not valid. Sunday is day 1 of the week, 1 January day 1
    // of the year.
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const;
    int GetDayOfYear() const;

    // 0 when there is such a date and time; 1 otherwise, and the status is invalid.
    int SetDateTime(int year, int month, int day, int hour, int minute, int second);
    int SetDate(int year, int month, int day) { return SetDateTime(year, month, day, 0, 0, 0); }
    int SetTime(int hour, int minute, int second);
    // Reads "2012-01-31", "2012-01-31 12:30:15.5" (or with a T between), "1/31/2012", "1/31/2012 6:30 PM" or
    // a time alone. A zone behind the time is passed over: the clock's reading counts. Years of up to six
    // digits and negative ones are read into a date that is invalid and keeps its value. Answers whether it
    // was a date.
    bool ParseDateTime(const char* text);

    // Days with a fraction since 30 December 1899, for arithmetic.
    double ToDays() const;
    COleDateTimeSpan operator-(const COleDateTime& other) const;
    COleDateTime operator+(const COleDateTimeSpan& span) const;
    COleDateTime operator-(const COleDateTimeSpan& span) const;
    auto operator<=>(const COleDateTime& other) const { return ToDays() <=> other.ToDays(); }
    bool operator==(const COleDateTime& other) const {
        return m_status == other.m_status && m_dt == other.m_dt;
    }
    operator DATE() const { return m_dt; }

    // "1/31/2012 6:30:00 PM"; without the time at midnight, without the date on 30 December 1899, or by the
    // flags VAR_TIMEVALUEONLY and VAR_DATEVALUEONLY. Nothing for a null date, "Invalid DateTime" for an
    // invalid one.
    CString Format(DWORD flags = 0) const;
    // As strftime formats.
    CString Format(const char* format) const;

    DATE m_dt = 0;
    DateTimeStatus m_status = valid;

  private:
    void CheckRange();
};

#include <zel/platform/OleDateTime.h>

#include <gtest/gtest.h>

namespace {

std::string Text(const COleDateTime& date, DWORD flags = 0) {
    return date.Format(flags).GetString();
}

TEST(Dates, CountFromTheEndOf1899) {
    EXPECT_EQ(COleDateTime(1899, 12, 30, 0, 0, 0).m_dt, 0);
    EXPECT_EQ(COleDateTime(1900, 1, 1, 0, 0, 0).m_dt, 2);
    EXPECT_EQ(COleDateTime(1990, 1, 1, 12, 0, 0).m_dt, 32874.5);
    EXPECT_EQ(COleDateTime(1899, 12, 29, 6, 0, 0).m_dt, -1.25) << "the time counts away from zero";
    EXPECT_EQ(COleDateTime(100, 1, 1, 0, 0, 0).m_dt, -657434);
    EXPECT_EQ(COleDateTime(9999, 12, 31, 0, 0, 0).m_dt, 2958465);
    // Every day is the one before and one more, with its parts, through leap years and centuries.
    COleDateTime day(1599, 12, 31, 18, 30, 15);
    for (int i = 0; i < 200000; ++i) {
        const COleDateTime next = day + COleDateTimeSpan(1.0);
        ASSERT_NEAR(COleDateTime(next.GetYear(), next.GetMonth(), next.GetDay(), 18, 30, 15).m_dt, next.m_dt,
                    1e-9);
        ASSERT_EQ(next.GetDayOfWeek(), day.GetDayOfWeek() % 7 + 1);
        ASSERT_EQ(next.GetHour() * 10000 + next.GetMinute() * 100 + next.GetSecond(), 183015);
        day = next;
    }
    EXPECT_EQ(Text(day), "7/31/2147 6:30:15 PM");
    EXPECT_EQ(COleDateTime(2024, 2, 29, 0, 0, 0).GetDayOfYear(), 60);
    EXPECT_EQ(COleDateTime(2024, 2, 29, 0, 0, 0).GetDayOfWeek(), 5) << "a Thursday";
}

TEST(Dates, KnowWhichExist) {
    for (const COleDateTime& none : {COleDateTime(2023, 2, 29, 0, 0, 0), COleDateTime(1900, 2, 29, 0, 0, 0),
                                     COleDateTime(99, 1, 1, 0, 0, 0), COleDateTime(2000, 13, 1, 0, 0, 0),
                                     COleDateTime(2000, 1, 1, 24, 0, 0), COleDateTime(2958466.0)}) {
        EXPECT_EQ(none.GetStatus(), COleDateTime::invalid);
        EXPECT_EQ(Text(none), "Invalid DateTime");
        EXPECT_EQ(none.GetYear(), -1);
    }
    EXPECT_EQ(COleDateTime(2000, 2, 29, 0, 0, 0).GetStatus(), COleDateTime::valid);
    // Beyond the calendar differences are right; the longest are marked.
    const COleDateTimeSpan longest = COleDateTime(4000000.0) - COleDateTime(1990, 1, 1, 0, 0, 0);
    EXPECT_EQ(longest.GetTotalDays(), 4000000.0 - 32874);
    EXPECT_EQ(longest.GetStatus(), COleDateTimeSpan::invalid);
    EXPECT_EQ((COleDateTime(3000000.0) - COleDateTime(0.0)).GetStatus(), COleDateTimeSpan::valid);
    COleDateTime null;
    null.SetStatus(COleDateTime::null);
    EXPECT_EQ(Text(null), "");
    EXPECT_EQ((null - COleDateTime(0.0)).GetStatus(), COleDateTimeSpan::null);
}

TEST(Dates, AreReadAndWritten) {
    const std::pair<const char*, double> good[] = {{"1990-01-02", 32875},
                                                   {"1990-01-02T06:00", 32875.25},
                                                   {" 1990-01-02  06:00:00.000Z ", 32875.25},
                                                   {"1990-01-02 06:00:00+05:30", 32875.25},
                                                   {"1/2/1990 6:00 PM", 32875.75},
                                                   {"12/30/1899 12:00 am", 0},
                                                   {"12:00", 0.5},
                                                   {"1899-12-29 06:00:00", -1.25},
                                                   {"12000-01-01", 3688951}};
    for (const auto& [text, days] : good) {
        COleDateTime date;
        EXPECT_TRUE(date.ParseDateTime(text)) << text;
        EXPECT_NEAR(date.m_dt, days, 1e-9) << text;
    }
    for (const char* bad : {"", "1990", "1990-01", "1990-02-30", "1990-01-02x", "1990-01-02 25:00",
                            "13/1/1990", "1990-01-02 6", "0:00 PM", "1990-01/02", "text"}) {
        COleDateTime date;
        EXPECT_FALSE(date.ParseDateTime(bad)) << bad;
        EXPECT_EQ(date.GetStatus(), COleDateTime::invalid);
    }
    const COleDateTime date(2012, 1, 31, 0, 5, 9);
    EXPECT_EQ(Text(date), "1/31/2012 12:05:09 AM");
    EXPECT_EQ(Text(date, VAR_DATEVALUEONLY), "1/31/2012");
    EXPECT_EQ(Text(date, VAR_TIMEVALUEONLY), "12:05:09 AM");
    EXPECT_EQ(Text(COleDateTime(0.75)), "6:00:00 PM");
    EXPECT_EQ(date.Format("%Y-%m-%d %H:%M:%S %a %j"), "2012-01-31 00:05:09 Tue 031");
    EXPECT_EQ(date.Format(""), "");
}

TEST(Spans, HaveParts) {
    const COleDateTimeSpan span(-2, -3, -4, -5);
    EXPECT_EQ(
        span.GetDays() * 1000000 + span.GetHours() * 10000 + span.GetMinutes() * 100 + span.GetSeconds(),
        -2030405);
    EXPECT_EQ((span + span).GetDays(), -4);
    EXPECT_EQ(COleDateTimeSpan(1, 2, 3, 4).Format("%D days %H:%M:%S 100%%"), "1 days 02:03:04 100%");
    EXPECT_EQ(COleDateTimeSpan(0.9999999).GetDays(), 1) << "rounded to seconds";
    EXPECT_EQ(COleDateTimeSpan(0.9999999).GetHours(), 0);
}

}  // namespace

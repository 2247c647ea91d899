// Ticks of time axes against the date library: it knows the clocks of every zone.
#include <zel/Scale.h>

#include <cmath>
#include <date/tz.h>
#include <gtest/gtest.h>
#include <random>

namespace {

using std::chrono::seconds;
using zel::Scale;
using zel::Tick;
using zel::TickRoom;
using zel::Ticks;

constexpr double kDay = 86'400;

TickRoom Room(double length) {
    return {length, [](const std::string& text) { return 6.0 * static_cast<double>(text.size()); }, 6, 60,
            false};
}

double At(const char* zone, int y, unsigned m, unsigned d, int hour = 0, int minute = 0) {
    const auto local = date::local_days(date::year(y) / static_cast<int>(m) / static_cast<int>(d)) +
                       std::chrono::hours(hour) + std::chrono::minutes(minute);
    const auto utc = date::make_zoned(zone, local, date::choose::earliest).get_sys_time();
    return static_cast<double>(date::floor<seconds>(utc).time_since_epoch().count());
}

std::string Labels(const Scale& scale, double length) {
    std::string text;
    for (const Tick& tick : scale.MakeTicks(Room(length)).major)
        text += (text.empty() ? "" : " ") + tick.label + (tick.context.empty() ? "" : "|" + tick.context);
    return text;
}

// A clock in the zone shows what the label says, and nothing finer than the label.
void CheckTick(const date::time_zone& zone, const Tick& tick, double step) {
    const auto whole = date::sys_seconds(seconds(static_cast<long long>(std::floor(tick.value))));
    const auto local = zone.to_local(whole);
    const auto day = date::floor<date::days>(local);
    const date::year_month_day ymd(day);
    const date::hh_mm_ss<seconds> time(local - day);
    if (step >= 0.9 * kDay) {
        // The first second of a local day: clocks may have been put forward over midnight.
        const auto before = zone.to_local(whole - seconds(1));
        ASSERT_LT(date::floor<date::days>(before), day)
            << tick.label << " at " << date::format("%F %T", local);
        if (step >= 27 * kDay) {
            ASSERT_EQ(unsigned(ymd.day()), 1U) << tick.label;
        }
        if (step >= 360 * kDay) {
            ASSERT_EQ(tick.label, std::to_string(int(ymd.year())));
            ASSERT_EQ(unsigned(ymd.month()), 1U);
        } else if (step >= 27 * kDay) {
            ASSERT_EQ(tick.label, date::format("%b", local));
        } else {
            ASSERT_EQ(tick.label, std::to_string(unsigned(ymd.day())));
        }
        return;
    }
    if (step >= 60) {
        ASSERT_EQ(time.seconds().count(), 0) << tick.label;
        ASSERT_EQ(tick.label.substr(0, 5), date::format("%H:%M", local));
    } else if (step >= 1) {
        ASSERT_EQ(tick.label.substr(0, 8), date::format("%T", local));
    }
}

class Zone : public testing::TestWithParam<const char*> {};

// Every span of every size somewhere in two thousand years.
TEST_P(Zone, ticks_stand_on_the_boundaries_of_its_clocks) {
    const date::time_zone& zone = *date::locate_zone(GetParam());
    std::mt19937 random(7);
    std::uniform_real_distribution<> unit(0, 1);
    const double begin = At("UTC", 1000, 1, 1), end = At("UTC", 3000, 1, 1);
    int checked = 0;
    for (int i = 0; i < 4000; ++i) {
        const double from = begin + unit(random) * (end - begin);
        const double range = std::pow(10.0, 1 + 8.5 * unit(random));
        const Scale scale = Scale::Time(from, from + range, GetParam());
        const std::vector<Tick> ticks = scale.MakeTicks(Room(300 + 600 * unit(random))).major;
        double step = 1e30;
        for (std::size_t k = 1; k < ticks.size(); ++k)
            step = std::min(step, ticks[k].value - ticks[k - 1].value);
        for (const Tick& tick : ticks) {
            // Hours before and after a change are not all alike; months and years neither.
            CheckTick(zone, tick, step);
            if (HasFatalFailure()) return;
            ++checked;
        }
    }
    EXPECT_GT(checked, 10'000);
}

// Each year's axis of months begins where the zone's year does.
TEST_P(Zone, months_of_two_thousand_years) {
    const date::time_zone& zone = *date::locate_zone(GetParam());
    for (int year = 1000; year < 3000; ++year) {
        const double from = At(GetParam(), year, 1, 1), to = At(GetParam(), year + 1, 1, 1);
        const std::vector<Tick> ticks = Scale::Time(from, to, GetParam()).MakeTicks(Room(700)).major;
        ASSERT_EQ(ticks.front().value, from) << year;
        ASSERT_EQ(ticks.back().value, to) << year;
        ASSERT_EQ(ticks.front().context, std::to_string(year));
        for (const Tick& tick : ticks) {
            CheckTick(zone, tick, 28 * kDay);
            if (HasFatalFailure()) return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Zones, Zone,
                         testing::Values("UTC", "Europe/Berlin", "America/New_York", "Australia/Lord_Howe",
                                         "America/Sao_Paulo"));

TEST(Calendar, says_what_changes) {
    const char* zone = "Europe/Berlin";
    EXPECT_EQ(Labels(Scale::Time(At(zone, 2020, 3, 12), At(zone, 2020, 3, 26), zone), 500),
              "13|Mar 2020 15 17 19 21 23 25");
    EXPECT_EQ(Labels(Scale::Time(At(zone, 2020, 3, 12, 9), At(zone, 2020, 3, 13, 9), zone), 500),
              "09:00|12 Mar 2020 12:00 15:00 18:00 21:00 00:00|13 Mar 2020 03:00 06:00 09:00");
    EXPECT_EQ(Labels(Scale::Time(At(zone, 2020, 2, 1), At(zone, 2021, 3, 1), zone), 300),
              "Apr|2020 Jul Oct Jan|2021");
    EXPECT_EQ(Labels(Scale::Time(At(zone, 1940, 1, 1), At(zone, 2020, 1, 1), zone), 300),
              "1940 1960 1980 2000 2020");
    EXPECT_EQ(Labels(Scale::Time(1.3, 1.5), 300), "01.30|1 Jan 1970 00:00 01.35 01.40 01.45 01.50");
}

TEST(Calendar, clocks_that_are_put_forward_or_back) {
    const char* zone = "Europe/Berlin";
    // The 29th of March 2020 had no 02:00.
    EXPECT_EQ(Labels(Scale::Time(At(zone, 2020, 3, 29, 0), At(zone, 2020, 3, 29, 6), zone), 300),
              "00:00|29 Mar 2020 01:00 03:00 04:00 05:00 06:00");
    // The 25th of October had it twice.
    EXPECT_EQ(Labels(Scale::Time(At(zone, 2020, 10, 25, 0), At(zone, 2020, 10, 25, 5), zone), 600),
              "00:00|25 Oct 2020 01:00 02:00 CEST 02:00 CET 03:00 04:00 05:00");
    // Days of 23, 24 and 25 hours begin at midnight.
    std::vector<double> lengths;
    const std::vector<Tick> days =
        Scale::Time(At(zone, 2020, 10, 23), At(zone, 2020, 10, 27), zone).MakeTicks(Room(250)).major;
    for (std::size_t i = 1; i < days.size(); ++i)
        lengths.push_back((days[i].value - days[i - 1].value) / 3600);
    EXPECT_EQ(lengths, (std::vector<double>{24, 24, 25, 24}));
}

TEST(Calendar, nanoseconds_near_an_origin) {
    const Scale scale = Scale::Time(1e-7, 3e-7).WithOrigin(1'600'000'000);
    const std::vector<Tick> ticks = scale.MakeTicks(Room(900)).major;
    ASSERT_GE(ticks.size(), 3U);
    EXPECT_EQ(ticks.front().label, "40.00000010");
    EXPECT_EQ(ticks.front().context, "13 Sep 2020 12:26");
}

}  // namespace

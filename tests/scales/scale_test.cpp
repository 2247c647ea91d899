#include <zel/Error.h>
#include <zel/Scale.h>

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <set>

namespace {

using zel::Scale;
using zel::Tick;
using zel::TickRoom;
using zel::Ticks;

// A letter of a label is 6 units wide.
double WidthOf(const std::string& text) {
    double letters = 0;
    for (const char c : text) letters += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
    return 6 * letters;
}

TickRoom Room(double length, double distance = 60) {
    return {length, WidthOf, 6, distance, false};
}

std::string Labels(const Scale& scale, double length, const zel::NumberFormat& format = {}) {
    const Ticks ticks = scale.MakeTicks(Room(length), format);
    std::string text;
    for (const Tick& tick : ticks.major)
        text += (text.empty() ? "" : " ") + tick.label + (tick.context.empty() ? "" : "|" + tick.context);
    return text + (ticks.factor.empty() ? "" : " " + ticks.factor);
}

class Random {
  public:
    explicit Random(unsigned seed) : engine_(seed) {}
    double Between(double low, double high) { return std::uniform_real_distribution<>(low, high)(engine_); }
    int Below(int n) { return std::uniform_int_distribution<>(0, n - 1)(engine_); }
    // Of any size, both signs.
    double Any(double exponents) {
        return (Below(2) ? 1 : -1) * std::pow(10.0, Between(-exponents, exponents));
    }

  private:
    std::mt19937 engine_;
};

// A scale of a kind with ends of all sizes; a quarter of them are reversed.
Scale RandomScale(Scale::Kind kind, Random& random) {
    const double size = std::pow(10.0, random.Between(-200, 200));
    double a = random.Any(12), b = random.Any(12);
    if (random.Below(3) == 0) b = a + std::fabs(a) * std::pow(10.0, random.Between(-9, 0));
    switch (kind) {
        case Scale::Kind::LOGARITHM: {
            const double sign = random.Below(4) ? 1 : -1;
            return Scale::Logarithm(sign * size, sign * size * std::pow(10.0, random.Between(-40, 40)),
                                    random.Below(3) == 0 ? 2 : 10);
        }
        case Scale::Kind::SYMMETRIC_LOGARITHM:
            return Scale::SymmetricLogarithm(a, b, std::pow(10.0, random.Between(-6, 6)));
        case Scale::Kind::SQUARE_ROOT:
            return Scale::SquareRoot(std::fabs(a), std::fabs(b));
        case Scale::Kind::FUNCTION:
            return Scale::WithFunction(
                a, b, [](double v) { return std::cbrt(v); }, [](double u) { return u * u * u; });
        case Scale::Kind::TIME: {
            const double from = random.Between(-5e9, 8e9);
            const double range = std::pow(10.0, random.Between(-3, 10));
            return Scale::Time(from, random.Below(4) ? from + range : from - range,
                               random.Below(2) ? "UTC" : "Europe/Berlin");
        }
        case Scale::Kind::DURATION:
            return Scale::Duration(random.Below(2) ? 0 : a, std::pow(10.0, random.Between(-9, 9)));
        case Scale::Kind::CATEGORIES: {
            std::vector<std::string> names;
            for (int i = random.Below(60); i >= 0; --i)
                names.push_back(std::to_string(i) +
                                std::string(static_cast<std::size_t>(random.Below(12)), 'x'));
            const Scale scale = Scale::Categories(std::move(names));
            return random.Below(4) ? scale : scale.Reversed();
        }
        default:
            return Scale::Linear(a * size / 1e12, b * size / 1e12);
    }
}

// Some hundreds find what is wrong; ZEL_CASES asks for more.
int Cases() {
    const char* const wanted = std::getenv("ZEL_CASES");
    return wanted ? std::atoi(wanted) : 1000;
}

class EveryKind : public testing::TestWithParam<Scale::Kind> {};

// What must hold for whatever is shown in whatever room.
TEST_P(EveryKind, ticks_lie_inside_ascend_differ_and_do_not_overlap) {
    Random random(static_cast<unsigned>(GetParam()) + 1);
    for (int i = 0; i < Cases(); ++i) {
        const Scale scale = RandomScale(GetParam(), random).WithUsableEnds();
        const TickRoom room = Room(random.Between(20, 1500), random.Between(20, 90));
        const Ticks ticks = scale.MakeTicks(room);
        const auto what = [&] {
            return "kind " + std::to_string(static_cast<int>(GetParam())) + " from " +
                   std::to_string(scale.From()) + " to " + std::to_string(scale.To()) + " in " +
                   std::to_string(room.length);
        };
        std::set<std::string> seen;
        double before = -1e308, end = -1e308;
        for (const Tick& tick : ticks.major) {
            ASSERT_GE(tick.value, scale.Low()) << what();
            ASSERT_LE(tick.value, scale.High()) << what();
            ASSERT_GT(tick.value, before) << what();
            before = tick.value;
            // Categories may share a name, and times do so under different days; "4" may stand twice in a
            // month of which the beginning is far away.
            if (GetParam() != Scale::Kind::CATEGORIES && GetParam() != Scale::Kind::TIME) {
                ASSERT_TRUE(seen.insert(tick.label).second) << what() << ": " << tick.label << " twice";
            }
        }
        std::vector<Tick> ordered = ticks.major;
        if (scale.IsReversed()) std::reverse(ordered.begin(), ordered.end());
        for (const Tick& tick : ordered) {
            const double at = *scale.PlaceOf(tick.value) * room.length, half = WidthOf(tick.label) / 2;
            ASSERT_GE(at - half, end) << what() << ": " << tick.label << " overlaps";
            end = at + half;
        }
        for (const double minor : ticks.minor) {
            ASSERT_GE(minor, scale.Low()) << what();
            ASSERT_LE(minor, scale.High()) << what();
            for (const Tick& tick : ticks.major) ASSERT_NE(minor, tick.value) << what();
        }
    }
}

TEST_P(EveryKind, values_come_back_from_their_places) {
    Random random(static_cast<unsigned>(GetParam()) + 100);
    for (int i = 0; i < Cases(); ++i) {
        const Scale scale = RandomScale(GetParam(), random).WithUsableEnds();
        ASSERT_EQ(scale.PlaceOf(scale.From()), 0.0);
        ASSERT_EQ(scale.PlaceOf(scale.To()), 1.0);
        ASSERT_EQ(scale.ValueAt(0), scale.From());
        ASSERT_EQ(scale.ValueAt(1), scale.To());
        const double u = random.Between(0, 1);
        const auto back = scale.PlaceOf(scale.ValueAt(u));
        ASSERT_TRUE(back.has_value());
        // Ends that are equal to many digits leave the place few.
        const double digits =
            std::max(std::fabs(scale.From()), std::fabs(scale.To())) / std::fabs(scale.To() - scale.From());
        ASSERT_NEAR(*back, u, 1e-9 + 1e-14 * digits) << scale.From() << " " << scale.To();
    }
}

INSTANTIATE_TEST_SUITE_P(All, EveryKind,
                         testing::Values(Scale::Kind::LINEAR, Scale::Kind::LOGARITHM,
                                         Scale::Kind::SYMMETRIC_LOGARITHM, Scale::Kind::SQUARE_ROOT,
                                         Scale::Kind::FUNCTION, Scale::Kind::TIME, Scale::Kind::DURATION,
                                         Scale::Kind::CATEGORIES));

TEST(Scale, places_follow_the_kind) {
    EXPECT_EQ(Scale::Linear(10, 20).PlaceOf(15), 0.5);
    EXPECT_EQ(Scale::Linear(20, 10).PlaceOf(12.5), 0.75);
    EXPECT_NEAR(*Scale::Logarithm(1, 10'000).PlaceOf(100), 0.5, 1e-15);
    EXPECT_NEAR(*Scale::Logarithm(-1000, -1).PlaceOf(-10), 2.0 / 3, 1e-15);
    EXPECT_FALSE(Scale::Logarithm(1, 10).PlaceOf(0).has_value());
    EXPECT_FALSE(Scale::Logarithm(1, 10).PlaceOf(-5).has_value());
    EXPECT_NEAR(*Scale::SquareRoot(0, 100).PlaceOf(25), 0.5, 1e-15);
    EXPECT_NEAR(*Scale::SymmetricLogarithm(-100, 100, 1).PlaceOf(0), 0.5, 1e-15);
    EXPECT_EQ(Scale::Categories({"a", "b", "c", "d"}).PlaceOf(0), 0.125) << "the middle of the first quarter";
}

TEST(Scale, ends_that_cannot_be_drawn_are_replaced) {
    const double nan = std::nan("");
    for (const double a : {0.0, -1.0, 1e300, -1e300, 1e-300, nan, HUGE_VAL, -HUGE_VAL, 5.0})
        for (const double b : {0.0, 5.0, 1e300, 1.7e308, -1.7e308, nan, HUGE_VAL})
            for (const Scale& scale :
                 {Scale::Linear(a, b), Scale::Logarithm(a, b), Scale::SquareRoot(a, b),
                  Scale::SymmetricLogarithm(a, b), Scale::Duration(a, b), Scale::Time(a, b)}) {
                const Scale usable = scale.WithUsableEnds();
                EXPECT_TRUE(usable.PlaceOf(usable.From()).has_value() &&
                            usable.PlaceOf(usable.To()).has_value())
                    << a << " " << b;
                (void)usable.MakeTicks(Room(300));
            }
    const Scale kept = Scale::Logarithm(0.3, 7).WithUsableEnds();
    EXPECT_EQ(kept.From(), 0.3) << "what can be drawn stays as it is";
    EXPECT_EQ(Scale::Logarithm(-5, 100).WithUsableEnds().From(), 0.1) << "three decades below the upper end";
    EXPECT_EQ(Scale::Linear(3, 3).WithUsableEnds().From(), 1.5);
}

TEST(Scale, round_ends_lie_outside_and_near) {
    const Scale y = Scale::Linear(-2.96, 17.3).WithRoundEnds();
    EXPECT_EQ(y.From(), -4);
    EXPECT_EQ(y.To(), 18);
    const Scale log = Scale::Logarithm(0.3, 800).WithRoundEnds();
    EXPECT_DOUBLE_EQ(log.From(), 0.2);
    EXPECT_DOUBLE_EQ(log.To(), 1000);
    EXPECT_EQ(Scale::Linear(17.3, -2.96).WithRoundEnds().From(), 18) << "reversed";
    EXPECT_THROW(Scale::Logarithm(1, 10, 1), zel::Error);
    EXPECT_THROW(Scale::Time(0, 1, "Nowhere/City"), zel::Error);
}

TEST(Ticks, of_numbers_are_simple_and_told_apart) {
    EXPECT_EQ(Labels(Scale::Linear(0, 10), 300), "0 2 4 6 8 10");
    EXPECT_EQ(Labels(Scale::Linear(0, 1), 300), "0.0 0.2 0.4 0.6 0.8 1.0");
    EXPECT_EQ(Labels(Scale::Linear(2000.5, 2003.5), 500), "2000.5 2001.0 2001.5 2002.0 2002.5 2003.0 2003.5");
    EXPECT_EQ(Labels(Scale::Linear(10'000, 10'010), 500),
              "10000 10001 10002 10003 10004 10005 10006 10007 10008 10009 10010");
    EXPECT_EQ(Labels(Scale::Linear(0, 4e7), 300), "0 10 20 30 40 \u00D710\u2076");
    EXPECT_EQ(Labels(Scale::Linear(0, 3e-9), 200), "0 1 2 3 \u00D710\u207B\u2079");
    EXPECT_EQ(Labels(Scale::Linear(-4, 4), 300), "\u22124 \u22122 0 2 4");
    zel::NumberFormat percent, si, money;
    percent.percent = true;
    si.factor = zel::NumberFormat::Factor::SI;
    si.suffix = "Hz";
    money.grouping = ",";
    money.prefix = "$";
    money.factor = zel::NumberFormat::Factor::NONE;
    EXPECT_EQ(Labels(Scale::Linear(0, 1), 250, percent), "0\u00A0% 25\u00A0% 50\u00A0% 75\u00A0% 100\u00A0%");
    EXPECT_EQ(Labels(Scale::Linear(0, 4e6), 300, si),
              "0\u00A0MHz 1\u00A0MHz 2\u00A0MHz 3\u00A0MHz 4\u00A0MHz");
    EXPECT_EQ(Labels(Scale::Linear(-2e6, 2e6), 400, money),
              "\u2212$2,000,000 \u2212$1,000,000 $0 $1,000,000 $2,000,000");
}

TEST(Ticks, of_logarithms_are_decades_first) {
    EXPECT_EQ(Labels(Scale::Logarithm(1, 1000), 150), "1 10 100 1000");
    EXPECT_EQ(Labels(Scale::Logarithm(1, 1000), 500), "1 2 5 10 20 50 100 200 500 1000");
    EXPECT_EQ(Labels(Scale::Logarithm(1, 10), 500), "1 2 3 4 5 6 7 8 9 10");
    EXPECT_EQ(Labels(Scale::Logarithm(1e-10, 1e10), 320),
              "10\u207B\u2079 10\u207B\u2076 10\u207B\u00B3 10\u2070 10\u00B3 10\u2076 10\u2079");
    EXPECT_EQ(Labels(Scale::Logarithm(1, 1024, 2), 300), "1 4 16 64 256 1024");
    EXPECT_EQ(Labels(Scale::Logarithm(-1000, -1), 150), "\u22121000 \u2212100 \u221210 \u22121");
    EXPECT_EQ(Labels(Scale::Logarithm(2, 7), 200), "2 3 4 5 6") << "less than a decade";
}

TEST(Ticks, of_durations_and_categories) {
    EXPECT_EQ(Labels(Scale::Duration(0, 5400), 300),
              "0:00:00 0:15:00 0:30:00 0:45:00 1:00:00 1:15:00 1:30:00");
    EXPECT_EQ(Labels(Scale::Duration(0, 0.25), 300),
              "0\u00A0ms 50\u00A0ms 100\u00A0ms 150\u00A0ms 200\u00A0ms 250\u00A0ms");
    EXPECT_EQ(Labels(Scale::Duration(0, 3 * 86'400.0), 200), "0\u00A0d 1\u00A0d 2\u00A0d 3\u00A0d");
    EXPECT_EQ(Labels(Scale::Categories({"apple", "pear", "plum"}), 300), "apple pear plum");
    std::vector<std::string> many;
    for (int i = 0; i < 10'000; ++i) many.push_back("name " + std::to_string(i));
    const Ticks ticks = Scale::Categories(many).MakeTicks(Room(600));
    EXPECT_GE(ticks.major.size(), 4U);
    EXPECT_LE(ticks.major.size(), 10U);
}

TEST(Scale, texts_have_the_digits_of_the_resolution) {
    EXPECT_EQ(Scale::Linear(0, 10).TextOf(3.14159, 0.02), "3.14");
    EXPECT_EQ(Scale::Time(0, 1, "Europe/Berlin").TextOf(1'593'561'600, 60), "1 Jul 2020 02:00");
    EXPECT_EQ(Scale::Time(0, 1).TextOf(1.25, 0.01), "1 Jan 1970 00:00:01.25");
    EXPECT_EQ(Scale::Duration(0, 1).TextOf(3725, 1), "1:02:05");
    EXPECT_EQ(Scale::Categories({"a", "b"}).TextOf(1.3, 0.1), "b");
}

}  // namespace

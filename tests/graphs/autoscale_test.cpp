#include <zel/Zel2Graph.h>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

using Values = std::vector<double>;

Values Scale(double a, double b, int n, ZelRules rules = ZelRules::CLASSIC, int type = 1) {
    Values out;
    Zel2Graph::AutoCoord(type, a, b, n, out, rules);
    return out;
}

TEST(AutoScale, ChoosesRoundSteps) {
    EXPECT_EQ(Scale(0, 10, 8), (Values{0, 2, 4, 6, 8, 10}));
    EXPECT_EQ(Scale(0, 1, 8), (Values{0, 0.2, 0.4, 0.6000000000000001, 0.8, 1.0})) << "the rounding of a sum";
    EXPECT_EQ(Scale(-3.2, 47.5, 8), (Values{-10, 0, 10, 20, 30, 40, 50}));
    EXPECT_EQ(Scale(10, 0, 8), Scale(0, 10, 8));
    EXPECT_EQ(Scale(0, 1000, 3), (Values{0, 500, 1000}));
    EXPECT_EQ(Scale(0, 7, 1), (Values{0, 10}));
    EXPECT_EQ(Scale(1, 2, 0), Values{1});
    EXPECT_EQ(Scale(0.13, 0.87, 8).size(), 9U);
    EXPECT_EQ(Scale(3, 3, 8), Values{});
    EXPECT_EQ(Scale(0, 10, 8, ZelRules::CLASSIC, 2), Values{}) << "only linear scales are automatic";
}

TEST(AutoScale, EndsAtZeroAsTheRulesSay) {
    const Values fixed{0, 0.25, 0.5, 0.75, 1};
    EXPECT_EQ(Scale(-7, 0, 5), fixed);
    EXPECT_EQ(Scale(1e-12, 5e-12, 8), fixed);
    EXPECT_EQ(Scale(-7, 0, 5, ZelRules::EXACT), (Values{-8, -6, -4, -2, 0}));
    EXPECT_EQ(Scale(-0.6, 0.4, 8, ZelRules::EXACT)[3], 0.0)
        << "and passes through it without a rounding error";
}

TEST(AutoScale, AnswersZeroForWhatHasNoScale) {
    const double inf = std::numeric_limits<double>::infinity(), nan = std::nan("");
    double lo, hi, step;
    int count;
    for (const auto& [a, b] :
         {std::pair(3.0, 3.0), {-inf, 1.0}, {0.0, inf}, {nan, 1.0}, {-1.7e308, 1.7e308}, {0.0, 5e-324}}) {
        EXPECT_EQ(Zel2Graph::AutoInt(a, b, 8, lo, hi, step, count), 0) << a << " " << b;
        EXPECT_EQ(step, 1.0);
        EXPECT_EQ(count, 1);
    }
}

TEST(AutoScale, AlwaysCoversItsRange) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> exponent(-300, 300), mantissa(-1, 1);
    for (int i = 0; i < 20'000; ++i) {
        const double scale = std::pow(10, exponent(random));
        double a = mantissa(random) * scale, b = mantissa(random) * scale;
        if (a > b) std::swap(a, b);
        double lo, hi, step;
        int count;
        const int n = 1 + i % 12;
        if (!Zel2Graph::AutoInt(a, b, n, lo, hi, step, count)) continue;
        EXPECT_LE(count, n);
        EXPECT_LE(lo, a + step * 1e-6);
        EXPECT_GE(hi, b - step * 1e-6);
    }
}

TEST(AutoScale, TruncatesPositions) {
    EXPECT_EQ(Zel2Graph::Coord(5, 0, 10, 0, 99, 1), 49);
    EXPECT_EQ(Zel2Graph::Coord(-1, 0, 10, 0, 100, 1), -10);
    EXPECT_EQ(Zel2Graph::Coord(1, 2, 2, 0, 100, 1), INT32_MIN);
    EXPECT_EQ(Zel2Graph::Coord(std::nan(""), 0, 1, 0, 100, 1), 0);
}

TEST(AutoScale, FitsGraphs) {
    Zel2Graph graph;
    graph.SetCoord(0, 0, 1, 1);
    graph.AdjustXAxis(10, 0, 8, 0);
    double x0, y0, x1, y1;
    graph.GetFloatRect(x0, y0, x1, y1);
    EXPECT_EQ(std::pair(x0, x1), std::pair(10.0, 0.0));
    graph.AdjustXAxis(9, 1, 8, 1);
    graph.GetFloatRect(x0, y0, x1, y1);
    EXPECT_EQ(std::pair(x0, x1), std::pair(1.0, 9.0));
    EXPECT_EQ(graph.XTicks(), graph.XLabels());
    graph.SetYRLabels(0, 100);
    EXPECT_TRUE(graph.YRLabels().empty()) << "without y ticks there is nowhere to write";
    graph.SetYTicks({0, 1, 2, 3, 4});
    graph.SetYRLabels(0, 100);
    EXPECT_EQ(graph.YRLabels(), (Values{0, 25, 50, 75, 100}));
    graph.SetAuxCS(0, 5, 10, 5, 4, -1);
    EXPECT_EQ(graph.AuxX().size(), 3U);
    EXPECT_TRUE(graph.AuxY().empty());
}

}  // namespace

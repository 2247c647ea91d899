// Expected values come from the worked examples of R and NumPy, and from Python's statistics module.
#include <zel/Statistics.h>

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <random>

namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::Pointwise;

// R: quantile(1:10); Python: quantiles([3, 6, 7, 8, 8, 10, 13, 15, 16, 20], n=10, method='inclusive').
TEST(Quantiles, are_those_of_type_7) {
    std::vector<double> ten(10);
    std::iota(ten.rbegin(), ten.rend(), 1);
    const std::vector<double> quartiles{0, 0.25, 0.5, 0.75, 1};
    EXPECT_THAT(zel::Quantiles(ten, quartiles), ElementsAre(1, 3.25, 5.5, 7.75, 10));
    const std::vector<double> sample{20, 3, 6, NAN, 7, 8, 8, 10, 13, HUGE_VAL, 15, 16};
    const std::vector<double> deciles{0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9};
    EXPECT_THAT(zel::Quantiles(sample, deciles),
                Pointwise(DoubleNear(1e-12), {5.7, 6.8, 7.7, 8.0, 9.0, 11.2, 13.6, 15.2, 16.4}));
    EXPECT_TRUE(std::isnan(zel::Quantile({}, 0.5)));
    EXPECT_EQ(zel::Quantile(std::vector<double>{7}, 0.9), 7);
}

// Many values go another way, through buckets: the same as sorting them.
TEST(Quantiles, of_many_values_are_those_of_the_sorted_ones) {
    std::mt19937 random(1);
    for (const double power : {1.0, 9.0}) {
        std::vector<double> values;
        for (int i = 0; i < 100'001; ++i)
            values.push_back(std::pow(static_cast<double>(random()) / 4294967296.0, power) - 0.3);
        std::vector<double> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        for (const std::size_t rank : {0U, 1U, 25'000U, 50'000U, 99'999U, 100'000U})
            EXPECT_EQ(zel::Quantile(values, static_cast<double>(rank) / 100'000), sorted[rank]);
    }
}

// By hand: quartiles 3.25 and 7.75, so whiskers end within -3.5 to 14.5.
TEST(BoxSummary, keeps_whiskers_within_reach) {
    const std::vector<double> values{1, 2, 3, 4, 5, 6, 7, 8, 9, 100, -50, NAN};
    const zel::BoxSummary box = zel::SummaryOfBox(values);
    EXPECT_EQ(box.count, 11U);
    EXPECT_EQ(box.lowerQuartile, 2.5);
    EXPECT_EQ(box.median, 5);
    EXPECT_EQ(box.upperQuartile, 7.5);
    EXPECT_EQ(box.lowWhisker, 1);
    EXPECT_EQ(box.highWhisker, 9);
    EXPECT_THAT(box.outliers, ElementsAre(-50, 100));
    EXPECT_NEAR(box.notch, 1.57 * 5 / std::sqrt(11), 1e-12);
    EXPECT_TRUE(zel::SummaryOfBox(values, 100).outliers.empty());
}

// NumPy's page of histogram_bin_edges: [0, 0, 0, 1, 2, 3, 3, 4, 5] in two bins; its page of histogram:
// [1, 2, 1] in [0, 1, 2, 3], and arange(4) in arange(5).
TEST(Bins, are_those_of_the_worked_examples) {
    const std::vector<double> nine{0, 0, 0, 1, 2, 3, 3, 4, 5};
    EXPECT_THAT(zel::BinEdges(nine, 2), ElementsAre(0, 2.5, 5));
    EXPECT_THAT(zel::BinSums(std::vector<double>{1, 2, 1}, {}, std::vector<double>{0, 1, 2, 3}),
                ElementsAre(0, 2, 1));
    EXPECT_THAT(zel::BinSums(std::vector<double>{0, 1, 2, 3}, {}, std::vector<double>{0, 1, 2, 3, 4}),
                ElementsAre(1, 1, 1, 1));
    EXPECT_THAT(zel::BinSums(std::vector<double>{1, 3, 3, 9}, std::vector<double>{2, 0.5, 1, 7},
                             std::vector<double>{0, 1, 2.5, 3}),
                ElementsAre(0, 2, 1.5))
        << "the last bin has both edges; what lies beyond counts nowhere";
    EXPECT_THAT(zel::BinEdgesOfWidth(nine, 2), ElementsAre(0, 2, 4, 6));
    EXPECT_THAT(zel::BinEdgesOfWidth(std::vector<double>{-0.3, 0.3}, 0.5), ElementsAre(-0.5, 0, 0.5));
}

// 1000 values from 0 to 999: the quartile range is 499.5, the deviation sqrt((1000² - 1) / 12) = 288.675.
// Freedman and Diaconis: 999 / (2 · 499.5 / 10) = 10; Scott: h = 3.4908 · 288.675 / 10 = 100.8, 9.91 of them;
// Sturges: log2(1000) + 1 = 10.97.
TEST(Bins, follow_the_rules) {
    std::vector<double> values(1000);
    std::iota(values.begin(), values.end(), 0);
    using zel::BinRule;
    EXPECT_EQ(zel::BinEdges(values, BinRule::FREEDMAN_DIACONIS).size(), 11U);
    EXPECT_EQ(zel::BinEdges(values, BinRule::SCOTT).size(), 11U);
    EXPECT_EQ(zel::BinEdges(values, BinRule::STURGES).size(), 12U);
    EXPECT_EQ(zel::BinEdges(values, BinRule::STURGES).back(), 999);
}

TEST(Bins, bear_any_values) {
    const std::vector<double> same(9, 4), far{1e18, 1e18, -1e300, 1e300}, none{NAN, HUGE_VAL};
    std::vector<double> spiked(1000, 1);
    for (int i = 0; i < 400; ++i) spiked[static_cast<std::size_t>(i)] = 1 + i * 1e-9;
    spiked.push_back(1e9);
    for (const zel::BinRule rule :
         {zel::BinRule::FREEDMAN_DIACONIS, zel::BinRule::SCOTT, zel::BinRule::STURGES}) {
        EXPECT_THAT(zel::BinEdges(same, rule), ElementsAre(3.5, 4.5));
        EXPECT_TRUE(zel::BinEdges(none, rule).empty());
        EXPECT_LE(zel::BinEdges(spiked, rule).size(), zel::kMostBins + 1);
        const std::vector<double> edges = zel::BinEdges(far, rule), sums = zel::BinSums(far, {}, edges);
        EXPECT_EQ(std::accumulate(sums.begin(), sums.end(), 0.0), 4);
    }
    for (const double width : {1e-300, 1.0, 1e300, HUGE_VAL, 0.0, static_cast<double>(NAN)}) {
        const std::vector<double> edges = zel::BinEdgesOfWidth(far, width),
                                  sums = zel::BinSums(far, {}, edges);
        EXPECT_EQ(std::accumulate(sums.begin(), sums.end(), 0.0), 4) << width;
        EXPECT_LE(edges.size(), zel::kMostBins + 3);
    }
}

}  // namespace

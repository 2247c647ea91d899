// The statistics that charts need, for hosts too. Values that are not finite are left out everywhere.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace zel {

// Sample quantiles of type 7 of R. J. Hyndman and Y. Fan, "Sample Quantiles in Statistical Packages", The
// American Statistician 50 (1996): the value at place 1 + (n - 1) p among the sorted values, interpolated
// linearly between neighbours. `probabilities` lie from 0 to 1; values need not be sorted. NaN without
// values.
std::vector<double> Quantiles(std::span<const double> values, std::span<const double> probabilities);
double Quantile(std::span<const double> values, double probability);

// What a box plot shows of a sample (J. W. Tukey, "Exploratory Data Analysis", 1977).
struct BoxSummary {
    std::size_t count = 0;
    double lowerQuartile = 0, median = 0, upperQuartile = 0;
    // The extreme values that lie no further than the reach from the box.
    double lowWhisker = 0, highWhisker = 0;
    // Half the length of a notch around the median, 1.57 interquartile ranges / sqrt(n): notches of two
    // samples that do not overlap tell different medians at the 5 % level (R. McGill, J. W. Tukey and W. A.
    // Larsen, "Variations of Box Plots", The American Statistician 32, 1978).
    double notch = 0;
    std::vector<double> outliers;  // beyond the whiskers, ascending
};
// `reach` is the longest that whiskers may be, in interquartile ranges.
BoxSummary SummaryOfBox(std::span<const double> values, double reach = 1.5);

// How many bins a histogram has, by the width that a rule proposes.
enum class BinRule : int {
    // 2 interquartile ranges / cube root of n (D. Freedman and P. Diaconis, "On the histogram as a density
    // estimator: L2 theory", 1981). Sturges' where the quartiles are equal.
    FREEDMAN_DIACONIS = 0,
    // (24 sqrt(pi) / n)^(1/3) standard deviations of the sample, with divisor n (D. W. Scott, "On optimal and
    // data-based histograms", Biometrika 66, 1979).
    SCOTT = 1,
    // The range / (log2 n + 1) (H. A. Sturges, "The Choice of a Class Interval", 1926).
    STURGES = 2
};

// No rule makes more bins than this.
inline constexpr std::size_t kMostBins = 10'000;

// The edges of bins of equal width from the smallest value to the largest, ascending, one more than bins.
// Bins reach half a unit to both sides of values that are all alike; none without values.
std::vector<double> BinEdges(std::span<const double> values, BinRule rule);
// So many bins, at least 1.
std::vector<double> BinEdges(std::span<const double> values, std::size_t bins);
// Bins of a width above 0, with edges at multiples of it; no more than kMostBins, wider ones then.
std::vector<double> BinEdgesOfWidth(std::span<const double> values, double width);

// The sums of weights in bins between ascending edges. A value on an edge belongs to the bin above it; only
// the last bin contains its upper edge. Without weights each value weighs 1; what has a weight that is not
// finite is left out.
std::vector<double> BinSums(std::span<const double> values, std::span<const double> weights,
                            std::span<const double> edges);

}  // namespace zel

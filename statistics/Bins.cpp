#include <zel/Statistics.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace zel {
namespace {

struct Extent {
    std::size_t count = 0;
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    double sum = 0;
};

Extent ExtentOf(std::span<const double> values) {
    Extent extent;
    for (const double value : values) {
        if (!std::isfinite(value)) continue;
        ++extent.count;
        extent.low = std::min(extent.low, value);
        extent.high = std::max(extent.high, value);
        extent.sum += value;
    }
    return extent;
}

std::vector<double> Between(double low, double high, std::size_t bins) {
    std::vector<double> edges;
    edges.reserve(bins + 1);
    const auto n = static_cast<double>(bins);
    for (std::size_t i = 0; i < bins; ++i)
        edges.push_back(low + (high / n - low / n) * static_cast<double>(i));
    edges.push_back(high);
    // Values so near each other that no number lies between two edges.
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    return edges;
}

double Deviation(std::span<const double> values, const Extent& extent) {
    const auto n = static_cast<double>(extent.count);
    const double mean = extent.sum / n;
    double squares = 0;
    for (const double value : values)
        if (std::isfinite(value)) squares += (value - mean) * (value - mean);
    return std::sqrt(squares / n);
}

double WidthBy(BinRule rule, std::span<const double> values, const Extent& extent) {
    const auto n = static_cast<double>(extent.count);
    if (rule == BinRule::FREEDMAN_DIACONIS) {
        constexpr double kQuartiles[] = {0.25, 0.75};
        const std::vector<double> quartiles = Quantiles(values, kQuartiles);
        const double width = 2 * (quartiles[1] - quartiles[0]) / std::cbrt(n);
        if (width > 0) return width;
    }
    if (rule == BinRule::SCOTT)
        return std::cbrt(24 * std::sqrt(std::numbers::pi) / n) * Deviation(values, extent);
    return (extent.high - extent.low) / (std::log2(n) + 1);
}

// Places in edges of equal width are reckoned, others searched for.
class BinFinder {
  public:
    explicit BinFinder(std::span<const double> edges) : edges_(edges) {
        const double bins = static_cast<double>(edges.size() - 1);
        perUnit_ = bins / (edges.back() - edges.front());
        for (std::size_t i = 0; i < edges.size(); ++i) {
            const double even = edges.front() + static_cast<double>(i) / perUnit_;
            equal_ = equal_ && std::fabs(edges[i] - even) <= 0.25 / perUnit_;
        }
    }
    // For a value between the first edge and the last.
    std::size_t At(double value) const {
        const std::size_t last = edges_.size() - 2;
        if (!equal_) {
            const auto above = std::upper_bound(edges_.begin(), edges_.end(), value);
            return std::min(static_cast<std::size_t>(above - edges_.begin()) - 1, last);
        }
        std::size_t bin = std::min(static_cast<std::size_t>((value - edges_.front()) * perUnit_), last);
        // The edges as they are decide, not how their place was rounded.
        while (bin > 0 && value < edges_[bin]) --bin;
        while (bin < last && value >= edges_[bin + 1]) ++bin;
        return bin;
    }

  private:
    std::span<const double> edges_;
    double perUnit_ = 0;
    bool equal_ = true;
};

}  // namespace

std::vector<double> BinEdges(std::span<const double> values, std::size_t bins) {
    const Extent extent = ExtentOf(values);
    if (extent.count == 0) return {};
    if (extent.low == extent.high) return {extent.low - 0.5, extent.high + 0.5};
    return Between(extent.low, extent.high, std::clamp<std::size_t>(bins, 1, kMostBins));
}

std::vector<double> BinEdges(std::span<const double> values, BinRule rule) {
    const Extent extent = ExtentOf(values);
    if (extent.count == 0 || extent.low == extent.high) return BinEdges(values, 1);
    const double bins = std::ceil((extent.high - extent.low) / WidthBy(rule, values, extent));
    // Not a number where the range of doubles ends.
    if (!(bins >= 1)) return Between(extent.low, extent.high, 1);
    return Between(extent.low, extent.high,
                   static_cast<std::size_t>(std::min(bins, static_cast<double>(kMostBins))));
}

std::vector<double> BinEdgesOfWidth(std::span<const double> values, double width) {
    const Extent extent = ExtentOf(values);
    if (extent.count == 0 || !(width > 0) || !std::isfinite(width)) return BinEdges(values, 1);
    const auto first = [&] { return std::floor(extent.low / width); };
    const auto bins = [&] { return std::floor(extent.high / width) + 1 - first(); };
    while (bins() > static_cast<double>(kMostBins)) width *= 2;
    std::vector<double> edges;
    if (bins() >= 1)
        for (int i = 0; i <= static_cast<int>(bins()); ++i) edges.push_back((first() + i) * width);
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    if (edges.size() < 2 || !std::isfinite(edges.back())) return BinEdges(values, 1);
    return edges;
}

std::vector<double> BinSums(std::span<const double> values, std::span<const double> weights,
                            std::span<const double> edges) {
    if (edges.size() < 2) return {};
    std::vector<double> sums(edges.size() - 1, 0);
    const BinFinder finder(edges);
    const std::size_t n = weights.empty() ? values.size() : std::min(values.size(), weights.size());
    for (std::size_t i = 0; i < n; ++i) {
        const double value = values[i];
        if (!(value >= edges.front() && value <= edges.back())) continue;
        const double weight = weights.empty() ? 1 : weights[i];
        if (std::isfinite(weight)) sums[finder.At(value)] += weight;
    }
    return sums;
}

}  // namespace zel

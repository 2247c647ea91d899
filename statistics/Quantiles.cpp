#include <zel/Statistics.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zel {
namespace {

// Order statistics of many values: a copy of all would cost more than looking at them thrice. Buckets of
// equal width tell in which few values the wanted ones lie.
class OrderStatistics {
  public:
    explicit OrderStatistics(std::span<const double> values) : values_(values) {
        for (const double value : values) {
            if (!std::isfinite(value)) continue;
            ++count_;
            low_ = std::min(low_, value);
            high_ = std::max(high_, value);
        }
        if (count_ < kFew || !(high_ - low_ > 0) || !std::isfinite(high_ - low_)) return;
        counts_.assign(kBuckets, 0);
        for (const double value : values)
            if (std::isfinite(value)) ++counts_[BucketOf(value)];
    }

    std::size_t Count() const { return count_; }
    // The value at place `rank`, from 0, among the sorted ones.
    double At(std::size_t rank) {
        std::size_t before = 0, bucket = 0;
        if (!counts_.empty())
            for (; before + counts_[bucket] <= rank; ++bucket) before += counts_[bucket];
        if (!gathered_ || bucket != bucket_) Gather(bucket);
        const auto place = part_.begin() + static_cast<std::ptrdiff_t>(rank - before);
        std::nth_element(part_.begin(), place, part_.end());
        return *place;
    }

  private:
    static constexpr std::size_t kBuckets = 1 << 16;
    static constexpr std::size_t kFew = 1 << 16;

    std::size_t BucketOf(double value) const {
        const double place = (value - low_) / (high_ - low_) * static_cast<double>(kBuckets);
        return std::min(static_cast<std::size_t>(place), kBuckets - 1);
    }
    void Gather(std::size_t bucket) {
        gathered_ = true;
        bucket_ = bucket;
        part_.clear();
        for (const double value : values_)
            if (std::isfinite(value) && (counts_.empty() || BucketOf(value) == bucket))
                part_.push_back(value);
    }

    std::span<const double> values_;
    std::size_t count_ = 0;
    double low_ = std::numeric_limits<double>::infinity();
    double high_ = -std::numeric_limits<double>::infinity();
    std::vector<std::size_t> counts_;  // of each bucket; empty for few values
    bool gathered_ = false;
    std::size_t bucket_ = 0;
    std::vector<double> part_;  // the values of one bucket
};

}  // namespace

std::vector<double> Quantiles(std::span<const double> values, std::span<const double> probabilities) {
    OrderStatistics sorted(values);
    std::vector<double> quantiles;
    quantiles.reserve(probabilities.size());
    for (const double probability : probabilities) {
        if (sorted.Count() == 0 || !(probability >= 0 && probability <= 1)) {
            quantiles.push_back(std::numeric_limits<double>::quiet_NaN());
            continue;
        }
        const double place = static_cast<double>(sorted.Count() - 1) * probability;
        const auto below = static_cast<std::size_t>(place);
        const double share = place - static_cast<double>(below), low = sorted.At(below);
        quantiles.push_back(share > 0 ? low + share * (sorted.At(below + 1) - low) : low);
    }
    return quantiles;
}

double Quantile(std::span<const double> values, double probability) {
    return Quantiles(values, std::span(&probability, 1)).front();
}

BoxSummary SummaryOfBox(std::span<const double> values, double reach) {
    constexpr double kQuartiles[] = {0.25, 0.5, 0.75};
    constexpr double kNotch = 1.57;
    BoxSummary summary;
    const std::vector<double> quartiles = Quantiles(values, kQuartiles);
    summary.lowerQuartile = summary.lowWhisker = quartiles[0];
    summary.median = quartiles[1];
    summary.upperQuartile = summary.highWhisker = quartiles[2];
    const double range = quartiles[2] - quartiles[0];
    const double low = quartiles[0] - reach * range, high = quartiles[2] + reach * range;
    for (const double value : values) {
        if (!std::isfinite(value)) continue;
        ++summary.count;
        if (value < low || value > high) {
            summary.outliers.push_back(value);
        } else {
            summary.lowWhisker = std::min(summary.lowWhisker, value);
            summary.highWhisker = std::max(summary.highWhisker, value);
        }
    }
    std::sort(summary.outliers.begin(), summary.outliers.end());
    if (summary.count > 0) summary.notch = kNotch * range / std::sqrt(static_cast<double>(summary.count));
    return summary;
}

}  // namespace zel

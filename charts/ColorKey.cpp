#include "charts/FormatFields.h"
#include "core/ArchiveFields.h"

#include <zel/ColorKey.h>
#include <zel/Error.h>
#include <zel/Statistics.h>
#include <zel/platform/Exception.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace zel {
namespace {

// A line through points with ascending coordinates, and on beyond the last ones.
class Polyline {
  public:
    void Add(double x, double y) {
        if (!x_.empty() && (x <= x_.back() || y <= y_.back())) return;
        x_.push_back(x);
        y_.push_back(y);
    }
    std::size_t Size() const { return x_.size(); }
    double At(double x) const { return Between(x_, y_, x); }
    double InverseAt(double y) const { return Between(y_, x_, y); }

  private:
    static double Between(const std::vector<double>& from, const std::vector<double>& to, double at) {
        const auto above = std::upper_bound(from.begin() + 1, from.end() - 1, at) - from.begin();
        const auto i = static_cast<std::size_t>(above);
        return to[i - 1] + (at - from[i - 1]) / (from[i] - from[i - 1]) * (to[i] - to[i - 1]);
    }
    std::vector<double> x_, y_;
};

// Of so many values that any two neighbours among them are as many apart as two others.
std::shared_ptr<Polyline> ByRank(std::span<const double> sample, double low, double high) {
    constexpr std::size_t kSteps = 256;
    std::vector<double> ranks;
    ranks.reserve(kSteps);
    for (std::size_t i = 1; i < kSteps; ++i) ranks.push_back(static_cast<double>(i) / kSteps);
    auto line = std::make_shared<Polyline>();
    line->Add(low, 0);
    const std::vector<double> quantiles = Quantiles(sample, ranks);
    for (std::size_t i = 0; i < quantiles.size(); ++i)
        if (quantiles[i] < high) line->Add(quantiles[i], ranks[i]);
    line->Add(high, 1);
    return line;
}

}  // namespace

ColorKey::ColorKey(const ColorOptions& options)
    : options_(options), map_(options.scheme, options.reversed), axis_(Side::RIGHT) {
    const auto wrong = [](const std::optional<double>& end) { return end && !std::isfinite(*end); };
    if (wrong(options.from) || wrong(options.to) ||
        (options.from && options.to && *options.from >= *options.to))
        throw Error("Cannot spread colours: their ends must be finite numbers, the first below the second");
    axis_.SetTitle(options.title).SetUnit(options.unit).SetFormat(options.format);
    Fit(0, 1, {});
}

bool ColorKey::Counts(double value) const {
    return std::isfinite(value) && (options_.spread != ColorSpread::LOGARITHM || value > 0);
}

void ColorKey::SetScale(const Scale& scale) {
    scale_ = scale.WithUsableEnds();
    linear_ = scale_.GetKind() == Scale::Kind::LINEAR;
    factor_ = 1 / (scale_.To() - scale_.From());
    shift_ = -scale_.From() * factor_;
    // The product of a factor with what is no number would be taken for one of the ends.
    if (!std::isfinite(shift_)) linear_ = false;
}

void ColorKey::Fit(double low, double high, std::span<const double> sample) {
    if (!(low <= high)) low = options_.spread == ColorSpread::LOGARITHM ? 1 : 0, high = 1;
    flat_ = low == high;
    low = options_.from.value_or(low);
    high = options_.to.value_or(high);
    if (options_.spread == ColorSpread::CENTRED) {
        const double reach = std::max(std::fabs(low - options_.centre), std::fabs(high - options_.centre));
        low = options_.centre - reach;
        high = options_.centre + reach;
    }
    // An end that was given may lie beyond all data.
    if (low > high) low = high = options_.from ? low : high;
    if (options_.spread == ColorSpread::LOGARITHM && low > 0) {
        SetScale(Scale::Logarithm(low, high));
    } else if (options_.spread == ColorSpread::QUANTILES && low < high && !sample.empty()) {
        const std::shared_ptr<Polyline> line = ByRank(sample, low, high);
        SetScale(Scale::WithFunction(
            low, high, [line](double v) { return line->At(v); },
            [line](double u) { return line->InverseAt(u); }));
    } else {
        SetScale(Scale::Linear(low, high));
    }
}

double ColorKey::PlaceOf(double value) const {
    if (!std::isfinite(value)) return std::nan("");
    return scale_.PlaceOf(value).value_or(std::nan(""));
}

void ColorKey::Serialize(CArchive& ar) {
    int scheme = static_cast<int>(options_.scheme), spread = static_cast<int>(options_.spread);
    bool hasFrom = options_.from.has_value(), hasTo = options_.to.has_value();
    double from = options_.from.value_or(0), to = options_.to.value_or(1);
    Exchange(ar, scheme);
    ExchangeFlag(ar, options_.reversed);
    Exchange(ar, spread);
    ExchangeFlag(ar, hasFrom);
    Exchange(ar, from);
    ExchangeFlag(ar, hasTo);
    Exchange(ar, to, options_.centre);
    ExchangeFlag(ar, options_.bar);
    axis_.Serialize(ar);
    if (ar.IsStoring()) return;
    if (scheme < 0 || scheme > 3 || spread < 0 || spread > 3 || (hasFrom && !std::isfinite(from)) ||
        (hasTo && !std::isfinite(to)) || !std::isfinite(options_.centre))
        ar.Fail(CArchiveException::genericException, "colours are spread in a way that does not exist");
    options_.scheme = static_cast<ColorScheme>(scheme);
    options_.spread = static_cast<ColorSpread>(spread);
    options_.from = hasFrom ? std::optional(from) : std::nullopt;
    options_.to = hasTo ? std::optional(to) : std::nullopt;
    map_ = ColorMap(options_.scheme, options_.reversed);
    Fit(0, 1, {});
}

}  // namespace zel

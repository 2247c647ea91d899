// Ticks of linear scales: J. Talbot, S. Lin and P. Hanrahan, "An Extension of Wilkinson's Algorithm for
// Positioning Tick Labels on Axes", InfoVis 2010. A labelling is a score of how simple its numbers are, how
// well it covers the data and how near it comes to the wanted density; the best whose labels fit wins. Its
// density is 2 - max(r/t, t/r), as the authors' own program has it.
#include "scales/NumberText.h"
#include "scales/TickLayout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace zel {
namespace {

constexpr std::array kSteps = {1.0, 5.0, 2.0, 2.5, 4.0, 3.0};  // the simplest first
constexpr int kMostSkips = 10, kMostTicks = 100;

struct Weights {
    double simplicity, coverage, density;
};
// Where the data has set the ends, as in the paper; where the host has, nobody minds how far the outermost
// labels stand from them.
constexpr Weights kOfData{0.25, 0.2, 0.55}, kGiven{0.35, 0.05, 0.6};

struct Labelling {
    double first = 0, step = 0;
    int count = 0;
    double score = -2;
};

class Search {
  public:
    Search(const Scale& scale, const TickRoom& room, const NumberFormat& format)
        : scale_(scale),
          room_(room),
          format_(format),
          weights_(room.endsAreGiven ? kGiven : kOfData),
          low_(scale.Low()),
          high_(scale.High()),
          wanted_(WantedTicks(room)) {}

    // The best labelling of which the labels fit, or nothing.
    std::optional<Ticks> Run() {
        for (int skip = 1; skip <= kMostSkips; ++skip) {
            for (std::size_t i = 0; i < kSteps.size(); ++i) {
                const double simplicity = SimplicityOf(i, skip, true);
                if (ScoreOf(simplicity, 1, 1) <= best_.score) {
                    if (i == 0) return result_;  // nothing simpler comes
                    continue;
                }
                TryCounts(i, skip, simplicity);
            }
        }
        return result_;
    }

  private:
    double ScoreOf(double simplicity, double coverage, double density) const {
        return weights_.simplicity * simplicity + weights_.coverage * coverage + weights_.density * density;
    }
    static double SimplicityOf(std::size_t step, int skip, bool hasZero) {
        return 1 - static_cast<double>(step) / (kSteps.size() - 1) - skip + 1 + (hasZero ? 1 : 0);
    }
    double CoverageOf(double first, double last) const {
        const double tenth = 0.1 * (high_ - low_);
        return 1 - 0.5 * (std::pow((high_ - last) / tenth, 2) + std::pow((low_ - first) / tenth, 2));
    }
    // Where ticks are further apart than the data is wide, no place of the first covers it better.
    double BestCoverage(double span) const {
        const double range = high_ - low_;
        return span > range ? 1 - std::pow((span - range) / 2 / (0.1 * range), 2) : 1;
    }
    double DensityOf(int count, double first, double last) const {
        const double is = (count - 1) / (last - first);
        const double wanted = (wanted_ - 1) / (std::max(last, high_) - std::min(low_, first));
        return 2 - std::max(is / wanted, wanted / is);
    }
    double BestDensity(int count) const { return count >= wanted_ ? 2 - (count - 1) / (wanted_ - 1) : 1; }

    void TryCounts(std::size_t step, int skip, double simplicity) {
        for (int count = 2; count <= kMostTicks; ++count) {
            const double density = BestDensity(count);
            if (count >= wanted_ && ScoreOf(simplicity, 1, density) <= best_.score) return;
            const double gap = (high_ - low_) / (count + 1) / skip / kSteps[step];
            // With a smaller power of ten the labels would cover less than the data.
            for (int power = static_cast<int>(std::ceil(std::log10(gap) - 1e-9));; ++power) {
                const double width = skip * kSteps[step] * std::pow(10.0, power);
                const double coverage = BestCoverage(width * (count - 1));
                if (!(width > 0) || !std::isfinite(width) ||
                    width * (count - 1) > (high_ - low_) * (1 + 1e-12))
                    break;
                if (ScoreOf(simplicity, coverage, density) <= best_.score) continue;
                TryPlaces(step, skip, count, width, simplicity);
            }
        }
    }

    // Only labellings between the ends: what lies outside has no place on the axis.
    void TryPlaces(std::size_t step, int skip, int count, double width, double) {
        const double unit = width / skip;
        const double slack = 1e-9 * width;
        const double begin = std::ceil((low_ - slack) / unit);
        const double end = std::floor((high_ + slack - width * (count - 1)) / unit);
        for (double start = begin; start <= end; start += 1) {
            const double first = start * unit, last = first + width * (count - 1);
            const bool hasZero =
                first <= slack && last >= -slack && std::fabs(std::remainder(first, width)) <= slack;
            const Labelling labelling{first, width, count,
                                      ScoreOf(SimplicityOf(step, skip, hasZero), CoverageOf(first, last),
                                              DensityOf(count, first, last))};
            if (labelling.score > best_.score) Take(labelling);
        }
    }

    void Take(const Labelling& labelling) {
        std::vector<double> values;
        for (int i = 0; i < labelling.count; ++i) {
            const double value = std::round(labelling.first / labelling.step * 1e6) / 1e6 * labelling.step +
                                 i * labelling.step;
            values.push_back(std::clamp(std::fabs(value) < 1e-9 * labelling.step ? 0 : value, low_, high_));
        }
        const NumberTexts texts = TextsOf(values, labelling.step, format_);
        Ticks ticks;
        ticks.factor = texts.factor;
        for (std::size_t i = 0; i < values.size(); ++i)
            ticks.major.push_back({values[i], texts.texts[i], {}});
        // Two values of one text would not be told apart.
        for (std::size_t i = 1; i < ticks.major.size(); ++i)
            if (ticks.major[i].label == ticks.major[i - 1].label) return;
        if (!LabelsFit(scale_, ticks.major, room_)) return;
        AddMinor(ticks, labelling.step);
        best_ = labelling;
        result_ = std::move(ticks);
    }

    // Four or five parts to a step, so that minor ticks are round as well.
    void AddMinor(Ticks& ticks, double step) const {
        const double digit = step / std::pow(10.0, std::floor(std::log10(step) + 1e-9));
        const int parts = std::fabs(digit - 2) < 0.01 || std::fabs(digit - 4) < 0.01 ? 4
                          : std::fabs(digit - 3) < 0.01                              ? 3
                                                                                     : 5;
        const double unit = step / parts;
        const double first = ticks.major.front().value;
        const auto before = static_cast<int>(std::floor((first - low_) / unit + 1e-9));
        const auto after = static_cast<int>(std::floor((high_ - first) / unit + 1e-9));
        for (int i = -before; i <= after; ++i) {
            const bool isMajor = i >= 0 && i % parts == 0 && i / parts < static_cast<int>(ticks.major.size());
            if (!isMajor) ticks.minor.push_back(std::clamp(first + i * unit, low_, high_));
        }
    }

    const Scale& scale_;
    const TickRoom& room_;
    const NumberFormat& format_;
    const Weights weights_;
    const double low_, high_, wanted_;
    Labelling best_;
    std::optional<Ticks> result_;
};

}  // namespace

Ticks NumberTicks(const Scale& scale, const TickRoom& room, const NumberFormat& format) {
    // Near the ends of the range of doubles, widths and powers of ten would overflow or vanish.
    const double largest = std::max(std::fabs(scale.Low()), std::fabs(scale.High()));
    const double range = scale.High() - scale.Low();
    if (largest > 1e290 || range < 1e-290 || range < 1e-12 * largest) return EndTicks(scale, room, format);
    if (const auto ticks = Search(scale, room, format).Run()) return *ticks;
    return EndTicks(scale, room, format);
}

}  // namespace zel

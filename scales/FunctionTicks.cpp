// Ticks of scales that are curved in any way: round values whose places are far enough apart.
#include "scales/NumberText.h"
#include "scales/TickLayout.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

namespace zel {
namespace {

constexpr int kFinest = 12;  // how many steps of 1, 2, 5 are tried

// Round values near every place where a tick is wanted: each as round as the distance to the next allows.
std::vector<double> RoundValues(const Scale& scale, int count) {
    std::set<double> values;
    for (int i = 0; i <= count; ++i) {
        const double a = scale.ValueAt(std::max(0.0, (i - 0.5) / count));
        const double b = scale.ValueAt(std::min(1.0, (i + 0.5) / count));
        const double low = std::min(a, b), high = std::max(a, b);
        if (!std::isfinite(low) || !std::isfinite(high)) continue;
        if (low <= 0 && high >= 0) {
            values.insert(0);
            continue;
        }
        double step = RoundStep(high - low);
        for (int tries = 0; tries < kFinest; ++tries, step = RoundStep(step / 2.4)) {
            const double value = std::ceil(low / step - 1e-9) * step;
            if (value > high) continue;
            values.insert(std::fabs(value) < 1e-9 * step ? 0 : value);
            break;
        }
    }
    return {values.begin(), values.end()};
}

double LeastStep(const std::vector<double>& values) {
    double least = std::fabs(values.front());
    for (std::size_t i = 1; i < values.size(); ++i)
        least = least > 0 ? std::min(least, values[i] - values[i - 1]) : values[i] - values[i - 1];
    return least;
}

// Values of very different sizes have digits of their own.
std::vector<std::string> OwnTexts(const std::vector<double>& values, const NumberFormat& format) {
    std::vector<std::string> texts;
    for (const double value : values) {
        const double size = std::fabs(value);
        const std::vector<double> one{value};
        NumberTexts text = TextsOf(one, size > 0 ? size / 10 : 1, format);
        if (!text.factor.empty()) text.texts[0] += text.factor;
        texts.push_back(text.texts[0]);
    }
    return texts;
}

// 0 and the powers of ten on both sides of it, every one or every n-th.
std::vector<double> PowersAround(const Scale& scale, int stride) {
    const double largest = std::max(std::fabs(scale.Low()), std::fabs(scale.High()));
    const int first = static_cast<int>(std::ceil(std::log10(scale.Threshold()) - 1e-9));
    std::vector<double> values{0};
    for (int exponent = first; exponent <= std::log10(largest) + 1e-9; exponent += stride) {
        values.push_back(std::pow(10.0, exponent));
        values.push_back(-values.back());
    }
    std::erase_if(values, [&](double v) { return v < scale.Low() || v > scale.High(); });
    std::sort(values.begin(), values.end());
    return values;
}

std::optional<Ticks> PowerTicks(const Scale& scale, const TickRoom& room, const NumberFormat& format) {
    if (scale.GetKind() != Scale::Kind::SYMMETRIC_LOGARITHM) return std::nullopt;
    for (int stride = 1; stride <= 10; ++stride) {
        Ticks ticks;
        const std::vector<double> values = PowersAround(scale, stride);
        if (values.size() < 4) return std::nullopt;
        const bool plain = std::max(-values.front(), values.back()) <= 1e4 && scale.Threshold() >= 1e-3;
        for (const double value : values) {
            std::string text =
                plain || value == 0
                    ? OwnTexts({value}, format).front()
                    : (value < 0 ? kMinusSign : "") +
                          PowerText("10", static_cast<int>(std::lround(std::log10(std::fabs(value)))));
            ticks.major.push_back({value, std::move(text), {}});
        }
        if (static_cast<double>(values.size()) <= 1.5 * WantedTicks(room) &&
            LabelsFit(scale, ticks.major, room))
            return ticks;
    }
    return std::nullopt;
}

}  // namespace

Ticks FunctionTicks(const Scale& scale, const TickRoom& room, const NumberFormat& format) {
    if (auto ticks = PowerTicks(scale, room, format)) return *ticks;
    for (int count = std::min(20, static_cast<int>(WantedTicks(room))); count >= 1; --count) {
        std::vector<double> values = RoundValues(scale, count);
        std::erase_if(values,
                      [&](double v) { return !scale.HasPlace(v) || v < scale.Low() || v > scale.High(); });
        if (values.size() < 2) continue;
        const double largest = std::max(std::fabs(values.front()), std::fabs(values.back()));
        Ticks ticks;
        std::vector<std::string> texts;
        if (LeastStep(values) < largest * 1e-3) {
            texts = OwnTexts(values, format);
        } else {
            NumberTexts common = TextsOf(values, LeastStep(values), format);
            texts = std::move(common.texts);
            ticks.factor = common.factor;
        }
        for (std::size_t i = 0; i < values.size(); ++i) ticks.major.push_back({values[i], texts[i], {}});
        KeepWithin(scale, ticks.major);
        if (ticks.major.size() >= 2 && LabelsFit(scale, ticks.major, room)) return ticks;
    }
    return EndTicks(scale, room, format);
}

}  // namespace zel

// Ticks of lengths of time: 1:30:00, 90 s, 250 ms, 3 d.
#include "scales/Calendar.h"
#include "scales/NumberText.h"
#include "scales/TickLayout.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zel {
namespace {

constexpr double kMostSeconds = 1e15;

std::vector<double> StepsFrom(double least) {
    std::vector<double> steps;
    for (double step = RoundStep(least); step < 0.9; step = RoundStep(step * 1.5)) steps.push_back(step);
    for (const double unit : {1.0, 60.0})
        for (const double count : {1, 2, 5, 10, 15, 30}) steps.push_back(count * unit);
    for (const double hours : {1, 2, 3, 6, 12}) steps.push_back(hours * kHour);
    for (double days = 1; days <= kMostSeconds / kDay; days = RoundStep(days * 1.5))
        steps.push_back(days * kDay);
    std::erase_if(steps, [=](double step) { return step < least; });
    return steps;
}

std::string ClockText(std::int64_t seconds, bool hours) {
    const auto two = [](std::int64_t n) { return (n < 10 ? "0" : "") + std::to_string(n); };
    if (hours)
        return std::to_string(seconds / kHour) + ":" + two(seconds / kMinute % 60) + ":" + two(seconds % 60);
    return std::to_string(seconds / kMinute) + ":" + two(seconds % 60);
}

// In the unit that fits `largest`, with digits for `step`.
std::string TextOf(double value, double step, double largest) {
    const std::string minus = value < 0 ? kMinusSign : "";
    const double size = std::fabs(value);
    const auto in = [&](double unit, const char* name) {
        const std::vector<double> values{size / unit};
        const std::vector<double> steps{step / unit};
        const int decimals = std::max(DecimalsFor(steps, step / unit), 0);
        return minus + FixedText(values[0], std::min(decimals, 9)) + "\u00A0" + name;
    };
    if (step >= kDay || largest >= 100.0 * kDay) return in(kDay, "d");
    if (step >= 1 && largest >= kHour) return minus + ClockText(std::llround(size), true);
    if (step >= 1 && largest > 2 * kMinute) return minus + ClockText(std::llround(size), false);
    if (largest >= 1) return in(1, "s");
    if (largest >= 1e-3) return in(1e-3, "ms");
    return largest >= 1e-6 ? in(1e-6, "\u00B5s") : in(1e-9, "ns");
}

}  // namespace

Ticks DurationTicks(const Scale& scale, const TickRoom& room) {
    const double largest = std::max(std::fabs(scale.Low()), std::fabs(scale.High()));
    const double range = scale.High() - scale.Low();
    if (largest > kMostSeconds || range < 1e-12 * std::max(largest, 1e-280)) return EndTicks(scale, room, {});
    const double wanted = WantedTicks(room);
    for (const double step : StepsFrom(range / (1.2 * wanted))) {
        Ticks ticks;
        const double begin = std::ceil(scale.Low() / step - 1e-9);
        for (double i = begin; i * step <= scale.High() + 1e-9 * step; i += 1)
            ticks.major.push_back(
                {std::clamp(i * step, scale.Low(), scale.High()), TextOf(i * step, step, largest), {}});
        if (ticks.major.empty()) break;
        KeepWithin(scale, ticks.major);
        if (ticks.major.size() >= 2 && LabelsFit(scale, ticks.major, room)) return ticks;
    }
    Ticks ends;
    for (const double value : {scale.Low(), scale.High()})
        ends.major.push_back({value, TextOf(value, range / 10, largest), {}});
    KeepWithin(scale, ends.major);
    if (!LabelsFit(scale, ends.major, room)) ends.major.pop_back();
    return ends;
}

std::string DurationText(double value, double resolution) {
    return std::isfinite(value) ? TextOf(value, resolution, std::fabs(value)) : "";
}

}  // namespace zel

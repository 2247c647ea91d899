#include "scales/TickLayout.h"

#include "scales/NumberText.h"

#include <algorithm>
#include <cmath>

namespace zel {

double RoundStep(double step) {
    if (!(step > 0) || !std::isfinite(step)) return 1;
    const double power = std::pow(10.0, std::floor(std::log10(step)));
    if (!(power > 0) || !std::isfinite(power)) return step;
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= step * (1 - 1e-12)) return factor * power;
    return 10 * power;
}

bool LabelsFit(const Scale& scale, const std::vector<Tick>& ticks, const TickRoom& room) {
    if (!room.extent) return true;
    double lastEnd = 0;
    bool first = true;
    std::vector<const Tick*> ordered;
    ordered.reserve(ticks.size());
    for (const Tick& tick : ticks) ordered.push_back(&tick);
    if (scale.IsReversed()) std::reverse(ordered.begin(), ordered.end());
    for (const Tick* tick : ordered) {
        const double half = room.extent(tick->label) / 2;
        const double at = scale.PlaceOf(tick->value).value_or(0) * room.length;
        if (!first && at - half < lastEnd + room.gap) return false;
        lastEnd = at + half;
        first = false;
    }
    return true;
}

double WantedTicks(const TickRoom& room) {
    const double distance = std::max(room.distance, room.gap);
    return distance > 0 ? std::clamp(room.length / distance + 1, 2.0, 1000.0) : 6.0;
}

void KeepWithin(const Scale& scale, std::vector<Tick>& ticks) {
    std::erase_if(
        ticks, [&](const Tick& tick) { return !(tick.value >= scale.Low() && tick.value <= scale.High()); });
    const auto repeated = std::unique(ticks.begin(), ticks.end(), [](const Tick& a, const Tick& b) {
        return a.label == b.label && b.context.empty();
    });
    ticks.erase(repeated, ticks.end());
}

Ticks EndTicks(const Scale& scale, const TickRoom& room, const NumberFormat& format) {
    const std::vector<double> values{scale.Low(), scale.High()};
    const NumberTexts texts = TextsOf(values, (scale.High() - scale.Low()) / 2, format);
    Ticks ticks;
    ticks.factor = texts.factor;
    for (std::size_t i = 0; i < values.size(); ++i) ticks.major.push_back({values[i], texts.texts[i], {}});
    KeepWithin(scale, ticks.major);
    if (!LabelsFit(scale, ticks.major, room)) ticks.major.pop_back();
    return ticks;
}

}  // namespace zel

#include "scales/Labels.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <numbers>

namespace zel {
namespace {

constexpr int kMostDigits = 17;     // tell any two doubles apart
constexpr double kSlack = 1e-3;     // of the distance of neighbours, by which a text may be off
constexpr double kGapShare = 0.15;  // of a line's height, beside a label
constexpr double kUneven = 1e-6;    // of a step

std::string Format(double value, std::chars_format format, int digits) {
    char text[400];  // the largest double has 309 digits
    return {text, std::to_chars(std::begin(text), std::end(text), value, format, digits).ptr};
}

double LeastDistance(const std::vector<double>& values) {
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i < values.size(); ++i) {
        const double distance = std::fabs(values[i] - values[i - 1]);
        if (distance > 0) least = std::min(least, distance);
    }
    return least;
}

bool Says(const std::string& text, double value, double slack) {
    double said = 0;
    std::from_chars(text.data(), text.data() + text.size(), said);
    return !(std::fabs(said - value) > slack);
}

std::vector<std::string> Texts(const std::vector<double>& values, std::chars_format format, int digits,
                               ZelRules rules) {
    const double slack = LeastDistance(values) * kSlack;
    std::vector<std::string> texts(values.size());
    for (int n = digits; n <= kMostDigits; ++n) {
        bool clear = true;
        for (std::size_t i = 0; i < values.size(); ++i) {
            texts[i] = Format(values[i], format, n);
            clear = clear && Says(texts[i], values[i], slack);
        }
        if (clear || rules == ZelRules::CLASSIC) break;
    }
    return texts;
}

// 1, 2, 4, 5, 10, 20, 40, ...: multiples that make a round step of one.
std::size_t NextStride(std::size_t stride) {
    std::size_t power = 1;
    while (stride >= 10 * power) power *= 10;
    const std::size_t digit = stride / power;
    return power * (digit == 1 ? 2 : digit == 2 ? 4 : digit == 4 ? 5 : 10);
}

// How many steps from 0 the first value of an even scale is; 0 for any other.
std::int64_t FirstMultiple(const std::vector<double>& values) {
    if (values.size() < 2) return 0;
    const double step = values[1] - values[0];
    for (std::size_t i = 2; i < values.size(); ++i) {
        const double even = values[0] + static_cast<double>(i) * step;
        if (!(std::fabs(values[i] - even) <= kUneven * std::fabs(step))) return 0;
    }
    const double first = std::round(values[0] / step);
    return std::fabs(first) < 1e15 ? static_cast<std::int64_t>(first) : 0;
}

}  // namespace

std::vector<std::string> LabelTexts(const std::vector<double>& values, int digits, ZelRules rules) {
    return Texts(values, std::chars_format::general, digits, rules);
}

std::vector<std::string> PercentTexts(const std::vector<double>& values, ZelRules rules) {
    std::vector<std::string> texts = Texts(values, std::chars_format::fixed, 1, rules);
    for (std::string& text : texts) text += '%';
    return texts;
}

double RoomAlong(const CSize& extent, int angle) {
    const double turn = angle * std::numbers::pi / 1800;
    const double c = std::fabs(std::cos(turn)), s = std::fabs(std::sin(turn));
    const double line = extent.cy, box = extent.cx * c + line * s;
    // Slanted lines stand closer than their boxes.
    const double room = s > kUneven ? std::min(box, line / s) : box;
    return room + (c > s ? kGapShare * line : 0);
}

std::vector<std::size_t> LabelsWithRoom(const std::vector<double>& values,
                                        const std::vector<LabelPlace>& places) {
    const std::int64_t first = FirstMultiple(values);
    const auto overlap = [&](std::size_t a, std::size_t b) {
        return std::fabs(places[a].middle - places[b].middle) < (places[a].room + places[b].room) / 2;
    };
    std::vector<std::size_t> shown;
    for (std::size_t stride = 1; stride < 2 * values.size() + 2; stride = NextStride(stride)) {
        std::vector<std::size_t> chosen;
        for (std::size_t i = 0; i < places.size(); ++i) {
            if ((first + static_cast<std::int64_t>(i)) % static_cast<std::int64_t>(stride) == 0)
                chosen.push_back(i);
        }
        if (chosen.empty()) break;
        shown = chosen;
        bool free = true;
        for (std::size_t k = 1; k < shown.size(); ++k) free = free && !overlap(shown[k - 1], shown[k]);
        if (free) return shown;
    }
    shown.resize(std::min<std::size_t>(shown.size(), 1));
    return shown;
}

}  // namespace zel

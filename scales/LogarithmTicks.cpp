// Ticks of logarithms: every digit where there is room, else 1, 2 and 5, else decades, else every n-th
// decade. Where less than a decade is shown, those of a linear scale.
#include "scales/NumberText.h"
#include "scales/TickLayout.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zel {
namespace {

constexpr int kLeastPlain = -3, kMostPlain = 4;  // exponents of ten that are written out

std::string BaseText(double base) {
    if (base == 10) return "10";
    if (std::fabs(base - std::exp(1.0)) < 1e-12) return "e";
    const std::vector<double> values{base};
    return TextsOf(values, base / 100, {}).texts.front();
}

// The values of a scale of one sign are counted by their size.
struct Decades {
    double base;
    double sign;  // -1 where all values are below 0
    double low, high;
    int first, last;  // exponents of the powers within the ends

    explicit Decades(const Scale& scale) : base(scale.Base()), sign(scale.High() > 0 ? 1 : -1) {
        low = sign > 0 ? scale.Low() : -scale.High();
        high = sign > 0 ? scale.High() : -scale.Low();
        const double unit = std::log(base);
        first = static_cast<int>(std::ceil(std::log(low) / unit - 1e-9));
        last = static_cast<int>(std::floor(std::log(high) / unit + 1e-9));
    }
    double PowerOf(int exponent) const {
        return base == 10 && exponent < -300 ? std::pow(10.0, exponent) : std::pow(base, exponent);
    }
};

std::string TextOfMark(const Decades& decades, double digit, int exponent, const NumberFormat& format) {
    const double value = digit * decades.PowerOf(exponent);
    const std::string minus = decades.sign < 0 ? kMinusSign : "";
    const bool own = format.function || format.percent || format.decimals >= 0 ||
                     format.factor != NumberFormat::Factor::POWERS;
    const std::vector<double> values{decades.sign * value};
    if (own) return TextsOf(values, value, format).texts.front();
    const bool plain = decades.base == 10 ? decades.first >= kLeastPlain && decades.last <= kMostPlain
                                          : decades.base == std::floor(decades.base) && decades.first >= 0 &&
                                                decades.high <= 1e5;
    std::string text;
    if (plain) {
        NumberFormat digits = format;
        digits.factor = NumberFormat::Factor::NONE;
        digits.prefix = digits.suffix = "";
        const std::vector<double> sizes{value};
        text = TextsOf(sizes, value, digits).texts.front();
    } else {
        text = PowerText(BaseText(decades.base), exponent);
        if (digit != 1) text = FixedText(digit, 0) + "\u00B7" + text;
    }
    return minus + format.prefix + text + format.suffix;
}

// Ticks at `digits` times every power within the ends.
std::vector<Tick> Marks(const Scale& scale, const Decades& decades, std::span<const double> digits,
                        int stride, const NumberFormat& format) {
    std::vector<Tick> ticks;
    const int begin = stride == 1
                          ? decades.first - 1
                          : static_cast<int>(std::ceil(decades.first / static_cast<double>(stride))) * stride;
    for (int exponent = begin; exponent <= decades.last; exponent += stride) {
        for (const double digit : digits) {
            const double size = std::clamp(digit * decades.PowerOf(exponent), decades.low * (1 - 1e-12),
                                           decades.high * (1 + 1e-12));
            if (std::fabs(size / (digit * decades.PowerOf(exponent)) - 1) > 1e-9) continue;
            const double value = decades.sign * std::clamp(size, decades.low, decades.high);
            ticks.push_back({value, TextOfMark(decades, digit, exponent, format), {}});
        }
    }
    std::sort(ticks.begin(), ticks.end(), [](const Tick& a, const Tick& b) { return a.value < b.value; });
    KeepWithin(scale, ticks);
    return ticks;
}

// Unlabelled ticks: the digits between decades, or the decades between labelled ones.
void AddMinor(Ticks& ticks, const Scale& scale, const Decades& decades, int stride) {
    static constexpr std::array kDigits = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0};
    const std::span<const double> digits =
        stride == 1 && decades.base == 10 ? std::span(kDigits) : std::span(kDigits).first(1);
    for (const Tick& mark : Marks(scale, decades, digits, 1, {})) {
        const auto same = [&](const Tick& tick) {
            return std::fabs(tick.value - mark.value) <= 1e-9 * std::fabs(mark.value);
        };
        if (std::none_of(ticks.major.begin(), ticks.major.end(), same)) ticks.minor.push_back(mark.value);
    }
}

}  // namespace

Ticks LogarithmTicks(const Scale& scale, const TickRoom& room, const NumberFormat& format) {
    const Decades decades(scale);
    const double count = (std::log(decades.high) - std::log(decades.low)) / std::log(decades.base);
    if (count < 1) return FunctionTicks(scale, room, format);
    static constexpr std::array kAll = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0};
    static constexpr std::array kSome = {1.0, 2.0, 5.0};
    const double most = WantedTicks(room) * 1.5;
    Ticks ticks;
    if (decades.base == 10) {
        for (const std::span<const double> digits :
             {std::span<const double>(kAll), std::span<const double>(kSome)}) {
            if (count * static_cast<double>(digits.size()) > most) continue;
            ticks.major = Marks(scale, decades, digits, 1, format);
            if (!LabelsFit(scale, ticks.major, room)) continue;
            AddMinor(ticks, scale, decades, 1);
            return ticks;
        }
    }
    for (const int stride : {1, 2, 3, 5, 10, 20, 30, 50, 100, 200}) {
        if (stride > count) break;
        if (count / stride > most) continue;
        ticks.major = Marks(scale, decades, std::span(kAll).first(1), stride, format);
        if (ticks.major.size() < 2 || !LabelsFit(scale, ticks.major, room)) continue;
        AddMinor(ticks, scale, decades, stride);
        return ticks;
    }
    return FunctionTicks(scale, room, format);
}

}  // namespace zel

#include "scales/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace zel {
namespace {

constexpr int kMostDecimals = 17;
// Beyond these powers of ten numbers are written with a factor.
constexpr int kLargestPlain = 6, kSmallestPlain = -4;

double LargestOf(std::span<const double> values) {
    double largest = 0;
    for (const double value : values) largest = std::max(largest, std::fabs(value));
    return largest;
}

// The power of ten of the first digit of `value`.
int ExponentOf(double value) {
    return value > 0 ? static_cast<int>(std::floor(std::log10(value) + 1e-12)) : 0;
}

// The largest multiple of three that is not above the exponent.
int ThousandsOf(int exponent) {
    return static_cast<int>(std::floor(exponent / 3.0)) * 3;
}

// Dividing by a power of ten rounds once; multiplying by its reciprocal would round twice. Powers beyond what
// a double holds go in two steps.
double DividedByPower(double value, int exponent) {
    if (exponent > 300) return value / 1e300 / std::pow(10.0, exponent - 300);
    if (exponent < -300) return value * 1e300 * std::pow(10.0, -300 - exponent);
    return exponent >= 0 ? value / std::pow(10.0, exponent) : value * std::pow(10.0, -exponent);
}

std::string Grouped(const std::string& text, const std::string& separator) {
    if (separator.empty()) return text;
    const std::size_t first = text.find_first_of("0123456789");
    const std::size_t end = std::min(text.find('.'), text.size());
    std::string grouped = text.substr(0, first);
    for (std::size_t i = first; i < end; ++i) {
        if (i > first && (end - i) % 3 == 0) grouped += separator;
        grouped += text[i];
    }
    return grouped + text.substr(end);
}

const char* PrefixOf(int exponent) {
    static constexpr std::array kPrefixes = {"q", "r", "y", "z", "a", "f", "p", "n", "\u00B5", "m", "",
                                             "k", "M", "G", "T", "P", "E", "Z", "Y", "R",      "Q"};
    const int place = std::clamp(exponent / 3, -10, 10) + 10;
    return kPrefixes[static_cast<std::size_t>(place)];
}

// What all values are divided by: a power of ten, where that makes the texts shorter.
int CommonExponent(std::span<const double> values, double step) {
    const int exponent = ExponentOf(LargestOf(values));
    const int stepExponent = ExponentOf(step);
    // Neighbours that differ only far behind the first digit are not told apart more easily with a factor.
    if (exponent - stepExponent > 6) return 0;
    if (exponent < kLargestPlain && stepExponent >= kSmallestPlain) return 0;
    return ThousandsOf(exponent);
}

}  // namespace

std::string FixedText(double value, int decimals) {
    std::array<char, 400> room;
    const auto [end, error] = std::to_chars(room.data(), room.data() + room.size(), std::fabs(value),
                                            std::chars_format::fixed, std::clamp(decimals, 0, kMostDecimals));
    std::string text(room.data(), error == std::errc() ? end : room.data());
    const bool isZero = text.find_first_of("123456789") == std::string::npos;
    return value < 0 && !isZero ? kMinusSign + text : text;
}

int DecimalsFor(std::span<const double> values, double step) {
    const double tolerance = std::fabs(step) * 1e-6;
    for (int decimals = 0; decimals < kMostDecimals; ++decimals) {
        const double power = std::pow(10.0, decimals);
        const auto isExact = [=](double value) {
            const double scaled = value * power;
            // Beyond 2^53 every number is whole.
            return std::fabs(scaled) > 9e15 || std::fabs(std::round(scaled) / power - value) <= tolerance;
        };
        if (std::all_of(values.begin(), values.end(), isExact)) return decimals;
    }
    return kMostDecimals;
}

std::string RaisedText(int exponent) {
    static constexpr std::array kRaised = {"\u2070", "\u00B9", "\u00B2", "\u00B3", "\u2074",
                                           "\u2075", "\u2076", "\u2077", "\u2078", "\u2079"};
    std::string text;
    for (const char c : std::to_string(exponent))
        text += c == '-' ? "\u207B" : kRaised[static_cast<std::size_t>(c - '0')];
    return text;
}

std::string PowerText(const std::string& base, int exponent) {
    return base + RaisedText(exponent);
}

NumberTexts TextsOf(std::span<const double> values, double step, const NumberFormat& format) {
    NumberTexts result;
    if (format.function) {
        for (const double value : values) result.texts.push_back(format.function(value));
        return result;
    }
    std::string suffix = format.suffix;
    int exponent = 0;
    if (format.percent) {
        exponent = -2;
        suffix = "\u00A0%" + suffix;
    } else if (format.factor == NumberFormat::Factor::SI) {
        exponent = std::clamp(ThousandsOf(ExponentOf(LargestOf(values))), -30, 30);
        suffix = (exponent == 0 && suffix.empty() ? "" : "\u00A0") + std::string(PrefixOf(exponent)) + suffix;
    } else if (format.factor == NumberFormat::Factor::POWERS && format.decimals < 0) {
        exponent = CommonExponent(values, step);
        if (exponent != 0) result.factor = "\u00D7" + PowerText("10", exponent);
    }
    std::vector<double> scaled;
    for (const double value : values) scaled.push_back(DividedByPower(value, exponent));
    const int decimals =
        format.decimals >= 0 ? format.decimals : DecimalsFor(scaled, DividedByPower(step, exponent));
    for (const double value : scaled) {
        std::string text = Grouped(FixedText(value, decimals), format.grouping);
        const bool negative = text.starts_with(kMinusSign);
        if (negative && !format.prefix.empty()) text.erase(0, std::char_traits<char>::length(kMinusSign));
        text.insert(0, format.prefix);
        if (negative && !format.prefix.empty()) text.insert(0, kMinusSign);
        text += suffix;
        result.texts.push_back(std::move(text));
    }
    return result;
}

}  // namespace zel

// Numbers as label texts.
#pragma once

#include <zel/Scale.h>

#include <span>
#include <string>

namespace zel {

inline constexpr const char* kMinusSign = "\u2212";

// `value` with exactly `decimals` digits behind the point, a true minus sign, and no sign before 0.
std::string FixedText(double value, int decimals);
// The fewest decimals with which all of `values` are written to within a millionth of `step`; at most 17.
int DecimalsFor(std::span<const double> values, double step);
// An exponent in raised digits, such as "⁻³".
std::string RaisedText(int exponent);
// `base` raised to `exponent`, such as "10⁻³".
std::string PowerText(const std::string& base, int exponent);

// The texts of values that stand together on one axis, all with the same number of digits.
struct NumberTexts {
    std::vector<std::string> texts;
    std::string factor;  // "×10⁶", or empty
};
NumberTexts TextsOf(std::span<const double> values, double step, const NumberFormat& format);

}  // namespace zel

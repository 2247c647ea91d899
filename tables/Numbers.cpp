#include "tables/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace zel::tables {
namespace {

constexpr std::array<std::string_view, 4> kBlanks = {" ", "\t", "\u00A0", "\u202F"};
constexpr std::array<std::string_view, 9> kCurrencies = {"$",   "€",   "£",   "¥",  "USD",
                                                         "EUR", "GBP", "CHF", "US$"};
constexpr std::string_view kMinus = "\u2212";
constexpr std::size_t kLongest = 120;  // bytes that are looked at as one number

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Takes `what` off the beginning.
bool Take(std::string_view& text, std::string_view what) {
    if (what.empty() || !text.starts_with(what)) return false;
    text.remove_prefix(what.size());
    return true;
}

bool TakeLast(std::string_view& text, std::string_view what) {
    if (what.empty() || !text.ends_with(what)) return false;
    text.remove_suffix(what.size());
    return true;
}

// The separator of thousands at the beginning of `text`; empty when there is none.
std::string_view SeparatorAt(std::string_view text, char decimal) {
    constexpr std::array<std::string_view, 7> kSeparators = {",",      ".",      " ",     "'",
                                                             "\u00A0", "\u202F", "\u2019"};
    for (const std::string_view separator : kSeparators) {
        if (text.starts_with(separator) && separator != std::string_view(&decimal, 1)) return separator;
    }
    return {};
}

// Digits without their separators, then what follows with a decimal point, into `plain`. Every group behind
// the first has three digits, and all separators are alike.
bool Ungroup(std::string_view text, char decimal, std::array<char, kLongest + 1>& plain, std::size_t& n) {
    std::string_view used;
    std::size_t group = 0;
    while (!text.empty()) {
        if (IsDigit(text.front())) {
            plain[n++] = text.front();
            ++group;
            text.remove_prefix(1);
            continue;
        }
        const std::string_view separator = SeparatorAt(text, decimal);
        if (separator.empty()) break;
        if (group == 0 || group > 3 || (!used.empty() && (group != 3 || separator != used))) return false;
        used = separator;
        group = 0;
        text.remove_prefix(separator.size());
    }
    if (!used.empty() && group != 3) return false;
    for (const char c : text) plain[n++] = c == decimal ? '.' : c;
    return true;
}

bool ReadPlain(std::string_view text, double& value) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc::result_out_of_range && stop == end) {
        value = std::numeric_limits<double>::quiet_NaN();
        return true;
    }
    return error == std::errc() && stop == end;
}

bool StartsNumber(std::string_view text, char decimal) {
    return !text.empty() && (IsDigit(text[0]) || (text[0] == decimal && text.size() > 1 && IsDigit(text[1])));
}

}  // namespace

std::string_view Trimmed(std::string_view text) {
    const auto trim = [&](auto take) {
        while (std::any_of(kBlanks.begin(), kBlanks.end(),
                           [&](std::string_view blank) { return take(text, blank); })) {
        }
    };
    if (text.empty()) return text;
    trim(Take);
    trim(TakeLast);
    return text;
}

bool ReadNumber(std::string_view text, const NumberForm& form, double& value) {
    if (text.empty() || text.size() > kLongest) return false;
    // Nearly all numbers are plain.
    if (form.decimal == '.' && StartsNumber(text.substr(text.front() == '-' ? 1 : 0), '.') &&
        ReadPlain(text, value))
        return true;
    bool negative = false;
    if (text.front() == '(' && text.back() == ')') {  // as bookkeepers write what is owed
        text = Trimmed(text.substr(1, text.size() - 2));
        negative = true;
    }
    const auto sign = [&] {
        if (Take(text, "-") || Take(text, kMinus))
            negative = !negative;
        else if (!Take(text, "+"))
            return;
        text = Trimmed(text);
    };
    sign();
    if (Take(text, form.prefix)) {
        text = Trimmed(text);
        if (!negative) sign();
    }
    if (TakeLast(text, form.suffix)) text = Trimmed(text);
    if (!StartsNumber(text, form.decimal)) return false;
    std::array<char, kLongest + 1> plain;
    std::size_t n = 0;
    if (!Ungroup(text, form.decimal, plain, n) || !ReadPlain({plain.data(), n}, value)) return false;
    if (negative) value = -value;
    return true;
}

Surroundings SurroundingsOf(std::string_view text) {
    const auto isDigit = [](char c) { return IsDigit(c); };
    const auto first = std::find_if(text.begin(), text.end(), isDigit);
    if (first == text.end()) return {};
    const auto last = std::find_if(text.rbegin(), text.rend(), isDigit).base();
    Surroundings around;
    std::string_view before = Trimmed(text.substr(0, static_cast<std::size_t>(first - text.begin())));
    if (!Take(before, "-") && !Take(before, kMinus) && !Take(before, "+")) Take(before, "(");
    for (const std::string_view currency : kCurrencies) {
        if (Trimmed(before).starts_with(currency)) around.prefix = currency;
    }
    around.suffix = Trimmed(text.substr(static_cast<std::size_t>(last - text.begin())));
    if (around.suffix == ")" || around.suffix == "." || around.suffix == ",") around.suffix = {};
    return around;
}

}  // namespace zel::tables

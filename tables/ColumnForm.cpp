#include "tables/ColumnForm.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

namespace zel::tables {
namespace {

using Cells = std::vector<std::string_view>;

constexpr double kClearly = 0.9;  // of the cells that a form must fit to be taken at once
constexpr double kMostly = 0.5;   // and to be taken at all

template <class Fits>
double ShareOf(const Cells& cells, Fits fits) {
    return static_cast<double>(std::count_if(cells.begin(), cells.end(), fits)) /
           static_cast<double>(cells.size());
}

double NumberShare(const Cells& cells, const NumberForm& form) {
    double value = 0;
    return ShareOf(cells, [&](std::string_view cell) { return ReadNumber(cell, form, value); });
}

double TimeShare(const Cells& cells, TimeForm form) {
    return ShareOf(cells, [=](std::string_view cell) { return ReadTime(cell, form).has_value(); });
}

bool Says(const std::string& name, std::initializer_list<std::string_view> words) {
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return std::any_of(words.begin(), words.end(),
                       [&](std::string_view word) { return lower.find(word) != std::string::npos; });
}

// Whole numbers of a size that stands for moments between 1973 and 2128, under a name that says so.
bool AreEpochs(const Cells& cells, const std::string& name) {
    if (!Says(name, {"time", "date", "epoch", "unix"}) && name != "ts") return false;
    return ShareOf(cells, [](std::string_view cell) {
               double value = 0;
               return ReadNumber(cell, {}, value) &&
                      ((value >= 1e8 && value < 5e9) || (value >= 1e11 && value < 5e12));
           }) >= kClearly;
}

bool AreDigits(const Cells& cells, const std::string& name) {
    if (cells.size() < 3 && !Says(name, {"date", "day", "time"})) return false;
    return ShareOf(cells, [](std::string_view cell) {
               return cell.size() >= 8 && (cell.starts_with("19") || cell.starts_with("20")) &&
                      ReadTime(cell, TimeForm::DIGITS).has_value();
           }) == 1;
}

// The unit or currency that most cells have.
NumberForm CommonForm(const Cells& cells, char decimal) {
    std::map<std::pair<std::string_view, std::string_view>, std::size_t> counts;
    for (const std::string_view cell : cells) {
        const Surroundings around = SurroundingsOf(cell);
        ++counts[{around.prefix, around.suffix}];
    }
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    return {decimal, std::string(most->first.first), std::string(most->first.second)};
}

bool IsBoolean(std::string_view cell) {
    static constexpr std::array<std::string_view, 12> kWords = {
        "true", "false", "True", "False", "TRUE", "FALSE", "yes", "no", "Yes", "No", "YES", "NO"};
    return std::find(kWords.begin(), kWords.end(), cell) != kWords.end();
}

struct BestTime {
    TimeForm form = TimeForm::YEAR_FIRST;
    double share = 0;
    bool isAmbiguous = false;
};

BestTime BestTimeOf(const Cells& cells, char decimal, std::optional<DateOrder> dates) {
    BestTime best;
    for (const TimeForm form : kTimeForms) {
        const double share = TimeShare(cells, form);
        if (share > best.share) best = {form, share};
    }
    const bool ordered = best.form == TimeForm::DAY_FIRST || best.form == TimeForm::MONTH_FIRST;
    if (!ordered) return best;
    const double dayFirst = TimeShare(cells, TimeForm::DAY_FIRST);
    const double monthFirst = TimeShare(cells, TimeForm::MONTH_FIRST);
    best.isAmbiguous = dayFirst == monthFirst;
    if (!best.isAmbiguous) return best;
    // A slash is how months are written first, elsewhere than where commas are decimal signs.
    const bool slashes = cells.front().find('/') != std::string_view::npos;
    const bool months = dates ? *dates == DateOrder::MONTH_FIRST : slashes && decimal == '.';
    best.form = months ? TimeForm::MONTH_FIRST : TimeForm::DAY_FIRST;
    if (dates) best.isAmbiguous = false;
    return best;
}

}  // namespace

ColumnForm FormOf(const Cells& cells, const std::string& name, char decimal, std::optional<DateOrder> dates) {
    ColumnForm form;
    form.number.decimal = decimal;
    if (cells.empty()) return form;
    const auto times = [&](TimeForm time, bool isAmbiguous = false) {
        form.kind = time == TimeForm::CLOCK ? Kind::DURATION : Kind::TIME;
        form.time = time;
        form.isAmbiguous = isAmbiguous;
        return form;
    };
    if (AreEpochs(cells, name)) return times(TimeForm::EPOCH);
    if (AreDigits(cells, name)) return times(TimeForm::DIGITS);
    const double plain = NumberShare(cells, form.number);
    const BestTime best = BestTimeOf(cells, decimal, dates);
    const NumberForm common = CommonForm(cells, decimal);
    const double withUnit = NumberShare(cells, common);
    form.kind = Kind::NUMBER;
    if (plain >= kClearly) return form;
    if (best.share >= kClearly) return times(best.form, best.isAmbiguous);
    if (ShareOf(cells, IsBoolean) >= kClearly) {
        form.kind = Kind::BOOLEAN;
        return form;
    }
    if (withUnit > plain && withUnit >= std::max(best.share, kMostly)) {
        form.number = common;
        return form;
    }
    if (plain >= kMostly && plain >= best.share) return form;
    if (best.share >= kMostly) return times(best.form, best.isAmbiguous);
    form.kind = Kind::TEXT;
    return form;
}

bool IsMissing(std::string_view text) {
    static constexpr std::array<std::string_view, 8> kWords = {"",    "NA",  "N/A",  "n/a",
                                                               "NaN", "nan", "NULL", "null"};
    return std::find(kWords.begin(), kWords.end(), text) != kWords.end();
}

bool IsMissingValue(std::string_view text) {
    static constexpr std::array<std::string_view, 12> kWords = {
        "-", "--", "\u2013", "\u2014", "?", ".", "None", "na", "none", "#N/A", "Null", "*"};
    return IsMissing(text) || std::find(kWords.begin(), kWords.end(), text) != kWords.end();
}

}  // namespace zel::tables

#include "charts/ScaleValues.h"

#include <zel/Zel2Layer.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zel {
namespace {

// Whether names are the first of others, so that their codes are the same.
bool Begin(const std::vector<std::string>& names, const std::vector<std::string>& others) {
    return names.size() <= others.size() && std::equal(names.begin(), names.end(), others.begin());
}

}  // namespace

const SeriesValues& ScaleValues::On(const Column& column, const Scale& scale) {
    changed_ = false;
    if (column.GetKind() == Column::Kind::TIMES) return values_ = column.ValuesFrom(scale.Origin());
    const bool coded = column.GetKind() == Column::Kind::TEXTS &&
                       scale.GetKind() == Scale::Kind::CATEGORIES && !Begin(column.Names(), scale.Names());
    if (!coded) return values_ = column.Values();
    if (!known_ || names_ != scale.Names()) LookUp(column, scale.Names());
    return values_ = SeriesValues(codes_.data());
}

void ScaleValues::LookUp(const Column& column, const std::vector<std::string>& names) {
    known_ = changed_ = true;
    names_ = names;
    std::vector<std::pair<std::string, double>> places;
    for (std::size_t i = 0; i < names.size(); ++i) places.emplace_back(names[i], static_cast<double>(i));
    std::stable_sort(places.begin(), places.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<double> placeOf;
    for (const std::string& name : column.Names()) {
        const auto at = std::lower_bound(
            places.begin(), places.end(), name,
            [](const auto& place, const std::string& wanted) { return place.first < wanted; });
        placeOf.push_back(at != places.end() && at->first == name ? at->second : std::nan(""));
    }
    codes_.clear();
    codes_.reserve(column.Size());
    for (std::size_t i = 0; i < column.Size(); ++i) {
        const double code = column.At(i);
        codes_.push_back(std::isfinite(code) ? placeOf[static_cast<std::size_t>(code)] : code);
    }
}

void ScaleValues::Forget() {
    known_ = false;
    codes_.clear();
}

void Describe(AxisRange& axis, const Column& column) {
    if (column.GetKind() == Column::Kind::TEXTS) axis.AddNames(column.Names());
    if (column.GetKind() == Column::Kind::TIMES) axis.AddTimes(column.Origin());
    if (column.GetKind() == Column::Kind::NUMBERS && !column.IsEmpty()) axis.AddNumbers();
}

}  // namespace zel

#include "apps/zel/Grouping.h"

#include <zel/platform/Warning.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

namespace zel::cli {
namespace {

constexpr std::size_t kMostGroups = 200;
constexpr std::size_t kLooked = 10000;  // rows that are looked at for a suggestion

// The rows of each group, by its name, in order of appearance.
std::vector<std::pair<std::string, std::vector<std::size_t>>> RowsOf(const Column& group) {
    std::vector<std::pair<std::string, std::vector<std::size_t>>> groups;
    std::map<double, std::size_t> known;
    const Scale scale = group.GetKind() == Column::Kind::TIMES ? Scale::Time(0, 1) : Scale();
    for (std::size_t row = 0; row < group.Size(); ++row) {
        const double value = group.At(row);
        if (!std::isfinite(value)) continue;
        const auto [found, isNew] = known.try_emplace(value, groups.size());
        if (isNew) {
            if (groups.size() == kMostGroups)
                throw Error("Cannot group by \"" + group.Name() + "\": it has more than " +
                            std::to_string(kMostGroups) + " different values");
            const std::string name = group.GetKind() == Column::Kind::TEXTS
                                         ? group.Names()[static_cast<std::size_t>(value)]
                                         : scale.TextOf(group.Origin() + value, 1e-6);
            groups.emplace_back(name, std::vector<std::size_t>());
        }
        groups[found->second].second.push_back(row);
    }
    return groups;
}

// Whether no value of x stands in two of the first rows, within each value of `group` where there is one.
bool IsUnique(const Column& x, const Column* group) {
    std::set<std::pair<double, double>> seen;
    for (std::size_t row = 0; row < std::min(x.Size(), kLooked); ++row) {
        if (!std::isfinite(x.At(row))) continue;
        const double of = group && row < group->Size() && std::isfinite(group->At(row)) ? group->At(row) : -1;
        if (!seen.emplace(of, x.At(row)).second) return false;
    }
    return true;
}

}  // namespace

std::vector<Series> Grouped(const std::vector<Series>& series, const Column& group) {
    std::vector<Series> grouped;
    for (const auto& [name, rows] : RowsOf(group)) {
        for (const Series& whole : series) {
            Series part = whole;
            part.name = series.size() == 1 ? name : name + ", " + whole.name;
            for (Column* column : {&part.x, &part.y, &part.error, &part.color, &part.size})
                if (!column->IsEmpty()) *column = column->Rows(rows);
            grouped.push_back(std::move(part));
        }
    }
    return grouped;
}

void SuggestGroup(const tables::Table& table, const Column& x) {
    if (IsUnique(x, nullptr)) return;
    for (std::size_t k = 0; k < table.Columns().size(); ++k) {
        const tables::ColumnFacts& facts = table.Columns()[k];
        if (table.At(k).GetKind() != Column::Kind::TEXTS || facts.name == x.Name()) continue;
        const std::size_t names = table.At(k).Names().size();
        if (names < 2 || names > kMostGroups || !IsUnique(x, &table.At(k))) continue;
        Warn("The values of the column \"" + x.Name() + "\" come back; --group \"" + facts.name +
             "\" draws one series for each of the " + std::to_string(names) + " values of that column.");
        return;
    }
}

}  // namespace zel::cli

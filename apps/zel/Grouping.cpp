#include "apps/zel/Grouping.h"

#include <cmath>
#include <map>
#include <utility>

namespace zel::cli {
namespace {

constexpr std::size_t kMostGroups = 200;

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

}  // namespace zel::cli

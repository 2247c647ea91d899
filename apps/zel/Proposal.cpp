#include "apps/zel/Proposal.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace zel::cli {
namespace {

constexpr std::size_t kMostSeries = 8;    // as many as the palette has colours
constexpr std::size_t kMostBars = 60;     // names that have room under an axis
constexpr std::size_t kMostGroups = 200;  // values of a column that still are groups
constexpr std::size_t kLooked = 10000;    // rows that are looked at

// Whether no value of x stands in two rows, within each value of `group` where there is one.
bool IsUnique(const Column& x, const Column* group) {
    std::set<std::pair<double, double>> seen;
    for (std::size_t row = 0; row < std::min(x.Size(), kLooked); ++row) {
        if (!std::isfinite(x.At(row))) continue;
        const double of = group && std::isfinite(group->At(row)) ? group->At(row) : -1;
        if (!seen.emplace(of, x.At(row)).second) return false;
    }
    return true;
}

bool Ascends(const Column& x) {
    for (std::size_t row = 1; row < std::min(x.Size(), kLooked); ++row)
        if (!(x.At(row - 1) < x.At(row))) return false;
    return true;
}

// The first column of a kind; null when there is none.
const tables::ColumnFacts* FirstOf(const tables::Table& table, tables::Kind kind) {
    const auto& columns = table.Columns();
    const auto found = std::find_if(columns.begin(), columns.end(), [=](const tables::ColumnFacts& facts) {
        return facts.kind == kind && facts.present > 0;
    });
    return found == columns.end() ? nullptr : &*found;
}

Proposal Along(const tables::Table& table, const std::string& x) {
    Proposal proposal;
    proposal.x = x;
    proposal.ys = MeasuresOf(table, x);
    proposal.group = GroupOf(table, table[x]);
    if (!proposal.group.empty()) proposal.ys.resize(1);
    return proposal;
}

}  // namespace

std::string Proposal::Words() const {
    std::string words;
    for (const std::string& y : ys) words.append(words.empty() ? "" : ", ").append(y);
    if (!x.empty()) words += (kind == FigureKind::BARS ? " of each " : " along ") + x;
    if (!group.empty()) words += " by " + group;
    switch (kind) {
        case FigureKind::BARS:
            return words + ", as bars";
        case FigureKind::HISTOGRAM:
            return words + ", as a histogram";
        default:
            return words + (points ? ", as points" : ", as lines");
    }
}

std::vector<std::string> MeasuresOf(const tables::Table& table, const std::string& except) {
    std::vector<std::string> names;
    for (const tables::ColumnFacts& facts : table.Columns()) {
        const bool measures = facts.kind == tables::Kind::NUMBER || facts.kind == tables::Kind::DURATION;
        if (measures && facts.present > 0 && facts.name != except && names.size() < kMostSeries)
            names.push_back(facts.name);
    }
    return names;
}

std::string GroupOf(const tables::Table& table, const Column& x) {
    if (IsUnique(x, nullptr)) return {};
    for (std::size_t k = 0; k < table.Columns().size(); ++k) {
        const Column& column = table.At(k);
        if (column.GetKind() != Column::Kind::TEXTS || column.Name() == x.Name()) continue;
        const std::size_t names = column.Names().size();
        if (names >= 2 && names <= kMostGroups && IsUnique(x, &column)) return column.Name();
    }
    return {};
}

Proposal ProposalFor(const tables::Table& table) {
    const std::vector<std::string> numbers = MeasuresOf(table, "");
    if (numbers.empty()) throw Error("Cannot plot \"" + table.Name() + "\": no column holds numbers");
    if (const tables::ColumnFacts* time = FirstOf(table, tables::Kind::TIME)) return Along(table, time->name);
    const tables::ColumnFacts* const text = FirstOf(table, tables::Kind::TEXT);
    if (text && table[text->name].Names().size() <= kMostBars && IsUnique(table[text->name], nullptr)) {
        Proposal bars{.kind = FigureKind::BARS, .x = text->name, .ys = {}, .group = {}};
        bars.ys = numbers;
        return bars;
    }
    if (numbers.size() == 1) return {.kind = FigureKind::HISTOGRAM, .x = {}, .ys = numbers, .group = {}};
    Proposal lines = Along(table, numbers.front());
    if (lines.group.empty() && !Ascends(table[lines.x])) {
        lines.points = true;
        lines.ys.resize(1);
    }
    return lines;
}

}  // namespace zel::cli

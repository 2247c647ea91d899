#include "tables/ColumnBuilder.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace zel::tables {
namespace {

constexpr std::size_t kMostExamples = 3;
constexpr std::int64_t kAbsentTick = std::numeric_limits<std::int64_t>::min();
constexpr double kAbsent = std::numeric_limits<double>::quiet_NaN();

}  // namespace

ColumnBuilder::ColumnBuilder(std::string name, ColumnForm form, const std::vector<std::string>& missing)
    : form_(std::move(form)), missing_(&missing) {
    facts_.name = std::move(name);
    facts_.kind = form_.kind;
    facts_.isAmbiguous = form_.isAmbiguous;
    if (form_.kind == Kind::NUMBER)
        facts_.unit = form_.number.suffix.empty() ? form_.number.prefix : form_.number.suffix;
    if (form_.kind == Kind::TIME || form_.kind == Kind::DURATION) facts_.form = NameOf(form_.time);
}

void ColumnBuilder::Add(std::string_view cell, std::size_t row) {
    if (Take(cell)) {
        ++facts_.present;
        return;
    }
    AddMissing();
    const bool text = form_.kind == Kind::TEXT || form_.kind == Kind::BOOLEAN;
    if (text || IsMissingValue(cell) ||
        std::find(missing_->begin(), missing_->end(), cell) != missing_->end())
        return;
    --facts_.missing;
    ++facts_.unread;
    if (facts_.examples.size() < kMostExamples) facts_.examples.push_back({row, std::string(cell)});
}

// False for a cell without a value, and for one that is not of the column's form.
bool ColumnBuilder::Take(std::string_view cell) {
    if (cell.empty()) return false;
    if (!missing_->empty() && std::find(missing_->begin(), missing_->end(), cell) != missing_->end())
        return false;
    double value = 0;
    switch (form_.kind) {
        case Kind::EMPTY:
            return false;
        case Kind::NUMBER:
            if (!ReadNumber(cell, form_.number, value)) return false;
            numbers_.push_back(value);
            return true;
        case Kind::TIME:
        case Kind::DURATION: {
            const std::optional<Instant> time = ReadTime(cell, form_.time);
            if (time) TakeTime(*time);
            return time.has_value();
        }
        case Kind::BOOLEAN:
        case Kind::TEXT:
            if (IsMissing(cell)) return false;
            TakeText(cell);
            return true;
    }
    return false;
}

void ColumnBuilder::TakeTime(const Instant& time) {
    if (form_.kind == Kind::DURATION) {
        numbers_.push_back(static_cast<double>(time.seconds) + time.nanoseconds * 1e-9);
        return;
    }
    constexpr std::int64_t kMicro = 1'000'000, kNano = 1'000'000'000;
    if (time.nanoseconds != 0) Scale(time.nanoseconds % 1000 == 0 ? kMicro : kNano);
    ticks_.push_back(time.seconds * perSecond_ + time.nanoseconds / (kNano / perSecond_));
}

// Nanoseconds go as far as 64 bits do, which is to 2262; columns beyond have microseconds.
void ColumnBuilder::Scale(std::int64_t perSecond) {
    constexpr std::int64_t kMostSeconds = 9'000'000'000;
    if (perSecond <= perSecond_) return;
    const std::int64_t factor = perSecond / perSecond_;
    const auto fits = [&](std::int64_t tick) {
        return tick == kAbsentTick || std::abs(tick / perSecond_) < kMostSeconds;
    };
    if (perSecond > 1'000'000 && !std::all_of(ticks_.begin(), ticks_.end(), fits)) return;
    for (std::int64_t& tick : ticks_)
        if (tick != kAbsentTick) tick *= factor;
    perSecond_ = perSecond;
}

void ColumnBuilder::TakeText(std::string_view cell) {
    auto found = known_.find(cell);
    if (found == known_.end()) {
        found = known_.emplace(std::string(cell), static_cast<std::int32_t>(names_.size())).first;
        names_.emplace_back(cell);
    }
    codes_.push_back(found->second);
}

void ColumnBuilder::AddMissing() {
    ++facts_.missing;
    switch (form_.kind) {
        case Kind::TIME:
            ticks_.push_back(kAbsentTick);
            break;
        case Kind::BOOLEAN:
        case Kind::TEXT:
            codes_.push_back(-1);
            break;
        default:
            numbers_.push_back(kAbsent);
            break;
    }
}

std::size_t ColumnBuilder::Size() const {
    return facts_.present + facts_.missing + facts_.unread;
}

Column ColumnBuilder::Finish() {
    Column column;
    switch (form_.kind) {
        case Kind::TIME:
            column = Column::Times(std::move(ticks_), perSecond_);
            break;
        case Kind::BOOLEAN:
        case Kind::TEXT:
            column = Column::Texts(codes_, std::move(names_));
            break;
        default:
            column = Column(std::move(numbers_));
            break;
    }
    return column.SetName(facts_.name).SetUnit(facts_.unit);
}

}  // namespace zel::tables

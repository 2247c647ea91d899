#include "core/ArchiveFields.h"

#include <zel/Column.h>
#include <zel/Error.h>
#include <zel/platform/Exception.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace zel {
namespace {

constexpr std::int64_t kAbsent = std::numeric_limits<std::int64_t>::min();

std::int64_t TickAt(const std::int64_t* first, std::ptrdiff_t stride, std::size_t i) {
    std::int64_t tick;
    std::memcpy(&tick, reinterpret_cast<const char*>(first) + static_cast<std::ptrdiff_t>(i) * stride,
                sizeof tick);
    return tick;
}

}  // namespace

Column::Column(const std::vector<std::string>& texts) {
    std::vector<std::string> names;
    std::unordered_map<std::string, std::int32_t> codeOf;
    std::vector<std::int32_t> codes;
    codes.reserve(texts.size());
    for (const std::string& text : texts) {
        if (text.empty()) {
            codes.push_back(-1);
            continue;
        }
        const auto [place, isNew] = codeOf.try_emplace(text, static_cast<std::int32_t>(names.size()));
        if (isNew) names.push_back(text);
        codes.push_back(place->second);
    }
    SetCodes(codes, std::move(names));
}

Column::Column(const std::vector<std::chrono::sys_time<std::chrono::nanoseconds>>& times) {
    std::vector<std::int64_t> ticks;
    ticks.reserve(times.size());
    for (const auto& time : times) ticks.push_back(time.time_since_epoch().count());
    *this = Times(std::move(ticks), 1'000'000'000);
}

Column Column::Texts(const std::vector<std::int32_t>& codes, std::vector<std::string> names) {
    const auto known = static_cast<std::int64_t>(names.size());
    if (std::any_of(codes.begin(), codes.end(), [=](std::int32_t code) { return code >= known; }))
        throw Error("Cannot make a column of texts: an index is beyond the " + std::to_string(known) +
                    " names.");
    Column column;
    column.SetCodes(codes, std::move(names));
    return column;
}

void Column::SetCodes(const std::vector<std::int32_t>& codes, std::vector<std::string> names) {
    kind_ = Kind::TEXTS;
    std::vector<double> values;
    values.reserve(codes.size());
    for (const std::int32_t code : codes)
        values.push_back(code < 0 ? std::numeric_limits<double>::quiet_NaN() : code);
    auto owned = std::make_shared<const std::vector<double>>(std::move(values));
    values_ = SeriesValues(owned->data());
    size_ = owned->size();
    owner_ = std::move(owned);
    names_ = std::make_shared<const std::vector<std::string>>(std::move(names));
}

Column Column::Times(std::vector<std::int64_t> ticks, std::int64_t perSecond) {
    auto owned = std::make_shared<const std::vector<std::int64_t>>(std::move(ticks));
    Column column;
    column.SetTimes(owned->data(), owned->size(), sizeof(std::int64_t), perSecond);
    column.owner_ = std::move(owned);
    return column;
}

Column Column::TimesView(std::span<const std::int64_t> ticks, std::int64_t perSecond, std::ptrdiff_t stride) {
    Column column;
    column.SetTimes(ticks.data(), ticks.size(), stride, perSecond);
    return column;
}

// Counted from the whole second of the first time there is.
void Column::SetTimes(const std::int64_t* first, std::size_t n, std::ptrdiff_t stride,
                      std::int64_t perSecond) {
    if (perSecond < 1) throw Error("Cannot read times: there must be at least one tick to a second");
    kind_ = Kind::TIMES;
    size_ = n;
    perSecond_ = perSecond;
    std::int64_t second = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const std::int64_t tick = TickAt(first, stride, i);
        if (tick == kAbsent) continue;
        second = tick / perSecond;
        break;
    }
    origin_ = static_cast<double>(second);
    ticks_ = first;
    stride_ = stride;
    values_ = ValuesFrom(origin_);
}

SeriesValues Column::ValuesFrom(double origin) const {
    if (kind_ != Kind::TIMES) return values_;
    constexpr double kMost = 9.2e18;  // below the end of 64 bits
    std::int64_t ticks = static_cast<std::int64_t>(std::clamp(origin, -kMost, kMost));
    // So far away no digit is left to keep.
    if (__builtin_mul_overflow(ticks, perSecond_, &ticks))
        ticks =
            static_cast<std::int64_t>(std::clamp(origin * static_cast<double>(perSecond_), -kMost, kMost));
    return SeriesValues(ticks_, stride_, ticks, static_cast<double>(perSecond_));
}

const std::vector<std::string>& Column::Names() const {
    static const std::vector<std::string> none;
    return names_ ? *names_ : none;
}

Column Column::Rows(std::span<const std::size_t> rows) const {
    if (std::any_of(rows.begin(), rows.end(), [this](std::size_t row) { return row >= size_; }))
        throw Error("Cannot take rows of a column of " + std::to_string(size_) +
                    " rows: one is beyond its end.");
    Column some;
    if (kind_ == Kind::TIMES) {
        std::vector<std::int64_t> ticks;
        ticks.reserve(rows.size());
        for (const std::size_t row : rows) ticks.push_back(TickAt(ticks_, stride_, row));
        some = Times(std::move(ticks), perSecond_);
    } else {
        std::vector<double> numbers;
        numbers.reserve(rows.size());
        for (const std::size_t row : rows) numbers.push_back(At(row));
        some = Column(std::move(numbers));
        some.kind_ = kind_;
        some.names_ = names_;
    }
    return some.SetName(name_).SetUnit(unit_);
}

// Every kind has the same fields; those that are not its own are empty.
void Column::Serialize(CArchive& ar) {
    int kind = static_cast<int>(kind_);
    std::vector<std::int64_t> ticks;
    std::vector<double> numbers;
    std::vector<std::string> names = Names();
    for (std::size_t i = 0; ar.IsStoring() && i < size_; ++i) {
        if (kind_ == Kind::TIMES) {
            ticks.push_back(TickAt(ticks_, stride_, i));
        } else {
            numbers.push_back(values_.At(i));
        }
    }
    ExchangeText(ar, name_);
    ExchangeText(ar, unit_);
    Exchange(ar, kind, perSecond_);
    ExchangeList(ar, ticks);
    ExchangeList(ar, numbers);
    ExchangeTexts(ar, names);
    if (ar.IsLoading()) Take(ar, kind, std::move(ticks), std::move(numbers), std::move(names));
}

void Column::Take(CArchive& ar, int kind, std::vector<std::int64_t> ticks, std::vector<double> numbers,
                  std::vector<std::string> names) {
    if (kind == static_cast<int>(Kind::TIMES)) {
        if (perSecond_ < 1) ar.Fail(CArchiveException::genericException, "times have no ticks to a second");
        *this = Times(std::move(ticks), perSecond_).SetName(name_).SetUnit(unit_);
    } else if (kind == static_cast<int>(Kind::TEXTS)) {
        std::vector<std::int32_t> codes;
        codes.reserve(numbers.size());
        for (const double number : numbers) {
            const bool known = number >= 0 && number < static_cast<double>(names.size());
            codes.push_back(known ? static_cast<std::int32_t>(number) : -1);
        }
        SetCodes(codes, std::move(names));
    } else {
        *this = Column(std::move(numbers)).SetName(name_).SetUnit(unit_);
    }
}

}  // namespace zel

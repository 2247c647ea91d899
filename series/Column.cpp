#include "core/ArchiveFields.h"

#include <zel/Column.h>
#include <zel/platform/Exception.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace zel {
namespace {

constexpr std::int64_t kAbsent = std::numeric_limits<std::int64_t>::min();

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
    SetCodes(std::move(codes), std::move(names));
}

Column::Column(const std::vector<std::chrono::sys_time<std::chrono::nanoseconds>>& times) {
    std::vector<std::int64_t> ticks;
    ticks.reserve(times.size());
    for (const auto& time : times) ticks.push_back(time.time_since_epoch().count());
    *this = Times(std::move(ticks), 1'000'000'000);
}

void Column::SetCodes(std::vector<std::int32_t> codes, std::vector<std::string> names) {
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
    if (perSecond < 1) AfxThrowInvalidArgException("Cannot read times of less than one tick a second.");
    kind_ = Kind::TIMES;
    size_ = n;
    perSecond_ = perSecond;
    std::int64_t second = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const auto* const tick = reinterpret_cast<const std::int64_t*>(
            reinterpret_cast<const char*>(first) + static_cast<std::ptrdiff_t>(i) * stride);
        std::int64_t value;
        std::memcpy(&value, tick, sizeof value);
        if (value == kAbsent) continue;
        second = value / perSecond;
        break;
    }
    origin_ = static_cast<double>(second);
    ticks_ = first;
    stride_ = stride;
    values_ = ValuesFrom(origin_);
}

SeriesValues Column::ValuesFrom(double origin) const {
    if (kind_ != Kind::TIMES) return values_;
    return SeriesValues(ticks_, stride_, static_cast<std::int64_t>(origin) * perSecond_,
                        static_cast<double>(perSecond_));
}

const std::vector<std::string>& Column::Names() const {
    static const std::vector<std::string> none;
    return names_ ? *names_ : none;
}

void Column::Serialize(CArchive& ar) {
    int kind = static_cast<int>(kind_);
    ExchangeText(ar, name_);
    ExchangeText(ar, unit_);
    Exchange(ar, kind);
    if (kind == static_cast<int>(Kind::TIMES)) {
        std::vector<std::int64_t> ticks;
        Exchange(ar, perSecond_);
        if (ar.IsStoring()) {
            ticks.reserve(size_);
            const auto base = static_cast<std::int64_t>(origin_) * perSecond_;
            const SeriesValues& values = values_;
            for (std::size_t i = 0; i < size_; ++i) {
                const double value = values.At(i) * static_cast<double>(perSecond_);
                ticks.push_back(std::isfinite(value) ? base + std::llround(value) : kAbsent);
            }
        }
        ExchangeList(ar, ticks);
        if (ar.IsStoring()) return;
        if (perSecond_ < 1) ar.Fail(CArchiveException::genericException, "times have no ticks to a second");
        *this = Times(std::move(ticks), perSecond_).SetName(name_).SetUnit(unit_);
        return;
    }
    std::vector<double> numbers;
    if (ar.IsStoring()) {
        numbers.resize(size_);
        for (std::size_t i = 0; i < size_; ++i) numbers[i] = values_.At(i);
    }
    ExchangeList(ar, numbers);
    std::vector<std::string> names = Names();
    if (kind == static_cast<int>(Kind::TEXTS)) ExchangeTexts(ar, names);
    if (ar.IsStoring()) return;
    if (kind == static_cast<int>(Kind::TEXTS)) {
        std::vector<std::int32_t> codes;
        codes.reserve(numbers.size());
        for (const double number : numbers) {
            const bool known = number >= 0 && number < static_cast<double>(names.size());
            codes.push_back(known ? static_cast<std::int32_t>(number) : -1);
        }
        SetCodes(std::move(codes), std::move(names));
        return;
    }
    *this = Column(std::move(numbers)).SetName(name_).SetUnit(unit_);
}

}  // namespace zel

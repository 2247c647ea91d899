// Columns of data: what charts draw.
#pragma once

#include <zel/SeriesPoints.h>

#include <chrono>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

class CArchive;

namespace zel {

// Numbers, times or texts, one for each row, with a name and a unit.
//
// A column owns its data, and copies of it share them, or it borrows them (View): then the memory belongs to
// the host and must stay where it is as long as any layer draws from it. Numbers that are not finite, and the
// smallest of 64-bit integers, are absent: a gap in a line, no mark, no bar. Texts are the names of
// categories; an empty text is absent.
class Column {
  public:
    enum class Kind : int { NUMBERS = 0, TIMES = 1, TEXTS = 2 };
    template <class T>
    static constexpr bool kIsNumber = std::is_same_v<T, double> || std::is_same_v<T, float> ||
                                      std::is_same_v<T, std::int8_t> || std::is_same_v<T, std::uint8_t> ||
                                      std::is_same_v<T, std::int16_t> || std::is_same_v<T, std::uint16_t> ||
                                      std::is_same_v<T, std::int32_t> || std::is_same_v<T, std::uint32_t> ||
                                      std::is_same_v<T, std::int64_t> || std::is_same_v<T, std::uint64_t>;

    // Without rows.
    Column() = default;

    // Owns the numbers: those of a vector that is moved from, else a copy of them.
    template <class T>
    requires kIsNumber<T> Column(std::vector<T> numbers) {
        auto owned = std::make_shared<const std::vector<T>>(std::move(numbers));
        values_ = SeriesValues(owned->data());
        size_ = owned->size();
        owner_ = std::move(owned);
    }
    // Owns the texts.
    Column(const std::vector<std::string>& texts);
    // Owns the times, to the nanosecond.
    Column(const std::vector<std::chrono::sys_time<std::chrono::nanoseconds>>& times);

    // Borrows numbers that are `stride` bytes apart.
    template <class T>
    requires kIsNumber<T>
    static Column View(std::span<const T> numbers, std::ptrdiff_t stride = sizeof(T)) {
        Column column;
        column.values_ = SeriesValues(numbers.data(), stride);
        column.size_ = numbers.size();
        return column;
    }
    // Times as whole numbers of `perSecond` to a second since 1970-01-01 00:00 UTC: 1, 10^3, 10^6 or 10^9.
    // Differences within the column keep every digit.
    // Throws zel::Error for less than one tick.
    static Column Times(std::vector<std::int64_t> ticks, std::int64_t perSecond);
    static Column TimesView(std::span<const std::int64_t> ticks, std::int64_t perSecond,
                            std::ptrdiff_t stride = sizeof(std::int64_t));

    // Texts by the index of each among `names`, which are different from each other; below 0 for an absent
    // one. Throws zel::Error for an index that no name has.
    static Column Texts(const std::vector<std::int32_t>& codes, std::vector<std::string> names);

    Kind GetKind() const { return kind_; }
    std::size_t Size() const { return size_; }
    bool IsEmpty() const { return size_ == 0; }
    // Of a row below Size(): the number; seconds from Origin(); or the index of the text among Names(), NaN
    // for an absent one.
    double At(std::size_t row) const { return values_.At(row); }
    const SeriesValues& Values() const { return values_; }
    // What times are counted from, in seconds since 1970; 0 for numbers and texts.
    double Origin() const { return origin_; }
    // Times counted from another second since 1970; other columns as they are.
    SeriesValues ValuesFrom(double origin) const;
    // The different texts in order of appearance.
    const std::vector<std::string>& Names() const;

    const std::string& Name() const { return name_; }
    const std::string& Unit() const { return unit_; }
    Column& SetName(std::string name) {
        name_ = std::move(name);
        return *this;
    }
    Column& SetUnit(std::string unit) {
        unit_ = std::move(unit);
        return *this;
    }

    // A column of some rows, in the order of their indexes, with the same name and unit. It owns its data.
    // Throws zel::Error for a row that does not exist.
    Column Rows(std::span<const std::size_t> rows) const;

    // Stores or loads everything; borrowed rows are stored as well, and loaded ones are owned.
    void Serialize(CArchive& ar);

  private:
    void SetTimes(const std::int64_t* first, std::size_t n, std::ptrdiff_t stride, std::int64_t perSecond);
    void Take(CArchive& ar, int kind, std::vector<std::int64_t> ticks, std::vector<double> numbers,
              std::vector<std::string> names);
    void SetCodes(const std::vector<std::int32_t>& codes, std::vector<std::string> names);

    Kind kind_ = Kind::NUMBERS;
    SeriesValues values_;
    std::size_t size_ = 0;
    std::shared_ptr<const void> owner_;
    std::shared_ptr<const std::vector<std::string>> names_;
    double origin_ = 0;
    std::int64_t perSecond_ = 1;
    const std::int64_t* ticks_ = nullptr;  // of times
    std::ptrdiff_t stride_ = 0;
    std::string name_, unit_;
};

}  // namespace zel

// Where the numbers of a series lie.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace zel {

class SeriesIndex;

// One coordinate of many points: numbers of one type in memory of somebody else, a fixed number of bytes
// apart.
class SeriesValues {
  public:
    SeriesValues() = default;
    // `stride` is counted in bytes; it may be negative or 0. Numbers need not be aligned.
    explicit SeriesValues(const double* first, std::ptrdiff_t stride = sizeof(double))
        : SeriesValues(first, Type::DOUBLE, stride) {}
    explicit SeriesValues(const float* first, std::ptrdiff_t stride = sizeof(float))
        : SeriesValues(first, Type::FLOAT, stride) {}
    explicit SeriesValues(const std::int32_t* first, std::ptrdiff_t stride = sizeof(std::int32_t))
        : SeriesValues(first, Type::INT32, stride) {}
    explicit SeriesValues(const std::int16_t* first, std::ptrdiff_t stride = sizeof(std::int16_t))
        : SeriesValues(first, Type::INT16, stride) {}
    explicit SeriesValues(const std::uint32_t* first, std::ptrdiff_t stride = sizeof(std::uint32_t))
        : SeriesValues(first, Type::UINT32, stride) {}
    explicit SeriesValues(const std::uint16_t* first, std::ptrdiff_t stride = sizeof(std::uint16_t))
        : SeriesValues(first, Type::UINT16, stride) {}
    explicit SeriesValues(const std::int8_t* first, std::ptrdiff_t stride = sizeof(std::int8_t))
        : SeriesValues(first, Type::INT8, stride) {}
    explicit SeriesValues(const std::uint8_t* first, std::ptrdiff_t stride = sizeof(std::uint8_t))
        : SeriesValues(first, Type::UINT8, stride) {}
    // A number `v` counts as (v - origin) / perUnit: the difference is taken in whole numbers, so that times
    // of many digits keep theirs. The smallest number of the type is a gap.
    explicit SeriesValues(const std::int64_t* first, std::ptrdiff_t stride = sizeof(std::int64_t),
                          std::int64_t origin = 0, double perUnit = 1)
        : SeriesValues(first, Type::INT64, stride) {
        origin_ = origin;
        perUnit_ = perUnit;
    }
    explicit SeriesValues(const std::uint64_t* first, std::ptrdiff_t stride = sizeof(std::uint64_t))
        : SeriesValues(first, Type::UINT64, stride) {}

    double At(std::size_t i) const {
        switch (type_) {
            case Type::INT64:
                return LoadInt64(i);
            case Type::UINT64:
                return Load<std::uint64_t>(i);
            case Type::UINT32:
                return Load<std::uint32_t>(i);
            case Type::UINT16:
                return Load<std::uint16_t>(i);
            case Type::INT8:
                return Load<std::int8_t>(i);
            case Type::UINT8:
                return Load<std::uint8_t>(i);
            case Type::FLOAT:
                return Load<float>(i);
            case Type::INT32:
                return Load<std::int32_t>(i);
            case Type::INT16:
                return Load<std::int16_t>(i);
            default:
                return Load<double>(i);
        }
    }
    // `n` numbers from number `begin` on: where they lie when they are packed doubles, or copied into `room`.
    const double* Read(std::size_t begin, std::size_t n, double* room) const {
        if (type_ == Type::DOUBLE && stride_ == sizeof(double))
            return static_cast<const double*>(first_) + begin;
        for (std::size_t i = 0; i < n; ++i) room[i] = At(begin + i);
        return room;
    }

  private:
    enum class Type { DOUBLE, FLOAT, INT32, INT16, UINT32, UINT16, INT8, UINT8, INT64, UINT64 };
    SeriesValues(const void* first, Type type, std::ptrdiff_t stride)
        : first_(first), stride_(stride), type_(type) {}

    template <class Number>
    double Load(std::size_t i) const {
        Number number;
        std::memcpy(&number, static_cast<const char*>(first_) + static_cast<std::ptrdiff_t>(i) * stride_,
                    sizeof number);
        return static_cast<double>(number);
    }
    double LoadInt64(std::size_t i) const {
        std::int64_t number;
        std::memcpy(&number, static_cast<const char*>(first_) + static_cast<std::ptrdiff_t>(i) * stride_,
                    sizeof number);
        if (number == std::numeric_limits<std::int64_t>::min())
            return std::numeric_limits<double>::quiet_NaN();
        std::int64_t difference;
        if (__builtin_sub_overflow(number, origin_, &difference))
            return (static_cast<double>(number) - static_cast<double>(origin_)) / perUnit_;
        return static_cast<double>(difference) / perUnit_;
    }

    const void* first_ = nullptr;
    std::ptrdiff_t stride_ = 0;
    std::int64_t origin_ = 0;
    double perUnit_ = 1;
    Type type_ = Type::DOUBLE;
};

// An increasing function that values go through before they are mapped linearly, such as a logarithm.
class SeriesTransform {
  public:
    virtual ~SeriesTransform() = default;
    // NaN for a value that has no place.
    virtual double At(double value) const = 0;
    // The same for `n` values, into `places`, which may be where they come from.
    virtual void Apply(const double* values, double* places, std::size_t n) const = 0;
    // At, with the end towards which places go in the stead of NaN: for bounds of many values.
    virtual double Bound(double value) const = 0;
};

// Consecutive points: those from `begin` to before `end` of two arrays.
struct SeriesStretch {
    SeriesValues x, y;
    std::size_t begin = 0;
    std::size_t end = 0;
    // What the points from 0 on cover, untransformed; may be null.
    SeriesIndex* index = nullptr;
    // Null where the values are drawn as they are.
    const SeriesTransform* xTransform = nullptr;
    const SeriesTransform* yTransform = nullptr;

    std::size_t Size() const { return end - begin; }
    // The coordinates of point `i` as they are drawn.
    double X(std::size_t i) const { return xTransform ? xTransform->At(x.At(i)) : x.At(i); }
    double Y(std::size_t i) const { return yTransform ? yTransform->At(y.At(i)) : y.At(i); }
    // `n` of them from point `from` on, where they lie or in `room`.
    const double* ReadX(std::size_t from, std::size_t n, double* room) const {
        return Read(x, xTransform, from, n, room);
    }
    const double* ReadY(std::size_t from, std::size_t n, double* room) const {
        return Read(y, yTransform, from, n, room);
    }

  private:
    static const double* Read(const SeriesValues& values, const SeriesTransform* transform, std::size_t from,
                              std::size_t n, double* room) {
        const double* const read = values.Read(from, n, room);
        if (!transform) return read;
        transform->Apply(read, room, n);
        return room;
    }
};

}  // namespace zel

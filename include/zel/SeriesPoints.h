// Where the numbers of a series lie.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

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

    double At(std::size_t i) const {
        switch (type_) {
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
    enum class Type { DOUBLE, FLOAT, INT32, INT16 };
    SeriesValues(const void* first, Type type, std::ptrdiff_t stride)
        : first_(first), stride_(stride), type_(type) {}

    template <class Number>
    double Load(std::size_t i) const {
        Number number;
        std::memcpy(&number, static_cast<const char*>(first_) + static_cast<std::ptrdiff_t>(i) * stride_,
                    sizeof number);
        return static_cast<double>(number);
    }

    const void* first_ = nullptr;
    std::ptrdiff_t stride_ = 0;
    Type type_ = Type::DOUBLE;
};

// Consecutive points: those from `begin` to before `end` of two arrays.
struct SeriesStretch {
    SeriesValues x, y;
    std::size_t begin = 0;
    std::size_t end = 0;
    // What the points from 0 on cover; may be null.
    SeriesIndex* index = nullptr;

    std::size_t Size() const { return end - begin; }
};

}  // namespace zel

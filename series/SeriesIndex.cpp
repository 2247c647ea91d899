#include "series/SeriesIndex.h"

#include <cmath>
#include <system_error>
#include <thread>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zel {
namespace {

constexpr std::size_t kAhead = 512;              // numbers that memory is asked for before they are needed
constexpr std::size_t kBlocksPerThread = 16384;  // fewer are done before a thread has begun

// No x smaller than the one before it, and none NaN.
bool IsSorted(const double* x, std::size_t n) {
    std::size_t i = 0;
    bool sorted = x[0] == x[0];
#ifdef __SSE2__
    __m128d inOrder = _mm_castsi128_pd(_mm_set1_epi32(-1));
    for (; i + 9 <= n; i += 8) {
        _mm_prefetch(reinterpret_cast<const char*>(x + i + kAhead), _MM_HINT_T0);
        for (std::size_t k = i; k < i + 8; k += 2)
            inOrder = _mm_and_pd(inOrder, _mm_cmple_pd(_mm_loadu_pd(x + k), _mm_loadu_pd(x + k + 1)));
    }
    for (; i + 3 <= n; i += 2)
        inOrder = _mm_and_pd(inOrder, _mm_cmple_pd(_mm_loadu_pd(x + i), _mm_loadu_pd(x + i + 1)));
    sorted = sorted && _mm_movemask_pd(inOrder) == 3;
#endif
    for (; i + 1 < n; ++i) sorted = sorted && x[i] <= x[i + 1];
    return sorted;
}

// Smallest and largest, and whether some are NaN.
struct Extremes {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    bool gaps = false;

    Extremes(const double* values, std::size_t n) {
        std::size_t i = 0;
#ifdef __SSE2__
        // The machine's minimum answers its second operand when one is NaN.
        __m128d lows = _mm_set1_pd(low), highs = _mm_set1_pd(high);
        __m128d lows2 = lows, highs2 = highs, unordered = _mm_setzero_pd();
        for (; i + 4 <= n; i += 4) {
            _mm_prefetch(reinterpret_cast<const char*>(values + i + kAhead), _MM_HINT_T0);
            const __m128d a = _mm_loadu_pd(values + i), b = _mm_loadu_pd(values + i + 2);
            lows = _mm_min_pd(a, lows);
            lows2 = _mm_min_pd(b, lows2);
            highs = _mm_max_pd(a, highs);
            highs2 = _mm_max_pd(b, highs2);
            unordered = _mm_or_pd(unordered, _mm_cmpunord_pd(a, b));
        }
        lows = _mm_min_pd(lows, lows2);
        highs = _mm_max_pd(highs, highs2);
        low = std::min(_mm_cvtsd_f64(lows), _mm_cvtsd_f64(_mm_unpackhi_pd(lows, lows)));
        high = std::max(_mm_cvtsd_f64(highs), _mm_cvtsd_f64(_mm_unpackhi_pd(highs, highs)));
        gaps = _mm_movemask_pd(unordered) != 0;
#endif
        for (; i < n; ++i) {
            low = values[i] < low ? values[i] : low;
            high = values[i] > high ? values[i] : high;
            gaps = gaps || values[i] != values[i];
        }
    }
};

SeriesSpan BlockAt(const SeriesValues& x, const SeriesValues& y, std::size_t block) {
    std::array<double, SeriesIndex::kBlock> xs, ys;
    const std::size_t begin = block * SeriesIndex::kBlock;
    return SpanOf(x.Read(begin, SeriesIndex::kBlock, xs.data()),
                  y.Read(begin, SeriesIndex::kBlock, ys.data()), SeriesIndex::kBlock);
}

// The first point, from `begin` to before `end`, that neither has the x nor the y of the one before it, both
// being finite; `end` when there is none.
std::size_t FirstSlanted(const SeriesValues& x, const SeriesValues& y, std::size_t begin, std::size_t end) {
    if (begin >= end) return end;
    double x0 = x.At(begin), y0 = y.At(begin);
    for (std::size_t i = begin + 1; i < end; ++i) {
        const double x1 = x.At(i), y1 = y.At(i);
        const bool moved = x1 != x0 && y1 != y0;
        if (moved && std::isfinite(x1 + y1) && std::isfinite(x0 + y0)) return i;
        x0 = x1;
        y0 = y1;
    }
    return end;
}

}  // namespace

SeriesSpan SpanOf(const double* x, const double* y, std::size_t n) {
    const Extremes ys(y, n);
    if (IsSorted(x, n)) return {x[0], x[n - 1], ys.low, ys.high, ys.gaps, true};
    const Extremes xs(x, n);
    return {xs.low, xs.high, ys.low, ys.high, xs.gaps || ys.gaps, false};
}

SeriesRange RangeOf(const double* values, std::size_t n) {
    const Extremes extremes(values, n);
    return {extremes.low, extremes.high};
}

bool IsStepped(const SeriesStretch& stretch) {
    return stretch.index ? stretch.index->IsStepped(stretch.x, stretch.y, stretch.begin, stretch.end)
                         : FirstSlanted(stretch.x, stretch.y, stretch.begin, stretch.end) == stretch.end;
}

void SeriesIndex::MakeBlocks(const SeriesValues& x, const SeriesValues& y, std::size_t first,
                             std::size_t last) {
    std::vector<SeriesSpan>& blocks = levels_[0];
    const auto make = [&](std::size_t begin, std::size_t end) {
        for (std::size_t block = begin; block < end; ++block) blocks[block] = BlockAt(x, y, block);
    };
    const std::size_t most = std::max(1U, std::thread::hardware_concurrency());
    const std::size_t parts = std::clamp<std::size_t>((last - first) / kBlocksPerThread, 1, most);
    const auto boundary = [&](std::size_t part) { return first + (last - first) * part / parts; };
    std::vector<std::jthread> helpers;
    std::size_t part = 1;
    try {
        for (; part < parts; ++part) helpers.emplace_back(make, boundary(part), boundary(part + 1));
    } catch (const std::system_error&) {
        make(boundary(part), last);  // no more threads are to be had
    }
    make(first, boundary(1));
}

void SeriesIndex::MakeParents(std::size_t level, std::size_t first, std::size_t last) {
    for (std::size_t parent = first; parent < last; ++parent) {
        SeriesSpan span = levels_[level - 1][parent * kFan];
        for (std::size_t i = 1; i < kFan; ++i) span.Append(levels_[level - 1][parent * kFan + i]);
        levels_[level][parent] = span;
    }
}

void SeriesIndex::Extend(const SeriesValues& x, const SeriesValues& y, std::size_t n) {
    if (levels_.empty()) levels_.emplace_back();
    std::size_t known = levels_[0].size();
    std::size_t full = n / kBlock;
    if (full <= known) return;
    levels_[0].resize(full);
    MakeBlocks(x, y, known, full);
    for (std::size_t level = 1; full >= kFan; ++level) {
        if (level == levels_.size()) levels_.emplace_back();
        known = levels_[level].size();
        full /= kFan;
        levels_[level].resize(full);
        MakeParents(level, known, full);
    }
}

void SeriesIndex::Update(const SeriesValues& x, const SeriesValues& y, std::size_t begin, std::size_t end) {
    if (levels_.empty() || begin >= end) return;
    stepped_ = std::min(stepped_, begin);
    std::size_t first = begin / kBlock, last = (end - 1) / kBlock + 1;
    last = std::min(last, levels_[0].size());
    if (first < last) MakeBlocks(x, y, first, last);
    for (std::size_t level = 1; level < levels_.size() && first < last; ++level) {
        first /= kFan;
        last = std::min((last - 1) / kFan + 1, levels_[level].size());
        MakeParents(level, first, last);
    }
}

bool SeriesIndex::IsStepped(const SeriesValues& x, const SeriesValues& y, std::size_t begin,
                            std::size_t end) {
    if (begin > stepped_) return FirstSlanted(x, y, begin, end) == end;
    // The search goes on where it stood: few series have steps only, and those are long.
    if (stepped_ < end) stepped_ = FirstSlanted(x, y, stepped_ > 0 ? stepped_ - 1 : 0, end);
    return stepped_ >= end;
}

int SeriesIndex::LevelAt(std::size_t at, std::size_t end) const {
    int level = -1;
    for (std::size_t next = 0; next < levels_.size(); ++next) {
        const std::size_t points = PointsOf(next);
        if (at % points != 0 || at + points > end || at / points >= levels_[next].size()) break;
        level = static_cast<int>(next);
    }
    return level;
}

std::size_t SeriesIndex::Bytes() const {
    std::size_t bytes = sizeof *this;
    for (const auto& level : levels_) bytes += level.capacity() * sizeof(SeriesSpan);
    return bytes;
}

}  // namespace zel

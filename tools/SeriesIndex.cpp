#include "tools/SeriesIndex.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zel {
namespace {

void IncludePoint(SeriesSpan& span, double x, double y) {
    span.xmin = x < span.xmin ? x : span.xmin;
    span.xmax = x > span.xmax ? x : span.xmax;
    span.ymin = y < span.ymin ? y : span.ymin;
    span.ymax = y > span.ymax ? y : span.ymax;
    span.gaps = span.gaps || x != x || y != y;
}

#ifdef __SSE2__

// Smallest and largest of pairs. The machine's minimum answers its second operand when one is NaN.
struct Extremes {
    __m128d low = _mm_set1_pd(std::numeric_limits<double>::infinity());
    __m128d high = _mm_set1_pd(-std::numeric_limits<double>::infinity());

    void Include(__m128d pair) {
        low = _mm_min_pd(pair, low);
        high = _mm_max_pd(pair, high);
    }
    void StoreIn(double& lowest, double& highest) const {
        lowest = std::min(_mm_cvtsd_f64(low), _mm_cvtsd_f64(_mm_unpackhi_pd(low, low)));
        highest = std::max(_mm_cvtsd_f64(high), _mm_cvtsd_f64(_mm_unpackhi_pd(high, high)));
    }
};

#endif

}  // namespace

SeriesSpan SpanOf(const double* x, const double* y, std::size_t n) {
    SeriesSpan span;
    std::size_t i = 0;
#ifdef __SSE2__
    Extremes xs, ys;
    __m128d unordered = _mm_setzero_pd();
    for (; i + 2 <= n; i += 2) {
        const __m128d px = _mm_loadu_pd(x + i);
        const __m128d py = _mm_loadu_pd(y + i);
        xs.Include(px);
        ys.Include(py);
        unordered = _mm_or_pd(unordered, _mm_cmpunord_pd(px, py));
    }
    xs.StoreIn(span.xmin, span.xmax);
    ys.StoreIn(span.ymin, span.ymax);
    span.gaps = _mm_movemask_pd(unordered) != 0;
#endif
    for (; i < n; ++i) IncludePoint(span, x[i], y[i]);
    return span;
}

void SeriesIndex::Extend(const double* x, const double* y, std::size_t n) {
    if (levels_.empty()) levels_.emplace_back();
    std::vector<SeriesSpan>& blocks = levels_[0];
    for (std::size_t begin = blocks.size() * kBlock; begin + kBlock <= n; begin += kBlock)
        blocks.push_back(SpanOf(x + begin, y + begin, kBlock));
    for (std::size_t level = 0; levels_[level].size() >= kFan; ++level) {
        if (level + 1 == levels_.size()) levels_.emplace_back();
        const std::vector<SeriesSpan>& below = levels_[level];
        std::vector<SeriesSpan>& spans = levels_[level + 1];
        for (std::size_t first = spans.size() * kFan; first + kFan <= below.size(); first += kFan) {
            SeriesSpan span;
            for (std::size_t i = first; i < first + kFan; ++i) span.Include(below[i]);
            spans.push_back(span);
        }
    }
}

}  // namespace zel

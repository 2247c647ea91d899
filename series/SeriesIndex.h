// What stretches of a long series cover.
#pragma once

#include <zel/SeriesPoints.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace zel {

// The box around consecutive points.
struct SeriesSpan {
    double xmin = std::numeric_limits<double>::infinity();
    double xmax = -std::numeric_limits<double>::infinity();
    double ymin = std::numeric_limits<double>::infinity();
    double ymax = -std::numeric_limits<double>::infinity();
    bool gaps = false;   // some coordinates are NaN; they are left out of the box
    bool sorted = true;  // no x is smaller than the one before it

    // Takes in the span of the points that follow.
    void Append(const SeriesSpan& next) {
        sorted = sorted && next.sorted && xmax <= next.xmin;
        xmin = std::min(xmin, next.xmin);
        xmax = std::max(xmax, next.xmax);
        ymin = std::min(ymin, next.ymin);
        ymax = std::max(ymax, next.ymax);
        gaps = gaps || next.gaps;
    }
    // Whether there are coordinates, and those that are no gaps are finite.
    bool HasFiniteBounds() const {
        constexpr double kMost = std::numeric_limits<double>::max();
        return xmin >= -kMost && xmax <= kMost && ymin >= -kMost && ymax <= kMost && xmin <= xmax &&
               ymin <= ymax;
    }
    // Whether all coordinates are finite.
    bool IsFinite() const { return !gaps && HasFiniteBounds(); }
};

// `n` is at least 1.
SeriesSpan SpanOf(const double* x, const double* y, std::size_t n);
struct SeriesRange {
    double low, high;
};
// Of numbers without NaN.
SeriesRange RangeOf(const double* values, std::size_t n);
// Whether all lines from point to point go along the axes.
bool IsStepped(const SeriesStretch& stretch);

// A pyramid of spans over blocks of points: a redraw looks at a few thousand of them, however many points
// there are. It takes 2.3 % of the memory of points that are pairs of doubles.
//
// Only full blocks have a span. Whoever changes points must Update them.
class SeriesIndex {
  public:
    static constexpr std::size_t kBlock = 128;  // points
    static constexpr std::size_t kFan = 8;      // spans under a span of the level above
    // Shorter series are drawn as fast without an index.
    static constexpr std::size_t kLeastPoints = 16384;

    // Takes in `n` points of which the first are those that it knows. Many points are divided between the
    // processor's cores; the result is the same for any number of them.
    void Extend(const SeriesValues& x, const SeriesValues& y, std::size_t n);
    // Points from `begin` to before `end`, all of them known, have changed.
    void Update(const SeriesValues& x, const SeriesValues& y, std::size_t begin, std::size_t end);

    // zel::IsStepped, for points that are known to it.
    bool IsStepped(const SeriesValues& x, const SeriesValues& y, std::size_t begin, std::size_t end);

    // The level of the largest span that begins with the point `at` and ends at `end` at the latest; -1 when
    // there is none. Level 0 is the finest.
    int LevelAt(std::size_t at, std::size_t end) const;
    const SeriesSpan& SpanAt(int level, std::size_t at) const {
        const auto l = static_cast<std::size_t>(level);
        return levels_[l][at / PointsOf(l)];
    }
    static constexpr std::size_t PointsOf(std::size_t level) { return kBlock << 3 * level; }
    std::size_t Bytes() const;

  private:
    void MakeBlocks(const SeriesValues& x, const SeriesValues& y, std::size_t first, std::size_t last);
    void MakeParents(std::size_t level, std::size_t first, std::size_t last);

    std::vector<std::vector<SeriesSpan>> levels_;  // the finest first
    // No line that ends before this point is slanted; the one that ends at it may be.
    std::size_t stepped_ = 0;
};

// What a span of untransformed values covers as it is drawn.
inline SeriesSpan Placed(SeriesSpan span, const SeriesStretch& stretch) {
    const auto place = [&span](const SeriesTransform* transform, double& low, double& high) {
        if (!transform || low > high) return;
        low = transform->Bound(low);
        high = transform->Bound(high);
        if (!std::isfinite(low) || !std::isfinite(high)) span.gaps = true;
    };
    place(stretch.xTransform, span.xmin, span.xmax);
    place(stretch.yTransform, span.ymin, span.ymax);
    return span;
}

// Walks over a stretch from its beginning to its end, in the largest pieces that will do.
//
// `whole(span, begin, end)` is asked for ever smaller pieces whether it can do with what a piece covers.
// Where it cannot even for a block, `each(span, begin, x, y, n)` gets that block's points. Spans and points
// are transformed as the stretch says.
template <class Whole, class Each>
void WalkSeries(const SeriesStretch& stretch, Whole whole, Each each) {
    std::array<double, SeriesIndex::kBlock> xs, ys;
    for (std::size_t at = stretch.begin; at < stretch.end;) {
        int level = stretch.index ? stretch.index->LevelAt(at, stretch.end) : -1;
        const bool known = level >= 0;
        for (; level >= 0; --level) {
            const std::size_t next = at + SeriesIndex::PointsOf(static_cast<std::size_t>(level));
            if (!whole(Placed(stretch.index->SpanAt(level, at), stretch), at, next)) continue;
            at = next;
            break;
        }
        if (level >= 0) continue;
        const std::size_t n = std::min(SeriesIndex::kBlock - at % SeriesIndex::kBlock, stretch.end - at);
        const double* const x = stretch.ReadX(at, n, xs.data());
        const double* const y = stretch.ReadY(at, n, ys.data());
        const SeriesSpan span = known ? Placed(stretch.index->SpanAt(0, at), stretch) : SpanOf(x, y, n);
        if (known || !whole(span, at, at + n)) each(span, at, x, y, n);
        at += n;
    }
}

}  // namespace zel

#include "graphs/SeriesFill.h"

#include "series/SeriesIndex.h"

#include <algorithm>
#include <cmath>

namespace zel {
namespace {

// The side on which each extension ends: 0 bottom, 1 left, 2 top, 3 right. A side is also the number of its
// first corner when the corners are counted clockwise from the lower left.
constexpr int kSideOfExtension[] = {0, 2, 1, 0, 3, 1, 0, 2, 0};

WorldPoint CornerOf(const WorldFrame& frame, int number) {
    return {number < 2 ? frame.xmin : frame.xmax, number == 0 || number == 3 ? frame.ymin : frame.ymax};
}

}  // namespace

WorldPoint ExtensionPoint(unsigned int code, const WorldFrame& frame, const WorldPoint& p) {
    switch (code) {
        case 1:
            return {p.x, frame.ymax};
        case 2:
            return {frame.xmin, p.y};
        case 3:
            return {p.x, frame.ymin};
        case 4:
            return {frame.xmax, p.y};
        case 5:
            return {frame.xmin, frame.ymax};
        case 6:
            return {frame.xmin, frame.ymin};
        case 7:
            return {frame.xmax, frame.ymax};
        case 8:
            return {frame.xmax, frame.ymin};
        default:
            return p;
    }
}

FillOutline::FillOutline(const WorldFrame& frame, unsigned int start, unsigned int end,
                         DeviceColumns* columns)
    : frame_(frame), start_(start), end_(end), columns_(columns) {}

void FillOutline::Add(const SeriesStretch& stretch) {
    const auto whole = [&](const SeriesSpan& span, std::size_t begin, std::size_t end) {
        if (!columns_ || !span.IsFinite()) return false;
        if (!open_ || !columns_->Contains(span.xmin)) {
            EndRun();
            columns_->Enter(span.xmin);
        }
        if (!columns_->Contains(span.xmax)) return false;
        Take({stretch.x.At(begin), stretch.y.At(begin)}, {stretch.x.At(end - 1), stretch.y.At(end - 1)},
             span.ymin, span.ymax);
        return true;
    };
    WalkSeries(stretch, whole,
               [this](const SeriesSpan&, std::size_t, const double* xs, const double* ys, std::size_t n) {
                   for (std::size_t i = 0; i < n; ++i)
                       if (std::isfinite(xs[i]) && std::isfinite(ys[i])) Take({xs[i], ys[i]});
               });
}

void FillOutline::Close() {
    EndRun();
    if (!any_) return;
    if (IsExtension(end_)) Corner(ExtensionPoint(end_, frame_, last_));
    if (IsExtension(start_) && IsExtension(end_)) {
        const int stop = kSideOfExtension[start_];
        for (int corner = kSideOfExtension[end_]; corner != stop; corner = (corner + 1) % 4)
            Corner(CornerOf(frame_, corner));
    }
    if (x.front() != x.back() || y.front() != y.back()) Corner({x.front(), y.front()});
}

void FillOutline::Take(const WorldPoint& p) {
    if (!columns_) {
        Begin(p);
        Corner(p);
        last_ = p;
        return;
    }
    if (!open_ || !columns_->Contains(p.x)) {
        EndRun();
        columns_->Enter(p.x);
    }
    Take(p, p, p.y, p.y);
}

void FillOutline::Take(const WorldPoint& first, const WorldPoint& last, double low, double high) {
    Begin(first);
    if (!open_) {
        first_ = first;
        low_ = low;
        high_ = high;
    }
    open_ = true;
    last_ = last;
    low_ = std::min(low_, low);
    high_ = std::max(high_, high);
}

void FillOutline::Begin(const WorldPoint& p) {
    if (!any_ && IsExtension(start_)) Corner(ExtensionPoint(start_, frame_, p));
    any_ = true;
}

// The extremes may stand anywhere within the column. From the one at its left to the other at its right the
// area is half covered, as it is by points that are spread evenly between the two.
void FillOutline::EndRun() {
    if (!open_) return;
    open_ = false;
    Corner(first_);
    if (high_ > std::max(first_.y, last_.y)) Corner({first_.x, high_});
    if (low_ < std::min(first_.y, last_.y)) Corner({last_.x, low_});
    if (last_.x != first_.x || last_.y != first_.y) Corner(last_);
}

}  // namespace zel

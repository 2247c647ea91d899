#include "series/ThinnedPath.h"

#include "series/SeriesIndex.h"

#include <algorithm>
#include <cmath>

namespace zel {

void ThinnedPath::Add(const SeriesStretch& stretch) {
    const auto whole = [&](const SeriesSpan& span, std::size_t begin, std::size_t end) {
        if (!columns_ || !span.IsFinite()) return false;
        if (!open_ || !columns_->Contains(span.xmin)) {
            EndColumn();
            columns_->Enter(span.xmin);
        }
        if (!columns_->Contains(span.xmax)) return false;
        Take({stretch.X(begin), stretch.Y(begin)}, {stretch.X(end - 1), stretch.Y(end - 1)}, span.ymin,
             span.ymax);
        return true;
    };
    WalkSeries(
        stretch, whole,
        [this](const SeriesSpan& span, std::size_t, const double* xs, const double* ys, std::size_t n) {
            if (columns_ && span.sorted && span.IsFinite()) {
                TakeSorted(xs, ys, n);
                return;
            }
            for (std::size_t i = 0; i < n; ++i) {
                if (std::isfinite(xs[i]) && std::isfinite(ys[i])) {
                    Take({xs[i], ys[i]});
                } else if (gaps_ == Gaps::BREAK) {
                    EndRun();
                }
            }
        });
}

void ThinnedPath::Finish() {
    EndRun();
}

void ThinnedPath::EndRun() {
    EndColumn();
    inRun_ = false;
}

// The end of each column is searched for.
void ThinnedPath::TakeSorted(const double* xs, const double* ys, std::size_t n) {
    for (std::size_t i = 0; i < n;) {
        if (!open_ || !columns_->Contains(xs[i])) {
            EndColumn();
            columns_->Enter(xs[i]);
        }
        const double* const next =
            std::partition_point(xs + i + 1, xs + n, [this](double at) { return columns_->Contains(at); });
        const auto end = static_cast<std::size_t>(next - xs);
        const SeriesRange range = RangeOf(ys + i, end - i);
        Take({xs[i], ys[i]}, {xs[end - 1], ys[end - 1]}, range.low, range.high);
        i = end;
    }
}

void ThinnedPath::Take(const WorldPoint& p) {
    if (columns_ && (!open_ || !columns_->Contains(p.x))) {
        EndColumn();
        columns_->Enter(p.x);
    }
    Take(p, p, p.y, p.y);
    if (!columns_) EndColumn();
}

void ThinnedPath::Take(const WorldPoint& first, const WorldPoint& last, double low, double high) {
    if (!any_) begin_ = first;
    any_ = true;
    if (!inRun_) runs.push_back(x.size());
    inRun_ = true;
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

// The extremes may stand anywhere within the column. From the one at its left to the other at its right the
// area is half covered, as it is by points that are spread evenly between the two.
void ThinnedPath::EndColumn() {
    if (!open_) return;
    open_ = false;
    Corner(first_);
    if (high_ > std::max(first_.y, last_.y)) Corner({first_.x, high_});
    if (low_ < std::min(first_.y, last_.y)) Corner({last_.x, low_});
    if (last_.x != first_.x || last_.y != first_.y) Corner(last_);
}

}  // namespace zel

#include "series/SeriesHit.h"

#include "series/FrameClip.h"
#include "series/SeriesIndex.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zel {
namespace {

// How far the place from which all is counted is from a line.
template <class Place>
double DistanceOf(const Place& a, const Place& b) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double length = dx * dx + dy * dy;
    const double nearest = length > 0 ? std::clamp(-(a.x * dx + a.y * dy) / length, 0.0, 1.0) : 0.0;
    return std::hypot(a.x + nearest * dx, a.y + nearest * dy);
}

}  // namespace

SeriesHit::Place SeriesHit::FromHere(double x, double y) const {
    return {frame_.XAt(x) - at_.cx, frame_.YAt(y) - at_.cy};
}

bool SeriesHit::Test(const SeriesStretch& stretch) {
    const double reach = std::max({symbols_, line_, 0}) + reach_;
    bool hit = false;
    // What is far from the place is passed over; the line to it and the line from it are looked at.
    const auto pass = [&](const SeriesSpan& span, std::size_t begin, std::size_t end) {
        if (hit) return true;
        if (!span.IsFinite()) return false;
        const Place low = FromHere(span.xmin, span.ymin), high = FromHere(span.xmax, span.ymax);
        const bool beside = std::min(low.x, high.x) > reach || std::max(low.x, high.x) < -reach ||
                            std::min(low.y, high.y) > reach || std::max(low.y, high.y) < -reach;
        if (!beside) return false;
        hit = TestPoint(before_ + begin - stretch.begin, stretch.X(begin), stretch.Y(begin));
        last_ = {stretch.X(end - 1), stretch.Y(end - 1)};
        return true;
    };
    WalkSeries(stretch, pass,
               [&](const SeriesSpan&, std::size_t begin, const double* x, const double* y, std::size_t n) {
                   const std::size_t number = before_ + begin - stretch.begin;
                   for (std::size_t i = 0; i < n && !hit; ++i) hit = TestPoint(number + i, x[i], y[i]);
               });
    before_ += stretch.Size();
    return hit;
}

bool SeriesHit::IsOnLine(WorldPoint from, WorldPoint to) const {
    return line_ >= 0 && ClipClosed(frame_, from.x, from.y, to.x, to.y) &&
           DistanceOf(FromHere(from.x, from.y), FromHere(to.x, to.y)) <= line_ + reach_;
}

bool SeriesHit::TestPoint(std::size_t number, double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) {
        joined_ = false;
        return false;
    }
    const Place here = FromHere(x, y);
    const double away = std::max(std::fabs(here.x), std::fabs(here.y));
    const int symbol = away <= symbols_ + reach_ && frame_.Contains(x, y) ? symbolAt_(number) : -1;
    const bool onSymbol = symbol >= 0 && away <= symbol + reach_;
    const bool onLine = joined_ && IsOnLine(last_, {x, y});
    last_ = {x, y};
    joined_ = true;
    return onSymbol || onLine;
}

}  // namespace zel

#include "series/FrameClip.h"

#include <algorithm>
#include <cmath>

namespace zel {
namespace {

constexpr double kRounding = 1e-12;  // of the range

// What is left of a line between its ends, as shares of its length.
struct Part {
    double from = 0;
    double to = 1;

    // Keeps what lies between two limits along one axis; false when nothing does.
    bool Keep(double start, double way, double low, double high) {
        if (way == 0) return start >= low && start <= high;
        const double a = (low - start) / way, b = (high - start) / way;
        from = std::max(from, std::min(a, b));
        to = std::min(to, std::max(a, b));
        return from <= to;
    }
};

double Snapped(double value, double low, double high, double slack) {
    if (std::fabs(value - low) <= slack) return low;
    if (std::fabs(value - high) <= slack) return high;
    return value;
}

}  // namespace

bool ClipClosed(const WorldFrame& frame, double& x1, double& y1, double& x2, double& y2) {
    // The difference of two values near the end of the double range is not finite; a quarter of it is.
    const double scale = std::isfinite(x2 - x1) && std::isfinite(y2 - y1) ? 1 : 0.25;
    const double left = frame.Left(), right = frame.Right(), bottom = frame.Bottom(), top = frame.Top();
    if (!(left < right && bottom < top)) return false;  // nothing can be mapped
    const FrameSlack slack(frame);
    for (double* x : {&x1, &x2}) *x = Snapped(*x, left, right, slack.x);
    for (double* y : {&y1, &y2}) *y = Snapped(*y, bottom, top, slack.y);
    const double x = x1 * scale, y = y1 * scale, dx = x2 * scale - x, dy = y2 * scale - y;
    Part part;
    if (!part.Keep(x, dx, left * scale, right * scale) || !part.Keep(y, dy, bottom * scale, top * scale))
        return false;
    const auto at = [](double a, double b, double share, double low, double high) {
        return std::clamp((1 - share) * a + share * b, low, high);
    };
    const double ax = x1, ay = y1, bx = x2, by = y2;
    if (part.from > 0) {
        x1 = at(ax, bx, part.from, left, right);
        y1 = at(ay, by, part.from, bottom, top);
    }
    if (part.to < 1) {
        x2 = at(ax, bx, part.to, left, right);
        y2 = at(ay, by, part.to, bottom, top);
    }
    return true;
}

FrameSlack::FrameSlack(const WorldFrame& frame)
    : x(frame.exact ? kRounding * std::fabs(frame.xmax - frame.xmin) : 0),
      y(frame.exact ? kRounding * std::fabs(frame.ymax - frame.ymin) : 0) {}

}  // namespace zel

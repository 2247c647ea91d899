// The world range of a graph and where it lies on the surface.
#pragma once

#include <zel/platform/Geometry.h>

#include <algorithm>
#include <cmath>

namespace zel {

// Where `v` lies on a line that begins at `start`, is `length` long and shows the range from `min` to `max`.
// Every place along a linear axis comes from here. A range of width 0 gives NaN or an infinity.
constexpr double PlaceAlong(double v, double min, double max, double start, double length) {
    return start + (v - min) / (max - min) * length;
}

}  // namespace zel

// Linear map from graph (world) coordinates to logical ones. A range of width 0 gives NaN or an infinity,
// which becomes 0 or an end of the integer range.
struct WorldFrame {
    double xmin = 0;
    double xmax = 0;
    double ymin = 0;
    double ymax = 0;
    CPoint lower;  // logical point of (xmin, ymin)
    CPoint upper;  // logical point of (xmax, ymax)
    // Exact rules: the range may run backwards, and a value beyond a limit by no more than a rounding is on
    // it.
    bool exact = false;

    // Each coordinate is truncated towards zero.
    CPoint ToLogical(double x, double y) const { return {zel::Truncate(XAt(x)), zel::Truncate(YAt(y))}; }
    // One logical coordinate of a value, not truncated.
    double XAt(double x) const {
        return zel::PlaceAlong(x, xmin, xmax, lower.x, static_cast<double>(upper.x) - lower.x);
    }
    double YAt(double y) const {
        return zel::PlaceAlong(y, ymin, ymax, lower.y, static_cast<double>(upper.y) - lower.y);
    }
    // ToLogical for `n` points that the frame contains, several at once. Its ranges are not empty.
    void ToLogicalInside(const double* x, const double* y, std::size_t n, CPoint* points) const {
        const double left = xmin, right = xmax, bottom = ymin, top = ymax;
        const double width = static_cast<double>(upper.x) - lower.x;
        const double height = static_cast<double>(upper.y) - lower.y;
        for (std::size_t i = 0; i < n; ++i) {
            points[i] = {static_cast<LONG>(zel::PlaceAlong(x[i], left, right, lower.x, width)),
                         static_cast<LONG>(zel::PlaceAlong(y[i], bottom, top, lower.y, height))};
        }
    }
    // The range in ascending order; empty for a backward one with classic rules.
    double Left() const { return exact ? std::min(xmin, xmax) : xmin; }
    double Right() const { return exact ? std::max(xmin, xmax) : xmax; }
    double Bottom() const { return exact ? std::min(ymin, ymax) : ymin; }
    double Top() const { return exact ? std::max(ymin, ymax) : ymax; }
    // Limits included.
    bool Contains(double x, double y) const {
        const double dx = exact ? kRounding * std::fabs(xmax - xmin) : 0;
        const double dy = exact ? kRounding * std::fabs(ymax - ymin) : 0;
        return x >= Left() - dx && x <= Right() + dx && y >= Bottom() - dy && y <= Top() + dy;
    }
    // Limits excluded.
    bool ContainsStrictly(double x, double y) const {
        return x > Left() && x < Right() && y > Bottom() && y < Top();
    }

  private:
    static constexpr double kRounding = 1e-12;  // of the range
};

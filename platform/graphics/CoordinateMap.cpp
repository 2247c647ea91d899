#include <zel/platform/CoordinateMap.h>

#include <cmath>
#include <cstdlib>

namespace zel {
namespace {

// value * numerator / denominator + offset, halves towards plus infinity.
LONG Map(LONG value, LONG origin, LONG numerator, LONG denominator, LONG offset) {
    if (denominator == 0) return offset;
    std::int64_t product = (static_cast<std::int64_t>(value) - origin) * numerator;
    std::int64_t divisor = denominator;
    if (divisor < 0) {
        product = -product;
        divisor = -divisor;
    }
    // floor((2 * product + divisor) / (2 * divisor)) without doubling the product.
    std::int64_t quotient = product / divisor;
    std::int64_t rest = product % divisor;
    if (rest < 0) {
        rest += divisor;
        --quotient;
    }
    if (rest * 2 >= divisor) ++quotient;
    return Saturate(quotient + offset);
}

}  // namespace

CPoint CoordinateMap::Scaled(const CPoint& p) const {
    return {Map(p.x, windowOrigin.x, viewportExtent.cx, windowExtent.cx, viewportOrigin.x),
            Map(p.y, windowOrigin.y, viewportExtent.cy, windowExtent.cy, viewportOrigin.y)};
}

CPoint CoordinateMap::ToLogical(const CPoint& p) const {
    if (IsIdentity()) return p;
    return {Map(p.x, viewportOrigin.x, windowExtent.cx, viewportExtent.cx, windowOrigin.x),
            Map(p.y, viewportOrigin.y, windowExtent.cy, viewportExtent.cy, windowOrigin.y)};
}

CSize CoordinateMap::ToDevice(const CSize& s) const {
    return {MulDiv(s.cx, Magnitude(viewportExtent.cx), Magnitude(windowExtent.cx)),
            MulDiv(s.cy, Magnitude(viewportExtent.cy), Magnitude(windowExtent.cy))};
}

CSize CoordinateMap::ToLogical(const CSize& s) const {
    return {MulDiv(s.cx, Magnitude(windowExtent.cx), Magnitude(viewportExtent.cx)),
            MulDiv(s.cy, Magnitude(windowExtent.cy), Magnitude(viewportExtent.cy))};
}

double CoordinateMap::ScaleX() const {
    return windowExtent.cx == 0 ? 1 : std::fabs(static_cast<double>(viewportExtent.cx) / windowExtent.cx);
}

double CoordinateMap::ScaleY() const {
    return windowExtent.cy == 0 ? 1 : std::fabs(static_cast<double>(viewportExtent.cy) / windowExtent.cy);
}

}  // namespace zel

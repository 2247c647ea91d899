#include "backends/widgets/WindowDevice.h"

#include <algorithm>

namespace zel::widgets {

bool WindowDevice::Fit(const CSize& size, double unitsPerInch) {
    const CSize pixels(std::max<LONG>(size.cx, 1), std::max<LONG>(size.cy, 1));
    if (pixels == Size() && unitsPerInch == unitsPerInch_) return false;
    unitsPerInch_ = unitsPerInch;
    image_ = std::make_unique<qt::ImageDevice>(pixels.cx, pixels.cy, unitsPerInch, 0,
                                               qt::ImageDevice::Grid::PIXELS);
    return true;
}

// The box of the points, as far as half a pen and an antialiased edge reach.
void WindowDevice::Drawn(const GraphicsState& state, std::span<const CPoint> points) {
    if (points.empty()) {
        changed_(CRect(CPoint(), Size()));
        return;
    }
    CRect box(INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN);
    for (const CPoint& point : points) {
        const CPoint at = state.map.ToDevice(point);
        box = CRect(std::min(box.left, at.x), std::min(box.top, at.y), std::max(box.right, at.x),
                    std::max(box.bottom, at.y));
    }
    const int reach = Truncate(state.pen.lopnWidth.x * state.map.ScaleX() / 2) + 2;
    box.InflateRect(reach, reach);
    changed_(box);
}

}  // namespace zel::widgets

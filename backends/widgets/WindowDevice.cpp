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
void WindowDevice::Changed(const GraphicsState& state, std::span<const CPoint> points) {
    if (points.empty()) return;
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

void WindowDevice::Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) {
    image_->Polyline(state, points, count);
    Changed(state, {points, count});
}

void WindowDevice::Polygons(const GraphicsState& state, std::span<const CPoint> points,
                            std::span<const int> counts) {
    image_->Polygons(state, points, counts);
    Changed(state, points);
}

void WindowDevice::FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                            DWORD operation) {
    image_->FillRect(state, rect, brush, operation);
    const CPoint corners[] = {rect.TopLeft(), rect.BottomRight()};
    Changed(state, corners);
}

void WindowDevice::Ellipse(const GraphicsState& state, const CRect& rect) {
    image_->Ellipse(state, rect);
    const CPoint corners[] = {rect.TopLeft(), rect.BottomRight()};
    Changed(state, corners);
}

// Where rotated text lies is the font's business: everything may have changed.
void WindowDevice::DrawText(const GraphicsState& state, std::span<const TextSpan> spans) {
    image_->DrawText(state, spans);
    changed_(CRect(CPoint(), Size()));
}

}  // namespace zel::widgets

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

void WindowDevice::Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) {
    if (places.empty()) return;
    image_->Ellipses(state, places, box);
    CPoint corners[] = {places[0], places[0]};
    for (const CPoint& place : places) {
        corners[0] = {std::min(corners[0].x, place.x), std::min(corners[0].y, place.y)};
        corners[1] = {std::max(corners[1].x, place.x), std::max(corners[1].y, place.y)};
    }
    corners[0] += CSize(std::min(box.left, box.right), std::min(box.top, box.bottom));
    corners[1] += CSize(std::max(box.left, box.right), std::max(box.top, box.bottom));
    Changed(state, corners);
}

void WindowDevice::StrokeArc(const GraphicsState& state, const EllipticArc& arc) {
    image_->StrokeArc(state, arc);
    const CPoint corners[] = {{Truncate(arc.cx - arc.rx - 1), Truncate(arc.cy - arc.ry - 1)},
                              {Truncate(arc.cx + arc.rx + 1), Truncate(arc.cy + arc.ry + 1)}};
    Changed(state, corners);
}

// Where rotated text lies is the font's business: everything may have changed.
void WindowDevice::DrawText(const GraphicsState& state, std::span<const TextSpan> spans) {
    image_->DrawText(state, spans);
    changed_(CRect(CPoint(), Size()));
}

}  // namespace zel::widgets

#include "charts/PixelGrid.h"

#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>

namespace zel {
namespace {

// Device units to a pixel. Paper has finer units than pictures need.
double UnitsPerPixel(const CDC& dc) {
    constexpr int kFinestScreen = 600, kPaper = 300;
    const int column = dc.CurveColumn(), perInch = dc.GetDeviceCaps(LOGPIXELSX);
    if (column > 1 || perInch <= kFinestScreen) return std::max(column, 1);
    return std::max(1.0, static_cast<double>(perInch) / kPaper);
}

// Pixels along one axis: device units from `low` to `high` and what of them can be seen.
struct Along {
    double first = 0;  // the first pixel, counted from device unit 0
    int count = 0;
    double unitsPerPixel = 1;

    Along(double low, double high, double seenLow, double seenHigh, double units) : unitsPerPixel(units) {
        constexpr double kMost = 8192;
        const auto pixel = [this](double unit) { return std::floor(unit / unitsPerPixel); };
        low = std::max(low, seenLow);
        high = std::min(high, seenHigh);
        if (!(low < high)) return;
        unitsPerPixel *= std::max(1.0, std::ceil((high - low) / unitsPerPixel / kMost));
        first = pixel(low);
        count = static_cast<int>(std::max(1.0, pixel(high) - first));
    }
    LONG Begin() const { return Truncate(first * unitsPerPixel); }
    LONG End() const { return Truncate((first + count) * unitsPerPixel); }
};

}  // namespace

PixelGrid::PixelGrid(CDC& dc, const WorldFrame& frame, double x1, double y1, double x2, double y2) : dc_(dc) {
    const auto [left, right] = std::minmax({x1, x2});
    const auto [bottom, top] = std::minmax({y1, y2});
    const CoordinateMap map = StateOf(dc.GetSafeHdc()).map;
    const CPoint a = map.ToDevice(frame.ToLogical(std::max(left, frame.xmin), std::max(bottom, frame.ymin)));
    const CPoint b = map.ToDevice(frame.ToLogical(std::min(right, frame.xmax), std::min(top, frame.ymax)));
    if (!(left < frame.xmax && right > frame.xmin && bottom < frame.ymax && top > frame.ymin)) return;
    CRect seen;
    dc.GetClipBox(&seen);
    seen = map.ToDevice(seen);
    seen.NormalizeRect();
    // Devices without a surface know no clip box.
    if (seen.IsRectEmpty()) seen = CRect(INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX);
    const double units = UnitsPerPixel(dc);
    const Along x(std::min(a.x, b.x), std::max(a.x, b.x), seen.left, seen.right, units);
    const Along y(std::min(a.y, b.y), std::max(a.y, b.y), seen.top, seen.bottom, units);
    width_ = x.count;
    height_ = y.count;
    place_ = map.ToLogical(CRect(x.Begin(), y.Begin(), x.End(), y.End()));
    // Device places of the frame's corners give the map from world coordinates to pixels.
    const CPoint lower = map.ToDevice(frame.lower), upper = map.ToDevice(frame.upper);
    perX_ = (static_cast<double>(upper.x) - lower.x) / (frame.xmax - frame.xmin) / x.unitsPerPixel;
    perY_ = (static_cast<double>(upper.y) - lower.y) / (frame.ymax - frame.ymin) / y.unitsPerPixel;
    if (perX_ == 0 || perY_ == 0) width_ = 0;
    fromX_ = frame.xmin + (x.first - lower.x / x.unitsPerPixel) / perX_;
    fromY_ = frame.ymin + (y.first - lower.y / y.unitsPerPixel) / perY_;
}

void PixelGrid::Draw(const std::vector<std::uint32_t>& colors) const {
    if (!IsEmpty()) dc_.DrawPicture(place_, {colors.data(), width_, height_});
}

}  // namespace zel

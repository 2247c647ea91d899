#include <zel/platform/GraphicsDevice.h>

#include <cmath>
#include <cstdlib>
#include <numbers>

namespace zel {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

// An ellipse in device units, y downwards.
struct DeviceEllipse {
    double cx, cy, rx, ry;

    DeviceEllipse(double x, double y, double radiusX, double radiusY)
        : cx(x), cy(y), rx(radiusX), ry(radiusY) {}
    explicit DeviceEllipse(const CRect& box)
        : cx((static_cast<double>(box.left) + box.right) / 2),
          cy((static_cast<double>(box.top) + box.bottom) / 2),
          rx(std::fabs(static_cast<double>(box.right) - box.left) / 2),
          ry(std::fabs(static_cast<double>(box.bottom) - box.top) / 2) {}

    CPoint At(double angle) const {
        return {Truncate(std::round(cx + rx * std::cos(angle))),
                Truncate(std::round(cy - ry * std::sin(angle)))};
    }
    // The parameter of the point in the direction of `p`.
    double Towards(const CPoint& p) const {
        return std::atan2((cy - p.y) * std::max(rx, 0.5), (p.x - cx) * std::max(ry, 0.5));
    }
    // As many steps as keep the chords within a quarter of a unit of the curve.
    int Steps(double sweep) const {
        const double radius = std::max({rx, ry, 1.0});
        const double step = 2 * std::acos(std::max(0.0, 1 - 0.25 / radius));
        return static_cast<int>(std::clamp(std::ceil(std::fabs(sweep) / step), 8.0, 4096.0));
    }
    void Append(std::vector<CPoint>& points, double begin, double sweep) const {
        const int steps = Steps(sweep);
        for (int i = 0; i <= steps; ++i) points.push_back(At(begin + sweep * i / steps));
    }
};

// The state for a primitive whose points are in device units already. Logical units may be far coarser than
// the device, so what is computed for the device does not go back to them.
GraphicsState InDeviceUnits(const GraphicsState& state) {
    GraphicsState device = state;
    device.map = CoordinateMap();
    LONG& width = device.pen.lopnWidth.x;
    if (width != 0) width = std::max<LONG>(1, Truncate(std::fabs(width) * state.map.ScaleX() + 0.5));
    return device;
}

// Thin outlines need two units each way; wide ones reach over the box by themselves.
bool HasRoom(const GraphicsState& device, const CRect& box) {
    const int least = device.pen.lopnWidth.x > 1 ? 1 : 2;
    return box.Width() >= least && box.Height() >= least;
}

CRect DeviceBox(const GraphicsState& state, const CRect& rect) {
    CRect box = state.map.ToDevice(rect);
    box.NormalizeRect();
    return box;
}

void OneRing(GraphicsDevice& device, const GraphicsState& inDeviceUnits, const std::vector<CPoint>& points) {
    const int count = static_cast<int>(points.size());
    device.Polygons(inDeviceUnits, points, std::span(&count, 1));
}

}  // namespace

GraphicsDevice::~GraphicsDevice() = default;

template <class Interface>
void BasicDevice<Interface>::FillRects(const GraphicsState& state, std::span<const CRect> rects,
                                       const LOGBRUSH& brush) {
    for (const CRect& rect : rects) this->FillRect(state, rect, brush, PATCOPY);
}

template <class Interface>
void BasicDevice<Interface>::DrawPicture(const GraphicsState& state, const CRect& rect,
                                         const PictureView& picture) {
    if (picture.width < 1 || picture.height < 1) return;
    const CRect box = DeviceBox(state, rect);
    const GraphicsState device = InDeviceUnits(state);
    const auto at = [](LONG from, LONG to, int i, int n) {
        return from + static_cast<LONG>((static_cast<std::int64_t>(to) - from) * i / n);
    };
    for (int y = 0; y < picture.height; ++y) {
        const LONG top = at(box.top, box.bottom, y, picture.height),
                   bottom = at(box.top, box.bottom, y + 1, picture.height);
        if (top == bottom) continue;
        for (int x = 0; x < picture.width;) {
            const int begin = x;
            const std::uint32_t color = picture.At(x, y);
            while (x < picture.width && picture.At(x, y) == color) ++x;
            if (color >> 24 == 0) continue;
            const CRect run(at(box.left, box.right, begin, picture.width), top,
                            at(box.left, box.right, x, picture.width), bottom);
            const auto channel = [color](int shift) { return static_cast<int>(color >> shift & 0xFF); };
            const LOGBRUSH brush{BS_SOLID, RGB(channel(16), channel(8), channel(0)), 0,
                                 static_cast<BYTE>(255 - channel(24))};
            if (!run.IsRectEmpty()) this->FillRect(device, run, brush, PATCOPY);
        }
    }
}

template <class Interface>
void BasicDevice<Interface>::Rectangle(const GraphicsState& state, const CRect& rect) {
    const CRect box = DeviceBox(state, rect);
    const GraphicsState device = InDeviceUnits(state);
    if (!HasRoom(device, box)) return;
    OneRing(*this, device,
            {box.TopLeft(),
             {box.right - 1, box.top},
             {box.right - 1, box.bottom - 1},
             {box.left, box.bottom - 1}});
}

template <class Interface>
void BasicDevice<Interface>::RoundRect(const GraphicsState& state, const CRect& rect, const CSize& corner) {
    const CRect box = DeviceBox(state, rect);
    const GraphicsState device = InDeviceUnits(state);
    if (!HasRoom(device, box)) return;
    const CSize size = state.map.ToDevice(corner);
    const int w = std::min(Magnitude(size.cx), box.Width());
    const int h = std::min(Magnitude(size.cy), box.Height());
    const int right = box.right - 1;
    const int bottom = box.bottom - 1;
    std::vector<CPoint> points;
    constexpr double kQuarter = kTurn / 4;
    DeviceEllipse(CRect{right - w, box.top, right, box.top + h}).Append(points, 0, kQuarter);
    DeviceEllipse(CRect{box.left, box.top, box.left + w, box.top + h}).Append(points, kQuarter, kQuarter);
    DeviceEllipse(CRect{box.left, bottom - h, box.left + w, bottom}).Append(points, 2 * kQuarter, kQuarter);
    DeviceEllipse(CRect{right - w, bottom - h, right, bottom}).Append(points, 3 * kQuarter, kQuarter);
    OneRing(*this, device, points);
}

template <class Interface>
void BasicDevice<Interface>::Ellipse(const GraphicsState& state, const CRect& rect) {
    CRect box = DeviceBox(state, rect);
    const GraphicsState device = InDeviceUnits(state);
    if (!HasRoom(device, box)) return;
    box.right -= 1;
    box.bottom -= 1;
    std::vector<CPoint> points;
    DeviceEllipse(box).Append(points, 0, kTurn);
    points.pop_back();
    OneRing(*this, device, points);
}

template <class Interface>
void BasicDevice<Interface>::Arc(const GraphicsState& state, const CRect& rect, const CPoint& start,
                                 const CPoint& end, ArcKind kind) {
    CRect box = DeviceBox(state, rect);
    const GraphicsState device = InDeviceUnits(state);
    if (!HasRoom(device, box)) return;
    box.right -= 1;
    box.bottom -= 1;
    const DeviceEllipse ellipse(box);
    double begin = ellipse.Towards(state.map.ToDevice(start));
    double finish = ellipse.Towards(state.map.ToDevice(end));
    if (state.arcDirection == AD_CLOCKWISE) std::swap(begin, finish);
    double sweep = finish - begin;
    while (sweep <= 1e-12) sweep += kTurn;
    if (kind == ArcKind::ARC) {
        StrokeArc(device, {ellipse.cx, ellipse.cy, ellipse.rx, ellipse.ry, begin, sweep});
        return;
    }
    std::vector<CPoint> points;
    ellipse.Append(points, begin, sweep);
    if (kind == ArcKind::PIE)
        points.push_back({Truncate(std::round(ellipse.cx)), Truncate(std::round(ellipse.cy))});
    OneRing(*this, device, points);
}

template <class Interface>
void BasicDevice<Interface>::StrokeArc(const GraphicsState& state, const EllipticArc& arc) {
    std::vector<CPoint> points;
    DeviceEllipse{arc.cx, arc.cy, arc.rx, arc.ry}.Append(points, arc.begin, arc.sweep);
    this->Polyline(state, points.data(), points.size());
}

template <class Interface>
void BasicDevice<Interface>::SetPixel(const GraphicsState& state, const CPoint& point, COLORREF color) {
    const CPoint at = state.map.ToDevice(point);
    const CRect pixel(at.x, at.y, Add(at.x, 1), Add(at.y, 1));
    this->FillRect(InDeviceUnits(state), pixel, {BS_SOLID, color, 0}, PATCOPY);
}

template <class Interface>
void BasicDevice<Interface>::FillRegion(const GraphicsState& state, const Region& region,
                                        const LOGBRUSH& brush) {
    for (const CRect& rect : region.Rects()) this->FillRect(state, rect, brush, PATCOPY);
}

template <class Interface>
std::vector<int> BasicDevice<Interface>::PrefixExtents(const GraphicsState& state, std::string_view text,
                                                       std::span<const std::size_t> ends) {
    std::vector<int> extents;
    extents.reserve(ends.size());
    for (const std::size_t end : ends) extents.push_back(this->TextExtent(state, text.substr(0, end)).cx);
    return extents;
}

template <class Interface>
COLORREF BasicDevice<Interface>::GetPixel(const CPoint&) {
    return CLR_INVALID;
}
template <class Interface>
int BasicDevice<Interface>::CurveColumn(const GraphicsState&) const {
    return 0;
}
template <class Interface>
void BasicDevice<Interface>::Ellipses(const GraphicsState& state, std::span<const CPoint> places,
                                      const CRect& box) {
    for (const CPoint& place : places) Ellipse(state, box + place);
}

template <class Interface>
void BasicDevice<Interface>::Marks(const GraphicsState& state, std::span<const CPoint> places, const CRect&,
                                   const MarkPainter& paint) {
    const CPoint origin = state.map.ToDevice(CPoint(0, 0));
    for (const CPoint& place : places) paint(*this, state.map.ToDevice(place) - origin, MarkClip::KEPT);
}

template <class Interface>
MarkPainter BasicDevice<Interface>::EllipsePainter(const GraphicsState& state, const CRect& box) {
    return [&state, box](GraphicsDevice& device, const CSize& move, MarkClip clip) {
        GraphicsState moved = state;
        moved.map.viewportOrigin = state.map.viewportOrigin + move;
        if (clip == MarkClip::NONE) moved.clip.reset();
        device.Ellipse(moved, box);
    };
}

template <class Interface>
void BasicDevice<Interface>::BeginCurve() {}
template <class Interface>
void BasicDevice<Interface>::EndCurve() {}

template <class Interface>
void BasicDevice<Interface>::Flush() {}

template class BasicDevice<GraphicsDevice>;
template class BasicDevice<DocumentDevice>;

}  // namespace zel

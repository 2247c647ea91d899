#include "platform/graphics/Context.h"

#include <zel/platform/Platform.h>

#include <cstdlib>
#include <utility>

ZelContextHandle::ZelContextHandle(zel::GraphicsDevice& borrowed) : device(&borrowed) {
    SelectDefaults();
}

ZelContextHandle::ZelContextHandle(std::unique_ptr<zel::GraphicsDevice> given)
    : device(given.get()), owned(std::move(given)) {
    SelectDefaults();
}

void ZelContextHandle::SelectDefaults() {
    now.pen = reinterpret_cast<HPEN>(GetStockObject(BLACK_PEN));
    now.brush = reinterpret_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    now.font = reinterpret_cast<HFONT>(GetStockObject(SYSTEM_FONT));
    zel::GetPen(now.pen, now.graphics.pen);
    zel::GetBrush(now.brush, now.graphics.brush);
    zel::GetFont(now.font, now.graphics.font);
}

void ZelContextHandle::BeginLines() {
    FlushLines();
    linePen = now.graphics.pen;
    lines.push_back(now.position);
}

void ZelContextHandle::MoveTo(const CPoint& to) {
    if (!(to == now.position)) FlushLines();
    now.position = to;
}

void ZelContextHandle::PolylineTo(const POINT* points, std::size_t count) {
    while (count > 0) {
        LineTo(points[0]);  // begins or splits the run where needed
        const std::size_t room = std::min(count - 1, kMostGathered - std::min(kMostGathered, lines.size()));
        lines.insert(lines.end(), points + 1, points + 1 + room);
        now.position = lines.back();
        points += room + 1;
        count -= room + 1;
    }
}

void ZelContextHandle::FlushLines() {
    if (lines.empty()) return;
    std::swap(now.graphics.pen, linePen);
    device->Polyline(now.graphics, lines.data(), lines.size());
    std::swap(now.graphics.pen, linePen);
    lines.clear();
}

CRect ZelContextHandle::Surface() const {
    const CRect surface(0, 0, device->Caps(HORZRES), device->Caps(VERTRES));
    // A recorder does not know how large it will be played.
    constexpr LONG kFar = 0x3FFFFFFF;
    return surface.IsRectEmpty() ? CRect(-kFar, -kFar, kFar, kFar) : surface;
}

zel::Region ZelContextHandle::ClipOrSurface() const {
    return now.graphics.clip ? *now.graphics.clip : zel::Region(Surface());
}

namespace zel {
HDC CreateDeviceContext(GraphicsDevice& device) {
    return new ZelContextHandle(device);
}
HDC CreateDeviceContext(std::unique_ptr<GraphicsDevice> device) {
    return new ZelContextHandle(std::move(device));
}
GraphicsDevice& DeviceOf(HDC dc) {
    return dc->Draw();
}
const GraphicsState& StateOf(HDC dc) {
    return dc->now.graphics;
}
int CurveColumnOf(HDC dc) {
    return dc->device->CurveColumn(dc->now.graphics);
}
namespace {

// Another device, and another place on it, for a while.
class Moved {
  public:
    Moved(HDC dc, GraphicsDevice& target, const CSize& move, MarkClip clip)
        : dc_(dc), device_(dc->device), settings_(dc->now) {
        dc_->FlushLines();
        dc_->device = &target;
        CoordinateMap& map = dc_->now.graphics.map;
        map.viewportOrigin = map.viewportOrigin + move;
        if (clip == MarkClip::NONE) dc_->now.graphics.clip.reset();
    }
    ~Moved() {
        dc_->FlushLines();
        dc_->device = device_;
        dc_->now = settings_;
    }
    Moved(const Moved&) = delete;
    Moved& operator=(const Moved&) = delete;

  private:
    HDC dc_;
    GraphicsDevice* device_;
    ZelContextHandle::Settings settings_;
};

}  // namespace

void DrawMarks(HDC dc, std::span<const CPoint> places, const CRect& box, const std::function<void()>& plot) {
    const auto paint = [&](GraphicsDevice& target, const CSize& move, MarkClip clip) {
        const Moved moved(dc, target, move, clip);
        plot();
    };
    const GraphicsState state = StateOf(dc);
    dc->Draw().Marks(state, places, box, paint);
}
void FillRects(HDC dc, std::span<const CRect> rects, HBRUSH brush) {
    LOGBRUSH record = dc->now.graphics.brush;
    if (brush && !GetBrush(brush, record)) return;
    dc->Draw().FillRects(dc->now.graphics, rects, record);
}
void DrawPicture(HDC dc, const CRect& rect, const PictureView& picture) {
    dc->Draw().DrawPicture(dc->now.graphics, rect, picture);
}
void FlushContext(HDC dc) {
    dc->Draw().Flush();
}
}  // namespace zel

HDC CreateCompatibleDC(HDC) {
    return zel::CreateDeviceContext(zel::Platform::Get().CreateScreenCompatibleDevice());
}

BOOL DeleteDC(HDC dc) {
    if (!dc) return FALSE;
    zel::FlushContext(dc);
    delete dc;
    return TRUE;
}

int SaveDC(HDC dc) {
    dc->saved.push_back(dc->now);
    return static_cast<int>(dc->saved.size());
}

BOOL RestoreDC(HDC dc, int level) {
    const int depth = static_cast<int>(dc->saved.size());
    if (level < 0) level += depth + 1;
    if (level < 1 || level > depth) return FALSE;
    dc->FlushLines();
    dc->now = dc->saved[static_cast<std::size_t>(level - 1)];
    dc->saved.resize(static_cast<std::size_t>(level - 1));
    return TRUE;
}

int GetDeviceCaps(HDC dc, int index) {
    return dc->device->Caps(index);
}

namespace {

// Puts a value in the place of another and answers the old one.
template <class T>
T Replace(T& place, T value) {
    return std::exchange(place, value);
}

}  // namespace

// A pen takes effect with the next line: what is gathered keeps its own.
HPEN SelectObject(HDC dc, HPEN pen) {
    return zel::GetPen(pen, dc->now.graphics.pen) ? Replace(dc->now.pen, pen) : nullptr;
}
HBRUSH SelectObject(HDC dc, HBRUSH brush) {
    return zel::GetBrush(brush, dc->now.graphics.brush) ? Replace(dc->now.brush, brush) : nullptr;
}
HFONT SelectObject(HDC dc, HFONT font) {
    return zel::GetFont(font, dc->now.graphics.font) ? Replace(dc->now.font, font) : nullptr;
}

COLORREF SetTextColor(HDC dc, COLORREF color, BYTE opacity) {
    dc->now.graphics.textTransparency = static_cast<BYTE>(255 - opacity);
    return Replace(dc->now.graphics.textColor, color);
}
UINT SetTextAlign(HDC dc, UINT align) {
    return Replace(dc->now.graphics.textAlign, align);
}
int SetPolyFillMode(HDC dc, int mode) {
    return Replace(dc->now.graphics.polygonFillMode, mode);
}
int SetArcDirection(HDC dc, int direction) {
    return Replace(dc->now.graphics.arcDirection, direction);
}
CPoint SetBrushOrg(HDC dc, CPoint origin) {
    return Replace(dc->now.graphics.brushOrigin, origin);
}

// Lines have gaps in the background colour where the pen is dashed; a solid pen has none to keep apart.
COLORREF SetBkColor(HDC dc, COLORREF color) {
    if (color == dc->now.graphics.backgroundColor) return color;
    return Replace(dc->Change().backgroundColor, color);
}
int SetBkMode(HDC dc, int mode) {
    if (mode == dc->now.graphics.backgroundMode) return mode;
    return Replace(dc->Change().backgroundMode, mode);
}
int SetROP2(HDC dc, int mode) {
    return Replace(dc->Change().rasterMode, mode);
}

// Mapping

namespace {

bool IsFree(int mode) {
    return mode == MM_ISOTROPIC || mode == MM_ANISOTROPIC;
}

// Logical units per inch of the modes with a fixed scale.
struct FixedScale {
    int units;
    int inches;
};

FixedScale ScaleOfMode(int mode) {
    switch (mode) {
        case MM_LOMETRIC:
            return {2540, 10};
        case MM_HIMETRIC:
            return {2540, 1};
        case MM_LOENGLISH:
            return {100, 1};
        case MM_HIENGLISH:
            return {1000, 1};
        case MM_TWIPS:
            return {1440, 1};
        default:
            return {0, 0};
    }
}

// A recorder has no resolution of its own: its metric modes are reckoned on a common screen.
int UnitsPerInch(HDC dc, int index) {
    constexpr int kCommonScreen = 96;
    const int units = dc->device->Caps(index);
    return units > 0 ? units : kCommonScreen;
}

// Shrinks one viewport extent so that units are square.
void MakeSquare(zel::CoordinateMap& map, double unitsPerInchX, double unitsPerInchY) {
    const double x =
        std::abs(static_cast<double>(map.viewportExtent.cx) / map.windowExtent.cx) / unitsPerInchX;
    const double y =
        std::abs(static_cast<double>(map.viewportExtent.cy) / map.windowExtent.cy) / unitsPerInchY;
    if (x > y) {
        map.viewportExtent.cx =
            zel::Truncate(map.viewportExtent.cx * (y / x) + (map.viewportExtent.cx > 0 ? 0.5 : -0.5));
        if (map.viewportExtent.cx == 0) map.viewportExtent.cx = 1;
    } else if (y > x) {
        map.viewportExtent.cy =
            zel::Truncate(map.viewportExtent.cy * (x / y) + (map.viewportExtent.cy > 0 ? 0.5 : -0.5));
        if (map.viewportExtent.cy == 0) map.viewportExtent.cy = 1;
    }
}

CSize SetExtent(HDC dc, CSize zel::CoordinateMap::*which, CSize extent) {
    zel::CoordinateMap& map = dc->Change().map;
    if (extent.cx == 0 || extent.cy == 0) return {};
    const CSize previous = map.*which;
    if (!IsFree(map.mode)) return previous;
    map.*which = extent;
    if (map.mode == MM_ISOTROPIC) MakeSquare(map, UnitsPerInch(dc, LOGPIXELSX), UnitsPerInch(dc, LOGPIXELSY));
    return previous;
}

}  // namespace

int SetMapMode(HDC dc, int mode) {
    if (mode < MM_TEXT || mode > MM_ANISOTROPIC) return 0;
    zel::CoordinateMap& map = dc->Change().map;
    const int previous = map.mode;
    map.mode = mode;
    const FixedScale scale = ScaleOfMode(mode);
    const int dpiX = UnitsPerInch(dc, LOGPIXELSX);
    const int dpiY = UnitsPerInch(dc, LOGPIXELSY);
    if (mode == MM_TEXT) {
        map.windowExtent = map.viewportExtent = CSize(1, 1);
    } else if (scale.units > 0 || (mode == MM_ISOTROPIC && previous != MM_ISOTROPIC)) {
        // The free square mode starts out as tenths of a millimetre.
        const FixedScale fixed = scale.units > 0 ? scale : ScaleOfMode(MM_LOMETRIC);
        map.windowExtent = CSize(fixed.units, fixed.units);
        map.viewportExtent = CSize(dpiX * fixed.inches, -dpiY * fixed.inches);
    }
    return previous;
}

CPoint SetWindowOrg(HDC dc, CPoint origin) {
    return Replace(dc->Change().map.windowOrigin, origin);
}
CPoint SetViewportOrg(HDC dc, CPoint origin) {
    return Replace(dc->Change().map.viewportOrigin, origin);
}
CSize SetWindowExt(HDC dc, CSize extent) {
    return SetExtent(dc, &zel::CoordinateMap::windowExtent, extent);
}
CSize SetViewportExt(HDC dc, CSize extent) {
    return SetExtent(dc, &zel::CoordinateMap::viewportExtent, extent);
}

// Lines and rectangles

CPoint MoveTo(HDC dc, CPoint to) {
    const CPoint previous = dc->now.position;
    dc->MoveTo(to);
    return previous;
}
void LineTo(HDC dc, CPoint to) {
    dc->LineTo(to);
}
void PolylineTo(HDC dc, const POINT* points, int count) {
    if (count > 0) dc->PolylineTo(points, static_cast<std::size_t>(count));
}
CPoint GetCurrentPosition(HDC dc) {
    return dc->now.position;
}

int FillRect(HDC dc, const RECT* rect, HBRUSH brush) {
    LOGBRUSH record = dc->now.graphics.brush;
    if (brush && !zel::GetBrush(brush, record)) return 0;
    dc->Draw().FillRect(dc->now.graphics, *rect, record, PATCOPY);
    return 1;
}

int FrameRect(HDC dc, const RECT* rect, HBRUSH brush) {
    if (CRect(*rect).IsRectEmpty()) return 0;
    const auto [l, t, r, b] = *rect;  // at least a unit wide and high, so that no edge wraps
    for (const CRect& side :
         {CRect(l, t, r, t + 1), CRect(l, b - 1, r, b), CRect(l, t, l + 1, b), CRect(r - 1, t, r, b)}) {
        if (!FillRect(dc, &side, brush)) return 0;
    }
    return 1;
}

BOOL InvertRect(HDC dc, const RECT* rect) {
    dc->Draw().FillRect(dc->now.graphics, *rect, dc->now.graphics.brush, DSTINVERT);
    return TRUE;
}

BOOL PatBlt(HDC dc, int x, int y, int width, int height, DWORD operation) {
    const CRect rect(CPoint(x, y), CSize(width, height));
    dc->Draw().FillRect(dc->now.graphics, rect, dc->now.graphics.brush, operation);
    return TRUE;
}

// Clipping

namespace {

int KindOf(const zel::Region& region) {
    if (region.IsEmpty()) return NULLREGION;
    return region.Rects().size() == 1 ? SIMPLEREGION : COMPLEXREGION;
}

int CombineClip(HDC dc, const CRect& logical, int mode) {
    const zel::Region rect(dc->now.graphics.map.ToDevice(logical));
    auto combined =
        std::make_shared<const zel::Region>(zel::Region::Combine(dc->ClipOrSurface(), rect, mode));
    const int kind = KindOf(*combined);
    dc->Change().clip = std::move(combined);
    return kind;
}

}  // namespace

int SelectClipRgn(HDC dc, HRGN region) {
    if (!region) {
        dc->Change().clip.reset();
        return SIMPLEREGION;
    }
    auto copy = std::make_shared<zel::Region>();
    if (!zel::GetRegion(region, *copy)) return RGN_ERROR;
    const int kind = KindOf(*copy);
    dc->Change().clip = std::move(copy);
    return kind;
}

int IntersectClipRect(HDC dc, int left, int top, int right, int bottom) {
    return CombineClip(dc, CRect(left, top, right, bottom), RGN_AND);
}

int ExcludeClipRect(HDC dc, int left, int top, int right, int bottom) {
    return CombineClip(dc, CRect(left, top, right, bottom), RGN_DIFF);
}

int GetClipBox(HDC dc, RECT* box) {
    const zel::Region clip = dc->ClipOrSurface();
    *box = dc->now.graphics.map.ToLogical(clip.Box());
    return KindOf(clip);
}

// Text

CSize GetTextExtent(HDC dc, std::string_view text) {
    return text.empty() ? CSize() : dc->device->TextExtent(dc->now.graphics, text);
}
std::vector<int> GetPrefixExtents(HDC dc, std::string_view text, std::span<const std::size_t> ends) {
    return dc->device->PrefixExtents(dc->now.graphics, text, ends);
}
TEXTMETRIC GetTextMetrics(HDC dc) {
    return dc->device->TextMetrics(dc->now.graphics);
}

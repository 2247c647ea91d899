#include "core/ArchiveFields.h"

#include <zel/DrawColor.h>
#include <zel/ToolEditors.h>
#include <zel/Zel2.h>
#include <zel/platform/DC.h>

#include <vector>

IMPLEMENT_SERIAL(DrawColor, DrawTool, 0)
IMPLEMENT_SERIAL(DrawColorTable, DrawToolTable, 0)

DrawColor::DrawColor(const char* name, COLORREF scr, COLORREF prn)
    : DrawTool(name), screen_(scr), print_(prn) {}

DrawColor::DrawColor(const DrawColor& other) : DrawTool(other) {
    CopyFields(other);
}

DrawColor& DrawColor::operator=(const DrawColor& other) {
    if (this != &other) CopyFields(other);
    return *this;
}

DrawTool& DrawColor::operator=(const DrawTool& other) {
    const auto* color = dynamic_cast<const DrawColor*>(&other);
    return color ? *this = *color : DrawTool::operator=(other);
}

void DrawColor::CopyFields(const DrawColor& other) {
    SetName(other.NameRef());
    printer_ = other.printer_;
    CopyOpacity(other);
    AttachDc(other.Dc());
    screen_ = other.screen_;
    print_ = other.print_;
    brush_.reset();
}

DrawTool* DrawColor::ACopy() {
    return new DrawColor(*this);
}

void DrawColor::OpenOn(CDC* dc, int scale) {
    DrawTool::OpenOn(dc, scale);
    brush_ = std::make_unique<CBrush>();
    brush_->CreateSolidBrush(GetColor(), InkOpacity());
}

void DrawColor::Close() {
    brush_.reset();
    DrawTool::Close();
}

int DrawColor::SetPrinter(int on) {
    brush_.reset();
    return DrawTool::SetPrinter(on);
}

void DrawColor::SetColor(COLORREF color) {
    if (color == GetColor()) return;
    brush_.reset();
    (Printing() ? print_ : screen_) = color;
}

void DrawColor::Rect(const CRect& rect) {
    FillRect(CRect(rect.left, rect.top, zel::Add(rect.right, 1), zel::Add(rect.bottom, 1)));
}

void DrawColor::FillRect(const CRect& rect) {
    if (!Dc()) return;
    ::FillRect(Dc()->m_hDC, &rect, brush_ ? static_cast<HBRUSH>(*brush_) : nullptr);
}

void DrawColor::FillRects(std::span<const CRect> rects) {
    if (Dc() && !rects.empty()) Dc()->FillRects(rects, brush_.get());
}

// Runs `draw` with the own brush and a pen that draws nothing.
template <class Draw>
void DrawColor::WithoutOutline(Draw draw) {
    if (!Dc()) return;
    CPen* previousPen = static_cast<CPen*>(Dc()->SelectStockObject(NULL_PEN));
    CBrush* previousBrush = brush_ ? Dc()->SelectObject(brush_.get()) : nullptr;
    draw(*Dc());
    if (previousBrush) Dc()->SelectObject(previousBrush);
    if (previousPen) Dc()->SelectObject(previousPen);
}

// Without an outline the platform leaves ellipses one device pixel short at the right and on the lower side,
// whichever way the logical y axis points: the pixel is added in device units.
CRect DrawColor::GrownByDevicePixel(const CRect& rect) {
    CPoint corners[2] = {rect.TopLeft(), rect.BottomRight()};
    Dc()->LPtoDP(corners, 2);
    if (corners[0].y < corners[1].y) std::swap(corners[0].y, corners[1].y);
    corners[1].x = zel::Add(corners[1].x, 1);
    corners[0].y = zel::Add(corners[0].y, 1);
    Dc()->DPtoLP(corners, 2);
    return {corners[0], corners[1]};
}

void DrawColor::Ellipse(const CRect& rect) {
    WithoutOutline([&](CDC& dc) { dc.Ellipse(GrownByDevicePixel(rect)); });
}

void DrawColor::Ellipses(std::span<const CPoint> places, const CRect& box) {
    WithoutOutline([&](CDC& dc) { dc.Ellipses(places, GrownByDevicePixel(box)); });
}

void DrawColor::RoundRect(const CRect& rect, const CSize& corner) {
    WithoutOutline([&](CDC& dc) { dc.RoundRect(GrownByDevicePixel(rect), CPoint(corner.cx, corner.cy)); });
}

void DrawColor::Polygon(CPoint* points, int n) {
    WithoutOutline([=](CDC& dc) { dc.Polygon(points, n); });
}

void DrawColor::PolyPolygon(CPoint* points, int* counts, int nPolys) {
    WithoutOutline([=](CDC& dc) { dc.PolyPolygon(points, counts, nPolys); });
}

namespace {

// The lengths of the rings in one run of points: a ring ends where its first point comes back after another
// point.
std::vector<int> RingLengths(const CPoint* points, int n) {
    std::vector<int> lengths;
    int start = 0;
    bool moved = false;
    for (int i = 1; i < n; ++i) {
        if (!(points[i] == points[start])) {
            moved = true;
        } else if (moved) {
            lengths.push_back(i + 1 - start);
            start = ++i;
            moved = false;
        }
    }
    return lengths;
}

}  // namespace

void DrawColor::PolyPolygon(CPoint* points, int n) {
    std::vector<int> lengths = RingLengths(points, n);
    if (!lengths.empty()) PolyPolygon(points, lengths.data(), static_cast<int>(lengths.size()));
}

void DrawColor::Polygon(Zel2* obj, double* x, double* y, int n) {
    if (!Dc() || n <= 0 || !obj->EnclosingFrame()) return;
    std::vector<CPoint> points(static_cast<std::size_t>(n));
    for (std::size_t i = 0; i < points.size(); ++i) points[i] = obj->F2L(x[i], y[i]);
    Polygon(points.data(), n);
}

void DrawColor::Serialize(CArchive& ar) {
    ExchangeName(ar);
    zel::Exchange(ar, screen_, print_, printer_);
    ExchangeOpacity(ar);
}

DrawColorTable& DrawColorTable::operator=(const DrawColorTable& other) {
    CopyFrom(&other);
    return *this;
}

int DrawColorTable::RegisterColor(const char* name, COLORREF scr, COLORREF prn) {
    return Register(new DrawColor(name, scr, prn));
}

COLORREF DrawColorTable::operator[](int i) const {
    const DrawColor* color = (*this)(i);
    return color ? color->GetColor() : 0;
}

int DrawColorTable::Edit() {
    const auto& edit = zel::TheToolEditors().colors;
    return edit ? edit(*this) : DrawToolTable::Edit();
}

#include "apps/zelview/DrawingView.h"

namespace zel::view {
namespace {

constexpr COLORREF kDesk = RGB(222, 225, 230);

// Calls `visit` with every object that stands in `set`, outer ones first.
void Walk(Zel2Set& set, const std::function<void(Zel2&)>& visit) {
    for (int i = 0; i < set.GetCount(); ++i) {
        Zel2* const child = set[i];
        if (!child) continue;
        visit(*child);
        if (auto* inner = dynamic_cast<Zel2Set*>(child)) Walk(*inner, visit);
    }
}

bool IsIn(const WorldFrame& frame, const CPoint& logical) {
    CRect plot(frame.lower, frame.upper);
    plot.NormalizeRect();
    return !plot.IsRectEmpty() && plot.PtInRect(logical);
}

Position::Values ValuesAt(const WorldFrame& frame, const CPoint& logical) {
    const auto value = [](int at, int from, int to, double min, double max) {
        return min + (max - min) * (at - from) / (static_cast<double>(to) - from);
    };
    return {value(logical.x, frame.lower.x, frame.upper.x, frame.xmin, frame.xmax),
            value(logical.y, frame.lower.y, frame.upper.y, frame.ymin, frame.ymax)};
}

bool IsInPlotArea(Zel2Chart& chart, const CPoint& world) {
    CRect area = chart.PlotArea();
    const CPoint origin = chart.AbsOrigin();
    area.OffsetRect(origin.x, origin.y);
    return world.x >= area.left && world.x <= area.right && world.y >= area.bottom && world.y <= area.top;
}

}  // namespace

Zel2Main* DrawingView::Drawing() const {
    return Viewer() ? dynamic_cast<Zel2Main*>(Viewer()->Drawing()) : nullptr;
}

Zel2Report* DrawingView::Report() const {
    Zel2Main* const drawing = Drawing();
    return drawing ? Zel2Report::FirstIn(*drawing) : nullptr;
}

void DrawingView::ShowAsPrinted(bool on) {
    asPrinted_ = on;
    Invalidate();
}

// What lies beside the drawing, so that its edges can be seen.
void DrawingView::DrawDesk(CDC& dc) {
    CRect client;
    GetClientRect(&client);
    const CSize drawing = Viewer()->GetLgGraphsSize();
    const CPoint scrolled = GetDeviceScrollPosition();
    const int right = scrolled.x + client.Width(), bottom = scrolled.y + client.Height();
    const CRect beside(drawing.cx, scrolled.y, right, bottom);
    const CRect below(scrolled.x, drawing.cy, drawing.cx, bottom);
    for (const CRect& desk : {beside, below}) {
        if (!desk.IsRectEmpty()) dc.FillSolidRect(&desk, kDesk);
    }
}

void DrawingView::OnDraw(CDC* dc) {
    if (Viewer() && Drawing() && Drawing()->GetCount() > 0) DrawDesk(*dc);
    const BOOL printing = dc->m_bPrinting;
    if (asPrinted_) dc->m_bPrinting = TRUE;
    CZelView::OnDraw(dc);
    dc->m_bPrinting = printing;
    if (!printing && onPicture_) onPicture_();
}

Position DrawingView::At(const CPoint& pixel) const {
    Mapping& map = *Viewer()->Root().Map();
    Position position{map.FromDevice(pixel), {}, {}};
    CPoint origin;
    CSize extent;
    map.GetDevice(origin, extent);
    const CSize from = pixel - origin;
    const CPoint logical(from.cx, from.cy);
    if (Zel2Main* const drawing = Drawing()) {
        Walk(*drawing, [&](Zel2& object) {
            const WorldFrame* const frame = object.Frame();
            if (frame && IsIn(*frame, logical)) position.graph = ValuesAt(*frame, logical);
            auto* const chart = dynamic_cast<Zel2Chart*>(&object);
            if (chart && IsInPlotArea(*chart, position.world))
                position.chart = "x = " + chart->TextAt(0, pixel) + ", y = " + chart->TextAt(1, pixel);
        });
    }
    return position;
}

LRESULT DrawingView::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    const LRESULT result = CZelView::WindowProc(message, wParam, lParam);
    const bool mouse = message == WM_MOUSEMOVE || message == WM_LBUTTONDOWN || message == WM_LBUTTONUP;
    if (mouse && onMouse_ && Viewer()) {
        onMouse_(At(CPoint(static_cast<short>(LOWORD(static_cast<WPARAM>(lParam))),
                           static_cast<short>(HIWORD(static_cast<WPARAM>(lParam))))));
    }
    return result;
}

}  // namespace zel::view

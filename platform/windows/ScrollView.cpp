#include <zel/platform/View.h>

#include <algorithm>
#include <cstdlib>

IMPLEMENT_DYNAMIC(CScrollView, CView)

BEGIN_MESSAGE_MAP(CScrollView, CView)
ON_WM_SIZE()
ON_WM_HSCROLL()
ON_WM_VSCROLL()
ON_WM_MOUSEWHEEL()
END_MESSAGE_MAP()

namespace {

constexpr int kPageShare = 10;  // of the whole
constexpr int kLineShare = 10;  // of a page
constexpr int kWheelLines = 3;

CSize Absolute(const CSize& size) {
    return {zel::Magnitude(size.cx), zel::Magnitude(size.cy)};
}

int Step(int given, int whole, int share) {
    return given > 0 ? given : std::max(1, whole / share);
}

}  // namespace

CSize CScrollView::ToDevice(const SIZE& size) {
    if (mapMode_ == MM_TEXT || !Peer()) return Absolute(size);
    CClientDC dc(this);
    dc.SetMapMode(mapMode_);
    CSize device(size);
    dc.LPtoDP(&device);
    return Absolute(device);
}

void CScrollView::SetScrollSizes(int mapMode, SIZE total, const SIZE& page, const SIZE& line) {
    mapMode_ = mapMode;
    total_ = total;
    totalDevice_ = ToDevice(total);
    const CSize givenPage = ToDevice(page);
    const CSize givenLine = ToDevice(line);
    pageDevice_ = {Step(givenPage.cx, totalDevice_.cx, kPageShare),
                   Step(givenPage.cy, totalDevice_.cy, kPageShare)};
    lineDevice_ = {Step(givenLine.cx, pageDevice_.cx, kLineShare),
                   Step(givenLine.cy, pageDevice_.cy, kLineShare)};
    UpdateBars();
}

// A bar takes room from the other direction, which may then need one too.
void CScrollView::UpdateBars() {
    if (!Peer()) return;
    // Bars change the client area, upon which a view may change what it shows: once more, then, but not for
    // ever.
    constexpr int kMostRounds = 3;
    again_ = true;
    if (updating_) return;
    updating_ = true;
    for (int round = 0; again_ && round < kMostRounds; ++round) {
        again_ = false;
        PlaceBars();
    }
    updating_ = false;
}

void CScrollView::PlaceBars() {
    const CSize room = Peer()->SizeWithoutBars();
    const CSize bar = Peer()->BarThickness();
    bool horizontal = totalDevice_.cx > room.cx;
    const bool vertical = totalDevice_.cy > room.cy - (horizontal ? bar.cy : 0);
    horizontal = totalDevice_.cx > room.cx - (vertical ? bar.cx : 0);
    page_ = {std::max(0, room.cx - (vertical ? bar.cx : 0)),
             std::max(0, room.cy - (horizontal ? bar.cy : 0))};
    ScrollToDevicePosition(position_);
    Peer()->SetScroll(SB_HORZ, {totalDevice_.cx, page_.cx, position_.x});
    Peer()->SetScroll(SB_VERT, {totalDevice_.cy, page_.cy, position_.y});
}

void CScrollView::ScrollToDevicePosition(POINT position) {
    const CPoint to(std::clamp<LONG>(position.x, 0, std::max<LONG>(0, totalDevice_.cx - page_.cx)),
                    std::clamp<LONG>(position.y, 0, std::max<LONG>(0, totalDevice_.cy - page_.cy)));
    if (to == position_) return;
    const CSize moved = position_ - to;
    position_ = to;
    ScrollWindow(moved.cx, moved.cy);
    if (!updating_ && Peer()) {
        Peer()->SetScroll(SB_HORZ, {totalDevice_.cx, page_.cx, position_.x});
        Peer()->SetScroll(SB_VERT, {totalDevice_.cy, page_.cy, position_.y});
    }
}

void CScrollView::ScrollToPosition(POINT position) {
    CPoint device(position);
    if (mapMode_ != MM_TEXT && Peer()) {
        CClientDC dc(this);
        dc.SetMapMode(mapMode_);
        dc.LPtoDP(&device);
    }
    ScrollToDevicePosition(CPoint(zel::Magnitude(device.x), zel::Magnitude(device.y)));
}

CPoint CScrollView::GetScrollPosition() const {
    if (mapMode_ == MM_TEXT || !Peer()) return position_;
    CClientDC dc(const_cast<CScrollView*>(this));
    dc.SetMapMode(mapMode_);
    // The modes that measure have y upwards: what lies below the top has a negative one.
    CPoint position(position_);
    dc.DPtoLP(&position);
    return position;
}

void CScrollView::OnPrepareDC(CDC* dc, CPrintInfo* info) {
    dc->SetMapMode(mapMode_);
    if (!dc->IsPrinting()) dc->SetViewportOrg(-position_.x, -position_.y);
    CView::OnPrepareDC(dc, info);
}

void CScrollView::OnInitialUpdate() {
    UpdateBars();
    CView::OnInitialUpdate();
}

void CScrollView::OnSize(UINT type, int cx, int cy) {
    CView::OnSize(type, cx, cy);
    UpdateBars();
}

void CScrollView::OnScrollCode(int bar, UINT code, int position) {
    const auto along = [bar](const CSize& size) { return bar == SB_HORZ ? size.cx : size.cy; };
    const int now = bar == SB_HORZ ? position_.x : position_.y;
    int to = now;
    switch (code) {
        case SB_LINEUP:
            to -= along(lineDevice_);
            break;
        case SB_LINEDOWN:
            to += along(lineDevice_);
            break;
        case SB_PAGEUP:
            to -= along(pageDevice_);
            break;
        case SB_PAGEDOWN:
            to += along(pageDevice_);
            break;
        case SB_THUMBPOSITION:
        case SB_THUMBTRACK:
            to = position;
            break;
        case SB_TOP:
            to = 0;
            break;
        case SB_BOTTOM:
            to = along(totalDevice_);
            break;
        default:
            return;
    }
    OnScrollBy(bar == SB_HORZ ? CSize(to - now, 0) : CSize(0, to - now));
}

void CScrollView::OnHScroll(UINT code, UINT position, CScrollBar*) {
    OnScrollCode(SB_HORZ, code, static_cast<int>(position));
}
void CScrollView::OnVScroll(UINT code, UINT position, CScrollBar*) {
    OnScrollCode(SB_VERT, code, static_cast<int>(position));
}

BOOL CScrollView::OnScrollBy(CSize by, BOOL doScroll) {
    const CPoint before = position_;
    const CPoint most(std::max<LONG>(0, totalDevice_.cx - page_.cx),
                      std::max<LONG>(0, totalDevice_.cy - page_.cy));
    const CPoint to(std::clamp<LONG>(before.x + by.cx, 0, most.x),
                    std::clamp<LONG>(before.y + by.cy, 0, most.y));
    if (doScroll) ScrollToDevicePosition(to);
    return to == before ? FALSE : TRUE;
}

// Fine wheels turn in steps smaller than a line; what does not make a pixel yet is kept.
BOOL CScrollView::OnMouseWheel(UINT flags, short delta, CPoint) {
    const bool sideways = (flags & MK_SHIFT) != 0;
    const int line = sideways ? lineDevice_.cx : lineDevice_.cy;
    LONG& turned = sideways ? wheel_.cx : wheel_.cy;
    turned += delta * line * kWheelLines;
    const int pixels = turned / WHEEL_DELTA;
    turned -= pixels * WHEEL_DELTA;
    return OnScrollBy(sideways ? CSize(-pixels, 0) : CSize(0, -pixels));
}

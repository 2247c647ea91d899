#include "views/ZoomCursor.h"

#include <zel/ToolDialogs.h>
#include <zel/ZelViewer.h>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int kUnitsPerInch = 1000;
constexpr LONG kCoordinateLimit = 32767;  // where 16-bit coordinates of the window system end

}  // namespace

ZelViewer::ZelViewer(CScrollView* view) : view_(view) {
    RegisterZoomCursor();
    zel::InstallToolDialogs();
    root_.SetLeaveHandler([this](Zel2* object) { OnObjectLeaves(object); });
    root_.SetEditHandler([this](Zel2*) { TellEdit(zel::ViewerEdit::TEXT); });
}

ZelViewer::~ZelViewer() {
    root_.SetLeaveHandler(nullptr);
    root_.SetEditHandler(nullptr);
}

Zel2Tools* ZelViewer::Drawing() {
    return root_.GetCount() > 0 ? static_cast<Zel2Tools*>(root_[0]) : nullptr;
}

void ZelViewer::Set(Zel2Tools* drawing) {
    Zel2Tools* const shown = Drawing();
    if (shown == drawing) return;
    Reset();
    delete shown;
    if (drawing) root_.Add(drawing);
    PrepareMapping();
    if (zoomType_ != ZOOM_FREE) SetScaleToZoomType();
    UpdateScrollSizes();
    view_->Invalidate();
}

void ZelViewer::Reset() {
    selection_.RemoveAll();
    root_.DetachChildren();
    action_ = {};
    if (mode_ == MODE_PART || mode_ == MODE_OVER_SELECTION) SetMode(MODE_SELECT);
}

// Nothing may come back to an object that is gone.
void ZelViewer::OnObjectLeaves(const Zel2* object) {
    selection_.Forget(object);
    const auto stands = [object](const Zel2* member) {
        while (member && member != object) member = member->GetParent();
        return member != nullptr;
    };
    if (stands(action_.object)) action_.object = nullptr;
    if (stands(dragObject_)) {
        dragObject_ = nullptr;
        if (mode_ == MODE_DRAG_PART) SetMode(MODE_SELECT);
    }
}

bool ZelViewer::IsExact() {
    Zel2Tools* const drawing = Drawing();
    return drawing && drawing->Rules() == ZelRules::EXACT;
}

void ZelViewer::AdoptRules() {
    if (Drawing()) root_.SetRules(Drawing()->Rules());
}

bool ZelViewer::IsEmpty() {
    const CSize size = root_.Size();
    return size.cx == 0 || size.cy == 0;
}

CSize ZelViewer::ClientSize() const {
    CRect client;
    view_->GetClientRect(&client);
    return client.Size();
}

void ZelViewer::SetNumGraphs(int a, int b) {
    numGraphs_[0] = a;
    numGraphs_[1] = b;
}

void ZelViewer::PrepareMapping(CDC& dc) {
    const CSize size = root_.Size();
    Map().SetWorld(CPoint(0, 0), size);
    Map().SetLogical(CPoint(0, MulDiv(size.cy, dc.GetDeviceCaps(LOGPIXELSY), kUnitsPerInch)),
                     CPoint(MulDiv(size.cx, dc.GetDeviceCaps(LOGPIXELSX), kUnitsPerInch), 0));
}

void ZelViewer::PrepareMapping() {
    if (!view_->Peer()) return;
    CClientDC dc(view_);
    PrepareMapping(dc);
    const CPoint at = view_->GetDeviceScrollPosition();
    Map().SetLogicalOrg(-at);
}

void ZelViewer::StoreScale() {
    scale_ = Map().Scale();
}

void ZelViewer::UseScale(int scale) {
    if (scale == 0) {
        Map().SetZoom(0, 0);
    } else {
        Map().SetAbsoluteZoom(std::abs(scale), 1000);
    }
}

void ZelViewer::OnDraw(CDC* dc) {
    AdoptRules();
    PrepareMapping(*dc);
    UseScale(scale_);
    Map().SetLogicalOrg(-view_->GetDeviceScrollPosition());
    SetScaleToZoomType();
    root_.SetWindow(view_);
    root_.Draw(dc);
}

// The zoom that fits, counted from natural size: counted from the zoom that happens to be, it would wander a
// little with every repaint.
int ZelViewer::FitScale() {
    const CSize size = root_.Size();
    const int numerator = Map().ZoomNumerator();
    const int denominator = Map().ZoomDenominator();
    Map().SetZoom(0, 0);
    // What fits the window as a whole needs no scroll bars.
    const bool whole = zoomType_ == ZOOM_FIT_WINDOW && view_->Peer();
    const CSize client = whole ? view_->Peer()->SizeWithoutBars() : ClientSize();
    const CSize world = Map().FromDevice(CSize(client.cx, -client.cy));
    Map().SetAbsoluteZoom(numerator, denominator);
    const auto share = [](LONG room, LONG extent) {
        return zel::Saturate(std::int64_t{room} * 1000 / extent);
    };
    const int horizontal = share(world.cx, size.cx);
    const int vertical = share(world.cy, size.cy);
    switch (zoomType_) {
        case ZOOM_FIT_HORIZONTALLY:
            return horizontal;
        case ZOOM_FIT_VERTICALLY:
            return vertical;
        default:
            return std::min(horizontal, vertical);
    }
}

void ZelViewer::SetScaleToZoomType() {
    if (zoomType_ == ZOOM_FREE || IsEmpty()) return;
    UseScale(FitScale());
    StoreScale();
}

void ZelViewer::AdjustScaleToZoomType() {
    if (IsEmpty()) return;
    PrepareMapping();
    SetScaleToZoomType();
    UpdateScrollSizes();
}

void ZelViewer::UpdateScrollSizes() {
    const CSize size = Map().ToDevice(root_.Size());
    graphSize_ = CSize(std::max<LONG>(1, size.cx), std::max<LONG>(1, -size.cy));
    view_->SetScrollSizes(MM_TEXT, graphSize_);
    Map().SetLogicalOrg(-view_->GetDeviceScrollPosition());
}

void ZelViewer::FitHorizontally() {
    if (IsEmpty()) return;
    zoomType_ = ZOOM_FIT_HORIZONTALLY;
    AdjustScaleToZoomType();
    SetMode(MODE_SELECT);
}

void ZelViewer::OnZoomFitwinhorizontaly() {
    FitHorizontally();
    if (IsExact()) view_->Invalidate();
}

void ZelViewer::OnZoomFitwinverticaly() {
    if (IsEmpty()) return;
    zoomType_ = ZOOM_FIT_VERTICALLY;
    AdjustScaleToZoomType();
    view_->Invalidate();
    SetMode(MODE_SELECT);
}

void ZelViewer::OnZoomFitwindow() {
    if (IsEmpty()) return;
    zoomType_ = ZOOM_FIT_WINDOW;
    AdjustScaleToZoomType();
    view_->Invalidate();
    SetMode(MODE_SELECT);
}

void ZelViewer::OnZoomRectangle() {
    SetMode(MODE_ZOOM_RECTANGLE);
    zoomType_ = ZOOM_FREE;
}
void ZelViewer::OnZoomEnlarge() {
    SetMode(MODE_ENLARGE);
    zoomType_ = ZOOM_FREE;
}
void ZelViewer::OnZoomReduce() {
    SetMode(MODE_REDUCE);
    zoomType_ = ZOOM_FREE;
}

void ZelViewer::ZoomBy(int numerator, int denominator) {
    Mapping& map = Map();
    const int before[] = {map.ZoomNumerator(), map.ZoomDenominator()};
    map.SetZoom(numerator, denominator);
    if (IsExact()) {
        // A zoom of nothing could not be enlarged again, and halving can swallow a step.
        const bool vanished = map.ZoomNumerator() < 1 || map.Scale() < 1;
        const bool stuck = numerator > denominator && std::int64_t{map.ZoomNumerator()} * before[1] <=
                                                          std::int64_t{before[0]} * map.ZoomDenominator();
        if (vanished) map.SetAbsoluteZoom(before[0], before[1]);
        if (stuck) map.SetAbsoluteZoom(before[0] + 1, before[1]);
    }
    StoreScale();
    UpdateScrollSizes();
}

// Where the top left corner of the part around a point comes to lie that a zoom step is to show, in world
// coordinates: within the drawing, as far as it reaches.
CPoint ZelViewer::ShownCorner(const CPoint& at, int enlarge) {
    const CSize client = ClientSize();
    const CSize half =
        enlarge ? CSize(client.cx / 3, client.cy / 3) : CSize(3 * client.cx / 4, 3 * client.cy / 4);
    const CSize drawing = Map().ToDevice(root_.Size());
    CRect shown(at.x, at.y, at.x, at.y);
    shown.InflateRect(half.cx, half.cy);
    const LONG height = zel::Subtract(0, drawing.cy);
    if (shown.right > drawing.cx)
        shown.left = zel::Subtract(shown.left, zel::Subtract(shown.right, drawing.cx));
    if (shown.bottom > height) shown.top = zel::Subtract(shown.top, zel::Subtract(shown.bottom, height));
    return Map().FromLogical(CPoint(std::max<LONG>(shown.left, 0), std::max<LONG>(shown.top, 0)));
}

void ZelViewer::ScrollToWorld(const CPoint& world) {
    const CPoint at = Map().ToLogical(world);
    view_->ScrollToPosition(CPoint(at.x, zel::Magnitude(at.y)));
    Map().SetLogicalOrg(-view_->GetDeviceScrollPosition());
}

void ZelViewer::Enlarge(CPoint pt, int enlarge) {
    if (IsEmpty()) return;
    PrepareMapping();
    const CPoint scrolled = pt + view_->GetDeviceScrollPosition();
    const CPoint world = Map().FromLogical(scrolled);
    const CPoint corner = ShownCorner(scrolled, enlarge);
    zoomType_ = ZOOM_FREE;
    ZoomBy(enlarge ? 3 : 2, enlarge ? 2 : 3);
    ScrollToWorld(corner);
    view_->Invalidate();
    // What lay under the pointer stays under it.
    CPoint pointer = Map().ToDevice(world);
    view_->ClientToScreen(&pointer);
    ::SetCursorPos(pointer.x, pointer.y);
}

void ZelViewer::ZoomAbout(CPoint pt, int enlarge) {
    if (IsEmpty()) return;
    PrepareMapping();
    const CPoint world = Map().FromDevice(pt);
    zoomType_ = ZOOM_FREE;
    ZoomBy(enlarge ? 3 : 2, enlarge ? 2 : 3);
    const CSize corner = Map().ToLogical(world) - pt;
    view_->ScrollToDevicePosition(CPoint(corner.cx, corner.cy));
    Map().SetLogicalOrg(-view_->GetDeviceScrollPosition());
    view_->Invalidate();
}

void ZelViewer::StartPan(CPoint pt) {
    panFrom_ = pt;
    panScroll_ = view_->GetDeviceScrollPosition();
}

void ZelViewer::PanTo(CPoint pt) {
    const CSize moved = pt - panFrom_;
    view_->ScrollToDevicePosition(panScroll_ - moved);
    Map().SetLogicalOrg(-view_->GetDeviceScrollPosition());
}

void ZelViewer::AdjustViewToRectangle(CRect r) {
    if (root_.GetCount() == 0 || IsEmpty()) return;
    PrepareMapping();
    // Upwards in y, as the world is.
    const CRect ordered(std::min(r.left, r.right), std::max(r.top, r.bottom), std::max(r.left, r.right),
                        std::min(r.top, r.bottom));
    RestoreCursor();
    const CPoint scroll = view_->GetDeviceScrollPosition();
    zoomRectangle_ = Map().FromLogical(ordered + scroll);
    const CSize client = ClientSize();
    const int room[] = {std::max<int>(1, client.cx), std::max<int>(1, client.cy)};
    const int wanted[] = {std::max(1, ordered.Width()), std::max(1, -ordered.Height())};
    const bool wide = std::int64_t{room[0]} * wanted[1] < std::int64_t{room[1]} * wanted[0];
    int numerator = room[wide ? 0 : 1];
    const int denominator = wanted[wide ? 0 : 1];
    const auto tooLarge = [&] {
        Mapping trial(Map());
        trial.SetZoom(numerator, denominator);
        const CSize size = trial.ToDevice(root_.Size());
        return size.cx > kCoordinateLimit || -size.cy > kCoordinateLimit;
    };
    while (numerator > 1 && tooLarge()) numerator = numerator * 8 / 10;
    zoomType_ = ZOOM_FREE;
    ZoomBy(numerator, denominator);
    ScrollToWorld(CPoint(zoomRectangle_.left, zoomRectangle_.bottom));
    view_->Invalidate();
}

void ZelViewer::OnSize(unsigned, int cx, int cy) {
    if (sizing_ || cx == 0 || cy == 0 || !(ClientSize() == CSize(cx, cy))) return;
    sizing_ = true;
    const int mode = mode_;
    // Fitting shows and hides scroll bars, which changes the room: fit again, but not for ever.
    constexpr int kMostRounds = 3;
    for (int round = 0; round < kMostRounds; ++round) {
        const CSize before = ClientSize();
        if (zoomType_ == ZOOM_FIT_HORIZONTALLY) OnZoomFitwinhorizontaly();
        if (zoomType_ == ZOOM_FIT_VERTICALLY) OnZoomFitwinverticaly();
        if (zoomType_ == ZOOM_FIT_WINDOW) OnZoomFitwindow();
        if (ClientSize() == before) break;
    }
    mode_ = mode;
    if (!IsEmpty()) {
        PrepareMapping();
        UseScale(scale_);
        UpdateScrollSizes();
    }
    sizing_ = false;
}

BOOL ZelViewer::OnPreparePrinting(CPrintInfo* info) {
    return view_->DoPreparePrinting(info);
}

void ZelViewer::OnBeginPrinting(CDC*, CPrintInfo*) {
    StoreScale();
    Map().SetZoom(0, 0);
}

void ZelViewer::OnPrint(CDC* dc, CPrintInfo* info) {
    // Selected objects would draw their handles on the window in the middle of the page.
    struct Detached {
        Zel2Main& root;
        CWnd* window;
        Detached(Zel2Main& main, CWnd* shown) : root(main), window(shown) { root.SetWindow(nullptr); }
        ~Detached() { root.SetWindow(window); }
        Detached(const Detached&) = delete;
        Detached& operator=(const Detached&) = delete;
    };
    AdoptRules();
    root_.PrepareMappingFor(dc, info, numGraphs_[0], numGraphs_[1]);
    const Detached detached(root_, view_);
    root_.OnPrint(dc, info);
}

void ZelViewer::OnEndPrinting(CDC*, CPrintInfo*) {
    PrepareMapping();
    UseScale(scale_);
}

template <class Table>
void ZelViewer::EditTable(Table* table) {
    if (!table || !table->Edit()) return;
    view_->Invalidate();
    TellEdit(zel::ViewerEdit::TABLE);
}

void ZelViewer::OnTestColorTable() {
    if (Drawing()) EditTable(Drawing()->Colors());
}
void ZelViewer::OnTestPenTable() {
    if (Drawing()) EditTable(Drawing()->Pens());
}
void ZelViewer::EditFontTable() {
    if (Drawing()) EditTable(Drawing()->Fonts());
}

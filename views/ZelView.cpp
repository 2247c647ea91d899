#include "views/ToolImages.h"

#include <zel/Zel2Report.h>
#include <zel/ZelView.h>
#include <zel/platform/FrameWnd.h>
#include <zel/platform/MessageBox.h>

#include <climits>
#include <cstdlib>

IMPLEMENT_DYNCREATE(CZelView, CScrollView)

BEGIN_MESSAGE_MAP(CZelView, CScrollView)
ON_WM_CREATE()
ON_WM_SIZE()
ON_WM_VSCROLL()
ON_WM_LBUTTONDOWN()
ON_WM_LBUTTONUP()
ON_WM_MOUSEMOVE()
ON_WM_MOUSEWHEEL()
ON_WM_MBUTTONDOWN()
ON_WM_MBUTTONUP()
ZEL_MAP_MESSAGE(WM_RBUTTONDOWN, self->OnRButtonUp(args.Flags(), args.Point()))
ZEL_MAP_MESSAGE(WM_RBUTTONUP, self->OnRButtonUp(args.Flags(), args.Point()))
ZEL_MAP_MESSAGE(WM_LBUTTONDBLCLK, self->OnLButtonDblClk(args.Flags(), args.Point()))
ZEL_MAP_MESSAGE(WM_RBUTTONDBLCLK, self->OnRButtonUp(args.Flags(), args.Point()))
ON_COMMAND(ID_ZEL_SELECT, OnPointZelObject)
ON_COMMAND(ID_ZEL_ZOOM_RECTANGLE, OnZoomRect)
ON_COMMAND(ID_ZEL_ZOOM_IN, OnZoomPlus)
ON_COMMAND(ID_ZEL_ZOOM_OUT, OnZoomMinus)
ON_COMMAND(ID_ZEL_FIT_HEIGHT, OnExpwndVert)
ON_COMMAND(ID_ZEL_FIT_WIDTH, OnExpwndHor)
ON_COMMAND(ID_ZEL_FIT_WINDOW, OnExpwnd)
ON_COMMAND(ID_ZEL_FONTS, OnEditFonttable)
ON_COMMAND(ID_ZEL_COLORS, OnEditColortable)
ON_COMMAND(ID_ZEL_PENS, OnEditLinetable)
ON_COMMAND(ID_FILE_PRINT, OnFilePrint)
ON_COMMAND(ID_FILE_PRINT_DIRECT, OnFilePrintDirect)
ON_COMMAND(ID_FILE_PRINT_PREVIEW, OnFilePrintPreview)
ON_UPDATE_COMMAND_UI(ID_ZEL_SELECT, OnUpdatePointZelObject)
ON_UPDATE_COMMAND_UI(ID_ZEL_ZOOM_RECTANGLE, OnUpdateZoomRect)
ON_UPDATE_COMMAND_UI(ID_ZEL_ZOOM_IN, OnUpdateZoomPlus)
ON_UPDATE_COMMAND_UI(ID_ZEL_ZOOM_OUT, OnUpdateZoomMinus)
ON_UPDATE_COMMAND_UI(ID_ZEL_FIT_HEIGHT, OnUpdateExpwndVert)
ON_UPDATE_COMMAND_UI(ID_ZEL_FIT_WIDTH, OnUpdateExpwndHor)
ON_UPDATE_COMMAND_UI(ID_ZEL_FIT_WINDOW, OnUpdateExpwnd)
ON_UPDATE_COMMAND_UI_RANGE(ID_ZEL_FONTS, ID_ZEL_PENS, OnUpdateTables)
END_MESSAGE_MAP()

CZelView::~CZelView() = default;

std::unique_ptr<ZelViewer> CZelView::MakeViewer() {
    return std::make_unique<ZelViewer>(this);
}

void CZelView::SetDrawing(Zel2Tools* drawing) {
    if (viewer_) viewer_->Set(drawing);
}

void CZelView::SetPrintPageExtent(int a, int b) {
    printPageExtent_[0] = a;
    printPageExtent_[1] = b;
}

int CZelView::OnCreate(LPCREATESTRUCT cs) {
    if (CScrollView::OnCreate(cs) == -1) return -1;
    viewer_ = MakeViewer();
    return 0;
}

void CZelView::OnInitialUpdate() {
    SetScrollSizes(MM_TEXT, CSize(100, 100));
    CScrollView::OnInitialUpdate();
}

void CZelView::OnDraw(CDC* dc) {
    if (viewer_) viewer_->OnDraw(dc);
}

void CZelView::OnPrepareDC(CDC* dc, CPrintInfo* info) {
    if (viewer_ && !dc->IsPrinting()) viewer_->UpdateScrollSizes();
    CScrollView::OnPrepareDC(dc, info);
}

BOOL CZelView::OnPreparePrinting(CPrintInfo* info) {
    Zel2Tools* const drawing = viewer_ ? viewer_->Drawing() : nullptr;
    Zel2Report* const report = drawing ? Zel2Report::FirstIn(*drawing) : nullptr;
    if (report && report->IsExact() && report->PageCount() > 0) {
        // The dialog offers as many pages as there are.
        info->SetMaxPage(static_cast<UINT>(report->PageCount()));
        return viewer_->OnPreparePrinting(info);
    }
    const BOOL prepared = viewer_ ? viewer_->OnPreparePrinting(info) : DoPreparePrinting(info);
    info->SetMaxPage(1);
    return prepared;
}

void CZelView::OnBeginPrinting(CDC* dc, CPrintInfo* info) {
    if (viewer_) viewer_->OnBeginPrinting(dc, info);
}
void CZelView::OnEndPrinting(CDC* dc, CPrintInfo* info) {
    if (viewer_) viewer_->OnEndPrinting(dc, info);
}

void CZelView::OnPrint(CDC* dc, CPrintInfo* info) {
    if (!viewer_) return;
    viewer_->SetNumGraphs(printPageExtent_[0], printPageExtent_[1]);
    viewer_->OnPrint(dc, info);
}

void CZelView::OnSize(UINT type, int cx, int cy) {
    CScrollView::OnSize(type, cx, cy);
    if (viewer_) viewer_->OnSize(type, cx, cy);
}
void CZelView::OnVScroll(UINT code, UINT position, CScrollBar* bar) {
    CScrollView::OnVScroll(code, position, bar);
}
void CZelView::OnLButtonDown(UINT flags, CPoint point) {
    if (viewer_) viewer_->OnLButtonDown(flags, point);
    CScrollView::OnLButtonDown(flags, point);
}
void CZelView::OnLButtonUp(UINT flags, CPoint point) {
    if (viewer_) viewer_->OnLButtonUp(flags, point);
    CScrollView::OnLButtonUp(flags, point);
}
// Fine wheels turn in parts of a step.
BOOL CZelView::OnMouseWheel(UINT flags, short delta, CPoint screen) {
    if (!viewer_ || !(flags & MK_CONTROL)) return CScrollView::OnMouseWheel(flags, delta, screen);
    CPoint at = screen;
    ScreenToClient(&at);
    wheelTurned_ += delta;
    for (; wheelTurned_ >= WHEEL_DELTA; wheelTurned_ -= WHEEL_DELTA) viewer_->ZoomAbout(at, 1);
    for (; wheelTurned_ <= -WHEEL_DELTA; wheelTurned_ += WHEEL_DELTA) viewer_->ZoomAbout(at, 0);
    return TRUE;
}

void CZelView::OnMButtonDown(UINT, CPoint point) {
    if (!viewer_ || GetCapture()) return;
    panning_ = true;
    SetCapture();
    ::SetCursor(LoadCursor(IDC_SIZEALL));
    viewer_->StartPan(point);
}

void CZelView::OnMButtonUp(UINT, CPoint) {
    if (!panning_) return;
    panning_ = false;
    if (GetCapture() == this) ReleaseCapture();
    ::SetCursor(nullptr);
}

void CZelView::OnMouseMove(UINT flags, CPoint point) {
    if (panning_) {
        viewer_->PanTo(point);
        return;
    }
    if (viewer_) viewer_->OnMouseMove(flags, point);
    CScrollView::OnMouseMove(flags, point);
}
void CZelView::OnRButtonUp(UINT, CPoint) {
    Default();
}

// With exact rules the second of two clicks is one like any other.
void CZelView::OnLButtonDblClk(UINT flags, CPoint point) {
    Zel2Tools* const drawing = viewer_ ? viewer_->Drawing() : nullptr;
    if (drawing && drawing->IsExact()) {
        OnLButtonDown(flags, point);
    } else {
        Default();
    }
}

void CZelView::OnPointZelObject() {
    if (viewer_) viewer_->OnTestSelectObject();
}
void CZelView::OnZoomRect() {
    if (viewer_) viewer_->OnZoomRectangle();
}
void CZelView::OnZoomPlus() {
    if (viewer_) viewer_->OnZoomEnlarge();
}
void CZelView::OnZoomMinus() {
    if (viewer_) viewer_->OnZoomReduce();
}
void CZelView::OnExpwndVert() {
    if (viewer_) viewer_->OnZoomFitwinverticaly();
}
void CZelView::OnExpwndHor() {
    if (viewer_) viewer_->OnZoomFitwinhorizontaly();
}
void CZelView::OnExpwnd() {
    if (viewer_) viewer_->OnZoomFitwindow();
}
void CZelView::OnEditFonttable() {
    if (viewer_) viewer_->EditFontTable();
}
void CZelView::OnEditColortable() {
    if (viewer_) viewer_->OnTestColorTable();
}
void CZelView::OnEditLinetable() {
    if (viewer_) viewer_->OnTestPenTable();
}

void CZelView::OnUpdatePointZelObject(CCmdUI* ui) {
    if (viewer_) viewer_->OnUpdateTestSelectObject(ui);
}
void CZelView::OnUpdateZoomRect(CCmdUI* ui) {
    if (viewer_) viewer_->OnUpdateZoomRectangle(ui);
}
void CZelView::OnUpdateZoomPlus(CCmdUI* ui) {
    if (viewer_) viewer_->OnUpdateZoomEnlarge(ui);
}
void CZelView::OnUpdateZoomMinus(CCmdUI* ui) {
    if (viewer_) viewer_->OnUpdateZoomReduce(ui);
}
void CZelView::OnUpdateExpwndVert(CCmdUI* ui) {
    if (viewer_) viewer_->OnUpdateZoomFitwinverticaly(ui);
}
void CZelView::OnUpdateExpwndHor(CCmdUI* ui) {
    if (viewer_) viewer_->OnUpdateZoomFitwinhorizontaly(ui);
}
void CZelView::OnUpdateExpwnd(CCmdUI* ui) {
    if (viewer_) viewer_->OnUpdateZoomFitwindow(ui);
}
// The tables can always be edited.
void CZelView::OnUpdateTables(CCmdUI*) {}

int CZelView::CreateToolBar(unsigned id, const unsigned* buttons, int count) {
    CFrameWnd* const frame = GetParentFrame();
    auto bar = std::make_unique<CToolBarPsComboBox>();
    if (!bar->Create(frame, WS_CHILD | WS_VISIBLE, id)) return 0;
    if (!bar->SetButtonsAndCombos(buttons, count)) return 0;
    toolBar_ = std::move(bar);
    if (frame) {
        frame->DockControlBar(toolBar_.get());
    } else {
        toolBar_->SetOwner(this);
    }
    return 1;
}

int CZelView::IdentFilter(CString& s, int option) {
    const int bracket = s.ReverseFind('[');
    if (bracket < 0) return INT_MIN;
    if (option < 0 || option > 2) {
        AfxMessageBox("the option is not specified in CMultiGraphView::IdentFilter");
        return INT_MIN;
    }
    const CString digits = s.Mid(bracket + 1, std::max(0, s.GetLength() - bracket - 2));
    if (option != 1) s = s.Left(bracket);
    return option == 0 ? 0 : std::atoi(digits);
}

#include "core/ArchiveFields.h"

#include <zel/Mapping.h>
#include <zel/Zel2.h>
#include <zel/Zel2Selection.h>
#include <zel/platform/DC.h>
#include <zel/platform/Wnd.h>

IMPLEMENT_SERIAL(Zel2, CObject, 0)

namespace {

constexpr int kMarkerReach = 2;    // pixels from the centre of a control point's marker to its edge
constexpr int kMarkerSize = 5;     // pixels
constexpr int kRepaintMargin = 3;  // pixels around an object, so that its markers are repainted too

}  // namespace

Zel2::Zel2(Zel2* parent, CPoint origin, unsigned long status, CSize size)
    : parent_(parent), origin_(origin), status_(static_cast<DWORD>(status)), dragOffset_(size) {}

Zel2::Zel2(const Zel2& other)
    : CObject(),
      parent_(other.parent_),
      origin_(other.origin_),
      status_(other.status_),
      dragOffset_(other.dragOffset_) {}

Zel2& Zel2::operator=(const Zel2& other) {
    parent_ = other.parent_;
    origin_ = other.origin_;
    status_ = other.status_;
    dragOffset_ = other.dragOffset_;
    return *this;
}

void Zel2::Serialize(CArchive& ar) {
    zel::Exchange(ar, origin_.x, origin_.y, status_);
}

Zel2* Zel2::GetParentClass(int code) const {
    Zel2* ancestor = parent_;
    while (ancestor && !ancestor->IsClass(code)) ancestor = ancestor->parent_;
    return ancestor;
}

// Drawing hooks: what the base has nothing to do for.
void Zel2::OpenOn(CDC*, int) {}
void Zel2::Close() {}
void Zel2::OnDraw() {}
void Zel2::OnPrint(CDC*, CPrintInfo*) {}
void Zel2::OnPrintGraph(CDC*, CPrintInfo*) {}
void Zel2::StartDrag(int) {}
void Zel2::Drag(int, CPoint) {}
void Zel2::EndDrag() {}
void Zel2::EndDrag(int) {}

// Look-ups: asked of the parent, answered by a default at an object without one.
CPoint Zel2::F2L(double x, double y) {
    return parent_ ? parent_->F2L(x, y) : CPoint();
}
CPoint Zel2::F2R(double x, double y) {
    return parent_ ? parent_->F2R(x, y) : CPoint();
}
int Zel2::IsPrinting() {
    return parent_ ? parent_->IsPrinting() : 0;
}
DrawColorTable* Zel2::Colors() {
    return parent_ ? parent_->Colors() : nullptr;
}
DrawFontTable* Zel2::Fonts() {
    return parent_ ? parent_->Fonts() : nullptr;
}
DrawPenTable* Zel2::Pens() {
    return parent_ ? parent_->Pens() : nullptr;
}
DrawSymbolTable* Zel2::Symbols() {
    return parent_ ? parent_->Symbols() : nullptr;
}
Mapping* Zel2::Map() {
    return parent_ ? parent_->Map() : nullptr;
}
CWnd* Zel2::Window() {
    return parent_ ? parent_->Window() : nullptr;
}
int Zel2::Scale() {
    return parent_ ? parent_->Scale() : 1000;
}
CDC* Zel2::DC() {
    return parent_ ? parent_->DC() : nullptr;
}
ZelRules Zel2::Rules() {
    return parent_ ? parent_->Rules() : ZelRules::CLASSIC;
}
int Zel2::GetColorIndex(const char* name) {
    return parent_ ? parent_->GetColorIndex(name) : -1;
}
int Zel2::GetFontIndex(const char* name) {
    return parent_ ? parent_->GetFontIndex(name) : -1;
}
int Zel2::GetPenIndex(const char* name) {
    return parent_ ? parent_->GetPenIndex(name) : -1;
}
int Zel2::GetSymbolIndex(const char* name) {
    return parent_ ? parent_->GetSymbolIndex(name) : -1;
}
int Zel2::OnNotify(Zel2*, long code) {
    return parent_ ? parent_->OnNotify(this, code) : 0;
}

void Zel2::OnLeave(Zel2* object) {
    if (parent_) parent_->OnLeave(object);
}

void Zel2::ResetClip() {
    if (parent_) parent_->ResetClip();
}
void Zel2::SetClipLog(CRgn* region) {
    if (parent_) parent_->SetClipLog(region);
}
void Zel2::SaveTools(CDC* dc) {
    if (parent_) parent_->SaveTools(dc);
}
void Zel2::RestoreTools(CDC* dc) {
    if (parent_) parent_->RestoreTools(dc);
}

int Zel2::RegisterColor(const char* name, unsigned long screen, unsigned long printer) {
    return parent_ ? parent_->RegisterColor(name, screen, printer) : -1;
}

int Zel2::RegisterPen(const char* name, int style, int width, unsigned long screen, unsigned long printer,
                      int* pattern) {
    return parent_ ? parent_->RegisterPen(name, style, width, screen, printer, pattern) : -1;
}

int Zel2::RegisterFont(const char* name, const char* face, int ptSize10, int bold, int italic, int underline,
                       int strikeOut, unsigned long screen, unsigned long printer) {
    return parent_ ? parent_->RegisterFont(name, face, ptSize10, bold, italic, underline, strikeOut, screen,
                                           printer)
                   : -1;
}

int Zel2::RegisterSymbol(const char* name, CSize size, zel::SymbolKind type, const char* text, int penWidth,
                         unsigned long penScreen, unsigned long penPrinter, unsigned long brushScreen,
                         unsigned long brushPrinter, int border, const char* face, int fontSize,
                         unsigned long fontScreen, unsigned long fontPrinter, int* xs, int* ys, int n) {
    return parent_ ? parent_->RegisterSymbol(name, size, type, text, penWidth, penScreen, penPrinter,
                                             brushScreen, brushPrinter, border, face, fontSize, fontScreen,
                                             fontPrinter, xs, ys, n)
                   : -1;
}

int Zel2::IsClass(int) {
    return 0;
}
const WorldFrame* Zel2::Frame() {
    return nullptr;
}
const WorldFrame* Zel2::EnclosingFrame() const {
    for (Zel2* ancestor = parent_; ancestor; ancestor = ancestor->parent_) {
        if (const WorldFrame* frame = ancestor->Frame()) return frame;
    }
    return nullptr;
}
std::vector<std::unique_ptr<Zel2>> Zel2::SplitPages(const PageRoom&) {
    return {};
}
int Zel2::BeginningHeight() {
    return Size().cy;
}
int Zel2::PrintedHeight() {
    return Size().cy;
}
CRect Zel2::PaintedArea() {
    return DeviceRect();
}
bool Zel2::EditInPlace() {
    return false;
}
int Zel2::Ready() {
    return Colors() && Fonts() && Pens() && Map() ? 1 : 0;
}

void Zel2::SetStatus(unsigned long mask, int on) {
    const DWORD bits = static_cast<DWORD>(mask);
    status_ = on ? status_ | bits : status_ & ~bits;
}

int Zel2::Select(int on) {
    if (on == Selected()) return 1;
    SetStatus(SELECTED, on);
    UpdateWindow();
    return 1;
}

CPoint Zel2::AbsOrigin() const {
    // Summed wide and cut once: a deep tree cannot overflow on the way to a result that fits.
    std::int64_t x = 0;
    std::int64_t y = 0;
    for (const Zel2* object = this; object; object = object->parent_) {
        x += object->origin_.x;
        y += object->origin_.y;
    }
    return {zel::Saturate(x), zel::Saturate(y)};
}

CRect Zel2::AbsRect() {
    return {AbsOrigin(), Size()};
}

CSize Zel2::Size() {
    return {};
}
CSize Zel2::MinSize() {
    return Size();
}
void Zel2::SetSize(const CSize&) {}

CPoint Zel2::R2L(const CPoint& rel) {
    const Mapping* map = Map();
    return map ? map->ToLogical(AbsOrigin() + rel) : rel;
}

CRect Zel2::DeviceRect() {
    const Mapping* map = Map();
    CRect area = map ? map->ToDevice(AbsRect()) : AbsRect();
    area.NormalizeRect();
    return area;
}

int Zel2::UpdateWindow() {
    CWnd* window = Window();
    if (!window) return 0;
    CRect area = PaintedArea();
    area.InflateRect(kRepaintMargin, kRepaintMargin);
    window->InvalidateRect(&area, TRUE);
    return 1;
}

void Zel2::MoveTo(const CPoint& p) {
    const CSize size = Size();
    MoveTo(
        CRect(p.x, p.y, zel::Add(p.x, zel::Subtract(size.cx, 1)), zel::Add(p.y, zel::Subtract(size.cy, 1))));
}

void Zel2::MoveTo(const CRect& r) {
    UpdateWindow();
    origin_ = r.TopLeft();
    SetSize(CSize(zel::Add(r.Width(), 1), zel::Add(r.Height(), 1)));
    UpdateWindow();
}

void Zel2::MoveToAbs(const CRect& r) {
    const Mapping* map = Map();
    if (map) MoveTo(map->FromLogical(r - ParentOrigin()));
}

unsigned int Zel2::nCpt() {
    return 0;
}
CPoint Zel2::Cpt(int) {
    return {};
}

void Zel2::DrawCPT() {
    if (!Window()) return;
    for (unsigned int i = 0; i < nCpt(); ++i) DrawCPT(static_cast<int>(i));
}

void Zel2::DrawCPT(int i) {
    CWnd* window = Window();
    if (!window) return;
    CClientDC dc(window);
    const CPoint at = Map()->ToDevice(Cpt(i));
    CRect box(at, CSize());
    box.InflateRect(kMarkerReach, kMarkerReach);
    if (GetStatus(FOCUS)) {
        dc.PatBlt(box.left, box.top, kMarkerSize, kMarkerSize, BLACKNESS);
        return;
    }
    CPen black(PS_SOLID, 1, RGB(0, 0, 0));
    CPen* previous = dc.SelectObject(&black);
    dc.PatBlt(box.left, box.top, kMarkerSize, kMarkerSize, WHITENESS);
    dc.MoveTo(box.left, box.top);
    dc.LineTo(box.left, box.bottom);
    dc.LineTo(box.right, box.bottom);
    dc.LineTo(box.right, box.top);
    dc.LineTo(box.left, box.top);
    dc.SelectObject(previous);
}

int Zel2::CptAt(const CPoint& pt) {
    if (!Selected()) return -1;
    const Mapping* map = Map();
    for (int i = 0; i < static_cast<int>(nCpt()); ++i) {
        const CSize away = pt - map->ToDevice(Cpt(i));
        if (away.cx >= -kMarkerReach && away.cx <= kMarkerReach && away.cy >= -kMarkerReach &&
            away.cy <= kMarkerReach)
            return i;
    }
    return -1;
}

int Zel2::OnClick(const CPoint&) {
    return 0;
}

int Zel2::EdgeAt(const CPoint&) {
    return -1;
}

// With classic rules only what is selected is hit: texts can be picked by a rectangle alone.
int Zel2::IsIn(const CPoint& pt) {
    const bool asked = Selected() || (IsExact() && Map());
    return asked && DeviceRect().PtInRect(pt) ? 1 : 0;
}

Zel2* Zel2::GetSelectableAt(const CPoint& pt) {
    return IsIn(pt) > 0 ? this : nullptr;
}

void Zel2::SelectAt(const CPoint& pt, Zel2Selection* sel) {
    CRect area = Map()->ToLogical(AbsRect());
    area.NormalizeRect();
    if (area.PtInRect(pt)) sel->Add(this);
}

void Zel2::SelectAt(const CRect& r, Zel2Selection* sel) {
    const CRect area = DeviceRect();
    if (area.left >= r.left && area.right <= r.right && area.top >= r.top && area.bottom <= r.bottom)
        sel->Add(this);
}

MouseAction Zel2::OnMouse(const MouseStatus& ms) {
    if (Selected()) {
        const int point = CptAt(ms.point);
        if (point >= 0) return {ZEL_CURSOR_UPARROW, MouseAction::CONTROL_POINT, point, this};
    }
    const int edge = EdgeAt(ms.point);
    if (edge >= 0) return {ZEL_CURSOR_ARROW, MouseAction::EDGE, edge, this};
    if (IsIn(ms.point)) {
        return {Selected() ? ZEL_CURSOR_SIZEALL : ZEL_CURSOR_ARROW, MouseAction::BODY, 0, this};
    }
    return {};
}

void Zel2::StartDrag(const CPoint& pt) {
    dragOffset_ = AbsOrigin() - Map()->FromDevice(pt);
}

void Zel2::DragTo(const CPoint& pt) {
    const CPoint target = Map()->FromDevice(pt) + dragOffset_;
    const CSize relative = target - ParentOrigin();
    MoveTo(CPoint(relative.cx, relative.cy));
}

#include "core/ArchiveFields.h"

#include <zel/DrawColor.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/Zel2Rect.h>
#include <zel/platform/DC.h>
#include <zel/platform/Wnd.h>

IMPLEMENT_SERIAL(Zel2Rect, Zel2, 0)

namespace {

int Middle(LONG a, LONG b, int bias) {
    return static_cast<int>((static_cast<std::int64_t>(a) + b + bias) / 2);
}

}  // namespace

Zel2Rect::Zel2Rect(const CRect& r, int pen, int color, Zel2RectType type, int symbol)
    : type_(type), pen_(pen), color_(color), symbol_(symbol) {
    CRect ordered(r);
    ordered.NormalizeRect();
    Origin(ordered.TopLeft());
    size_ = ordered.Size() + CSize(1, 1);
}

Zel2Rect::Zel2Rect(const Zel2Rect& other) : Zel2(other), type_(other.type_) {
    *this = other;
}

// A drag under way stays with the object that is being dragged.
Zel2Rect& Zel2Rect::operator=(const Zel2Rect& other) {
    if (this == &other) return *this;
    Zel2::operator=(other);
    type_ = other.type_;
    size_ = other.size_;
    pen_ = other.pen_;
    color_ = other.color_;
    symbol_ = other.symbol_;
    return *this;
}

void Zel2Rect::SetSymbolType(DrawSymbol::SYMBOL kind) {
    if (type_ != SYMBOLRECT || kind < zel::SYMBOL_CIRCLE || kind > zel::SYMBOL_CROSS) return;
    for (const int index : {color_, pen_}) {
        if (DrawSymbol* symbol = Symbol(index)) symbol->SetType(kind);
    }
}

void Zel2Rect::SetSize(const CSize& size) {
    if (size == size_) return;
    size_ = size;
    OnResize();
}

void Zel2Rect::OnResize() {
    if (GetParent()) GetParent()->OnNotify(this, RESIZED);
}

int Zel2Rect::RegisterColor(const char* name, unsigned long screen, unsigned long printer) {
    return color_ = Zel2::RegisterColor(name, screen, printer);
}

int Zel2Rect::RegisterPen(const char* name, int style, int width, unsigned long screen, unsigned long printer,
                          int* pattern) {
    return pen_ = Zel2::RegisterPen(name, style, width, screen, printer, pattern);
}

CRect Zel2Rect::WorldBox() const {
    return {AbsOrigin(), size_};
}

CPoint Zel2Rect::Cpt(int i) {
    const CRect box = WorldBox();
    const int xm = Middle(box.left, box.right, 1);
    const int ym = Middle(box.top, box.bottom, 1);
    switch (i) {
        case 0:
            return {box.left, box.bottom};
        case 1:
            return {box.left, ym};
        case 2:
            return {box.left, box.top};
        case 3:
            return {xm, box.top};
        case 4:
            return {box.right, box.top};
        case 5:
            return {box.right, ym};
        case 6:
            return {box.right, box.bottom};
        case 7:
            return {xm, box.bottom};
        default:
            return {-3, -3};
    }
}

void Zel2Rect::DrawShape(const CRect& box) {
    if (type_ == SYMBOLRECT) return;
    if (DrawColor* color = color_ >= 0 ? Color(color_) : nullptr) {
        type_ == ELLIPSE ? color->Ellipse(box) : color->Rect(box);
    }
    if (DrawPen* pen = pen_ >= 0 ? Pen(pen_) : nullptr) {
        type_ == ELLIPSE ? pen->Ellipse(box) : pen->Rect(box);
    }
}

void Zel2Rect::OnDraw() {
    if (!Ready()) return;
    const CRect box = Map()->ToLogical(WorldBox());
    if (symbol_ < 0) {
        DrawShape(box);
    } else if (DrawSymbol* symbol = Symbol(symbol_)) {
        symbol->PlotOn(this, CPoint(Middle(box.left, box.right, 0), Middle(box.top, box.bottom, 0)));
    }
    if (Selected()) DrawCPT();
}

void Zel2Rect::OnPrint(CDC*, CPrintInfo*) {
    OnDraw();
}

int Zel2Rect::IsIn(const CPoint& pt) {
    CRect box = WorldBox();
    box.NormalizeRect();
    return box.PtInRect(Map()->FromDevice(pt)) ? 1 : 0;
}

MouseAction Zel2Rect::OnMouse(const MouseStatus& ms) {
    static constexpr DWORD kCursors[8] = {ZEL_CURSOR_SIZENWSE, ZEL_CURSOR_SIZEWE,   ZEL_CURSOR_SIZENESW,
                                          ZEL_CURSOR_SIZENS,   ZEL_CURSOR_SIZENWSE, ZEL_CURSOR_SIZEWE,
                                          ZEL_CURSOR_SIZENESW, ZEL_CURSOR_SIZENS};
    MouseAction action = Zel2::OnMouse(ms);
    if (action.object && action.action == MouseAction::CONTROL_POINT && action.index >= 0 &&
        action.index < 8) {
        action.cursor = kCursors[action.index];
    }
    return action;
}

void Zel2Rect::BeginDrag() {
    CRect box = Map()->ToDevice(WorldBox());
    box.NormalizeRect();
    dragRect_ = std::make_unique<CRect>(box);
    DrawDrag();
}

void Zel2Rect::StartDrag(int) {
    BeginDrag();
}

void Zel2Rect::StartDrag(const CPoint& pt) {
    Zel2::StartDrag(pt);
    BeginDrag();
}

void Zel2Rect::Drag(int cpt, CPoint pt) {
    if (!dragRect_) return;
    DrawDrag();
    if (cpt == 0 || cpt == 1 || cpt == 2) dragRect_->left = pt.x;
    if (cpt == 4 || cpt == 5 || cpt == 6) dragRect_->right = pt.x;
    if (cpt == 0 || cpt == 6 || cpt == 7) dragRect_->top = pt.y;
    if (cpt == 2 || cpt == 3 || cpt == 4) dragRect_->bottom = pt.y;
    DrawDrag();
}

void Zel2Rect::EndDrag(int) {
    if (!dragRect_) return;
    DrawDrag();
    dragRect_->NormalizeRect();
    UpdateWindow();
    const CRect world = Map()->FromDevice(*dragRect_);
    const CSize relative = CPoint(world.left, world.bottom) - ParentOrigin();
    Origin(CPoint(relative.cx, relative.cy));
    // The height lacks the unit that the width has.
    size_ = CSize(zel::Add(world.Width(), 1), zel::Subtract(world.top, world.bottom));
    OnResize();
    UpdateWindow();
    dragRect_.reset();
}

void Zel2Rect::DragTo(const CPoint& pt) {
    if (!dragRect_) return;
    DrawDrag();
    const CRect moved(Map()->FromDevice(pt) + DragOffset(), size_);
    *dragRect_ = Map()->ToDevice(moved);
    DrawDrag();
}

void Zel2Rect::EndDrag() {
    if (!dragRect_) return;
    DrawDrag();
    const CSize relative = Map()->FromDevice(dragRect_->TopLeft()) - ParentOrigin();
    MoveTo(CPoint(relative.cx, relative.cy));
    dragRect_.reset();
}

void Zel2Rect::DrawDrag() {
    CWnd* window = Window();
    if (!window) return;
    CClientDC dc(window);
    dc.SetROP2(R2_NOTXORPEN);
    CPen dotted(PS_DOT, 1, RGB(0, 0, 0));
    CPen* previous = dc.SelectObject(&dotted);
    if (type_ == ELLIPSE) dc.Ellipse(*dragRect_);
    if (type_ == RECTANGLE) dc.Rectangle(dragRect_.get());
    dc.SelectObject(previous);
}

void Zel2Rect::Serialize(CArchive& ar) {
    Zel2::Serialize(ar);
    zel::Exchange(ar, size_.cx, size_.cy, pen_, color_);
    if (!zel::IsComplete(ar)) return;
    int type = type_;
    zel::Exchange(ar, type, symbol_);
    type_ = type == ELLIPSE || type == SYMBOLRECT ? static_cast<Zel2RectType>(type) : RECTANGLE;
}

#include "core/ArchiveFields.h"

#include <zel/DrawColor.h>
#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/DrawSymbol.h>
#include <zel/Mapping.h>
#include <zel/Zel2.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cstdlib>
#include <span>
#include <typeinfo>

IMPLEMENT_SERIAL(DrawSymbol, DrawTool, 0)
IMPLEMENT_SERIAL(DrawSymbolTable, DrawToolTable, 0)

namespace {

constexpr int kDefaultSize = 50;  // world units

// Percent of the symbol's rectangle, from its left and top edge.
struct Vertex {
    int x;
    int y;
};

constexpr Vertex kSquare[] = {{0, 0}, {0, 100}, {100, 100}, {100, 0}};
constexpr Vertex kTriangleUp[] = {{0, 0}, {50, 100}, {100, 0}};
constexpr Vertex kTriangleLeft[] = {{0, 50}, {100, 100}, {100, 0}};
constexpr Vertex kTallTriangleLeft[] = {{0, 100}, {100, 200}, {100, 0}};
constexpr Vertex kTriangleRight[] = {{0, 0}, {0, 100}, {100, 50}};
constexpr Vertex kTriangleDown[] = {{0, 100}, {100, 100}, {50, 0}};
constexpr Vertex kDiamond[] = {{50, 0}, {0, 50}, {50, 100}, {100, 50}};
constexpr Vertex kPentagonUp[] = {{0, 0}, {0, 70}, {50, 100}, {100, 70}, {100, 0}};
constexpr Vertex kPentagonDown[] = {{0, 30}, {0, 100}, {100, 100}, {100, 30}, {50, 0}};
constexpr Vertex kHexagon[] = {{50, 0}, {0, 25}, {0, 75}, {50, 100}, {100, 75}, {100, 25}};
constexpr Vertex kOctagon[] = {{25, 0},   {0, 25},   {0, 75},   {25, 100},
                               {75, 100}, {100, 75}, {100, 25}, {75, 0}};
constexpr Vertex kOctagonBeside[] = {{100, 0},   {75, 25},  {75, 75},  {100, 100},
                                     {150, 100}, {175, 75}, {175, 25}, {150, 0}};
constexpr Vertex kTallTriangleRight[] = {{0, 0}, {0, 200}, {100, 100}};
constexpr Vertex kCross[] = {{-114, -114}, {-114, 114}, {114, 114}, {114, -114}};

std::span<const Vertex> VerticesOf(int type) {
    switch (type) {
        case zel::SYMBOL_SQUARE:
            return kSquare;
        case zel::SYMBOL_TRIANGLE_UP:
            return kTriangleUp;
        case zel::SYMBOL_TRIANGLE_LEFT:
            return kTriangleLeft;
        case zel::SYMBOL_TALL_TRIANGLE_LEFT:
            return kTallTriangleLeft;
        case zel::SYMBOL_TRIANGLE_RIGHT:
            return kTriangleRight;
        case zel::SYMBOL_TRIANGLE_DOWN:
            return kTriangleDown;
        case zel::SYMBOL_DIAMOND:
            return kDiamond;
        case zel::SYMBOL_PENTAGON_UP:
            return kPentagonUp;
        case zel::SYMBOL_PENTAGON_DOWN:
            return kPentagonDown;
        case zel::SYMBOL_HEXAGON:
            return kHexagon;
        case zel::SYMBOL_OCTAGON:
            return kOctagon;
        case zel::SYMBOL_OCTAGON_BESIDE:
            return kOctagonBeside;
        case zel::SYMBOL_TALL_TRIANGLE_RIGHT:
            return kTallTriangleRight;
        case zel::SYMBOL_CROSS:
            return kCross;
        default:
            return {};
    }
}

bool IsFixedShape(int type) {
    return type >= zel::SYMBOL_CIRCLE && type <= zel::SYMBOL_CROSS;
}

// The tall triangles stand half a height above the point.
bool IsRaised(int type) {
    return type == zel::SYMBOL_TALL_TRIANGLE_LEFT || type == zel::SYMBOL_TALL_TRIANGLE_RIGHT;
}

}  // namespace

DrawSymbol::DrawSymbol(const char* name, CSize size, SYMBOL type, const char* text, int penWidth,
                       COLORREF penScr, COLORREF penPrn, COLORREF brushScr, COLORREF brushPrn, int border,
                       const char* face, int fontSize, COLORREF fontScr, COLORREF fontPrn, int* xs, int* ys,
                       int n)
    : DrawTool(name),
      size_(size),
      text_(text ? text : ""),
      type_(type),
      border_(border),
      penWidth_(penWidth),
      fontSize_(fontSize),
      pen_{penScr, penPrn},
      brush_{brushScr, brushPrn},
      font_{fontScr, fontPrn},
      face_(face ? face : "") {
    if (type == zel::SYMBOL_CUSTOM && xs && ys && n >= 1) {
        customX_.assign(xs, xs + n);
        customY_.assign(ys, ys + n);
    }
}

DrawSymbol::DrawSymbol(const DrawSymbol& other) : DrawTool(other) {
    CopyFrom(&other);
}

DrawSymbol& DrawSymbol::operator=(const DrawSymbol& other) {
    if (this == &other) return *this;
    DrawTool::operator=(other);
    CopyFrom(&other);
    return *this;
}

DrawTool& DrawSymbol::operator=(const DrawTool& other) {
    const auto* symbol = dynamic_cast<const DrawSymbol*>(&other);
    return symbol ? *this = *symbol : DrawTool::operator=(other);
}

DrawTool* DrawSymbol::ACopy() {
    return new DrawSymbol(*this);
}

void DrawSymbol::CopyFrom(const DrawSymbol* other) {
    if (other == this) return;
    if (other->type_ == zel::SYMBOL_CUSTOM) {
        type_ = zel::SYMBOL_CUSTOM;
        customX_ = other->customX_;
        customY_ = other->customY_;
    } else {
        customX_.clear();
        customY_.clear();
        if (IsFixedShape(other->type_)) type_ = other->type_;
    }
    if (typeid(*this) == typeid(DrawSymbol)) {
        size_ = other->size_;
    } else {
        SetSize(other->size_);
    }
    text_ = other->text_;
    border_ = other->border_;
    fontSize_ = other->fontSize_;
    pen_ = other->pen_;
    brush_ = other->brush_;
    font_ = other->font_;
    face_ = other->face_;
    CopyOpacity(*other);
    penIndex_ = colorIndex_ = fontIndex_ = -1;
}

void DrawSymbol::SetType(SYMBOL type) {
    if (IsFixedShape(type)) type_ = type;
}

void DrawSymbol::SetType(const std::vector<int>& xs, const std::vector<int>& ys) {
    type_ = zel::SYMBOL_CUSTOM;
    customX_ = xs;
    customY_ = ys;
}

void DrawSymbol::SetPenData(int, COLORREF scr, COLORREF prn) {
    pen_ = {scr, prn};
    penIndex_ = -1;
}

void DrawSymbol::SetBrushData(COLORREF scr, COLORREF prn) {
    brush_ = {scr, prn};
    colorIndex_ = -1;
}

void DrawSymbol::SetFontData(const char* face, int size, COLORREF scr, COLORREF prn) {
    face_ = face;
    fontSize_ = size;
    font_ = {scr, prn};
    fontIndex_ = -1;
}

void DrawSymbol::GetPenData(int& width, COLORREF& scr, COLORREF& prn) const {
    width = penWidth_;
    scr = pen_.screen;
    prn = pen_.print;
}

void DrawSymbol::GetBrushData(COLORREF& scr, COLORREF& prn) const {
    scr = brush_.screen;
    prn = brush_.print;
}

void DrawSymbol::GetFontData(CString& face, int& size, COLORREF& scr, COLORREF& prn) const {
    face = face_;
    size = fontSize_;
    scr = font_.screen;
    prn = font_.print;
}

void DrawSymbol::GiveOpacity(DrawTool* registered) const {
    if (registered && Opacity() < 1) registered->Opacity(Opacity());
}

void DrawSymbol::SetDefaults(Zel2* obj) {
    if (fontIndex_ < 0 && HasLabel()) {
        const CString name = NameRef() + " - Symbol Text";
        fontIndex_ = obj->GetFontIndex(name);
        if (fontIndex_ < 0) {
            fontIndex_ = obj->RegisterFont(name, face_, fontSize_, 0, 0, 0, 0, font_.screen, font_.print);
            GiveOpacity(obj->Font(fontIndex_));
        }
    }
    if (size_.cx == 0) {
        // A labelled symbol is as large as its label's letters; font index 0 counts as no font here.
        const DrawFont* font = fontIndex_ > 0 ? obj->Font(fontIndex_) : nullptr;
        const int side = font ? static_cast<int>(font->PtSize10() * 1000LL / 72 / 10) : kDefaultSize;
        size_ = CSize(side, side);
    }
    if (penIndex_ < 0 && (border_ || type_ == zel::SYMBOL_CROSS)) {
        const CString name = NameRef() + " - Border Line";
        penIndex_ = obj->GetPenIndex(name);
        if (penIndex_ < 0) {
            penIndex_ = obj->RegisterPen(name, DrawPen::SOLID, penWidth_, pen_.screen, pen_.print, nullptr);
            GiveOpacity(obj->Pen(penIndex_));
        }
    }
    if (colorIndex_ < 0 && type_ != zel::SYMBOL_CROSS) {
        const CString name = NameRef() + " - Background";
        colorIndex_ = obj->GetColorIndex(name);
        if (colorIndex_ < 0) {
            colorIndex_ = obj->RegisterColor(name, brush_.screen, brush_.print);
            GiveOpacity(obj->Color(colorIndex_));
        }
    }
}

CRect DrawSymbol::RectAround(Zel2* obj, const CPoint& pt) {
    const Mapping* map = obj->Map();
    const int w = map ? map->ScaleX(map->Zoomed(size_.cx)) : size_.cx;
    const int h = map ? map->ScaleY(map->Zoomed(size_.cy)) : size_.cy;
    return {CPoint(zel::Subtract(pt.x, w / 2), zel::Subtract(pt.y, h / 2)), CSize(w, h)};
}

// The vertices in logical units, the first repeated at the end; none for the circle and unknown shapes.
std::vector<CPoint> DrawSymbol::Outline(const CRect& box) const {
    std::vector<CPoint> outline;
    const auto add = [&](int x, int y) {
        outline.push_back({zel::Add(box.left, MulDiv(x, box.Width(), 100)),
                           zel::Add(box.top, MulDiv(y, box.Height(), 100))});
    };
    if (type_ == zel::SYMBOL_CUSTOM) {
        for (std::size_t i = 0; i < std::min(customX_.size(), customY_.size()); ++i)
            add(customX_[i], customY_[i]);
    } else {
        for (const Vertex& vertex : VerticesOf(type_)) add(vertex.x, vertex.y);
    }
    if (!outline.empty()) outline.push_back(outline.front());
    return outline;
}

void DrawSymbol::DrawCross(DrawPen& pen, const std::vector<CPoint>& vertices) {
    pen.LineTo(vertices[2].x, vertices[2].y);
    pen.MoveTo(vertices[3].x, vertices[3].y);
    pen.LineTo(vertices[1].x, vertices[1].y);
}

void DrawSymbol::DrawShape(const Tools& tools, const CRect& box) const {
    if (type_ == zel::SYMBOL_CIRCLE) {
        if (tools.color) tools.color->Ellipse(box);
        if (tools.pen) tools.pen->Ellipse(box);
        return;
    }
    std::vector<CPoint> outline = Outline(box);
    if (outline.empty()) return;
    if (tools.color) tools.color->Polygon(outline.data(), static_cast<int>(outline.size()));
    if (!tools.pen) return;
    tools.pen->MoveTo(outline[0].x, outline[0].y);
    if (type_ == zel::SYMBOL_CROSS) {
        DrawCross(*tools.pen, outline);
        return;
    }
    for (std::size_t i = 1; i < outline.size(); ++i) tools.pen->LineTo(outline[i].x, outline[i].y);
}

// Where the label's rectangle is moved, so that the text sits in the bulk of the shape. The sideways offsets
// of the triangles come from the height.
CPoint DrawSymbol::LabelOffset(const CRect& box) const {
    const int w = box.Width();
    const int h = box.Height();
    switch (type_) {
        case zel::SYMBOL_TRIANGLE_UP:
            return {0, -(h / 6)};
        case zel::SYMBOL_TRIANGLE_LEFT:
        case zel::SYMBOL_TALL_TRIANGLE_LEFT:
            return {h / 6, 0};
        case zel::SYMBOL_TRIANGLE_RIGHT:
        case zel::SYMBOL_TALL_TRIANGLE_RIGHT:
            return {-(h / 6), 0};
        case zel::SYMBOL_TRIANGLE_DOWN:
            return {0, h / 6};
        case zel::SYMBOL_PENTAGON_UP:
            return {0, -(h / 10)};
        case zel::SYMBOL_PENTAGON_DOWN:
            return {0, h / 10};
        case zel::SYMBOL_OCTAGON_BESIDE:
            return {w / 2, 0};
        default:
            return {0, 0};
    }
}

void DrawSymbol::PlotOn(Zel2* obj, CPoint pt) {
    SetDefaults(obj);
    CRect box = RectAround(obj, pt);
    DrawFont* font = fontIndex_ >= 0 && HasLabel() ? obj->Font(fontIndex_) : nullptr;
    if (IsRaised(type_)) box.OffsetRect(0, -(box.Height() / 2));
    DrawShape({obj->Pen(penIndex_), obj->Color(colorIndex_), font}, box);
    if (!font) return;
    const CPoint offset = LabelOffset(box);
    box.OffsetRect(offset.x, offset.y);
    box.NormalizeRect();
    font->Print(text_, box, DT_CENTER | DT_VCENTER);
}

bool DrawSymbol::IsPlainDisc(Zel2* obj) {
    SetDefaults(obj);
    return type_ == zel::SYMBOL_CIRCLE && !HasLabel() && !obj->Pen(penIndex_) && obj->Color(colorIndex_);
}

// What is drawn for the origin: the shape, which may reach over the symbol's rectangle, and half its outline.
CRect DrawSymbol::BoxOfMark(Zel2* obj) {
    CRect rect = RectAround(obj, CPoint(0, 0));
    if (IsRaised(type_)) rect.OffsetRect(0, -(rect.Height() / 2));
    CRect box = rect;
    box.NormalizeRect();
    for (const CPoint& corner : Outline(rect))
        box = CRect(std::min(box.left, corner.x), std::min(box.top, corner.y), std::max(box.right, corner.x),
                    std::max(box.bottom, corner.y));
    const DrawPen* const pen = obj->Pen(penIndex_);
    CSize inch(obj->DC()->GetDeviceCaps(LOGPIXELSX), 1);
    obj->DC()->DPtoLP(&inch);
    const int tenths = pen ? MulDiv(std::max(pen->Width(), 0), obj->Scale(), 1000) : 0;
    const int reach = MulDiv(tenths, std::abs(inch.cx), 254) / 2 + 1;
    box.InflateRect(reach, reach);
    return box;
}

void DrawSymbol::PlotOn(Zel2* obj, std::span<const CPoint> points) {
    // A device that looks at each figure gets each, where its rectangle is rounded to. How far a label
    // reaches is not known before it is drawn.
    CDC* const dc = obj->DC();
    const bool disc = IsPlainDisc(obj);
    if (!dc || dc->CurveColumn() == 0 || (!disc && HasLabel())) {
        for (const CPoint& pt : points) PlotOn(obj, pt);
    } else if (disc) {
        obj->Color(colorIndex_)->Ellipses(points, RectAround(obj, CPoint(0, 0)));
    } else {
        dc->Marks(points, BoxOfMark(obj), [&] { PlotOn(obj, CPoint(0, 0)); });
    }
}

void DrawSymbol::PlotOn(Zel2* obj, double x, double y) {
    const WorldFrame* limits = obj->EnclosingFrame();
    if (limits && limits->Contains(x, y)) PlotOn(obj, obj->F2L(x, y));
}

void DrawSymbol::Serialize(CArchive& ar) {
    if (zel::IsComplete(ar)) {
        ExchangeName(ar);
        zel::Exchange(ar, border_, printer_);
    }
    // The size stands twice in the record.
    for (int i = 0; i < 2; ++i) zel::Exchange(ar, size_.cx, size_.cy);
    int type = type_;
    zel::Exchange(ar, text_, penIndex_, colorIndex_, fontIndex_, type, penWidth_, fontSize_, pen_.screen,
                  pen_.print, brush_.screen, brush_.print, font_.screen, font_.print, face_);
    type_ = static_cast<SYMBOL>(type);
    int count = NCustom();
    zel::Exchange(ar, count);
    if (ar.IsLoading()) {
        if (count < 0) count = 0;
        ar.CheckCount(count, 2 * sizeof(int));
        customX_.resize(static_cast<std::size_t>(count));
        customY_.resize(static_cast<std::size_t>(count));
    }
    customY_.resize(customX_.size());
    zel::ExchangeRaw(ar, customX_.data(), customX_.size() * sizeof(int));
    zel::ExchangeRaw(ar, customY_.data(), customY_.size() * sizeof(int));
    ExchangeOpacity(ar);
}

DrawSymbolTable& DrawSymbolTable::operator=(const DrawSymbolTable& other) {
    CopyFrom(&other);
    return *this;
}

int DrawSymbolTable::RegisterSymbol(const char* name, CSize size, DrawSymbol::SYMBOL type, const char* text,
                                    int penWidth, COLORREF penScr, COLORREF penPrn, COLORREF brushScr,
                                    COLORREF brushPrn, int border, const char* face, int fontSize,
                                    COLORREF fontScr, COLORREF fontPrn, int* xs, int* ys, int n) {
    return Register(new DrawSymbol(name, size, type, text, penWidth, penScr, penPrn, brushScr, brushPrn,
                                   border, face, fontSize, fontScr, fontPrn, xs, ys, n));
}

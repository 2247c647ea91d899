#include "core/ArchiveFields.h"
#include "layout/InPlaceEditor.h"

#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/Zel2Rect.h>
#include <zel/Zel2Text.h>
#include <zel/platform/DC.h>
#include <zel/platform/Wnd.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <numbers>
#include <string>

IMPLEMENT_SERIAL(Zel2Text, Zel2, 0)

namespace {

constexpr int kCorners = 4;
constexpr int kRoomToType = 4;  // line heights beside the text in its editor

}  // namespace

Zel2Text::Zel2Text(Zel2* parent) {
    SetParent(parent);
}

Zel2Text::Zel2Text(const char* text, const CPoint& at, int font, int format, int angle, int frame,
                   int background, const Rule& rule)
    : text_(text),
      format_(static_cast<unsigned>(format)),
      font_(font),
      background_(background),
      frame_(frame),
      angle_(angle),
      rule_(rule) {
    Origin(at);
}

Zel2Text::Zel2Text(const char* text, const CRect& r, int font, int format, int angle, int frame,
                   int background, const Rule& rule)
    : Zel2Text(text, CPoint(r.left, r.top), font, format, angle, frame, background, rule) {
    const int height = zel::Add(r.Height(), 1);
    size_ = CSize(zel::Add(r.Width(), 1), height < 0 ? -height : height);
}

Zel2Text::Zel2Text(const Zel2Text& other) : Zel2(other) {
    *this = other;
}

Zel2Text::~Zel2Text() = default;

Zel2Text& Zel2Text::operator=(const Zel2Text& other) {
    if (this == &other) return *this;
    Zel2::operator=(other);
    text_ = other.text_;
    format_ = other.format_;
    size_ = other.size_;
    font_ = other.font_;
    background_ = other.background_;
    frame_ = other.frame_;
    angle_ = other.angle_;
    rule_ = other.rule_;
    return *this;
}

Zel2Text& Zel2Text::operator=(const char* text) {
    text_ = text;
    return *this;
}

CString Zel2Text::GetText() {
    if (editor_) editor_->Store();
    return text_;
}

void Zel2Text::SetText(const char* format, ...) {
    CString text;
    va_list arguments;
    va_start(arguments, format);
    text.FormatMessageV(format, &arguments);
    va_end(arguments);
    SetPlainText(text);
}

void Zel2Text::SetPlainText(const char* text) {
    if (IsExact()) UpdateWindow();
    text_ = text;
    if (CZel2Edit* const field = Editor()) field->SetWindowText(text_);
    MeasureForWindow();
    UpdateWindow();
}

void Zel2Text::DrawBackground() {
    if (background_ < 0 && frame_ < 0) return;
    // A box built from corners that both belong to it: with classic rules a unit larger than the text each
    // way, with exact rules as large, so that the frames of neighbours are one line.
    const int less = IsExact() && size_.cx > 0 && size_.cy > 0 ? 1 : 0;
    Zel2Rect box(CRect(0, 0, size_.cx - less, size_.cy - less), frame_, background_, Zel2Rect::RECTANGLE, -1);
    box.SetParent(this);
    box.OnDraw();
}

void Zel2Text::DrawRule(CRect box) {
    DrawPen* pen = rule_.first >= 0 ? Pen(rule_.first) : nullptr;
    if (!pen) return;
    box.NormalizeRect();
    const int y = zel::Add(
        box.top, zel::Truncate(static_cast<double>(static_cast<float>(box.Height()) * rule_.second)));
    pen->MoveTo(box.left, y);
    pen->LineTo(box.right, y);
}

void Zel2Text::OnDraw() {
    if (!Ready()) return;
    const CPoint at = AbsOrigin();
    CRect box = Map()->ToLogical(CRect(at, at + size_ - CSize(1, 1)));
    DrawBackground();
    if (DrawFont* font = Font(font_)) {
        // The drawing shows through the editor: the text in it is the only one to be seen.
        const bool edited = IsEditing() && Window();
        if (!edited && size_.cx > 0) font->Print(text_, box, format_);
        if (!edited && size_.cx <= 0) font->Print(text_, Map()->ToLogical(at), angle_, format_);
        if (IsExact()) drawn_ = font->Extent(text_, Angle());
        if (edited) editor_->Place(EditorArea(), font);
    }
    DrawRule(box);
    if (!Selected() || !StandsAtPoint()) return;
    for (int i = 0; i < kCorners; ++i) DrawCPT(i);
}

// What a text covers that the window has not drawn yet.
void Zel2Text::MeasureForWindow() {
    CWnd* const window = IsExact() ? Window() : nullptr;
    DrawFont* const font = window && Map() ? Font(font_) : nullptr;
    if (!font) return;
    CClientDC dc(window);
    const std::unique_ptr<CFont> made(font->GetFont(&dc));
    CFont* const previous = dc.SelectObject(made.get());
    drawn_ = CSize();
    const std::string text = text_.GetString();
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const CSize line = dc.GetTextExtent(text.substr(begin, end - begin).c_str());
        drawn_ = CSize(std::max(drawn_.cx, line.cx), zel::Add(drawn_.cy, line.cy));
        begin = end + 1;
    }
    dc.SelectObject(previous);
}

// The lines of a text before it is turned about its anchor, in device pixels from there, y downwards.
struct Zel2Text::Lines {
    double left, top, right, bottom;
    double cosine, sine;
};

bool Zel2Text::StandsAtPoint() {
    return size_.cx <= 0 && IsExact() && Map();
}

int Zel2Text::Angle() const {
    return size_.cx <= 0 ? angle_ : 0;
}

// The point of the text that its format names, in device pixels; in a box as DrawFont::Print chooses it.
CPoint Zel2Text::Anchor() {
    const CPoint at = AbsOrigin();
    if (size_.cx <= 0) return Map()->ToDevice(at);
    const CRect box = Map()->ToDevice(CRect(at, at + size_ - CSize(1, 1)));
    const unsigned vertical = format_ & (DT_VCENTER | DT_BOTTOM),
                   horizontal = format_ & (DT_CENTER | DT_RIGHT);
    const auto middle = [](LONG a, LONG b) { return static_cast<LONG>((std::int64_t{a} + b) / 2); };
    return {horizontal == DT_CENTER  ? middle(box.left, box.right)
            : horizontal == DT_RIGHT ? box.right
                                     : box.left,
            vertical == DT_VCENTER ? middle(box.top, box.bottom)
            : vertical != 0        ? box.top
                                   : box.bottom};
}

Zel2Text::Lines Zel2Text::LinesAsDrawn() const {
    const double angle = Angle() * std::numbers::pi / 1800;
    const double left = format_ & DT_CENTER ? -drawn_.cx / 2.0 : format_ & DT_RIGHT ? -drawn_.cx : 0;
    const double top = format_ & DT_VCENTER ? -drawn_.cy / 2.0 : format_ & DT_BOTTOM ? -drawn_.cy : 0;
    return {left, top, left + drawn_.cx, top + drawn_.cy, std::cos(angle), std::sin(angle)};
}

int Zel2Text::IsIn(const CPoint& pt) {
    if (!StandsAtPoint()) return Zel2::IsIn(pt);
    // Turned back about the point, the text lies level.
    const CSize away = pt - Anchor();
    const Lines lines = LinesAsDrawn();
    const double along = away.cx * lines.cosine - away.cy * lines.sine;
    const double down = away.cx * lines.sine + away.cy * lines.cosine;
    return along >= lines.left && along < lines.right && down >= lines.top && down < lines.bottom ? 1 : 0;
}

// In device pixels, round the text.
CPoint Zel2Text::Corner(int i) {
    const Lines lines = LinesAsDrawn();
    const double along = i == 0 || i == 3 ? lines.left : lines.right;
    const double down = i < 2 ? lines.top : lines.bottom;
    return Anchor() + CSize(zel::Truncate(along * lines.cosine + down * lines.sine),
                            zel::Truncate(down * lines.cosine - along * lines.sine));
}

CPoint Zel2Text::Cpt(int i) {
    return StandsAtPoint() ? Map()->FromDevice(Corner(i)) : Zel2::Cpt(i);
}

// A text covers more than its size says: one at a point, and one that its box is too small for.
CRect Zel2Text::PaintedArea() {
    CRect area = Zel2::PaintedArea();
    if (!IsExact() || !Map()) return area;
    const auto take = [&area](const CPoint& p) {
        area = CRect(std::min(area.left, p.x), std::min(area.top, p.y), std::max(area.right, p.x),
                     std::max(area.bottom, p.y));
    };
    for (int i = 0; i < kCorners; ++i) {
        take(Corner(i));
        // Where the mark is drawn: by way of drawing units, which are coarser than pixels in a large zoom.
        if (StandsAtPoint()) take(Map()->ToDevice(Cpt(i)));
    }
    return area;
}

int Zel2Text::Select(int on) {
    const int done = Zel2::Select(on);
    if (const auto closed = on ? nullptr : std::move(editor_)) {
        UpdateWindow();
        closed->Close();
        MeasureForWindow();
        UpdateWindow();
    }
    return done;
}

bool Zel2Text::IsEditing() const {
    return editor_ && editor_->IsOpen();
}

CZel2Edit* Zel2Text::Editor() {
    return editor_ ? editor_->Field() : nullptr;
}

bool Zel2Text::EditInPlace() {
    if (!IsExact() || !Map() || !Window()) return false;
    if (IsEditing()) return true;
    if (!editor_) editor_ = std::make_unique<zel::InPlaceEditor>(*this, text_);
    const bool lines = text_.Find('\n') >= 0;
    if (!editor_->Open(zel::InPlaceEditor::StyleOf(lines, format_), EditorArea(), Font(font_)))
        editor_.reset();
    UpdateWindow();
    return IsEditing();
}

// Level, about the middle of the text as it stands, with room to type on the sides to which it grows.
CRect Zel2Text::EditorArea() {
    const CPoint a = Corner(0), c = Corner(2);
    const LONG room = kRoomToType * drawn_.cy;
    const bool level = Angle() == 0;
    const LONG left = !level ? (a.x + c.x - drawn_.cx) / 2 : a.x;
    const LONG top = !level ? (a.y + c.y - drawn_.cy) / 2 : a.y;
    const LONG before = format_ & DT_RIGHT ? room : format_ & DT_CENTER ? room / 2 : 0;
    return {left - before, top, left - before + drawn_.cx + room, top + drawn_.cy};
}

void Zel2Text::OnPrint(CDC*, CPrintInfo*) {
    OnDraw();
}

void Zel2Text::Serialize(CArchive& ar) {
    Zel2::Serialize(ar);
    zel::Exchange(ar, text_, format_, size_.cx, size_.cy, font_, background_, frame_, angle_);
    if (zel::IsComplete(ar)) zel::Exchange(ar, rule_.first, rule_.second);
}

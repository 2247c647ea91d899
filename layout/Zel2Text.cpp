#include "core/ArchiveFields.h"

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

constexpr int kMarkReach = 3;  // pixels from a corner to where its mark ends

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

void Zel2Text::SetText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    text_.FormatMessageV(format, &arguments);
    va_end(arguments);
    Repaint();
}

void Zel2Text::SetPlainText(const char* text) {
    text_ = text;
    Repaint();
}

void Zel2Text::DrawBackground() {
    if (background_ < 0 && frame_ < 0) return;
    // A box built from corners that both belong to it: a unit larger than the text each way.
    Zel2Rect box(CRect(0, 0, size_.cx, size_.cy), frame_, background_, Zel2Rect::RECTANGLE, -1);
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
        if (size_.cx > 0) {
            font->Print(text_, box, format_);
        } else {
            font->Print(text_, Map()->ToLogical(at), angle_, format_);
            MeasureLines();
        }
    }
    DrawRule(box);
    if (!Selected() || !StandsAtPoint()) return;
    for (int i = 0; i < 4; ++i) DrawCPT(i);
}

// The font of the text is still selected.
void Zel2Text::MeasureLines() {
    CDC* const dc = DC();
    if (!dc || !IsExact()) return;
    drawn_ = CSize();
    const std::string text = text_.GetString();
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const CSize line = dc->GetTextExtent(text.substr(begin, end - begin).c_str());
        drawn_ = CSize(std::max(drawn_.cx, line.cx), zel::Add(drawn_.cy, line.cy));
        begin = end + 1;
    }
}

// The lines of a text before it is turned about its point, in device pixels from there, y downwards.
struct Zel2Text::Lines {
    double left, top, right, bottom;
    double cosine, sine;
};

bool Zel2Text::StandsAtPoint() {
    return size_.cx <= 0 && IsExact() && Map();
}

Zel2Text::Lines Zel2Text::LinesAsDrawn() const {
    const double angle = angle_ * std::numbers::pi / 1800;
    const double left = format_ & DT_CENTER ? -drawn_.cx / 2.0 : format_ & DT_RIGHT ? -drawn_.cx : 0;
    const double top = format_ & DT_VCENTER ? -drawn_.cy / 2.0 : format_ & DT_BOTTOM ? -drawn_.cy : 0;
    return {left, top, left + drawn_.cx, top + drawn_.cy, std::cos(angle), std::sin(angle)};
}

int Zel2Text::IsIn(const CPoint& pt) {
    if (!StandsAtPoint()) return Zel2::IsIn(pt);
    // Turned back about the point, the text lies level.
    const CSize away = pt - Map()->ToDevice(AbsOrigin());
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
    return Map()->ToDevice(AbsOrigin()) + CSize(zel::Truncate(along * lines.cosine + down * lines.sine),
                                                zel::Truncate(down * lines.cosine - along * lines.sine));
}

CPoint Zel2Text::Cpt(int i) {
    return StandsAtPoint() ? Map()->FromDevice(Corner(i)) : Zel2::Cpt(i);
}

// A text at a point covers more than its size says.
void Zel2Text::Repaint() {
    UpdateWindow();
    CWnd* const window = Window();
    if (!window || !StandsAtPoint()) return;
    CRect area(Corner(0), CSize());
    for (int i = 1; i < 4; ++i) {
        const CPoint corner = Corner(i);
        area = CRect(std::min(area.left, corner.x), std::min(area.top, corner.y),
                     std::max(area.right, corner.x), std::max(area.bottom, corner.y));
    }
    area.InflateRect(kMarkReach, kMarkReach);
    window->InvalidateRect(&area, TRUE);
}

int Zel2Text::Select(int on) {
    const bool changes = on != Selected();
    const int done = Zel2::Select(on);
    if (changes) Repaint();
    return done;
}

void Zel2Text::MoveTo(const CRect& r) {
    Repaint();
    Zel2::MoveTo(r);
    Repaint();
}

void Zel2Text::OnPrint(CDC*, CPrintInfo*) {
    OnDraw();
}

void Zel2Text::Serialize(CArchive& ar) {
    Zel2::Serialize(ar);
    zel::Exchange(ar, text_, format_, size_.cx, size_.cy, font_, background_, frame_, angle_);
    if (zel::IsComplete(ar)) zel::Exchange(ar, rule_.first, rule_.second);
}

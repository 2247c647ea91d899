#include "core/ArchiveFields.h"

#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/Zel2Rect.h>
#include <zel/Zel2Text.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <numbers>
#include <string>

IMPLEMENT_SERIAL(Zel2Text, Zel2, 0)

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
    UpdateWindow();
}

void Zel2Text::SetPlainText(const char* text) {
    text_ = text;
    UpdateWindow();
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

int Zel2Text::IsIn(const CPoint& pt) {
    if (size_.cx > 0 || !IsExact() || !Map()) return Zel2::IsIn(pt);
    // Turned back about the point, the text lies level.
    const CSize away = pt - Map()->ToDevice(AbsOrigin());
    const double angle = angle_ * std::numbers::pi / 1800;
    const double along = away.cx * std::cos(angle) - away.cy * std::sin(angle);
    const double down = away.cx * std::sin(angle) + away.cy * std::cos(angle);
    const double left = format_ & DT_CENTER ? -drawn_.cx / 2.0 : format_ & DT_RIGHT ? -drawn_.cx : 0;
    const double top = format_ & DT_VCENTER ? -drawn_.cy / 2.0 : format_ & DT_BOTTOM ? -drawn_.cy : 0;
    return along >= left && along < left + drawn_.cx && down >= top && down < top + drawn_.cy ? 1 : 0;
}

void Zel2Text::OnPrint(CDC*, CPrintInfo*) {
    OnDraw();
}

void Zel2Text::Serialize(CArchive& ar) {
    Zel2::Serialize(ar);
    zel::Exchange(ar, text_, format_, size_.cx, size_.cy, font_, background_, frame_, angle_);
    if (zel::IsComplete(ar)) zel::Exchange(ar, rule_.first, rule_.second);
}

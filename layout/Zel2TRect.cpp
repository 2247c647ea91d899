#include "core/ArchiveFields.h"

#include <zel/DrawFont.h>
#include <zel/Mapping.h>
#include <zel/Zel2TRect.h>

#include <cstdarg>
#include <cstdlib>

IMPLEMENT_SERIAL(Zel2TRect, Zel2Rect, 0)

namespace {

constexpr int kUnitsPerInch = 1000;
constexpr int kPointsPerInch = 72;

}  // namespace

Zel2TRect::Zel2TRect(const CRect& r, const char* text, int pen, int color)
    : Zel2Rect(r, pen, color, RECTANGLE, -1), text_(text) {}

void Zel2TRect::SetText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    text_.FormatMessageV(format, &arguments);
    va_end(arguments);
    UpdateWindow();
}

void Zel2TRect::SetPlainText(const char* text) {
    text_ = text;
    UpdateWindow();
}

void Zel2TRect::SetStyle(int wrap, int format) {
    wrap_ = wrap;
    format_ = format;
}

void Zel2TRect::GetStyle(int& wrap, int& format) const {
    wrap = wrap_;
    format = format_;
}

int Zel2TRect::RegisterFont(const char* name, const char* face, int ptSize10, int bold, int italic,
                            int underline, int strikeOut, unsigned long screen, unsigned long printer) {
    return font_ = Zel2Rect::RegisterFont(name, face, ptSize10, bold, italic, underline, strikeOut, screen,
                                          printer);
}

// The height is taken as it measures, whichever way y points; the width with its sign.
void Zel2TRect::InflateRect(CRect& r) {
    const Mapping* map = Map();
    if (!map) return;
    const int dx = map->ScaleX(map->Zoomed(MulDiv(border_.cx, kUnitsPerInch, kPointsPerInch)));
    const int dy = map->ScaleY(map->Zoomed(MulDiv(border_.cy, kUnitsPerInch, kPointsPerInch)));
    r.InflateRect(-dx, -std::abs(dy));
}

void Zel2TRect::OnDraw() {
    Zel2Rect::OnDraw();
    DrawFont* font = Ready() ? Font(font_) : nullptr;
    if (!font) return;
    CRect box = Map()->ToLogical(AbsRect());
    box.NormalizeRect();
    InflateRect(box);
    font->DrawText(text_, &box, static_cast<unsigned>(format_) | (wrap_ ? DT_WORDBREAK : 0));
}

int Zel2TRect::Select(int on) {
    if (GetStatus(PROPAGATE) && on != Selected()) {
        SetStatus(SELECTED, on);
        UpdateWindow();
    }
    return 1;
}

void Zel2TRect::Serialize(CArchive& ar) {
    Zel2Rect::Serialize(ar);
    zel::Exchange(ar, text_, font_, border_.cx, border_.cy, format_, wrap_);
}

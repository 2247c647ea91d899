#include "core/ArchiveFields.h"
#include "layout/InPlaceEditor.h"

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

Zel2TRect::Zel2TRect() = default;

Zel2TRect::Zel2TRect(const CRect& r, const char* text, int pen, int color)
    : Zel2Rect(r, pen, color, RECTANGLE, -1), text_(text) {}

Zel2TRect::Zel2TRect(const Zel2TRect& other) : Zel2Rect(other) {
    *this = other;
}

Zel2TRect& Zel2TRect::operator=(const Zel2TRect& other) {
    if (this == &other) return *this;
    Zel2Rect::operator=(other);
    text_ = other.text_;
    if (other.IsEditing()) other.editor_->Field()->GetWindowText(text_);
    font_ = other.font_;
    border_ = other.border_;
    format_ = other.format_;
    wrap_ = other.wrap_;
    return *this;
}

Zel2TRect::~Zel2TRect() = default;

// Shows a new text where it is shown now: in the editor, or in the drawing.
void Zel2TRect::ShowText() {
    if (IsEditing()) {
        editor_->Field()->SetWindowText(text_);
    } else {
        UpdateWindow();
    }
}

bool Zel2TRect::IsEditing() const {
    return editor_ && editor_->IsOpen();
}

CZel2Edit* Zel2TRect::Editor() {
    return editor_ ? editor_->Field() : nullptr;
}

CString Zel2TRect::GetText() {
    if (editor_) editor_->Store();
    return text_;
}

void Zel2TRect::SetText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    text_.FormatMessageV(format, &arguments);
    va_end(arguments);
    ShowText();
}

void Zel2TRect::SetPlainText(const char* text) {
    text_ = text;
    ShowText();
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
    r.DeflateRect(dx, zel::Magnitude(dy));
}

// Scrolling and zooming move the box under the editor: each draw brings it back.
void Zel2TRect::OnDraw() {
    Zel2Rect::OnDraw();
    DrawContent();
    if (IsEditing() && Window()) editor_->Place(EditorArea(), Font(font_));
}

void Zel2TRect::DrawContent() {
    DrawFont* font = Ready() ? Font(font_) : nullptr;
    // The drawing shows through the editor; with exact rules the text in it is the only one to be seen.
    if (!font || (IsExact() && IsEditing() && Window())) return;
    CRect box = Map()->ToLogical(AbsRect());
    box.NormalizeRect();
    InflateRect(box);
    font->DrawText(text_, &box, static_cast<unsigned>(format_) | (wrap_ ? DT_WORDBREAK : 0), Rules());
}

CRect Zel2TRect::EditorArea() {
    CRect area = Map()->ToDevice(AbsRect());
    area.NormalizeRect();
    InflateRect(area);
    return area;
}

void Zel2TRect::OpenEditor() {
    if (!Map()) return;
    if (!editor_) editor_ = std::make_unique<zel::InPlaceEditor>(*this, text_);
    const DWORD style = zel::InPlaceEditor::StyleOf(wrap_ != 0, static_cast<unsigned>(format_));
    if (!editor_->Open(style, EditorArea(), Font(font_))) editor_.reset();
}

bool Zel2TRect::EditInPlace() {
    if (!IsEditing()) OpenEditor();
    return IsEditing();
}

int Zel2TRect::Select(int on) {
    if ((GetStatus(PROPAGATE) || IsExact()) && on != Selected()) {
        SetStatus(SELECTED, on);
        UpdateWindow();
    }
    if (!on) {
        if (const auto closed = std::move(editor_)) closed->Close();
    }
    if (on && !IsEditing()) OpenEditor();
    return 1;
}

void Zel2TRect::OnResize() {
    Zel2Rect::OnResize();
    if (!Selected() || !IsEditing()) return;
    int begin = 0, end = 0;
    editor_->Field()->GetSel(begin, end);
    Select(0);
    Select(1);
    if (IsEditing()) editor_->Field()->SetSel(begin, end);
}

void Zel2TRect::Serialize(CArchive& ar) {
    Zel2Rect::Serialize(ar);
    zel::Exchange(ar, text_, font_, border_.cx, border_.cy, format_, wrap_);
}

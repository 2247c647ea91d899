#include <zel/Zel2DataField.h>
#include <zel/platform/GdiTypes.h>

#include <cstdarg>

IMPLEMENT_SERIAL(Zel2DataField, Zel2Rect, 0)

namespace {

constexpr int kMargin = 40;  // world units around value and caption

CRect ValueBox(int width, int height) {
    return {kMargin, kMargin, zel::Subtract(width, kMargin), height / 2};
}

CRect LabelBox(int width, int height) {
    return {kMargin, zel::Add(height / 2, kMargin), zel::Subtract(width, kMargin),
            zel::Subtract(height, kMargin)};
}

// A box that a corner-to-corner rectangle makes.
void Give(Zel2TRect& part, CRect box) {
    box.NormalizeRect();
    part.Origin(box.TopLeft());
    part.SetSize(box.Size() + CSize(1, 1));
}

// What host code has come to know: the formatted text is formatted once more, without arguments.
CString FormattedTwice(const char* format, va_list* arguments) {
    CString once, twice;
    once.FormatMessageV(format, arguments);
    twice.FormatMessageV(once, nullptr, 0);
    return twice;
}

}  // namespace

void Zel2DataField::Adopt(std::unique_ptr<Zel2TRect> value, std::unique_ptr<Zel2TRect> label) {
    value_ = std::move(value);
    label_ = std::move(label);
    for (Zel2TRect* part : {value_.get(), label_.get()}) {
        part->SetParent(this);
        part->SetBorder(CSize(0, 0));
    }
}

Zel2DataField::Zel2DataField() : Zel2Rect(RECTANGLE) {
    Adopt(std::make_unique<Zel2TRect>(), std::make_unique<Zel2TRect>());
    value_->SetPlainText("Data");
    label_->SetPlainText("Caption");
}

Zel2DataField::Zel2DataField(const CRect& r, const char* text, const char* label, int pen, int color,
                             int valueColor)
    : Zel2Rect(r, pen, color, RECTANGLE, -1) {
    CRect box(r);
    box.NormalizeRect();
    const int width = box.Width(), height = box.Height();
    Adopt(std::make_unique<Zel2TRect>(ValueBox(width, height), text, -1, valueColor),
          std::make_unique<Zel2TRect>(LabelBox(width, height), label, -1, color));
    value_->SetStyle(0, DT_CENTER | DT_VCENTER);
    label_->SetStyle(0, 0);
}

void Zel2DataField::SetText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    value_->SetPlainText(FormattedTwice(format, &arguments));
    va_end(arguments);
}

void Zel2DataField::SetLabel(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    label_->SetPlainText(FormattedTwice(format, &arguments));
    va_end(arguments);
}

void Zel2DataField::OpenOn(CDC* dc, int scale) {
    value_->OpenOn(dc, scale);
    label_->OpenOn(dc, scale);
}

void Zel2DataField::OnDraw() {
    Zel2Rect::OnDraw();
    if (GetLabelFont() < 0) {
        // The name that is looked up and the one that is registered have always differed.
        const int found = GetFontIndex("Standard Field Caption");
        SetLabelFont(found >= 0 ? found
                                : RegisterFont("Standard Field Label", "Arial", 80, 0, 0, 0, 0, 0, 0));
    }
    if (GetFont() < 0) {
        const int found = GetFontIndex("Standard Field Value");
        SetFont(found >= 0 ? found : RegisterFont("Standard Field Value", "Arial", 100, 0, 0, 0, 0, 0, 0));
    }
    label_->OnDraw();
    value_->OnDraw();
}

void Zel2DataField::OnResize() {
    if (IsExact()) {
        const CSize size = Size();
        const int width = zel::Subtract(size.cx, 1), height = zel::Subtract(size.cy, 1);
        Give(*value_, ValueBox(width, height));
        Give(*label_, LabelBox(width, height));
    }
    Zel2Rect::OnResize();
}

int Zel2DataField::Select(int on) {
    if (!GetStatus(PROPAGATE)) {
        if (IsExact()) Zel2Rect::Select(on);
        return value_->Select(on);
    }
    if (on != Selected()) {
        SetStatus(SELECTED, on);
        UpdateWindow();
    }
    return 1;
}

void Zel2DataField::Serialize(CArchive& ar) {
    Zel2Rect::Serialize(ar);
    label_->Serialize(ar);
    value_->Serialize(ar);
}

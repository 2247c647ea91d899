// Labelled values.
#pragma once

#include <zel/Zel2TRect.h>

#include <memory>

// A rectangle with a caption above and a value below, each a text rectangle of its own. Fonts that were not
// set are found or registered when the field is first drawn. With exact rules caption and value follow the
// size of the field; with classic rules they keep the boxes that they were made with.
class Zel2DataField : public Zel2Rect {
    DECLARE_SERIAL(Zel2DataField)
  public:
    // Texts "Data" and "Caption" in boxes without a size.
    Zel2DataField();
    // Frame and fill of the field, the fill of the value's box (tool indexes, -1 for none); the caption's box
    // is filled like the field.
    Zel2DataField(const CRect& r, const char* text, const char* label, int pen, int color, int valueColor);
    // The texts are not shared by copies.
    Zel2DataField(const Zel2DataField&) = delete;
    Zel2DataField& operator=(const Zel2DataField&) = delete;

    // Messages with inserts (%1, %2, ...). The result is taken as a message again, so that "%%" comes out as
    // nothing but a percent sign only when it is written "%%%%".
    void SetText(const char* format, ...);
    void SetLabel(const char* format, ...);
    // The texts as they are.
    void SetPlainText(const char* text) { value_->SetPlainText(text); }
    void SetPlainLabel(const char* text) { label_->SetPlainText(text); }
    CString GetText() { return value_->GetText(); }
    CString GetLabel() { return label_->GetText(); }
    // The value's.
    void SetStyle(int wrap, int format) { value_->SetStyle(wrap, format); }
    void GetStyle(int& wrap, int& format) const { value_->GetStyle(wrap, format); }

    virtual void SetFont(int font) { value_->SetFont(font); }
    virtual int GetFont() { return value_->GetFont(); }
    virtual void SetLabelFont(int font) { label_->SetFont(font); }
    virtual int GetLabelFont() { return label_->GetFont(); }
    // The two parts; the field owns them.
    Zel2TRect* Value() { return value_.get(); }
    Zel2TRect* Label() { return label_.get(); }

    void Serialize(CArchive& ar) override;
    void OpenOn(CDC* dc, int scale) override;
    void OnDraw() override;
    void OnResize() override;
    // While the propagate bit is set only the selection bit follows `on`; else the value is selected, which
    // opens its editor, and with exact rules the field with it, to be moved and sized. Answers 1.
    int Select(int on) override;
    // The value's text.
    bool EditInPlace() override { return value_->EditInPlace(); }

  private:
    void Adopt(std::unique_ptr<Zel2TRect> value, std::unique_ptr<Zel2TRect> label);

    std::unique_ptr<Zel2TRect> value_;
    std::unique_ptr<Zel2TRect> label_;
};

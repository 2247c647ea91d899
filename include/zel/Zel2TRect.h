// Rectangles with a text.
#pragma once

#include <zel/Zel2Rect.h>
#include <zel/platform/String.h>

#include <memory>

class CZel2Edit;
namespace zel {
class InPlaceEditor;
}

// A rectangle that holds a text, laid into it within a margin. Text in UTF-8, lines end with "\n". Selecting
// it in a window opens an editor over the text, deselecting it takes over what was typed.
class Zel2TRect : public Zel2Rect {
    DECLARE_SERIAL(Zel2TRect)
  public:
    Zel2TRect();
    // Copies the text as it stands in an open editor, not the editor.
    Zel2TRect(const Zel2TRect& other);
    Zel2TRect& operator=(const Zel2TRect& other);
    ~Zel2TRect() override;
    // A text in the box that both corners of `r` belong to. `pen` and `color` as those of a rectangle; the
    // font is still to be set.
    Zel2TRect(const CRect& r, const char* text, int pen, int color);

    // Replaces the text by a message with inserts (%1, %2, ...: see CString::FormatMessage) and redraws.
    void SetText(const char* format, ...);
    // Replaces the text as it is and redraws.
    void SetPlainText(const char* text);
    // What stands in the editor while one is open.
    CString GetText();
    // The open editor; null when there is none.
    CZel2Edit* Editor();

    // The index of the font, -1 for none: then only the box is drawn.
    virtual void SetFont(int font) { font_ = font; }
    virtual int GetFont() { return font_; }
    // `wrap` not 0 breaks lines between words; `format` are DT_* flags of DrawText.
    void SetStyle(int wrap, int format);
    void GetStyle(int& wrap, int& format) const;
    // The margin between box and text on each side, in points.
    void SetBorder(const CSize& points) { border_ = points; }
    // Shrinks a rectangle of logical units by the margin.
    void InflateRect(CRect& r);

    void Serialize(CArchive& ar) override;
    void OnDraw() override;
    // Opens the editor where there is a window, or closes it and takes its text; the parent is notified of a
    // change (EDITED). The selection bit follows `on` while the propagate bit is set, with exact rules
    // always. Answers 1.
    int Select(int on) override;
    bool EditInPlace() override;
    // An open editor follows, with what is selected in it.
    void OnResize() override;
    // Also stores the answered index as the text's own font, -1 without a parent.
    int RegisterFont(const char* name, const char* face, int ptSize10, int bold, int italic, int underline,
                     int strikeOut, unsigned long screen, unsigned long printer) override;

  private:
    // The box less the margin, with ordered corners, in device pixels.
    CRect EditorArea();
    // Whether the editor is there and its window too, which the user may have closed.
    bool IsEditing() const;
    void DrawContent();
    void OpenEditor();
    void ShowText();

    CString text_;
    int font_ = -1;
    CSize border_{3, 3};
    int format_ = 0;
    int wrap_ = 1;
    std::unique_ptr<zel::InPlaceEditor> editor_;  // goes first: it writes into the text
};

// Text objects.
#pragma once

#include <zel/Zel2.h>
#include <zel/platform/String.h>

#include <memory>
#include <utility>

class CZel2Edit;
namespace zel {
class InPlaceEditor;
}

// A text at a point, rotated about it, or laid into a box; over a filled and framed background, and crossed
// by a horizontal rule, where wanted. World units; UTF-8; lines end with "\n".
class Zel2Text : public Zel2 {
    DECLARE_SERIAL(Zel2Text)
  public:
    // The pen of the rule (-1 for none) and its place as a fraction of the box's height, 0 at the smaller
    // logical y.
    using Rule = std::pair<int, float>;

    explicit Zel2Text(Zel2* parent = nullptr);
    // A text at a point. `font`, `frame` (pen) and `background` (colour) are tool indexes, -1 for none;
    // `format` the DT_* flags of DrawFont::Print; `angle` in tenths of a degree.
    Zel2Text(const char* text, const CPoint& at, int font, int format, int angle, int frame, int background,
             const Rule& rule);
    // A text in a box, both corners included; the angle is used only when the width is set to 0 later.
    Zel2Text(const char* text, const CRect& r, int font, int format, int angle, int frame, int background,
             const Rule& rule);
    Zel2Text(const Zel2Text& other);
    Zel2Text& operator=(const Zel2Text& other);
    Zel2Text& operator=(const char* text);
    ~Zel2Text() override;

    // Replaces the text by a message with inserts (%1, %2, ...: see CString::FormatMessage) and redraws.
    void SetText(const char* format, ...);
    // Replaces the text as it is and redraws.
    void SetPlainText(const char* text);
    // What stands in the editor while one is open.
    CString GetText();
    // The open editor; null when there is none.
    CZel2Edit* Editor();

    void Serialize(CArchive& ar) override;
    CSize Size() override { return size_; }
    void SetSize(const CSize& size) override { size_ = size; }
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    // With exact rules also a text at a point is hit, by the extent that it was last drawn with.
    int IsIn(const CPoint& pt) override;
    // Exact rules: the corners of the text as it stands, where a selected text shows marks. They are no
    // handles: nCpt says 0.
    CPoint Cpt(int i) override;
    // Deselecting closes the editor.
    int Select(int on) override;
    CRect PaintedArea() override;
    // Exact rules: opens an editor over the text, level also where the text is turned.
    bool EditInPlace() override;

  private:
    struct Lines;
    void MeasureForWindow();
    bool IsEditing() const;
    int Angle() const;
    CPoint Anchor();
    bool StandsAtPoint();
    Lines LinesAsDrawn() const;
    CPoint Corner(int i);
    CRect EditorArea();
    void DrawBackground();
    void DrawRule(CRect box);

    CString text_;
    unsigned int format_ = 0;
    CSize size_;
    int font_ = -1;
    int background_ = -1;
    int frame_ = -1;
    int angle_ = 0;
    Rule rule_{-1, 0.0F};
    CSize drawn_;  // the lines as they were drawn last, in logical units before they are turned
    std::unique_ptr<zel::InPlaceEditor> editor_;  // goes before the text, into which it writes
};

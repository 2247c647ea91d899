// Named text styles.
#pragma once

#include <zel/ToolTableOf.h>
#include <zel/ZelRules.h>
#include <zel/platform/GdiObjects.h>
#include <zel/platform/Geometry.h>

// A font: a face, a size in tenths of a point, attributes, and a screen and a printer text colour. It sizes
// itself to the context and the output scale, and writes lines of text (UTF-8) at any angle, character by
// character along the baseline, so that rotated text keeps its proportions.
//
// One platform font serves all fonts of a thread: the last selection is remembered, and text in the same
// font, angle, context and scale reuses it.
class DrawFont : public DrawTool {
    DECLARE_SERIAL(DrawFont)
  public:
    // Arial, 12 point, black.
    DrawFont();
    // `face` is cut to 31 bytes. `bold` selects weight 700, else 400.
    DrawFont(const char* name, const char* face, int ptSize10, int bold, int italic, int underline,
             int strikeOut, COLORREF scr, COLORREF prn);
    // Keeps the other's context, but has no platform font.
    DrawFont(const DrawFont& other);
    DrawFont& operator=(const DrawFont& other);
    DrawTool& operator=(const DrawTool& other) override;
    ~DrawFont() override;

    DrawTool* ACopy() override;
    void OpenOn(CDC* dc, int scale) override;
    void Close() override;
    // Runs the font's editor (zel::ToolEditors), where there is one.
    void Edit() override;
    // Name, log font (60 bytes), size, angle, screen colour, printer colour.
    void Serialize(CArchive& ar) override;

    CString FontName() const { return logFont_.lfFaceName; }
    // The size in tenths of a point.
    int PtSize10() const { return size_; }
    int Bold() const { return logFont_.lfWeight >= FW_BOLD ? 1 : 0; }
    int Italic() const { return logFont_.lfItalic; }
    int Underline() const { return logFont_.lfUnderline; }
    int StrikeOut() const { return logFont_.lfStrikeOut; }
    COLORREF ScrColor() const { return screen_; }
    void ScrColor(COLORREF color) { screen_ = color; }
    COLORREF PrnColor() const { return print_; }
    void PrnColor(COLORREF color) { print_ = color; }
    // The printer colour when the printer flag is set, else the screen colour.
    COLORREF Color() const { return DrawTool::Printing() ? print_ : screen_; }
    void Color(COLORREF color) { (DrawTool::Printing() ? print_ : screen_) = color; }

    // What the font dialog edits: the record at the height that it has on the screen, and what was chosen.
    LOGFONT ScreenFont() const;
    void TakeChoice(const LOGFONT& font, COLORREF screen, int ptSize10);

    // A new platform font for `dc` at angle 0, not selected; the caller owns it.
    CFont* GetFont(CDC* dc);

    // Writes lines (separated by "\n" or "\r\n") at a logical point, turned by `angle` tenths of a degree
    // counter-clockwise. DT_CENTER and DT_RIGHT place each line, DT_VCENTER and DT_BOTTOM the block.
    void Print(const char* text, const CPoint& pt, int angle, unsigned flags);
    // The same at the side or corner of `r` that the flags name, without rotation; with no flag in y at the
    // bottom.
    void Print(const char* text, CRect& r, unsigned flags);
    // Formatted into a rectangle by the platform's rules, DT_VCENTER and DT_BOTTOM working for several lines
    // too. With classic rules the text is measured in the font that was selected before; with exact rules in
    // this one, and what is too high for the rectangle begins at its top.
    void DrawText(const char* text, RECT* r, unsigned flags, ZelRules rules = ZelRules::CLASSIC);

    // The size of the lines of `text` before they are turned, as Print writes them at `angle`, in logical
    // units; nothing in a closed font.
    CSize Extent(const char* text, int angle);

    // The selection that consecutive texts of this thread share.
    static thread_local DrawFont* selected;
    static thread_local int selAngle;
    static thread_local CDC* selDC;
    static thread_local int selScale;

  protected:
    // Makes this font current in its context at an angle, and answers the platform font.
    CFont* Select(int angle);
    // One line along the direction (c, s).
    void TextOut(const CPoint& pt, const char* text, float c, float s);

  private:
    void CopyFields(const DrawFont& other);
    int HeightFor(CDC& dc) const;
    void UseTextColor();
    bool IsCurrent(int angle) const;

    CFont font_;
    int printing_ = 0;
    LOGFONT logFont_{};
    int size_ = 120;
    int angle_ = 0;
    COLORREF screen_ = 0;
    COLORREF print_ = 0;
    CDC* fontDc_ = nullptr;
    int fontScale_ = 0x7FFFFFFF;
};

class DrawFontTable : public zel::ToolTableOf<DrawFont> {
    DECLARE_SERIAL(DrawFontTable)
  public:
    DrawFontTable() = default;
    DrawFontTable(const DrawFontTable& other) = default;
    DrawFontTable& operator=(const DrawFontTable& other);

    int RegisterFont(const char* name, const char* face, int ptSize10, int bold, int italic, int underline,
                     int strikeOut, COLORREF scr, COLORREF prn);
    DrawFont* Font(int i) const { return (*this)(i); }
    // Runs the table's editor (zel::ToolEditors) on a copy and takes it over when it was accepted; 0 where
    // there is none, as in the base.
    int Edit() override;
};

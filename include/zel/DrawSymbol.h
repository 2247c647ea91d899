// Named plotting symbols.
#pragma once

#include <zel/DrawSymbolKind.h>
#include <zel/ToolTableOf.h>
#include <zel/platform/Geometry.h>

#include <span>
#include <vector>

class DrawColor;
class DrawFont;
class DrawPen;
class Zel2;

// A marker drawn centred on a point: a shape, filled and outlined, with an optional short label.
//
// A symbol holds the data of its colour, pen and font, not the tools: on first use in a drawing it registers
// them in that drawing's tables under names derived from its own ("<name> - Background", " - Border Line", "
// - Symbol Text"), unless tools of those names are there, and remembers their indexes. The tools that it
// registers get its opacity.
class DrawSymbol : public DrawTool {
    DECLARE_SERIAL(DrawSymbol)
  public:
    using SYMBOL = zel::SymbolKind;

    // A black circle without a size.
    DrawSymbol() = default;
    // `size` in world units; a width of 0 is set on first use. Pen width in tenths of a millimetre, font size
    // in tenths of a point. `xs` and `ys` (`n` vertices in percent of the size) are read for type 99 only.
    DrawSymbol(const char* name, CSize size, SYMBOL type, const char* text, int penWidth, COLORREF penScr,
               COLORREF penPrn, COLORREF brushScr, COLORREF brushPrn, int border, const char* face,
               int fontSize, COLORREF fontScr, COLORREF fontPrn, int* xs, int* ys, int n);
    DrawSymbol(const DrawSymbol& other);
    DrawSymbol& operator=(const DrawSymbol& other);
    DrawTool& operator=(const DrawTool& other) override;

    DrawTool* ACopy() override;
    // Everything but the name and the border flag; the complete dialect stores those too.
    void Serialize(CArchive& ar) override;

    virtual CSize Size() { return size_; }
    virtual void SetSize(const CSize& size) { size_ = size; }
    SYMBOL GetType() const { return type_; }
    // Types 1 to 15; anything else is ignored. A custom shape needs its vertices: the other form.
    void SetType(SYMBOL type);
    void SetType(const std::vector<int>& xs, const std::vector<int>& ys);
    // The x of the custom vertices, NCustom() of them.
    const int* XCustom() const { return customX_.data(); }
    int NCustom() const { return static_cast<int>(customX_.size()); }
    void SetText(const char* text) { text_ = text; }
    CString GetText() const { return text_; }

    // Each makes the symbol look its tool up again. The pen's width is kept as it was constructed.
    void SetPenData(int width, COLORREF scr, COLORREF prn);
    void SetBrushData(COLORREF scr, COLORREF prn);
    void SetFontData(const char* face, int size, COLORREF scr, COLORREF prn);
    void GetPenData(int& width, COLORREF& scr, COLORREF& prn) const;
    void GetBrushData(COLORREF& scr, COLORREF& prn) const;
    void GetFontData(CString& face, int& size, COLORREF& scr, COLORREF& prn) const;
    // Uses the pen at `index` of the drawing's table.
    int SetPen(int index) { return penIndex_ = index; }

    // Finds or registers the tools in the tables that `obj` reaches, and chooses a size when there is none.
    void SetDefaults(Zel2* obj);
    // Draws centred on a logical point.
    void PlotOn(Zel2* obj, CPoint pt);
    // Whether the symbol is a filled circle without outline and label in the drawing of `obj`.
    bool IsPlainDisc(Zel2* obj);
    // Draws centred on each point, in order; plain discs as one figure (DrawColor::Ellipses), others as marks
    // (GraphicsDevice::Marks).
    void PlotOn(Zel2* obj, std::span<const CPoint> points);
    // Draws at a point of the graph that `obj` stands in, if the graph's range contains it (limits included).
    void PlotOn(Zel2* obj, double x, double y);
    // Takes over shape, size, label, colours, opacity, border and face, not the name or the pen width. The
    // tools are looked up again.
    void CopyFrom(const DrawSymbol* other);

  private:
    struct ColorPair {
        COLORREF screen = 0;
        COLORREF print = 0;
    };
    struct Tools {
        DrawPen* pen;
        DrawColor* color;
        DrawFont* font;
    };

    void GiveOpacity(DrawTool* registered) const;
    CRect BoxOfMark(Zel2* obj);
    CRect RectAround(Zel2* obj, const CPoint& pt);
    std::vector<CPoint> Outline(const CRect& box) const;
    void DrawShape(const Tools& tools, const CRect& box) const;
    static void DrawCross(DrawPen& pen, const std::vector<CPoint>& vertices);
    CPoint LabelOffset(const CRect& box) const;
    bool HasLabel() const { return !text_.IsEmpty(); }

    CSize size_;
    CString text_;
    int penIndex_ = -1;
    int colorIndex_ = -1;
    int fontIndex_ = -1;
    std::vector<int> customX_;
    std::vector<int> customY_;
    SYMBOL type_ = zel::SYMBOL_CIRCLE;
    int border_ = 1;
    int penWidth_ = 1;
    int fontSize_ = 100;
    ColorPair pen_;
    ColorPair brush_;
    ColorPair font_;
    CString face_ = "Arial";
};

class DrawSymbolTable : public zel::ToolTableOf<DrawSymbol> {
    DECLARE_SERIAL(DrawSymbolTable)
  public:
    DrawSymbolTable() = default;
    DrawSymbolTable(const DrawSymbolTable& other) = default;
    DrawSymbolTable& operator=(const DrawSymbolTable& other);

    int RegisterSymbol(const char* name, CSize size, DrawSymbol::SYMBOL type, const char* text, int penWidth,
                       COLORREF penScr, COLORREF penPrn, COLORREF brushScr, COLORREF brushPrn, int border,
                       const char* face, int fontSize, COLORREF fontScr, COLORREF fontPrn, int* xs, int* ys,
                       int n);
};

// Rectangles.
#pragma once

#include <zel/DrawSymbol.h>
#include <zel/Zel2.h>

#include <memory>

// A box with a frame, a fill, or a plotting symbol at its centre, drawn as an ellipse or a rectangle, with
// eight handles by which the user resizes it. The base of all box-shaped objects. World units; the origin is
// the lower left corner where y points up.
class Zel2Rect : public Zel2 {
    DECLARE_SERIAL(Zel2Rect)
  public:
    // SYMBOLRECT draws neither fill nor frame and shows no outline while it is dragged.
    enum Zel2RectType { ELLIPSE = 0, RECTANGLE = 1, SYMBOLRECT = 2 };

    Zel2Rect() : Zel2Rect(RECTANGLE) {}
    explicit Zel2Rect(Zel2RectType type) : type_(type) {}
    // The corners are ordered, and both belong to the box: it is one unit wider and higher than their
    // distance. Tool indexes, -1 for none; a symbol replaces fill and frame.
    Zel2Rect(const CRect& r, int pen, int color, Zel2RectType type, int symbol);
    Zel2Rect(const Zel2Rect& other);
    Zel2Rect& operator=(const Zel2Rect& other);

    Zel2RectType Type() const { return type_; }
    virtual void SetPen(int pen) { pen_ = pen; }
    virtual void SetColor(int color) { color_ = color; }
    int GetPen() const { return pen_; }
    int GetColor() const { return color_; }
    int GetSymbol() const { return symbol_; }
    // Of a SYMBOLRECT: sets the shape (1 to 15) of the two symbols whose indexes stand in the colour and pen
    // fields.
    void SetSymbolType(DrawSymbol::SYMBOL kind);
    // Tells the parent that the size changed.
    virtual void OnResize();

    void Serialize(CArchive& ar) override;
    CSize Size() override { return size_; }
    void SetSize(const CSize& size) override;
    unsigned int nCpt() override { return 8; }
    // Counted from the top left corner against the clock; (-3, -3) for any other index.
    CPoint Cpt(int i) override;
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    int IsIn(const CPoint& pt) override;
    MouseAction OnMouse(const MouseStatus& ms) override;
    void StartDrag(const CPoint& pt) override;
    void StartDrag(int cpt) override;
    void Drag(int cpt, CPoint pt) override;
    void EndDrag() override;
    void EndDrag(int cpt) override;
    void DragTo(const CPoint& pt) override;
    // Each also stores the answered index as the rectangle's own.
    int RegisterColor(const char* name, unsigned long screen, unsigned long printer) override;
    int RegisterPen(const char* name, int style, int width, unsigned long screen, unsigned long printer,
                    int* pattern) override;

  protected:
    // Without a word to the parent.
    void StoreSize(const CSize& size) { size_ = size; }

  private:
    CRect WorldBox() const;
    void DrawShape(const CRect& box);
    void BeginDrag();
    // The outline that follows the mouse; drawing it twice removes it.
    void DrawDrag();

    Zel2RectType type_;
    CSize size_;
    int pen_ = -1;
    int color_ = -1;
    int symbol_ = -1;
    std::unique_ptr<CRect> dragRect_;  // device pixels, while a drag is under way
};

// Named fill colours.
#pragma once

#include <zel/ToolTableOf.h>
#include <zel/platform/GdiObjects.h>
#include <zel/platform/Geometry.h>

#include <memory>
#include <span>

class Zel2;

// A fill colour with a screen and a printer value. While it is open it keeps a solid brush of the colour in
// use and fills shapes without an outline; closed, every fill does nothing. All coordinates are logical
// units.
class DrawColor : public DrawTool {
    DECLARE_SERIAL(DrawColor)
  public:
    DrawColor() = default;
    DrawColor(const char* name, COLORREF scr, COLORREF prn);
    // Keeps the other's context, unlike other tools, but no brush.
    DrawColor(const DrawColor& other);
    DrawColor& operator=(const DrawColor& other);
    DrawTool& operator=(const DrawTool& other) override;

    DrawTool* ACopy() override;
    void OpenOn(CDC* dc, int scale) override;
    void Close() override;
    // Drops the brush: the next OpenOn makes the one of the other variant.
    int SetPrinter(int on) override;
    // Name, screen colour, printer colour, printer flag.
    void Serialize(CArchive& ar) override;

    COLORREF ScrColor() const { return screen_; }
    void ScrColor(COLORREF color) { screen_ = color; }
    COLORREF PrnColor() const { return print_; }
    void PrnColor(COLORREF color) { print_ = color; }
    // The colour in use: the printer colour when the printer flag is set, else the screen colour.
    COLORREF GetColor() const { return Printing() ? print_ : screen_; }
    // Sets the colour in use. A new value drops the brush, and until the next OpenOn fills use whatever brush
    // the context has.
    void SetColor(COLORREF color);
    CDC* GetDC() const { return Dc(); }
    void Select() {}

    // Right and bottom edges included.
    void Rect(const CRect& rect);
    // Exactly the given rectangle, right and bottom edges outside.
    void FillRect(const CRect& rect);
    // Rectangles that do not overlap, as one figure: neighbours meet without a seam.
    void FillRects(std::span<const CRect> rects);
    // `corner` is the width and height of the ellipse of the corners.
    void RoundRect(const CRect& rect, const CSize& corner);
    void Ellipse(const CRect& rect);
    // The ellipse in `box` moved by each of `places`, as one figure where the device can: it is not denser
    // where they overlap.
    void Ellipses(std::span<const CPoint> places, const CRect& box);
    void Polygon(CPoint* points, int n);
    void PolyPolygon(CPoint* points, int* counts, int nPolys);
    // Several rings in one run of points, each closed by repeating its first point; what follows the last
    // closing point is not drawn.
    void PolyPolygon(CPoint* points, int n);
    // A polygon in the world coordinates of the graph that `obj` stands in; nothing outside a graph.
    void Polygon(Zel2* obj, double* x, double* y, int n);

  private:
    void CopyFields(const DrawColor& other);
    CBrush* Brush() const { return brush_.get(); }
    template <class Draw>
    void WithoutOutline(Draw draw);
    CRect GrownByDevicePixel(const CRect& rect);

    COLORREF screen_ = 0;
    COLORREF print_ = 0;
    std::unique_ptr<CBrush> brush_;
};

class DrawColorTable : public zel::ToolTableOf<DrawColor> {
    DECLARE_SERIAL(DrawColorTable)
  public:
    DrawColorTable() = default;
    DrawColorTable(const DrawColorTable& other) = default;
    DrawColorTable& operator=(const DrawColorTable& other);

    int RegisterColor(const char* name, COLORREF scr, COLORREF prn);
    // The colour in use of colour `i`; 0 (black) when there is none.
    COLORREF operator[](int i) const;
    // Runs the table's editor (zel::ToolEditors); 0 where there is none, as in the base.
    int Edit() override;
};

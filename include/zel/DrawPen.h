// Named line tools.
#pragma once

#include <zel/SeriesPoints.h>
#include <zel/ToolTableOf.h>
#include <zel/WorldFrame.h>
#include <zel/platform/GdiObjects.h>
#include <zel/platform/Geometry.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

class Zel2;

// A line style: a dash pattern and a width in tenths of a millimetre, and a screen and a printer colour.
//
// Dashes are walked by the pen itself with a solid platform pen, so that they keep their physical length at
// any zoom, on any device and at any width, and run on from one segment of a polyline to the next. Lines in
// the coordinates of a graph are clipped to the graph's world limits. Without a context every drawing
// operation does nothing.
class DrawPen : public DrawTool {
    DECLARE_SERIAL(DrawPen)
  public:
    enum StyleCode {
        SOLID = 0,
        DASH = 1,
        DOT = 2,
        DASH_DOT = 3,
        DASH_DOT_DOT = 4,
        NONE = 5,
        USER_DEFINED = -1
    };
    static constexpr int kPatternSize = 20;
    // The names of the styles, codes 0 to 5 and then -1.
    static const std::array<const char*, 7> kStyleNames;

    // A solid black pen of 0.2 mm.
    DrawPen();
    // `width` in tenths of a millimetre, 0 for the thinnest line of the device. `pattern` is read (20
    // entries) only for style -1; an unknown style is solid.
    DrawPen(const char* name, int style, int width, COLORREF scr, COLORREF prn, int* pattern);
    DrawPen(const DrawPen& other);
    DrawPen& operator=(const DrawPen& other);
    DrawTool& operator=(const DrawTool& other) override;

    DrawTool* ACopy() override;
    void OpenOn(CDC* dc, int scale) override;
    void Close() override;
    // Name, colours, style, width, pattern; the printer flag is not stored.
    void Serialize(CArchive& ar) override;

    int Style() const { return style_; }
    // Installs the pattern of the style, restarts the dashes and drops the platform pen until the next
    // OpenOn.
    void Style(int style);
    int Width() const { return width_; }
    // Takes effect at the next OpenOn.
    void Width(int width) { width_ = width; }
    // 20 entries in tenths of a millimetre, dashes and gaps in turn; the first entry below 1 ends the
    // pattern. The array may be written to.
    int* Pattern() { return pattern_.data(); }
    void Pattern(int* pattern);

    COLORREF ScrColor() const { return screen_; }
    void ScrColor(COLORREF color) { screen_ = color; }
    COLORREF PrnColor() const { return print_; }
    void PrnColor(COLORREF color) { print_ = color; }
    // The colour in use.
    COLORREF Color() const { return Printing() ? print_ : screen_; }
    void Color(COLORREF color) { (Printing() ? print_ : screen_) = color; }
    CDC* GetDC() const { return Dc(); }

    // Logical coordinates. MoveTo keeps the dash state: the pattern runs on across a move.
    void MoveTo(int x, int y);
    void LineTo(int x, int y);
    // Graph coordinates of the graph that `obj` stands in. A coordinate that is not finite makes a gap.
    void MoveTo(Zel2* obj, double x, double y);
    void LineTo(Zel2* obj, double x, double y);
    // `n` lines in graph coordinates at once: what LineTo(obj, x[i], y[i]) one after another would draw for
    // an object that is mapped by `frame`, at a fraction of the cost. Devices of pixels get a solid line as
    // what can be seen of it, in one piece: it is not darker where it crosses itself.
    void LineTo(const WorldFrame& frame, const double* x, const double* y, std::size_t n);
    // The same for stretches of points one after another.
    void LineTo(const WorldFrame& frame, std::span<const zel::SeriesStretch> stretches);
    // Sets the point from which the next line in graph coordinates starts, and the current point, without the
    // clipping of a line.
    void SetWorldPoint(Zel2* obj, double x, double y);
    // The outline of a rectangle, corners included.
    void Rect(const CRect& rect);
    // The outline of an ellipse, solid whatever the style.
    void Ellipse(const CRect& rect);

    // A fast estimate of the length of (dx, dy): the larger side, or 1.3 times it where the smaller is over
    // half.
    static int Length(int dx, int dy) { return zel::Saturate(LengthOf(dx, dy)); }
    // Clips a segment to a rectangle, in place; 0 when nothing is left (the start may have moved then). A
    // point on a bound counts as outside.
    static int Clip(double& x1, double& y1, double& x2, double& y2, double xmin, double ymin, double xmax,
                    double ymax);

    // The last selected pen and context of this thread; kept for host code, nothing uses them.
    static thread_local CPen* selPen;
    static thread_local CDC* selDC;

  private:
    class Selected;
    class DashWalker;
    class SeriesLine;
    static constexpr std::size_t kBlockPoints = 128;

    // The estimate without the limits of an int; 13/10 rounded to the nearest, halves up, as MulDiv does.
    static std::int64_t LengthOf(std::int64_t dx, std::int64_t dy) {
        const std::int64_t a = dx < 0 ? -dx : dx;
        const std::int64_t b = dy < 0 ? -dy : dy;
        const std::int64_t longer = a > b ? a : b;
        const std::int64_t shorter = a > b ? b : a;
        return 2 * shorter <= longer ? longer : (longer * 13 + 5) / 10;
    }
    void CopyFields(const DrawPen& other);
    void InstallPattern(int style);
    int LogicalInch() const;
    void DrawClipped(DashWalker& walker, const WorldFrame& limits, Zel2* obj, double x, double y);

    bool DrawBlock(DashWalker& walker, const WorldFrame& frame, const double* x, const double* y,
                   std::size_t n);

    // As Clip, to the limits of a frame by its rules.
    static bool ClipToFrame(const WorldFrame& frame, double& x1, double& y1, double& x2, double& y2);

    struct WorldPoint {
        double x = 0;
        double y = 0;
    };

    COLORREF screen_ = 0;
    COLORREF print_ = 0;
    WorldPoint world_;
    int style_ = SOLID;
    int width_ = 2;
    std::array<int, kPatternSize> pattern_{};
    int dashPosition_ = 0;
    int dashIndex_ = 0;
    std::unique_ptr<CPen> pen_;
    CPoint current_;
};

class DrawPenTable : public zel::ToolTableOf<DrawPen> {
    DECLARE_SERIAL(DrawPenTable)
  public:
    DrawPenTable() = default;
    DrawPenTable(const DrawPenTable& other) = default;
    DrawPenTable& operator=(const DrawPenTable& other);

    int RegisterPen(const char* name, int style, int width, COLORREF scr, COLORREF prn, int* pattern);
    int RegisterPen(DrawPen* pen) { return Register(pen); }
    DrawPen* Pen(int i) const { return (*this)(i); }
    // Runs the table's editor (zel::ToolEditors), and opens an open table again so that changes take effect;
    // 0 where there is none, as in the base.
    int Edit() override;
};

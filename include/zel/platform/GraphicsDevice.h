// What a device context draws on.
#pragma once

#include <zel/platform/CoordinateMap.h>
#include <zel/platform/GdiTypes.h>
#include <zel/platform/Region.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace zel {

// Everything that a device must know to draw one primitive. Lengths and points of the records (pen width,
// font height) are logical; `map` takes logical to device units; `clip` is in device units.
struct GraphicsState {
    LOGPEN pen{PS_SOLID, {0, 0}, RGB(0, 0, 0)};
    LOGBRUSH brush{BS_SOLID, RGB(255, 255, 255), 0};
    LOGFONT font{};
    COLORREF textColor = RGB(0, 0, 0);
    BYTE textTransparency = 0;  // as that of a pen
    COLORREF backgroundColor = RGB(255, 255, 255);
    int backgroundMode = OPAQUE;
    int rasterMode = R2_COPYPEN;
    int polygonFillMode = ALTERNATE;
    int arcDirection = AD_COUNTERCLOCKWISE;
    UINT textAlign = TA_LEFT | TA_TOP;
    CPoint brushOrigin;  // device units
    CoordinateMap map;
    std::shared_ptr<const Region> clip;  // null: the whole surface
};

// A piece of text (UTF-8) and its reference point in logical units, to which `textAlign` refers.
struct TextSpan {
    std::string_view text;
    CPoint at;
};

// A part of an ellipse in device units, y downwards. Angles are those of the ellipse's parameter, from the
// right and counterclockwise as it is seen.
struct EllipticArc {
    double cx, cy, rx, ry;
    double begin, sweep;
};

// Which part of an ellipse an arc primitive draws.
enum class ArcKind { ARC, CHORD, PIE };

// A picture of colours: rows of 0xAARRGGBB, not premultiplied, one after another, the topmost first.
struct PictureView {
    const std::uint32_t* colors = nullptr;
    int width = 0;
    int height = 0;

    std::uint32_t At(int x, int y) const { return colors[std::ptrdiff_t{y} * width + x]; }
};

class GraphicsDevice;

// Draws a mark on a device, moved by so many device units from where its origin lies. The clip is that of the
// device that was drawn on, and has no meaning on another one.
enum class MarkClip { KEPT, NONE };
using MarkPainter = std::function<void(GraphicsDevice& device, const CSize& move, MarkClip clip)>;

// The drawing surface behind a device context: a window, a page, an image, a file.
//
// A device holds no drawing state: each primitive receives all of it, in logical coordinates. All calls come
// from one thread at a time. A device does not take ownership of anything that it is given.
//
// This is the bare interface. A new device derives from BasicDevice, which has defaults for most of it; one
// that stands for another device derives from ForwardingDevice, which hands on everything. Both fail to
// compile when a function is added here and forgotten there.
class GraphicsDevice {
  public:
    GraphicsDevice() = default;
    GraphicsDevice(const GraphicsDevice&) = delete;
    GraphicsDevice& operator=(const GraphicsDevice&) = delete;
    virtual ~GraphicsDevice();

    // The capability `index` (LOGPIXELSX, HORZRES, ...); 0 for one that the device does not know.
    // LOGPIXELSX and LOGPIXELSY count device units per inch, which may be finer than the device's pixels.
    virtual int Caps(int index) const = 0;

    // The connected line through `count` points with the pen of `state`. The last point's own pixel is left
    // out by pens one pixel wide, as the platform does. Fewer than 2 points draw nothing.
    virtual void Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) = 0;

    // The width in device units of the columns within which a solid line with the settings of `state`, or the
    // outline of a fill, counts only by the first, lowest, highest and last of consecutive points; 0 when
    // every point counts. Callers may then leave out the others, between BeginCurve and
    // EndCurve when it is a line, and give the lowest and highest any place within the column.
    virtual int CurveColumn(const GraphicsState& state) const = 0;
    // All polylines, or all ellipses of Ellipses, between the two are one figure, which is not darker where
    // it covers itself, also when its ink is transparent. Pairs may stand within pairs: then the outermost
    // bound the figure.
    virtual void BeginCurve() = 0;
    virtual void EndCurve() = 0;

    // Fills one figure made of closed rings with the brush (the fill mode reaches across the rings) and
    // outlines each ring with the pen. `points` holds the rings one after another, `counts` their lengths.
    virtual void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                          std::span<const int> counts) = 0;

    // Fills [left, right) x [top, bottom), ordered in device units, with `brush` under the rectangle
    // operation (PATCOPY, WHITENESS, DSTINVERT, ...). Neither the pen nor the pen's raster mode plays a part.
    virtual void FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                          DWORD operation) = 0;

    // Fills rectangles that do not overlap, as FillRect does with PATCOPY, as one figure: neighbours that
    // have an edge in common meet without a seam.
    virtual void FillRects(const GraphicsState& state, std::span<const CRect> rects,
                           const LOGBRUSH& brush) = 0;
    // Stretches a picture over [left, right) x [top, bottom), ordered in device units, its first row at the
    // top and its first column at the left as they are seen. Its cells have sharp edges.
    virtual void DrawPicture(const GraphicsState& state, const CRect& rect, const PictureView& picture) = 0;

    // The rectangle, filled with the brush and outlined with the pen, right and bottom edges outside.
    virtual void Rectangle(const GraphicsState& state, const CRect& rect) = 0;
    // `corner` is the full width and height of the ellipse of the corners.
    virtual void RoundRect(const GraphicsState& state, const CRect& rect, const CSize& corner) = 0;
    virtual void Ellipse(const GraphicsState& state, const CRect& rect) = 0;
    // The ellipse in `box` moved by each of `places`, in order. A device may move them by a part of a pixel,
    // so that many are alike.
    virtual void Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) = 0;
    // A mark with its origin at each of `places`, in order. `box` (logical units) holds what `paint` draws
    // for the origin (0, 0). A device may move marks by a part of a pixel, so that many are alike, and leave
    // out one that has another like it in its place.
    virtual void Marks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
                       const MarkPainter& paint) = 0;
    // From the direction of `start` to that of `end`, both seen from the centre of `rect`.
    virtual void Arc(const GraphicsState& state, const CRect& rect, const CPoint& start, const CPoint& end,
                     ArcKind kind) = 0;
    // The open arc of an Arc, with a state whose logical units are those of the device.
    virtual void StrokeArc(const GraphicsState& state, const EllipticArc& arc) = 0;
    virtual void SetPixel(const GraphicsState& state, const CPoint& point, COLORREF color) = 0;
    // Fills a region given in logical coordinates.
    virtual void FillRegion(const GraphicsState& state, const Region& region, const LOGBRUSH& brush) = 0;

    // Writes each span at its own point with the font of `state`, rotated about that point by the font's
    // escapement. Consecutive spans of one call belong to one line of text, in reading order: a device that
    // can keep them together as searchable text does.
    virtual void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) = 0;

    // The size of one unrotated line in logical units: the sum of the advances, and tmHeight.
    virtual CSize TextExtent(const GraphicsState& state, std::string_view text) = 0;
    // The extents in x of the prefixes of `text` that end at the given byte offsets, in logical units.
    virtual std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                                           std::span<const std::size_t> ends) = 0;
    virtual TEXTMETRIC TextMetrics(const GraphicsState& state) = 0;

    // The colour of a device pixel, CLR_INVALID where there is none or the device cannot tell.
    virtual COLORREF GetPixel(const CPoint& devicePoint) = 0;

    // Called when the context stops drawing for now, so that a device that gathers its output shows it.
    virtual void Flush() = 0;
};

// A device that ends in a file of one or more pages.
class DocumentDevice : public GraphicsDevice {
  public:
    // Ends the current page and begins the next one.
    virtual void NewPage() = 0;
    // Completes the file. Throws CFileException* when it cannot be written. Without this call the destructor
    // leaves no file behind.
    virtual void Finish() = 0;
};

// What a new device derives from, `Interface` being GraphicsDevice or DocumentDevice. It overrides Caps,
// Polyline, Polygons, FillRect, DrawText and the two text measurements; every other primitive has a default
// that reduces it to those, in device units (the state that it passes on maps nothing).
template <class Interface>
class BasicDevice : public Interface {
  public:
    // 0: every point counts.
    int CurveColumn(const GraphicsState& state) const override;
    void BeginCurve() override;
    void EndCurve() override;
    void FillRects(const GraphicsState& state, std::span<const CRect> rects, const LOGBRUSH& brush) override;
    // A rectangle for each run of one colour in a row.
    void DrawPicture(const GraphicsState& state, const CRect& rect, const PictureView& picture) override;
    void Rectangle(const GraphicsState& state, const CRect& rect) override;
    void RoundRect(const GraphicsState& state, const CRect& rect, const CSize& corner) override;
    void Ellipse(const GraphicsState& state, const CRect& rect) override;
    void Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) override;
    void Marks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
               const MarkPainter& paint) override;
    void Arc(const GraphicsState& state, const CRect& rect, const CPoint& start, const CPoint& end,
             ArcKind kind) override;
    // A polyline with corners on whole units.
    void StrokeArc(const GraphicsState& state, const EllipticArc& arc) override;
    void SetPixel(const GraphicsState& state, const CPoint& point, COLORREF color) override;
    void FillRegion(const GraphicsState& state, const Region& region, const LOGBRUSH& brush) override;
    // Measures each prefix; a device whose advances add up overrides it.
    std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                                   std::span<const std::size_t> ends) override;
    COLORREF GetPixel(const CPoint& devicePoint) override;
    void Flush() override;

  protected:
    // The ellipse in `box` as a mark. Good as long as `state` is.
    static MarkPainter EllipsePainter(const GraphicsState& state, const CRect& box);
};

extern template class BasicDevice<GraphicsDevice>;
extern template class BasicDevice<DocumentDevice>;

}  // namespace zel

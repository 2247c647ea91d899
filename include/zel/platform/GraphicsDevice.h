// What a device context draws on.
#pragma once

#include <zel/platform/CoordinateMap.h>
#include <zel/platform/GdiTypes.h>
#include <zel/platform/Region.h>

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

// The drawing surface behind a device context: a window, a page, an image, a file.
//
// A device holds no drawing state: each primitive receives all of it, in logical coordinates. A new device
// overrides Caps, Polyline, Polygons, FillRect, DrawText and the two text measurements; every other primitive
// has a default that reduces it to those, in device units (the state that it passes on maps nothing). All
// calls come from one thread at a time. A device does not take ownership of anything that it is given.
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
    // outline of a fill, counts only by the first, lowest, highest and last of consecutive points; 0, the
    // default, when every point counts. Callers may then leave out the others, between BeginCurve and
    // EndCurve when it is a line, and give the lowest and highest any place within the column.
    virtual int CurveColumn(const GraphicsState& state) const;
    // All polylines, or all ellipses of Ellipses, between the two are one figure, which is not darker where
    // it covers itself. Pairs may stand within pairs: then the outermost bound the figure.
    virtual void BeginCurve();
    virtual void EndCurve();

    // Fills one figure made of closed rings with the brush (the fill mode reaches across the rings) and
    // outlines each ring with the pen. `points` holds the rings one after another, `counts` their lengths.
    virtual void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                          std::span<const int> counts) = 0;

    // Fills [left, right) x [top, bottom), ordered in device units, with `brush` under the rectangle
    // operation (PATCOPY, WHITENESS, DSTINVERT, ...). Neither the pen nor the pen's raster mode plays a part.
    virtual void FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                          DWORD operation) = 0;

    // The rectangle, filled with the brush and outlined with the pen, right and bottom edges outside.
    virtual void Rectangle(const GraphicsState& state, const CRect& rect);
    // `corner` is the full width and height of the ellipse of the corners.
    virtual void RoundRect(const GraphicsState& state, const CRect& rect, const CSize& corner);
    virtual void Ellipse(const GraphicsState& state, const CRect& rect);
    // The ellipse in `box` moved by each of `places`, in order. A device may move them by a part of a pixel,
    // so that many are alike.
    virtual void Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box);
    // From the direction of `start` to that of `end`, both seen from the centre of `rect`.
    virtual void Arc(const GraphicsState& state, const CRect& rect, const CPoint& start, const CPoint& end,
                     ArcKind kind);
    // The open arc of an Arc, with a state whose logical units are those of the device. The default is a
    // polyline with corners on whole units.
    virtual void StrokeArc(const GraphicsState& state, const EllipticArc& arc);
    virtual void SetPixel(const GraphicsState& state, const CPoint& point, COLORREF color);
    // Fills a region given in logical coordinates.
    virtual void FillRegion(const GraphicsState& state, const Region& region, const LOGBRUSH& brush);

    // Writes each span at its own point with the font of `state`, rotated about that point by the font's
    // escapement. Consecutive spans of one call belong to one line of text, in reading order: a device that
    // can keep them together as searchable text does.
    virtual void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) = 0;

    // The size of one unrotated line in logical units: the sum of the advances, and tmHeight.
    virtual CSize TextExtent(const GraphicsState& state, std::string_view text) = 0;
    // The extents in x of the prefixes of `text` that end at the given byte offsets, in logical units. The
    // default measures each prefix; a device whose advances add up overrides it.
    virtual std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                                           std::span<const std::size_t> ends);
    virtual TEXTMETRIC TextMetrics(const GraphicsState& state) = 0;

    // The colour of a device pixel, CLR_INVALID where there is none or the device cannot tell.
    virtual COLORREF GetPixel(const CPoint& devicePoint);

    // Called when the context stops drawing for now, so that a device that gathers its output shows it.
    virtual void Flush();
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

}  // namespace zel

// Pages drawn as vectors and text.
#pragma once

#include "backends/qt/FileDevices.h"
#include "backends/qt/TextBatch.h"

#include <QPagedPaintDevice>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include <vector>

namespace zel::qt {

// A piece of a mark with its origin at (0, 0): a path that is filled, or drawn with a pen.
struct MarkPiece {
    QPainterPath path;
    QBrush brush;  // one of the two
    QPen pen;
};

// What pieces cover at most.
QRectF ReachOf(std::span<const MarkPiece> pieces);

// Draws pages on what Qt can paint pages on: a PDF file, a printer. Raster operations do not exist on paper.
class PageDevice : public MeasuringDevice {
  public:
    PageDevice(const FileDeviceOptions& options, const SurfaceCaps& caps);

    void NewPage() override;
    void Finish() override;
    int Caps(int index) const override { return caps_.Answer(index); }
    int CurveColumn(const GraphicsState&) const override { return options_.keepAllPoints ? 0 : 1; }
    void Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) override;
    void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                  std::span<const int> counts) override;
    void FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                  DWORD operation) override;
    void FillRects(const GraphicsState& state, std::span<const CRect> rects, const LOGBRUSH& brush) override;
    void DrawPicture(const GraphicsState& state, const CRect& rect, const PictureView& picture) override;
    void Ellipse(const GraphicsState& state, const CRect& rect) override;
    void Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) override;
    void Marks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
               const MarkPainter& paint) override;
    void StrokeArc(const GraphicsState& state, const EllipticArc& arc) override;
    void BeginCurve() override { ++curves_; }
    void EndCurve() override;
    void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) override;

  protected:
    const FileDeviceOptions& Options() const { return options_; }
    void Begin(QPagedPaintDevice& pages);
    // Ends the painting of pages that nobody wants any more.
    void End() { painter_.end(); }
    // Throws when something could not be written; `written` is what Qt said.
    virtual void Check(bool written) = 0;
    // Draws a mark at each place, in order; false when the pages have nothing better than to draw each.
    virtual bool DrawAlike(std::span<const MarkPiece>, std::span<const CPoint>) { return false; }
    QPainter& Painter() { return painter_; }

  private:
    // Within what coordinates of a page can be.
    static QPointF Near(const CPoint& p);
    QPointF At(const GraphicsState& state, const CPoint& p) const;
    void FillPage();
    void UseClip(const GraphicsState& state);
    QPen PenOf(const GraphicsState& state) const;
    void UsePen(const GraphicsState& state);
    void Stroke(const GraphicsState& state, const QPainterPath& path);
    // The pieces of a mark; none when it is made of something else too.
    std::vector<MarkPiece> PiecesOf(const GraphicsState& state, const MarkPainter& paint);
    void Paint(const GraphicsState& state, const QPainterPath& path);
    void FlushLines();
    void FlushDiscs();
    QRectF EllipseBox(const GraphicsState& state, const CRect& rect) const;
    void FlushText();
    void FlushTextBelow(const QRectF& shape, double reach);
    void DrawHatch(const GraphicsState& state, const QPainterPath& path);

    FileDeviceOptions options_;
    SurfaceCaps caps_;
    double hairline_;  // a line of width 0: the thinnest that prints well
    double pixel_;     // of a screen
    QPagedPaintDevice* pages_ = nullptr;
    QPainter painter_;
    std::vector<CPoint> mapped_;
    QPolygonF line_;
    // Held back as long as nothing is drawn over them, to be described in one piece. Lines that were drawn
    // before a held text, or beside it, go before it.
    TextBatch texts_;
    QPainterPath lines_;  // short ones, with the painter's pen
    std::shared_ptr<const Region> clip_;
    bool clipSet_ = false;
    bool penSet_ = false;
    double width_ = 0;
    COLORREF color_ = 0;
    BYTE transparency_ = 0;
    UINT style_ = 0;
    int curves_ = 0;  // that have begun, one within the other
    // The discs of a figure that one sees through: described in one piece they cover once.
    QPainterPath discs_;
    GraphicsState discState_;
    // While a mark is taken apart: where its pieces go, and whether there is something that is no piece.
    std::vector<MarkPiece>* pieces_ = nullptr;
    bool otherPieces_ = false;
};

}  // namespace zel::qt

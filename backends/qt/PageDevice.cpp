#include "backends/qt/PageDevice.h"

#include "backends/qt/Fonts.h"
#include "backends/qt/Hatch.h"
#include "backends/qt/PenStyle.h"
#include "backends/qt/Pictures.h"
#include "backends/qt/SeenMarks.h"
#include "platform/graphics/RunThinner.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace zel::qt {
namespace {

constexpr double kPixelsPerInch = 96;
constexpr double kHatchPixels = 8;
constexpr double kFarOutside = 1e7;
constexpr std::size_t kShortLine = 8;  // points
constexpr int kMostHeld = 4000;        // elements of a path

}  // namespace

QRectF ReachOf(std::span<const MarkPiece> pieces) {
    QRectF reach;
    for (const MarkPiece& piece : pieces) {
        const double half = piece.pen.style() == Qt::NoPen ? 0 : piece.pen.widthF() / 2;
        reach |= piece.path.boundingRect().adjusted(-half, -half, half, half);
    }
    return reach;
}

PageDevice::PageDevice(const FileDeviceOptions& options, const SurfaceCaps& caps)
    : options_(options),
      caps_(caps),
      hairline_(kHairlineInches * caps.units.cx / caps.widthInches),
      pixel_(caps.units.cx / caps.widthInches / kPixelsPerInch) {}

void PageDevice::Begin(QPagedPaintDevice& pages) {
    pages_ = &pages;
    Check(painter_.begin(&pages));
    painter_.setRenderHint(QPainter::LosslessImageRendering);
    FillPage();
}

void PageDevice::NewPage() {
    FlushText();
    // A preview's page inherits the clips of the page before and would bring them back after texts.
    painter_.setClipPath(QPainterPath(), Qt::NoClip);
    painter_.setClipping(false);
    Check(pages_->newPage());
    penSet_ = false;
    clipSet_ = false;
    FillPage();
}

void PageDevice::Finish() {
    FlushText();
    Check(painter_.end());
}

void PageDevice::Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) {
    if (count < 2 || state.pen.lopnStyle == PS_NULL || PaintsNothing(state)) return;
    UseClip(state);
    mapped_.clear();
    for (std::size_t i = 0; i < count; ++i) mapped_.push_back(state.map.ToDevice(points[i]));
    if (count > kShortLine && !options_.keepAllPoints && DashesOf(state, 0, pixel_).empty())
        ThinRuns(mapped_);
    line_.clear();
    line_.reserve(static_cast<qsizetype>(mapped_.size()));
    for (const CPoint& p : mapped_) line_.append(Near(p));
    QPainterPath path;
    path.addPolygon(line_);
    Stroke(state, path);
}

// What is described in one piece covers once: lines that one sees through are held only within a figure, and
// there until its end.
void PageDevice::Stroke(const GraphicsState& state, const QPainterPath& path) {
    if (pieces_) {
        const QPen pen = PenOf(state);
        const bool together = pen.color().alpha() == 255 || curves_ > 0;
        if (together && !pieces_->empty() && pieces_->back().pen == pen) {
            pieces_->back().path.addPath(path);
        } else {
            pieces_->push_back({path, Qt::NoBrush, pen});
        }
        return;
    }
    FlushTextBelow(path.boundingRect(), PenWidthOf(state, hairline_));
    UsePen(state);
    const bool figure = transparency_ != 0 && curves_ > 0;
    if (path.elementCount() > static_cast<int>(kShortLine) && !figure) {
        FlushLines();
        painter_.drawPath(path);
        return;
    }
    lines_.addPath(path);
    if (!figure && (transparency_ != 0 || lines_.elementCount() > kMostHeld)) FlushLines();
}

// Round, whatever the units.
void PageDevice::StrokeArc(const GraphicsState& state, const EllipticArc& arc) {
    const bool near = std::fabs(arc.cx) + arc.rx < kFarOutside && std::fabs(arc.cy) + arc.ry < kFarOutside;
    if (!near) {
        BasicDevice::StrokeArc(state, arc);
        return;
    }
    if (state.pen.lopnStyle == PS_NULL || PaintsNothing(state)) return;
    UseClip(state);
    constexpr double kDegrees = 180 / std::numbers::pi;
    const QRectF ellipse(arc.cx - arc.rx, arc.cy - arc.ry, 2 * arc.rx, 2 * arc.ry);
    QPainterPath path;
    path.arcMoveTo(ellipse, arc.begin * kDegrees);
    path.arcTo(ellipse, arc.begin * kDegrees, arc.sweep * kDegrees);
    Stroke(state, path);
}

void PageDevice::EndCurve() {
    if (--curves_ > 0) return;
    if (transparency_ != 0) FlushLines();
    FlushDiscs();
}

void PageDevice::Polygons(const GraphicsState& state, std::span<const CPoint> points,
                          std::span<const int> counts) {
    if (PaintsNothing(state)) return;
    UseClip(state);
    QPainterPath path;
    path.setFillRule(state.polygonFillMode == WINDING ? Qt::WindingFill : Qt::OddEvenFill);
    std::size_t begin = 0;
    for (const int count : counts) {
        QPolygonF ring;
        for (const CPoint& p : points.subspan(begin, static_cast<std::size_t>(count)))
            ring.append(At(state, p));
        begin += static_cast<std::size_t>(count);
        path.addPolygon(ring);
        path.closeSubpath();
    }
    Paint(state, path);
}

void PageDevice::FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                          DWORD operation) {
    if (operation == DSTINVERT || operation == PATINVERT) return;
    UseClip(state);
    CRect box = state.map.ToDevice(rect);
    box.NormalizeRect();
    GraphicsState how = state;
    how.pen.lopnStyle = PS_NULL;
    how.rasterMode = R2_COPYPEN;
    how.brush = operation == WHITENESS   ? LOGBRUSH{BS_SOLID, RGB(255, 255, 255), 0}
                : operation == BLACKNESS ? LOGBRUSH{BS_SOLID, RGB(0, 0, 0), 0}
                                         : brush;
    QPainterPath path;
    path.addRect(QRectF(box.left, box.top, box.Width(), box.Height()));
    Paint(how, path);
}

// One path: readers blend the edges of several apart, and the ground would show between neighbours.
void PageDevice::FillRects(const GraphicsState& state, std::span<const CRect> rects, const LOGBRUSH& brush) {
    if (rects.empty()) return;
    UseClip(state);
    GraphicsState how = state;
    how.pen.lopnStyle = PS_NULL;
    how.rasterMode = R2_COPYPEN;
    how.brush = brush;
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const CRect& rect : rects) {
        CRect box = state.map.ToDevice(rect);
        box.NormalizeRect();
        if (!box.IsRectEmpty()) path.addRect(QRectF(box.left, box.top, box.Width(), box.Height()));
    }
    Paint(how, path);
}

void PageDevice::DrawPicture(const GraphicsState& state, const CRect& rect, const PictureView& picture) {
    if (pieces_) {
        otherPieces_ = true;
        return;
    }
    if (picture.width < 1 || picture.height < 1) return;
    UseClip(state);
    CRect box = state.map.ToDevice(rect);
    box.NormalizeRect();
    const QRectF place(box.left, box.top, box.Width(), box.Height());
    FlushLines();
    FlushDiscs();
    FlushTextBelow(place, 0);
    painter_.drawImage(place, ImageOf(picture));
}

void PageDevice::Ellipse(const GraphicsState& state, const CRect& rect) {
    if (PaintsNothing(state)) return;
    UseClip(state);
    QPainterPath path;
    path.addEllipse(EllipseBox(state, rect));
    Paint(state, path);
}

QRectF PageDevice::EllipseBox(const GraphicsState& state, const CRect& rect) const {
    CRect box = state.map.ToDevice(rect);
    box.NormalizeRect();
    return {static_cast<double>(box.left), static_cast<double>(box.top), box.Width() - 1.0,
            box.Height() - 1.0};
}

void PageDevice::Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) {
    const bool plain = state.pen.lopnStyle == PS_NULL && state.brush.lbStyle == BS_SOLID;
    if (PaintsNothing(state)) return;
    if (!plain || state.brush.lbTransparency == 0) {
        Marks(state, places, box, EllipsePainter(state, box));
        return;
    }
    UseClip(state);
    const bool goesOn = !discs_.isEmpty() && discState_.brush.lbColor == state.brush.lbColor &&
                        discState_.brush.lbTransparency == state.brush.lbTransparency;
    if (!goesOn) FlushDiscs();
    discState_ = state;
    discs_.setFillRule(Qt::WindingFill);
    for (const CPoint& place : places) discs_.addEllipse(EllipseBox(state, box + place));
    if (curves_ == 0) FlushDiscs();
}

std::vector<MarkPiece> PageDevice::PiecesOf(const GraphicsState& state, const MarkPainter& paint) {
    std::vector<MarkPiece> pieces;
    otherPieces_ = false;
    pieces_ = &pieces;
    const struct Ending {
        PageDevice& device;
        ~Ending() { device.pieces_ = nullptr; }
    } ending{*this};
    paint(*this, CPoint(0, 0) - state.map.ToDevice(CPoint(0, 0)), MarkClip::KEPT);
    if (otherPieces_) pieces.clear();
    return pieces;
}

// A mark is taken apart once.
void PageDevice::Marks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
                       const MarkPainter& paint) {
    constexpr std::size_t kFew = 4;
    if (places.size() < kFew) {
        BasicDevice::Marks(state, places, box, paint);
        return;
    }
    const std::vector<CPoint> seen =
        options_.keepAllPoints ? AllMarks(state, places) : SeenMarks(state, places, box, paint, pixel_);
    UseClip(state);
    FlushLines();
    FlushDiscs();
    const std::vector<MarkPiece> pieces = PiecesOf(state, paint);
    if (pieces.empty()) {
        const CPoint origin = state.map.ToDevice(CPoint(0, 0));
        for (const CPoint& at : seen) paint(*this, at - origin, MarkClip::KEPT);
        return;
    }
    QPolygonF corners;
    for (const CPoint& at : seen) corners.append(QPointF(at.x, at.y));
    const QRectF area = corners.boundingRect(), reach = ReachOf(pieces);
    FlushTextBelow(area.adjusted(reach.left(), reach.top(), reach.right(), reach.bottom()), 0);
    if (DrawAlike(pieces, seen)) return;
    for (const CPoint& at : seen) {
        for (const MarkPiece& piece : pieces) {
            const QPainterPath path = piece.path.translated(at.x, at.y);
            piece.brush.style() == Qt::NoBrush ? painter_.strokePath(path, piece.pen)
                                               : painter_.fillPath(path, piece.brush);
        }
    }
}

void PageDevice::FlushDiscs() {
    if (discs_.isEmpty()) return;
    const QPainterPath path = std::exchange(discs_, {});
    Paint(discState_, path);
}

void PageDevice::DrawText(const GraphicsState& state, std::span<const TextSpan> spans) {
    if (pieces_) {
        otherPieces_ = true;
        return;
    }
    UseClip(state);
    if (!TextBatch::CanHold(state, spans)) {
        FlushText();
        penSet_ = false;
        DrawSpans(painter_, state, spans, 1);
        return;
    }
    if (!texts_.Matches(state)) FlushText();
    texts_.Add(state, spans);
}

QPointF PageDevice::Near(const CPoint& p) {
    return {std::clamp<double>(p.x, -kFarOutside, kFarOutside),
            std::clamp<double>(p.y, -kFarOutside, kFarOutside)};
}

QPointF PageDevice::At(const GraphicsState& state, const CPoint& p) const {
    return Near(state.map.ToDevice(p));
}

void PageDevice::FillPage() {
    if (!options_.opaqueBackground || options_.background == RGB(255, 255, 255)) return;
    painter_.fillRect(QRectF(0, 0, caps_.units.cx, caps_.units.cy), ColorOf(options_.background));
}

void PageDevice::UseClip(const GraphicsState& state) {
    if (clipSet_ && clip_ == state.clip) return;
    FlushDiscs();
    FlushText();
    clip_ = state.clip;
    clipSet_ = true;
    penSet_ = false;
    if (!clip_) {
        painter_.setClipping(false);
        return;
    }
    QPainterPath path;
    for (const CRect& rect : clip_->Rects())
        path.addRect(QRectF(rect.left, rect.top, rect.Width(), rect.Height()));
    painter_.setClipPath(path);
}

void PageDevice::UsePen(const GraphicsState& state) {
    const double width = PenWidthOf(state, hairline_);
    const COLORREF color = InkOf(state, state.pen.lopnColor);
    const BYTE transparency = state.pen.lopnTransparency;
    if (penSet_ && width == width_ && color == color_ && transparency == transparency_ &&
        state.pen.lopnStyle == style_)
        return;
    FlushLines();
    width_ = width;
    color_ = color;
    transparency_ = transparency;
    style_ = state.pen.lopnStyle;
    penSet_ = true;
    painter_.setPen(PenOf(state));
}

QPen PageDevice::PenOf(const GraphicsState& state) const {
    const double width = PenWidthOf(state, hairline_);
    const QColor color = ColorOf(InkOf(state, state.pen.lopnColor), state.pen.lopnTransparency);
    QPen pen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    QList<qreal> pattern;  // in widths of the pen
    for (const double length : DashesOf(state, width, pixel_)) pattern.append(length * pixel_ / width);
    if (!pattern.isEmpty()) {
        pen.setDashPattern(pattern);
        pen.setCapStyle(Qt::FlatCap);
    }
    return pen;
}

void PageDevice::FlushLines() {
    if (lines_.isEmpty()) return;
    painter_.drawPath(lines_);
    lines_.clear();
}

void PageDevice::FlushText() {
    FlushLines();
    if (texts_.IsEmpty()) return;
    texts_.Draw(painter_);
    penSet_ = false;
}

void PageDevice::FlushTextBelow(const QRectF& shape, double reach) {
    if (texts_.Touches(shape.adjusted(-reach, -reach, reach, reach))) FlushText();
}

void PageDevice::Paint(const GraphicsState& state, const QPainterPath& path) {
    if (pieces_) {
        if (state.brush.lbStyle == BS_SOLID)
            pieces_->push_back(
                {path, ColorOf(InkOf(state, state.brush.lbColor), state.brush.lbTransparency), Qt::NoPen});
        otherPieces_ = otherPieces_ || state.brush.lbStyle == BS_HATCHED;
        if (state.pen.lopnStyle != PS_NULL) pieces_->push_back({path, Qt::NoBrush, PenOf(state)});
        return;
    }
    FlushLines();
    FlushTextBelow(path.boundingRect(), PenWidthOf(state, hairline_));
    if (state.brush.lbStyle == BS_SOLID)
        painter_.fillPath(path, ColorOf(InkOf(state, state.brush.lbColor), state.brush.lbTransparency));
    if (state.brush.lbStyle == BS_HATCHED) DrawHatch(state, path);
    if (state.pen.lopnStyle == PS_NULL) return;
    UsePen(state);
    painter_.strokePath(path, painter_.pen());
}

void PageDevice::DrawHatch(const GraphicsState& state, const QPainterPath& path) {
    painter_.save();
    if (state.backgroundMode == OPAQUE)
        painter_.fillPath(path, ColorOf(state.backgroundColor, state.brush.lbTransparency));
    painter_.setClipPath(path, Qt::IntersectClip);
    painter_.setPen(QPen(ColorOf(state.brush.lbColor, state.brush.lbTransparency), hairline_ * 4));
    for (const QLineF& line : HatchLines(state.brush.lbHatch, path.boundingRect(), kHatchPixels * pixel_))
        painter_.drawLine(line);
    painter_.restore();
}

}  // namespace zel::qt

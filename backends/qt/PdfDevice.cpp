#include "backends/qt/Application.h"
#include "backends/qt/FileDevices.h"
#include "backends/qt/FileSink.h"
#include "backends/qt/Fonts.h"
#include "backends/qt/Hatch.h"
#include "backends/qt/PenStyle.h"
#include "backends/qt/TextBatch.h"

#include <zel/platform/Exception.h>
#include <zel/platform/SafeFile.h>

#include <QPageLayout>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>

#include <cerrno>
#include <cmath>

namespace zel::qt {
namespace {

constexpr int kResolution = kPdfUnitsPerInch;
constexpr double kHairline = 0.18 / 72 * kResolution;  // a line of width 0: the thinnest that prints well
constexpr double kPixel = kResolution / 96.0;          // of a screen
constexpr double kHatchSpacing = 8 * kPixel;
constexpr double kFarOutside = 1e7;
constexpr std::size_t kShortLine = 8;  // points
constexpr int kMostHeld = 4000;        // elements of a path

// Pages of a PDF file. Everything is drawn as vectors and text; raster operations do not exist on paper.
class PdfDevice : public MeasuringDevice {
  public:
    explicit PdfDevice(const FileDeviceOptions& options)
        : options_(options),
          caps_(CapsOf(options, DT_RASPRINTER, kResolution)),
          file_(options.path),
          sink_(file_),
          writer_(&sink_) {
        writer_.setResolution(kResolution);
        const QPageSize size(QSizeF(options.width, options.height), QPageSize::Inch, QString(),
                             QPageSize::ExactMatch);
        writer_.setPageLayout(QPageLayout(size, QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
        writer_.setTitle(QString::fromStdString(options.title));
        writer_.setCreator("Zel");
        Check(painter_.begin(&writer_));
        painter_.setRenderHint(QPainter::LosslessImageRendering);
        FillPage();
    }

    void NewPage() override {
        FlushText();
        Check(writer_.newPage());
        penSet_ = false;
        clipSet_ = false;
        painter_.setClipping(false);
        FillPage();
    }

    void Finish() override {
        FlushText();
        Check(painter_.end());
        file_.Commit();
    }

    int Caps(int index) const override { return caps_.Answer(index); }

    void Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) override {
        if (count < 2 || state.pen.lopnStyle == PS_NULL || PaintsNothing(state)) return;
        UseClip(state);
        line_.clear();
        line_.reserve(static_cast<qsizetype>(count));
        for (std::size_t i = 0; i < count; ++i) line_.append(At(state, points[i]));
        FlushTextBelow(line_.boundingRect(), PenWidthOf(state, kHairline));
        UsePen(state);
        if (count > kShortLine) {
            FlushLines();
            painter_.drawPolyline(line_);
            return;
        }
        lines_.addPolygon(line_);
        if (lines_.elementCount() > kMostHeld) FlushLines();
    }

    void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                  std::span<const int> counts) override {
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

    void FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                  DWORD operation) override {
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

    void Ellipse(const GraphicsState& state, const CRect& rect) override {
        if (PaintsNothing(state)) return;
        UseClip(state);
        CRect box = state.map.ToDevice(rect);
        box.NormalizeRect();
        QPainterPath path;
        path.addEllipse(QRectF(box.left, box.top, box.Width() - 1, box.Height() - 1));
        Paint(state, path);
    }

    void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) override {
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

  private:
    QPointF At(const GraphicsState& state, const CPoint& p) const {
        const CPoint at = state.map.ToDevice(p);
        return {std::clamp<double>(at.x, -kFarOutside, kFarOutside),
                std::clamp<double>(at.y, -kFarOutside, kFarOutside)};
    }

    void FillPage() {
        if (!options_.opaqueBackground || options_.background == RGB(255, 255, 255)) return;
        painter_.fillRect(QRectF(0, 0, caps_.units.cx, caps_.units.cy), ColorOf(options_.background));
    }

    // The writer itself may not say that the disk is full.
    void Check(bool written) {
        sink_.Check();
        if (!written) ThrowFileError("write", options_.path.c_str(), EIO);
    }

    void UseClip(const GraphicsState& state) {
        if (clipSet_ && clip_ == state.clip) return;
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

    void UsePen(const GraphicsState& state) {
        const double width = PenWidthOf(state, kHairline);
        const COLORREF color = InkOf(state, state.pen.lopnColor);
        if (penSet_ && width == width_ && color == color_ && state.pen.lopnStyle == style_) return;
        FlushLines();
        width_ = width;
        color_ = color;
        style_ = state.pen.lopnStyle;
        penSet_ = true;
        QPen pen(ColorOf(color_), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        QList<qreal> pattern;  // in widths of the pen
        for (const double length : DashesOf(state, width, kPixel)) pattern.append(length * kPixel / width);
        if (!pattern.isEmpty()) {
            pen.setDashPattern(pattern);
            pen.setCapStyle(Qt::FlatCap);
        }
        painter_.setPen(pen);
    }

    // Short lines with one pen are held back, to be described as one path; lines that were drawn before a
    // held text, or beside it, go before it.
    void FlushLines() {
        if (lines_.isEmpty()) return;
        painter_.drawPath(lines_);
        lines_.clear();
    }
    void FlushText() {
        FlushLines();
        if (texts_.IsEmpty()) return;
        texts_.Draw(painter_);
        penSet_ = false;
    }
    // Texts are held back as long as nothing is drawn over them.
    void FlushTextBelow(const QRectF& shape, double reach) {
        if (texts_.Touches(shape.adjusted(-reach, -reach, reach, reach))) FlushText();
    }

    void Paint(const GraphicsState& state, const QPainterPath& path) {
        FlushLines();
        FlushTextBelow(path.boundingRect(), PenWidthOf(state, kHairline));
        if (state.brush.lbStyle == BS_SOLID)
            painter_.fillPath(path, ColorOf(InkOf(state, state.brush.lbColor)));
        if (state.brush.lbStyle == BS_HATCHED) DrawHatch(state, path);
        if (state.pen.lopnStyle == PS_NULL) return;
        UsePen(state);
        painter_.strokePath(path, painter_.pen());
    }

    void DrawHatch(const GraphicsState& state, const QPainterPath& path) {
        painter_.save();
        if (state.backgroundMode == OPAQUE) painter_.fillPath(path, ColorOf(state.backgroundColor));
        painter_.setClipPath(path, Qt::IntersectClip);
        painter_.setPen(QPen(ColorOf(state.brush.lbColor), kHairline * 4));
        for (const QLineF& line : HatchLines(state.brush.lbHatch, path.boundingRect(), kHatchSpacing))
            painter_.drawLine(line);
        painter_.restore();
    }

    FileDeviceOptions options_;
    SurfaceCaps caps_;
    SafeFile file_;
    FileSink sink_;
    QPdfWriter writer_;
    QPainter painter_;
    QPolygonF line_;
    TextBatch texts_;
    QPainterPath lines_;  // with the painter's pen
    std::shared_ptr<const Region> clip_;
    bool clipSet_ = false;
    bool penSet_ = false;
    double width_ = 0;
    COLORREF color_ = 0;
    UINT style_ = 0;
};

}  // namespace

std::unique_ptr<DocumentDevice> CreatePdfDevice(const FileDeviceOptions& options) {
    EnsureApplication();
    return std::make_unique<PdfDevice>(options);
}

}  // namespace zel::qt

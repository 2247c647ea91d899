#include "backends/qt/Application.h"
#include "backends/qt/FileDevices.h"
#include "backends/qt/Fonts.h"
#include "backends/qt/Hatch.h"

#include <zel/platform/Exception.h>
#include <zel/platform/SafeFile.h>

#include <QFile>
#include <QPageLayout>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>

#include <cerrno>
#include <cmath>

namespace zel::qt {
namespace {

constexpr int kResolution = kPdfUnitsPerInch;
constexpr double kHairline = 0.18 / 72 * kResolution;     // a line of width 0: the thinnest that prints well
constexpr double kHatchSpacing = 8.0 / 96 * kResolution;  // the platform's 8 pixels on a screen
constexpr double kFarOutside = 1e7;

// Pages of a PDF file. Everything is drawn as vectors and text; raster operations do not exist on paper.
class PdfDevice : public MeasuringDevice {
  public:
    explicit PdfDevice(const FileDeviceOptions& options)
        : options_(options),
          caps_(CapsOf(options, DT_RASPRINTER, kResolution)),
          file_(options.path),
          writer_(QString::fromStdString(file_.TemporaryPath())) {
        writer_.setResolution(kResolution);
        const QPageSize size(QSizeF(options.width, options.height), QPageSize::Inch, QString(),
                             QPageSize::ExactMatch);
        writer_.setPageLayout(QPageLayout(size, QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
        writer_.setTitle(QString::fromStdString(options.title));
        writer_.setCreator("Zel");
        if (!painter_.begin(&writer_)) ThrowFileError("write", options_.path.c_str(), errno ? errno : EIO);
        painter_.setRenderHint(QPainter::LosslessImageRendering);
        FillPage();
    }

    void NewPage() override {
        if (!writer_.newPage()) ThrowFileError("write", options_.path.c_str(), errno ? errno : EIO);
        penSet_ = false;
        clipSet_ = false;
        painter_.setClipping(false);
        FillPage();
    }

    void Finish() override {
        if (!painter_.end()) ThrowFileError("write", options_.path.c_str(), errno ? errno : EIO);
        CheckWritten();
        file_.Commit();
    }

    int Caps(int index) const override { return caps_.Answer(index); }

    void Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) override {
        if (count < 2 || state.pen.lopnStyle == PS_NULL || state.rasterMode == R2_NOP) return;
        UseClip(state);
        UsePen(state);
        line_.clear();
        line_.reserve(static_cast<qsizetype>(count));
        for (std::size_t i = 0; i < count; ++i) line_.append(At(state, points[i]));
        painter_.drawPolyline(line_);
    }

    void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                  std::span<const int> counts) override {
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
        how.brush = operation == WHITENESS   ? LOGBRUSH{BS_SOLID, RGB(255, 255, 255), 0}
                    : operation == BLACKNESS ? LOGBRUSH{BS_SOLID, RGB(0, 0, 0), 0}
                                             : brush;
        QPainterPath path;
        path.addRect(QRectF(box.left, box.top, box.Width(), box.Height()));
        Paint(how, path);
    }

    void Ellipse(const GraphicsState& state, const CRect& rect) override {
        UseClip(state);
        CRect box = state.map.ToDevice(rect);
        box.NormalizeRect();
        QPainterPath path;
        path.addEllipse(QRectF(box.left, box.top, box.Width() - 1, box.Height() - 1));
        Paint(state, path);
    }

    void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) override {
        UseClip(state);
        penSet_ = false;
        DrawSpans(painter_, state, spans, 1);
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

    // The writer itself does not say when the disk is full.
    void CheckWritten() {
        QFile written(QString::fromStdString(file_.TemporaryPath()));
        const bool whole = written.open(QIODevice::ReadOnly) && written.size() > 32 &&
                           written.seek(written.size() - 32) && written.readAll().contains("%%EOF");
        if (!whole) ThrowFileError("write", options_.path.c_str(), ENOSPC);
    }

    void UseClip(const GraphicsState& state) {
        if (clipSet_ && clip_ == state.clip) return;
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
        const double width = state.pen.lopnWidth.x == 0
                                 ? kHairline
                                 : std::max(1.0, state.pen.lopnWidth.x * state.map.ScaleX());
        if (penSet_ && width == width_ && state.pen.lopnColor == color_ && state.pen.lopnStyle == style_)
            return;
        width_ = width;
        color_ = state.pen.lopnColor;
        style_ = state.pen.lopnStyle;
        penSet_ = true;
        static constexpr Qt::PenStyle kStyles[] = {Qt::SolidLine,   Qt::DashLine,       Qt::DotLine,
                                                   Qt::DashDotLine, Qt::DashDotDotLine, Qt::NoPen,
                                                   Qt::SolidLine};
        painter_.setPen(
            QPen(ColorOf(color_), width, kStyles[std::min<UINT>(style_, 6)], Qt::RoundCap, Qt::RoundJoin));
    }

    void Paint(const GraphicsState& state, const QPainterPath& path) {
        if (state.brush.lbStyle == BS_SOLID) painter_.fillPath(path, ColorOf(state.brush.lbColor));
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
    QPdfWriter writer_;
    QPainter painter_;
    QPolygonF line_;
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

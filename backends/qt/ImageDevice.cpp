#include "backends/qt/Application.h"
#include "backends/qt/ColumnThinner.h"
#include "backends/qt/DiscSprites.h"
#include "backends/qt/FileSink.h"
#include "backends/qt/Fonts.h"
#include "backends/qt/Hatch.h"
#include "backends/qt/MarkSprites.h"
#include "backends/qt/PenStyle.h"
#include "backends/qt/PngFile.h"
#include "backends/qt/PolygonClip.h"
#include "backends/qt/Stroker.h"
#include "backends/qt/WideRegisters.h"

#include <zel/platform/Exception.h>
#include <zel/platform/SafeFile.h>
#include <zel/platform/SurfaceCaps.h>
#include <zel/qt/ImageDevice.h>

#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <optional>
#include <string>

namespace zel::qt {
namespace {

// An A0 poster of 300 dots per inch has half as many.
constexpr std::int64_t kMostPixels = std::int64_t{1} << 28;
constexpr double kFarOutside = 16000;  // pixels; the rasteriser's coordinates are exact up to twice that

constexpr int ShiftOf(ImageDevice::Grid grid) {
    return grid == ImageDevice::Grid::SIXTEENTHS ? 4 : 0;
}

bool IsAxisParallel(const CPoint* points, std::size_t count) {
    for (std::size_t i = 1; i < count; ++i) {
        if (points[i].x != points[i - 1].x && points[i].y != points[i - 1].y) return false;
    }
    return true;
}

std::uint32_t PixelValue(COLORREF color) {
    return 0xFF000000u | static_cast<std::uint32_t>(GetRValue(color)) << 16 |
           static_cast<std::uint32_t>(GetGValue(color)) << 8 | GetBValue(color);
}

// Not premultiplied.
std::uint32_t InkOf(COLORREF color, BYTE transparency) {
    return (PixelValue(color) & 0xFFFFFFu) | static_cast<std::uint32_t>(255 - transparency) << 24;
}
std::uint32_t InkOf(const LOGPEN& pen) {
    return InkOf(pen.lopnColor, pen.lopnTransparency);
}
std::uint32_t InkOf(const LOGBRUSH& brush) {
    return InkOf(brush.lbColor, brush.lbTransparency);
}
bool IsOpaque(std::uint32_t ink) {
    return ink >> 24 == 255;
}

QPainter::CompositionMode CompositionOf(int rasterMode) {
    switch (rasterMode) {
        case R2_BLACK:
            return QPainter::RasterOp_ClearDestination;
        case R2_NOTMERGEPEN:
            return QPainter::RasterOp_NotSourceAndNotDestination;
        case R2_MASKNOTPEN:
            return QPainter::RasterOp_NotSourceAndDestination;
        case R2_NOTCOPYPEN:
            return QPainter::RasterOp_NotSource;
        case R2_MASKPENNOT:
            return QPainter::RasterOp_SourceAndNotDestination;
        case R2_NOT:
            return QPainter::RasterOp_NotDestination;
        case R2_XORPEN:
            return QPainter::RasterOp_SourceXorDestination;
        case R2_NOTMASKPEN:
            return QPainter::RasterOp_NotSourceOrNotDestination;
        case R2_MASKPEN:
            return QPainter::RasterOp_SourceAndDestination;
        case R2_NOTXORPEN:
            return QPainter::RasterOp_NotSourceXorDestination;
        case R2_NOP:
            return QPainter::CompositionMode_Destination;
        case R2_MERGENOTPEN:
            return QPainter::RasterOp_NotSourceOrDestination;
        case R2_MERGEPENNOT:
            return QPainter::RasterOp_SourceOrNotDestination;
        case R2_MERGEPEN:
            return QPainter::RasterOp_SourceOrDestination;
        case R2_WHITE:
            return QPainter::RasterOp_SetDestination;
        default:
            return QPainter::CompositionMode_SourceOver;
    }
}

}  // namespace

class ImageDevice::Impl {
  public:
    Impl(int pixelWidth, int pixelHeight, double resolution, double units, Grid grid)
        : shift(ShiftOf(grid)),
          sub(1 << shift),
          width(pixelWidth),
          height(pixelHeight),
          dotsPerInch(resolution),
          caps{.unitsPerInch = units > 0 ? units : resolution * sub,
               .units = CSize(pixelWidth * sub, pixelHeight * sub),
               .widthInches = pixelWidth / resolution,
               .heightInches = pixelHeight / resolution},
          pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0xFFFFFFFFu),
          image(reinterpret_cast<uchar*>(pixels.data()), width, height, width * 4,
                QImage::Format_ARGB32_Premultiplied),
          stroker(width, height),
          thinner(stroker, shift),
          discs(width, height, shift),
          marks({pixels.data(), width, height}, shift),
          painter(&image) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::TextAntialiasing);
        painter.setPen(Qt::NoPen);
    }

    // The pixel that a device unit lies in.
    int PixelOf(LONG unit) const { return unit >> shift; }

    // Makes the clip of `state` that of painter and strokes.
    void UseClip(const GraphicsState& state) {
        blank.reset();
        if (clipSet && state.clip == clip) return;
        FinishCurve();
        clip = state.clip;
        clipSet = true;
        clips.clear();
        const CRect all(0, 0, width, height);
        if (!clip) {
            clips.push_back(all);
            painter.setClipping(false);
            return;
        }
        QRegion region;
        for (const CRect& rect : clip->Rects()) {
            const CRect box(PixelOf(rect.left), PixelOf(rect.top), PixelOf(Subtract(rect.right, 1)) + 1,
                            PixelOf(Subtract(rect.bottom, 1)) + 1);
            CRect seen;
            if (!seen.IntersectRect(box, all)) continue;
            clips.push_back(seen);
            region += QRect(seen.left, seen.top, seen.Width(), seen.Height());
        }
        painter.setClipRegion(region.isEmpty() ? QRegion(-2, -2, 1, 1) : region);
    }

    // Pens wider than a pixel have no dashes.
    bool IsSolid(const GraphicsState& state) const {
        return state.pen.lopnStyle == PS_SOLID || state.pen.lopnStyle == PS_INSIDEFRAME ||
               (state.pen.lopnStyle != PS_NULL && PenWidth(state) > 1);
    }
    double PenWidth(const GraphicsState& state) const {
        return std::max(1.0, state.pen.lopnWidth.x * state.map.ScaleX() / sub);
    }

    void FillPixels(const CRect& box, std::uint32_t ink) {
        if (!IsOpaque(ink)) {
            FinishCurve();
            stroker.AddBox(box);
            Blend(ink);
            return;
        }
        // Clips lie in bands from the top: those above the box and below it are passed over.
        auto part = std::partition_point(clips.begin(), clips.end(),
                                         [&](const CRect& each) { return each.bottom <= box.top; });
        for (; part != clips.end() && part->top < box.bottom; ++part) {
            CRect seen;
            if (!seen.IntersectRect(box, *part)) continue;
            for (int y = seen.top; y < seen.bottom; ++y) {
                auto row = pixels.begin() + static_cast<std::ptrdiff_t>(y) * width;
                std::fill(row + seen.left, row + seen.right, ink);
            }
        }
    }

    void DrawSmooth(const CPoint* points, std::size_t count, double penWidth, std::uint32_t color) {
        AddToCurve(points, count, penWidth, color);
        FinishCurve();
    }

    // Adds a line to a figure that is blended when it is complete.
    void AddToCurve(const CPoint* points, std::size_t count, double penWidth, std::uint32_t color) {
        if (penWidth != curveWidth || color != curveColor) FinishCurve();
        curveWidth = penWidth;
        curveColor = color;
        if (!thinner.GoesOnAt(points[0])) thinner.End();
        thinner.Add({points, count}, penWidth / 2);
    }
    void FinishCurve() {
        thinner.End();
        Blend(curveColor);
        discs.Clear();
        if (largeDiscs.isEmpty()) return;
        painter.fillPath(largeDiscs, QColor::fromRgba(curveColor));
        LeaveWideRegisters();
        largeDiscs.clear();
    }
    void Blend(std::uint32_t ink) { stroker.Blend({pixels.data(), width, height}, ink, clips); }

    // Discs of one size that follow are part of the figure.
    void BeginDiscs(const CSize& size, std::uint32_t color) {
        if (color != curveColor) FinishCurve();
        curveColor = color;
        discs.SetSize(size);
    }

    void AddLargeDisc(CRect units, std::uint32_t color) {
        if (color != curveColor) FinishCurve();
        curveColor = color;
        units.NormalizeRect();
        const double scale = sub;
        const QRectF shape(units.left / scale, units.top / scale, (units.Width() - 1) / scale,
                           (units.Height() - 1) / scale);
        if (!shape.intersects(QRectF(0, 0, width, height))) return;
        largeDiscs.setFillRule(Qt::WindingFill);
        largeDiscs.addEllipse(shape);
    }

    // A wide pen that goes nowhere leaves a disc: dots of a dashed line may be as short as that.
    void DrawDot(const CPoint& at, double penWidth, std::uint32_t color) {
        const PointF centre{at.x + 0.5, at.y + 0.5};
        stroker.Add(centre, centre, penWidth / 2);
        Blend(color);
    }

    // Along the axes: whole pixels. A line one pixel wide leaves out the unit that it ends on; wider ones
    // have round ends and corners.
    void DrawCrisp(const CPoint* points, std::size_t count, double penWidth, std::uint32_t color) {
        const int wide = std::max(1, static_cast<int>(std::lround(penWidth)));
        if (wide > 1) {
            DrawCrispWide(points, count, wide, color);
            return;
        }
        if (!IsOpaque(color)) FinishCurve();
        for (std::size_t i = 1; i < count; ++i) {
            const CPoint a = points[i - 1];
            CPoint b = points[i];
            if (a == b) continue;
            const bool closes = i + 1 < count;  // the next segment draws this one's last unit anyway
            const auto shortened = [&](LONG from, LONG to) {
                return closes ? to : to > from ? to - 1 : to < from ? to + 1 : to;
            };
            b = {shortened(a.x, b.x), shortened(a.y, b.y)};
            const CRect box(PixelOf(std::min(a.x, b.x)), PixelOf(std::min(a.y, b.y)),
                            Add(PixelOf(std::max(a.x, b.x)), 1), Add(PixelOf(std::max(a.y, b.y)), 1));
            // Corners of a line that one sees through are covered once.
            IsOpaque(color) ? FillPixels(box, color) : stroker.AddBox(box);
        }
        if (!IsOpaque(color)) Blend(color);
    }

    // The axis lies where the sides fall between pixels: in the middle of one, or between two.
    void DrawCrispWide(const CPoint* points, std::size_t count, int wide, std::uint32_t color) {
        FinishCurve();
        const double middle = wide % 2 != 0 ? 0.5 : 0;
        const auto at = [&](const CPoint& p) { return PointF{PixelOf(p.x) + middle, PixelOf(p.y) + middle}; };
        for (std::size_t i = 1; i < count; ++i) stroker.Add(at(points[i - 1]), at(points[i]), wide / 2.0);
        Blend(color);
    }

    // Dashed platform pens and raster modes: whole pixels, each of a line once.
    void DrawPlain(const GraphicsState& state, const CPoint* points, std::size_t count) {
        FinishCurve();
        if (PenWidth(state) > 1) {
            DrawPlainWide(state, points, count);
            return;
        }
        const bool copies = state.rasterMode == R2_COPYPEN;
        const std::span<const double> dashes = DashesOf(state, 1, 1);
        const auto paint = [&](std::uint32_t ink, bool gaps) {
            std::int64_t before = 0;  // pixels of the line
            for (std::size_t i = 1; i < count; ++i) {
                before += WalkPixels(points[i - 1], points[i], [&](const CPoint& pixel, std::int64_t step) {
                    if (IsGap(dashes, before + step) != gaps) return;
                    copies ? stroker.AddBox(CRect(pixel, CSize(1, 1)))
                           : Combine(pixel, state.rasterMode, ink);
                });
            }
            if (copies) Blend(ink);
        };
        if (!dashes.empty() && state.backgroundMode == OPAQUE)
            paint(copies ? InkOf(state.backgroundColor, state.pen.lopnTransparency)
                         : PixelValue(state.backgroundColor),
                  true);
        paint(copies ? InkOf(state.pen) : PixelValue(state.pen.lopnColor), false);
    }

    static bool IsGap(std::span<const double> dashes, std::int64_t place) {
        if (dashes.empty()) return false;
        double cycle = 0;
        for (const double length : dashes) cycle += length;
        auto left = static_cast<double>(place % static_cast<std::int64_t>(cycle));
        bool gap = false;
        for (const double length : dashes) {
            if (left < length) break;
            left -= length;
            gap = !gap;
        }
        return gap;
    }

    // The pixels that can be seen from the first of a line to the last but one, which is how the platform
    // draws lines: what goes on from there begins with its own first pixel. Returns how many the line has.
    template <class Each>
    std::int64_t WalkPixels(const CPoint& from, const CPoint& to, Each each) const {
        const double x = PixelOf(from.x), y = PixelOf(from.y);
        const double dx = PixelOf(to.x) - x, dy = PixelOf(to.y) - y;
        const double steps = std::max(std::fabs(dx), std::fabs(dy));
        if (steps == 0) return 0;
        double begin = 0, end = 1;
        const auto cut = [&](double start, double delta, double size) {
            if (delta == 0) return start >= 0 && start < size;
            const double t0 = (-1 - start) / delta, t1 = (size - start) / delta;
            begin = std::max(begin, std::min(t0, t1));
            end = std::min(end, std::max(t0, t1));
            return begin <= end;
        };
        if (cut(x, dx, width) && cut(y, dy, height)) {
            const auto last = static_cast<std::int64_t>(std::min(steps - 1, std::ceil(end * steps)));
            for (auto i = static_cast<std::int64_t>(begin * steps); i <= last; ++i) {
                const double t = static_cast<double>(i) / steps;
                each(CPoint(static_cast<LONG>(std::floor(x + t * dx + 0.5)),
                            static_cast<LONG>(std::floor(y + t * dy + 0.5))),
                     i);
            }
        }
        return static_cast<std::int64_t>(steps);
    }

    // The modes are numbered by their tables: a bit for each combination of pen and pixel.
    void Combine(const CPoint& pixel, int rasterMode, std::uint32_t pen) {
        const bool seen = std::any_of(clips.begin(), clips.end(),
                                      [&](const CRect& part) { return part.PtInRect(pixel) != FALSE; });
        if (!seen) return;
        std::uint32_t& value = pixels[static_cast<std::size_t>(pixel.y) * static_cast<std::size_t>(width) +
                                      static_cast<std::size_t>(pixel.x)];
        const auto table = static_cast<unsigned>(rasterMode - 1);
        const std::uint32_t combined =
            ((table & 1) != 0 ? ~pen & ~value : 0) | ((table & 2) != 0 ? ~pen & value : 0) |
            ((table & 4) != 0 ? pen & ~value : 0) | ((table & 8) != 0 ? pen & value : 0);
        value = combined | 0xFF000000u;
    }

    // Pens wider than a pixel have no dashes.
    void DrawPlainWide(const GraphicsState& state, const CPoint* points, std::size_t count) {
        const QPen pen(ColorOf(state.pen.lopnColor), PenWidth(state), Qt::SolidLine, Qt::RoundCap,
                       Qt::RoundJoin);
        QPolygonF line;
        for (std::size_t i = 0; i < count; ++i) {
            const QPointF at(PixelOf(points[i].x) + 0.5, PixelOf(points[i].y) + 0.5);
            line.append({std::clamp(at.x(), -kFarOutside, kFarOutside),
                         std::clamp(at.y(), -kFarOutside, kFarOutside)});
        }
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setCompositionMode(CompositionOf(state.rasterMode));
        painter.setPen(pen);
        painter.drawPolyline(line);
        painter.restore();
        LeaveWideRegisters();
    }

    // Corners on whole pixels would make a rough ellipse: its points lie between them. The centre is that of
    // a pixel when the arc's is a whole number.
    void StrokeArc(const GraphicsState& state, const EllipticArc& arc) {
        const std::uint32_t color = InkOf(state.pen);
        if (color != curveColor) FinishCurve();
        curveColor = color;
        const double half = PenWidth(state) / 2;
        const double turn = arc.sweep / (2 * std::numbers::pi);
        const double sides = 8 * std::sqrt(std::max({arc.rx, arc.ry, 1.0})) * std::fabs(turn);
        const int steps = std::clamp(static_cast<int>(sides), 12, 2000);
        const auto at = [&](int step) {
            const double angle = arc.begin + arc.sweep * step / steps;
            return PointF{arc.cx + 0.5 + arc.rx * std::cos(angle), arc.cy + 0.5 - arc.ry * std::sin(angle)};
        };
        for (int i = 0; i < steps; ++i) stroker.Add(at(i), at(i + 1), half);
        if (curves == 0) FinishCurve();
    }

    void FillRings(const GraphicsState& state, std::span<const CPoint> points, std::span<const int> counts) {
        const QRectF near(-kFarOutside, -kFarOutside, 2 * kFarOutside, 2 * kFarOutside);
        // In whole pixels the outline runs through their centres, and the fill with it.
        const double inset = state.pen.lopnStyle != PS_NULL && sub == 1 ? 0.5 : 0;
        QPainterPath path;
        path.setFillRule(state.polygonFillMode == WINDING ? Qt::WindingFill : Qt::OddEvenFill);
        std::size_t begin = 0;
        for (const int count : counts) {
            QPolygonF ring;
            ring.reserve(count);
            for (const CPoint& p : points.subspan(begin, static_cast<std::size_t>(count))) {
                const CPoint at = state.map.ToDevice(p);
                ring.append(
                    {at.x / static_cast<double>(sub) + inset, at.y / static_cast<double>(sub) + inset});
            }
            begin += static_cast<std::size_t>(count);
            path.addPolygon(ClippedTo(ring, near));
            path.closeSubpath();
        }
        PaintShape(state, [&] { painter.drawPath(path); });
    }

    template <class Paint>
    void PaintShape(const GraphicsState& state, Paint paint) {
        const bool plain = state.rasterMode == R2_COPYPEN;
        painter.setBrush(BrushOf(state, state.brush));
        painter.setBrushOrigin(state.brushOrigin.x / sub, state.brushOrigin.y / sub);
        painter.setPen(Qt::NoPen);
        if (!plain) {
            painter.setRenderHint(QPainter::Antialiasing, false);
            painter.setCompositionMode(CompositionOf(state.rasterMode));
        }
        paint();
        LeaveWideRegisters();
        if (!plain) {
            painter.setRenderHint(QPainter::Antialiasing, true);
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        }
    }

    void FillBox(const GraphicsState& state, const CRect& box, const LOGBRUSH& brush, DWORD operation) {
        if (operation == WHITENESS || operation == BLACKNESS) {
            FillPixels(box, operation == WHITENESS ? 0xFFFFFFFFu : 0xFF000000u);
        } else if (operation == PATCOPY && brush.lbStyle == BS_SOLID) {
            FillPixels(box, InkOf(brush));
        } else {
            GraphicsState how = state;
            how.brush = operation == DSTINVERT ? LOGBRUSH{BS_SOLID, RGB(255, 255, 255), 0} : brush;
            how.rasterMode = operation == PATCOPY ? R2_COPYPEN : R2_XORPEN;
            PaintShape(how, [&] { painter.drawRect(QRect(box.left, box.top, box.Width(), box.Height())); });
        }
    }

    // Each pixel has the colour of the cell that its centre lies in.
    void DrawPicture(const CRect& box, const PictureView& picture) {
        FinishCurve();
        std::vector<int> columns(
            static_cast<std::size_t>(std::min(width, box.right) - std::max(0, box.left)));
        const auto cellAt = [](std::int64_t place, std::int64_t length, std::int64_t cells) {
            return static_cast<int>((2 * place + 1) * cells / (2 * length));
        };
        const int first = std::max(0, box.left);
        for (std::size_t i = 0; i < columns.size(); ++i)
            columns[i] = cellAt(first + static_cast<int>(i) - box.left, box.Width(), picture.width);
        for (const CRect& part : clips) {
            CRect seen;
            if (!seen.IntersectRect(box, part)) continue;
            for (int y = seen.top; y < seen.bottom; ++y) {
                const int row = cellAt(y - box.top, box.Height(), picture.height);
                std::uint32_t* const target = pixels.data() + std::ptrdiff_t{y} * width;
                for (int x = seen.left; x < seen.right; ++x)
                    Lay(target[x], picture.At(columns[static_cast<std::size_t>(x - first)], row));
            }
        }
    }

    // `color` is not premultiplied, the pixel is.
    static void Lay(std::uint32_t& pixel, std::uint32_t color) {
        const std::uint32_t alpha = color >> 24;
        if (alpha == 255) {
            pixel = color;
            return;
        }
        if (alpha == 0) return;
        std::uint32_t mixed = 0;
        for (int shiftOf = 0; shiftOf < 32; shiftOf += 8) {
            const std::uint32_t over = shiftOf == 24 ? 255 : color >> shiftOf & 0xFF;
            const std::uint32_t under = pixel >> shiftOf & 0xFF;
            mixed |= (over * alpha + under * (255 - alpha) + 127) / 255 << shiftOf;
        }
        pixel = mixed;
    }

    int shift;
    int sub;  // device units to a pixel
    int width;
    int height;
    double dotsPerInch;
    SurfaceCaps caps;
    std::vector<std::uint32_t> pixels;
    QImage image;
    Stroker stroker;
    std::optional<std::uint32_t> blank;  // what all pixels are, as long as nothing was drawn
    ColumnThinner thinner;
    DiscSprites discs;
    MarkSprites marks;
    QPainterPath largeDiscs;  // of the figure
    int curves = 0;           // that have begun, one within the other
    double curveWidth = 0;
    std::uint32_t curveColor = 0;
    QPainter painter;
    std::shared_ptr<const Region> clip;
    bool clipSet = false;
    std::vector<CRect> clips;  // pixels
};

ImageDevice::ImageDevice(int width, int height, double dotsPerInch, double unitsPerInch, Grid grid) {
    EnsureApplication();
    if (width < 1 || height < 1 || static_cast<std::int64_t>(width) * height > kMostPixels) {
        AfxThrowInvalidArgException(
            ("Cannot make an image of " + std::to_string(width) + " x " + std::to_string(height) +
             " pixels: it would need too much memory. Images have up to " +
             std::to_string(kMostPixels / 1'000'000) + " million pixels; choose a lower resolution.")
                .c_str());
    }
    impl_ = std::make_unique<Impl>(width, height, dotsPerInch, unitsPerInch, grid);
}

ImageDevice::~ImageDevice() = default;

int ImageDevice::Width() const {
    return impl_->width;
}
int ImageDevice::Height() const {
    return impl_->height;
}
const std::uint32_t* ImageDevice::Pixels() const {
    return impl_->pixels.data();
}

void ImageDevice::Clear(COLORREF color, bool opaque) {
    const std::uint32_t value = opaque ? PixelValue(color) : 0;
    impl_->blank = value;
    // White and nothing are the same byte throughout, which the machine fills fastest.
    if (value == 0xFFFFFFFFu || value == 0) {
        std::memset(impl_->pixels.data(), static_cast<int>(value & 0xFF),
                    impl_->pixels.size() * sizeof value);
    } else {
        std::fill(impl_->pixels.begin(), impl_->pixels.end(), value);
    }
}

void ImageDevice::Scroll(int dx, int dy) {
    impl_->blank.reset();
    const int wide = impl_->width - std::abs(dx);
    const int high = impl_->height - std::abs(dy);
    if (wide <= 0 || high <= 0) return;
    const auto at = [&](int x, int y) {
        return impl_->pixels.data() + static_cast<std::ptrdiff_t>(y) * impl_->width + x;
    };
    // Rows are moved in the order in which none is overwritten before it is read.
    for (int i = 0; i < high; ++i) {
        const int row = dy > 0 ? high - 1 - i : i;
        std::memmove(at(std::max(dx, 0), row + std::max(dy, 0)), at(std::max(-dx, 0), row + std::max(-dy, 0)),
                     static_cast<std::size_t>(wide) * sizeof(std::uint32_t));
    }
}

void ImageDevice::Save(const char* path, const char* format, int quality) const {
    std::string ending = format ? format : "";
    if (!format) {
        const std::string name(path);
        const std::size_t dot = name.rfind('.');
        ending = dot == std::string::npos ? "" : name.substr(dot + 1);
    }
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](char c) { return static_cast<char>(std::tolower(c)); });
    const bool jpeg = ending == "jpg" || ending == "jpeg";
    if (!jpeg && ending != "png") {
        AfxThrowNotSupportedException(("Cannot write the image \"" + std::string(path) + "\": the format \"" +
                                       ending + "\" is none of png, jpg.")
                                          .c_str());
    }
    const int dotsPerMetre = static_cast<int>(std::lround(impl_->dotsPerInch / 0.0254));
    SafeFile file(path);
    const PixelBuffer pixels{impl_->pixels.data(), impl_->width, impl_->height};
    if (!jpeg && CanWritePng(pixels)) {
        WritePng(file, pixels, dotsPerMetre);
        file.Commit();
        return;
    }
    // The same pixels: a copy of a large image is more than memory may hold.
    QImage image(reinterpret_cast<uchar*>(impl_->pixels.data()), impl_->width, impl_->height,
                 impl_->width * 4, QImage::Format_ARGB32_Premultiplied);
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    if (jpeg) image = image.convertToFormat(QImage::Format_RGB32);
    FileSink sink(file);
    QImageWriter writer(&sink, jpeg ? "JPG" : "PNG");
    writer.setQuality(jpeg ? quality : 60);
    const bool encoded = writer.write(image);
    sink.Check();
    if (!encoded) {
        AfxThrowNotSupportedException(("Cannot write the image \"" + std::string(path) +
                                       "\": " + writer.errorString().toStdString() + ".")
                                          .c_str());
    }
    file.Commit();
}

int ImageDevice::Caps(int index) const {
    return impl_->caps.Answer(index);
}

void ImageDevice::Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) {
    if (count < 2 || state.pen.lopnStyle == PS_NULL || state.rasterMode == R2_NOP) return;
    std::vector<CPoint> mapped;
    if (!state.map.IsIdentity()) {
        mapped.reserve(count);
        for (std::size_t i = 0; i < count; ++i) mapped.push_back(state.map.ToDevice(points[i]));
        points = mapped.data();
    }
    Impl& impl = *impl_;
    impl.UseClip(state);
    const bool solid = impl.IsSolid(state);
    const double penWidth = impl.PenWidth(state);
    const std::uint32_t color = InkOf(state.pen);
    if (impl.curves > 0 && solid && state.rasterMode == R2_COPYPEN) {
        impl.AddToCurve(points, count, penWidth, color);
    } else if (state.rasterMode != R2_COPYPEN || !solid) {
        impl.DrawPlain(state, points, count);
    } else if (impl.shift == 0 && penWidth > 1 && std::equal(points + 1, points + count, points)) {
        impl.DrawDot(points[0], penWidth, color);
    } else if (IsAxisParallel(points, count)) {
        impl.DrawCrisp(points, count, penWidth, color);
    } else {
        impl.DrawSmooth(points, count, penWidth, color);
    }
}

int ImageDevice::CurveColumn(const GraphicsState& state) const {
    const bool solid = impl_->IsSolid(state) || state.pen.lopnStyle == PS_NULL;
    return solid && state.rasterMode == R2_COPYPEN ? impl_->sub : 0;
}

void ImageDevice::BeginCurve() {
    ++impl_->curves;
}

void ImageDevice::EndCurve() {
    if (--impl_->curves == 0) impl_->FinishCurve();
}

void ImageDevice::Polygons(const GraphicsState& state, std::span<const CPoint> points,
                           std::span<const int> counts) {
    impl_->UseClip(state);
    if (state.brush.lbStyle != BS_NULL) impl_->FillRings(state, points, counts);
    if (state.pen.lopnStyle == PS_NULL) return;
    std::size_t begin = 0;
    for (const int count : counts) {
        const auto ring = points.subspan(begin, static_cast<std::size_t>(count));
        std::vector<CPoint> closed(ring.begin(), ring.end());
        if (!(closed.front() == closed.back())) closed.push_back(closed.front());
        Polyline(state, closed.data(), closed.size());
        begin += static_cast<std::size_t>(count);
    }
}

void ImageDevice::FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                           DWORD operation) {
    if (brush.lbStyle == BS_NULL && (operation == PATCOPY || operation == PATINVERT)) return;
    CRect units = state.map.ToDevice(rect);
    units.NormalizeRect();
    const CRect box(impl_->PixelOf(units.left), impl_->PixelOf(units.top), impl_->PixelOf(units.right),
                    impl_->PixelOf(units.bottom));
    const bool solid = operation == PATCOPY && brush.lbStyle == BS_SOLID;
    if (solid && impl_->blank == PixelValue(brush.lbColor)) return;
    impl_->UseClip(state);
    CRect seen;
    if (seen.IntersectRect(box, CRect(0, 0, impl_->width, impl_->height)))
        impl_->FillBox(state, seen, brush, operation);
}

void ImageDevice::DrawPicture(const GraphicsState& state, const CRect& rect, const PictureView& picture) {
    CRect units = state.map.ToDevice(rect);
    units.NormalizeRect();
    const CRect box(impl_->PixelOf(units.left), impl_->PixelOf(units.top), impl_->PixelOf(units.right),
                    impl_->PixelOf(units.bottom));
    CRect seen;
    if (picture.width < 1 || picture.height < 1 ||
        !seen.IntersectRect(box, CRect(0, 0, impl_->width, impl_->height)))
        return;
    impl_->UseClip(state);
    impl_->DrawPicture(box, picture);
}

void ImageDevice::Ellipse(const GraphicsState& state, const CRect& rect) {
    CRect box = state.map.ToDevice(rect);
    box.NormalizeRect();
    impl_->UseClip(state);
    const double scale = impl_->sub;
    const bool outlined = state.pen.lopnStyle != PS_NULL;
    // In whole pixels the outline runs through their centres, and the fill with it.
    const double inset = outlined && impl_->sub == 1 ? 0.5 : 0;
    const QRectF shape(box.left / scale + inset, box.top / scale + inset, (box.Width() - 1) / scale,
                       (box.Height() - 1) / scale);
    const double limit = kFarOutside;
    const bool near = std::fabs(shape.left()) < limit && std::fabs(shape.right()) < limit &&
                      std::fabs(shape.top()) < limit && std::fabs(shape.bottom()) < limit;
    if (state.brush.lbStyle != BS_NULL && near)
        impl_->PaintShape(state, [&] { impl_->painter.drawEllipse(shape); });
    if (!outlined) return;
    const bool solid = impl_->IsSolid(state);
    if (impl_->sub == 1 && near && solid && state.rasterMode == R2_COPYPEN) {
        const EllipticArc whole{
            shape.center().x() - 0.5, shape.center().y() - 0.5, shape.width() / 2, shape.height() / 2, 0,
            2 * std::numbers::pi};
        if (box.Width() > 1 && box.Height() > 1) impl_->StrokeArc(state, whole);
        return;
    }
    GraphicsState outline = state;
    outline.brush.lbStyle = BS_NULL;
    BasicDevice::Ellipse(outline, rect);
}

void ImageDevice::StrokeArc(const GraphicsState& state, const EllipticArc& arc) {
    const bool near = std::fabs(arc.cx) + arc.rx < kFarOutside && std::fabs(arc.cy) + arc.ry < kFarOutside;
    const bool solid = impl_->IsSolid(state);
    if (impl_->sub > 1 || !near || !solid || state.rasterMode != R2_COPYPEN) {
        BasicDevice::StrokeArc(state, arc);
        return;
    }
    impl_->UseClip(state);
    impl_->StrokeArc(state, arc);
}

// Plain discs are symbols of series, and many.
void ImageDevice::Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) {
    const bool plain =
        state.pen.lopnStyle == PS_NULL && state.rasterMode == R2_COPYPEN && state.brush.lbStyle == BS_SOLID;
    CRect units = state.map.ToDevice(box);
    units.NormalizeRect();
    const std::uint32_t ink = InkOf(state.brush);
    const bool small = impl_->discs.CanDraw(units.Size());
    // Large discs that one does not see through are the same one by one.
    if (!plain || (!small && IsOpaque(ink))) {
        BasicDevice::Ellipses(state, places, box);
        return;
    }
    impl_->UseClip(state);
    if (!small) {
        for (const CPoint& place : places) impl_->AddLargeDisc(state.map.ToDevice(box + place), ink);
        if (impl_->curves == 0) impl_->FinishCurve();
        return;
    }
    impl_->BeginDiscs(units.Size(), ink);
    const CSize toCorner = units.TopLeft() - state.map.ToDevice(CPoint(0, 0));
    for (const CPoint& place : places) impl_->discs.Add(impl_->stroker, state.map.ToDevice(place) + toCorner);
    if (impl_->curves == 0) impl_->FinishCurve();
}

// Each mark is drawn once for each place within a pixel, on a small image, and copied from there.
void ImageDevice::Marks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
                        const MarkPainter& paint) {
    constexpr std::size_t kFew = 4;
    constexpr int kLargest = MarkMask::kMostCells;  // pixels
    constexpr int kMargin = 2;  // pixels that an antialiased or a snapped edge may reach over
    Impl& impl = *impl_;
    const CPoint origin = state.map.ToDevice(CPoint(0, 0));
    CRect units = state.map.ToDevice(box) - origin;
    units.NormalizeRect();
    const CRect reach(impl.PixelOf(units.left) - kMargin, impl.PixelOf(units.top) - kMargin,
                      impl.PixelOf(units.right) + kMargin + 1, impl.PixelOf(units.bottom) + kMargin + 1);
    if (places.size() < kFew || state.rasterMode != R2_COPYPEN || reach.Width() > kLargest ||
        reach.Height() > kLargest) {
        BasicDevice::Marks(state, places, box, paint);
        return;
    }
    impl.UseClip(state);
    impl.FinishCurve();
    ImageDevice small(reach.Width(), reach.Height(), impl.dotsPerInch, impl.caps.unitsPerInch,
                      impl.shift == 0 ? Grid::PIXELS : Grid::SIXTEENTHS);
    const auto make = [&](const CSize& within) {
        small.Clear(0, false);
        const CSize corner(reach.left * impl.sub, reach.top * impl.sub);
        paint(small, CPoint(0, 0) - origin - corner + within, MarkClip::NONE);
        return Sprite(reach.left, reach.top, reach.Width(), reach.Height(), small.Pixels());
    };
    impl.marks.Draw(places, state.map, make, impl.clips);
}

void ImageDevice::DrawText(const GraphicsState& state, std::span<const TextSpan> spans) {
    impl_->UseClip(state);
    DrawSpans(impl_->painter, state, spans, impl_->sub);
    LeaveWideRegisters();
}

CSize ImageDevice::TextExtent(const GraphicsState& state, std::string_view text) {
    return qt::TextExtent(state, text);
}
std::vector<int> ImageDevice::PrefixExtents(const GraphicsState& state, std::string_view text,
                                            std::span<const std::size_t> ends) {
    return qt::PrefixExtents(state, text, ends);
}
TEXTMETRIC ImageDevice::TextMetrics(const GraphicsState& state) {
    return qt::TextMetrics(state);
}

COLORREF ImageDevice::GetPixel(const CPoint& devicePoint) {
    const int x = impl_->PixelOf(devicePoint.x);
    const int y = impl_->PixelOf(devicePoint.y);
    if (x < 0 || y < 0 || x >= impl_->width || y >= impl_->height) return CLR_INVALID;
    const std::uint32_t value =
        impl_->pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(impl_->width) +
                      static_cast<std::size_t>(x)];
    return RGB(static_cast<int>(value >> 16 & 0xFF), static_cast<int>(value >> 8 & 0xFF),
               static_cast<int>(value & 0xFF));
}

}  // namespace zel::qt

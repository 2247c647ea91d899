#include "backends/qt/Application.h"
#include "backends/qt/FileDevices.h"
#include "backends/qt/FileSink.h"
#include "backends/qt/Fonts.h"
#include "backends/qt/Hatch.h"
#include "backends/qt/PenStyle.h"
#include "backends/qt/Pictures.h"
#include "backends/qt/SeenMarks.h"
#include "platform/graphics/ComplexText.h"
#include "platform/graphics/RunThinner.h"

#include <zel/platform/Exception.h>
#include <zel/platform/SafeFile.h>

#include <QBuffer>
#include <QXmlStreamWriter>

#include <charconv>
#include <cmath>
#include <string>

namespace zel::qt {
namespace {

constexpr int kResolution = kSvgUnitsPerInch;
constexpr double kPixel = kResolution / 96.0;  // of a screen
constexpr double kHairline = kHairlineInches * kResolution;
constexpr double kHatchSpacing = 8 * kPixel;

QString Number(double value) {
    return QString::number(std::round(value * 100) / 100, 'g', 12);
}

QString HexColor(COLORREF color) {
    return QString::asprintf("#%02x%02x%02x", GetRValue(color), GetGValue(color), GetBValue(color));
}

QString Opacity(BYTE transparency) {
    return QString::number(std::round((255 - transparency) / 255.0 * 1000) / 1000);
}

// One picture as Scalable Vector Graphics 1.1: an element for each primitive, text as text.
class SvgDevice : public MeasuringDevice {
  public:
    explicit SvgDevice(const FileDeviceOptions& options)
        : options_(options),
          caps_(CapsOf(options, DT_RASDISPLAY, kResolution)),
          file_(options.path),
          sink_(file_),
          xml_(&sink_) {
        xml_.setAutoFormatting(true);
        xml_.setAutoFormattingIndent(1);
        xml_.writeStartDocument();
        xml_.writeStartElement("svg");
        xml_.writeDefaultNamespace("http://www.w3.org/2000/svg");
        xml_.writeNamespace("http://www.w3.org/1999/xlink", "xlink");
        xml_.writeAttribute("version", "1.1");
        xml_.writeAttribute("width", Number(options.width) + "in");
        xml_.writeAttribute("height", Number(options.height) + "in");
        const QString width = Number(caps_.units.cx), height = Number(caps_.units.cy);
        xml_.writeAttribute("viewBox", "0 0 " + width + " " + height);
        xml_.writeAttribute("stroke-linecap", "round");
        xml_.writeAttribute("stroke-linejoin", "round");
        // Widths are those of the characters, as everywhere else.
        xml_.writeAttribute("style", "font-kerning:none");
        if (!options.title.empty()) xml_.writeTextElement("title", QString::fromStdString(options.title));
        if (!options.opaqueBackground) return;
        xml_.writeEmptyElement("rect");
        xml_.writeAttribute("width", width);
        xml_.writeAttribute("height", height);
        xml_.writeAttribute("fill", HexColor(options.background));
    }

    void NewPage() override {
        AfxThrowNotSupportedException(
            ("Cannot write a second page into \"" + options_.path + "\"; PDF files have pages.").c_str());
    }

    void Finish() override {
        EndFigure();
        EndClip();
        xml_.writeEndDocument();
        sink_.Check();
        file_.Commit();
    }

    int Caps(int index) const override { return caps_.Answer(index); }

    int CurveColumn(const GraphicsState&) const override { return options_.keepAllPoints ? 0 : 1; }
    void Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) override {
        if (count < 2 || state.pen.lopnStyle == PS_NULL || PaintsNothing(state)) return;
        UseClip(state);
        mapped_.clear();
        for (std::size_t i = 0; i < count; ++i) mapped_.push_back(state.map.ToDevice(points[i]));
        if (!options_.keepAllPoints && DashesOf(state, 0, kPixel).empty()) ThinRuns(mapped_);
        UseFigure(state.pen.lopnTransparency);
        xml_.writeEmptyElement("polyline");
        xml_.writeAttribute("points", PointsText(mapped_));
        xml_.writeAttribute("fill", "none");
        WriteStroke(state);
    }

    void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                  std::span<const int> counts) override {
        if (PaintsNothing(state)) return;
        UseClip(state);
        QString path;
        std::size_t begin = 0;
        for (const int count : counts) {
            path += "M" + PointsText(state, points.subspan(begin, static_cast<std::size_t>(count))) + "z";
            begin += static_cast<std::size_t>(count);
        }
        EndFigure();
        const QString fill = InkFillOf(state);
        xml_.writeEmptyElement("path");
        xml_.writeAttribute("d", path);
        if (state.polygonFillMode != WINDING) xml_.writeAttribute("fill-rule", "evenodd");
        WriteShape(state, fill);
    }

    void FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                  DWORD operation) override {
        if (operation == DSTINVERT || operation == PATINVERT) return;
        UseClip(state);
        CRect box = state.map.ToDevice(rect);
        box.NormalizeRect();
        if (box.IsRectEmpty()) return;
        const QString fill = operation == WHITENESS   ? QString("#ffffff")
                             : operation == BLACKNESS ? QString("#000000")
                                                      : FillOf(state, brush);
        EndFigure();
        xml_.writeEmptyElement("rect");
        WriteBox(box);
        xml_.writeAttribute("fill", fill);
        if (operation == PATCOPY) WriteOpacity("fill-opacity", brush.lbTransparency);
    }

    void FillRects(const GraphicsState& state, std::span<const CRect> rects, const LOGBRUSH& brush) override {
        QString path;
        for (const CRect& rect : rects) {
            CRect box = state.map.ToDevice(rect);
            box.NormalizeRect();
            if (box.IsRectEmpty()) continue;
            path += "M" + QString::number(box.left) + ',' + QString::number(box.top) + "h" +
                    QString::number(box.Width()) + "v" + QString::number(box.Height()) + "h" +
                    QString::number(-box.Width()) + "z";
        }
        if (path.isEmpty()) return;
        UseClip(state);
        EndFigure();
        const QString fill = FillOf(state, brush);
        xml_.writeEmptyElement("path");
        xml_.writeAttribute("d", path);
        xml_.writeAttribute("fill", fill);
        WriteOpacity("fill-opacity", brush.lbTransparency);
    }

    void DrawPicture(const GraphicsState& state, const CRect& rect, const PictureView& picture) override {
        if (picture.width < 1 || picture.height < 1) return;
        UseClip(state);
        EndFigure();
        CRect box = state.map.ToDevice(rect);
        box.NormalizeRect();
        QByteArray png;
        QBuffer buffer(&png);
        ImageOf(picture).save(&buffer, "PNG");
        xml_.writeEmptyElement("image");
        WriteBox(box);
        xml_.writeAttribute("preserveAspectRatio", "none");
        xml_.writeAttribute("style", "image-rendering:pixelated;image-rendering:-inkscape-crisp-edges");
        xml_.writeAttribute("image-rendering", "optimizeSpeed");
        xml_.writeAttribute("xlink:href", "data:image/png;base64," + QString::fromLatin1(png.toBase64()));
    }

    void Ellipse(const GraphicsState& state, const CRect& rect) override {
        if (PaintsNothing(state)) return;
        UseClip(state);
        CRect box = state.map.ToDevice(rect);
        box.NormalizeRect();
        const bool plain = state.pen.lopnStyle == PS_NULL && state.brush.lbStyle == BS_SOLID;
        UseFigure(plain ? state.brush.lbTransparency : BYTE{0});
        const QString fill = InkFillOf(state);
        xml_.writeEmptyElement("ellipse");
        xml_.writeAttribute("cx", Number(box.left + (box.Width() - 1) / 2.0));
        xml_.writeAttribute("cy", Number(box.top + (box.Height() - 1) / 2.0));
        xml_.writeAttribute("rx", Number((box.Width() - 1) / 2.0));
        xml_.writeAttribute("ry", Number((box.Height() - 1) / 2.0));
        WriteShape(state, fill);
    }

    // Plain discs of a figure are mixed with the picture together.
    void Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) override {
        const bool plain = state.pen.lopnStyle == PS_NULL && state.brush.lbStyle == BS_SOLID;
        BeginCurve();
        DrawMarks(state, places, box, plain ? state.brush.lbTransparency : BYTE{0},
                  EllipsePainter(state, box));
        EndCurve();
    }

    void Marks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
               const MarkPainter& paint) override {
        DrawMarks(state, places, box, 0, paint);
    }

    void BeginCurve() override { ++curves_; }
    void EndCurve() override {
        if (--curves_ == 0) EndFigure();
    }

    // Characters that follow one another along the line are one text element, placed by its first.
    void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) override {
        UseClip(state);
        EndFigure();
        const double tolerance = std::max(2.0, EmHeight(state) * 0.02);
        const double angle = state.font.lfEscapement / 10.0 * M_PI / 180;
        if (const std::string whole = WholeOf(spans); !FaceOf(state.font).IsPlain(whole)) {
            WriteText(state, whole, state.map.ToDevice(spans[0].at), WidthOf(state, whole));
            return;
        }
        std::size_t begin = 0;
        while (begin < spans.size()) {
            std::string text(spans[begin].text);
            double width = WidthOf(state, text);
            const CPoint start = state.map.ToDevice(spans[begin].at);
            std::size_t next = begin + 1;
            for (; next < spans.size(); ++next) {
                const CPoint at = state.map.ToDevice(spans[next].at);
                const double x = start.x + width * std::cos(angle), y = start.y - width * std::sin(angle);
                if (std::hypot(at.x - x, at.y - y) > tolerance) break;
                text += spans[next].text;
                width += WidthOf(state, spans[next].text);
            }
            WriteText(state, text, start, width);
            begin = next;
        }
    }

  private:
    // One definition. Few marks are uses of it, which any reader can take apart; many are the corners of a
    // path, at which readers draw it much faster.
    void DrawMarks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
                   BYTE transparency, const MarkPainter& paint) {
        constexpr std::size_t kFew = 4, kMostUses = 1000;
        if (places.size() < kFew) {
            BasicDevice::Marks(state, places, box, paint);
            return;
        }
        const std::vector<CPoint> seen =
            options_.keepAllPoints ? AllMarks(state, places) : SeenMarks(state, places, box, paint, kPixel);
        UseClip(state);
        UseFigure(transparency);
        const QString id = "mark" + QString::number(++lastId_);
        const bool uses = seen.size() <= kMostUses;
        xml_.writeStartElement("defs");
        xml_.writeStartElement(uses ? "g" : "marker");
        xml_.writeAttribute("id", id);
        if (!uses) {
            xml_.writeAttribute("markerUnits", "userSpaceOnUse");
            xml_.writeAttribute("overflow", "visible");
        }
        const BYTE figure = figure_;
        paint(*this, CPoint(0, 0) - state.map.ToDevice(CPoint(0, 0)), MarkClip::KEPT);
        if (figure_ != figure) EndFigure();
        xml_.writeEndElement();
        xml_.writeEndElement();
        uses ? WriteUses("#" + id, seen) : WriteCorners("url(#" + id + ")", seen);
    }

    void WriteUses(const QString& reference, std::span<const CPoint> places) {
        for (const CPoint& at : places) {
            xml_.writeEmptyElement("use");
            xml_.writeAttribute("xlink:href", reference);
            xml_.writeAttribute("x", QString::number(at.x));
            xml_.writeAttribute("y", QString::number(at.y));
        }
    }

    void WriteCorners(const QString& marker, std::span<const CPoint> places) {
        std::string path = "m";
        CPoint before;
        for (const CPoint& at : places) {
            AppendNumber(path, at.x - before.x);
            AppendNumber(path, at.y - before.y);
            before = at;
        }
        xml_.writeEmptyElement("path");
        xml_.writeAttribute("d", QString::fromStdString(path));
        xml_.writeAttribute("fill", "none");
        for (const char* where : {"marker-start", "marker-mid", "marker-end"})
            xml_.writeAttribute(where, marker);
    }

    // Numbers of a path stand apart by a space or a sign.
    static void AppendNumber(std::string& text, LONG number) {
        if (number >= 0 && text.back() >= '0' && text.back() <= '9') text += ' ';
        AppendDigits(text, number);
    }

    static void AppendDigits(std::string& text, LONG number) {
        char digits[16];
        text.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
    }

    QString PointsText(const GraphicsState& state, std::span<const CPoint> points) {
        mapped_.clear();
        for (const CPoint& p : points) mapped_.push_back(state.map.ToDevice(p));
        return PointsText(mapped_);
    }

    static QString PointsText(std::span<const CPoint> points) {
        std::string text;
        for (const CPoint& at : points) {
            if (!text.empty()) text += ' ';
            AppendDigits(text, at.x);
            text += ',';
            AppendDigits(text, at.y);
        }
        return QString::fromStdString(text);
    }

    void WriteBox(const CRect& box) {
        xml_.writeAttribute("x", QString::number(box.left));
        xml_.writeAttribute("y", QString::number(box.top));
        xml_.writeAttribute("width", QString::number(box.Width()));
        xml_.writeAttribute("height", QString::number(box.Height()));
    }

    void WriteStroke(const GraphicsState& state) {
        const double width = PenWidthOf(state, kHairline);
        xml_.writeAttribute("stroke", HexColor(InkOf(state, state.pen.lopnColor)));
        xml_.writeAttribute("stroke-width", Number(width));
        WriteOpacity("stroke-opacity", state.pen.lopnTransparency);
        QStringList dashes;
        for (const double length : DashesOf(state, width, kPixel)) dashes << Number(length * kPixel);
        if (dashes.isEmpty()) return;
        xml_.writeAttribute("stroke-dasharray", dashes.join(' '));
        xml_.writeAttribute("stroke-linecap", "butt");
    }

    void WriteShape(const GraphicsState& state, const QString& fill) {
        xml_.writeAttribute("fill", fill);
        WriteOpacity("fill-opacity", state.brush.lbTransparency);
        if (state.pen.lopnStyle != PS_NULL) WriteStroke(state);
    }

    QString InkFillOf(const GraphicsState& state) {
        LOGBRUSH brush = state.brush;
        brush.lbColor = InkOf(state, brush.lbColor);
        return FillOf(state, brush);
    }

    QString FillOf(const GraphicsState& state, const LOGBRUSH& brush) {
        if (brush.lbStyle == BS_NULL) return "none";
        if (brush.lbStyle == BS_SOLID) return HexColor(brush.lbColor);
        return "url(#" + WriteHatch(state, brush) + ")";
    }

    QString WriteHatch(const GraphicsState& state, const LOGBRUSH& brush) {
        QString id = "hatch" + QString::number(++lastId_);
        const double cell = kHatchSpacing;
        xml_.writeStartElement("pattern");
        xml_.writeAttribute("id", id);
        xml_.writeAttribute("patternUnits", "userSpaceOnUse");
        xml_.writeAttribute("width", Number(cell));
        xml_.writeAttribute("height", Number(cell));
        if (state.backgroundMode == OPAQUE) {
            xml_.writeEmptyElement("rect");
            xml_.writeAttribute("width", Number(cell));
            xml_.writeAttribute("height", Number(cell));
            xml_.writeAttribute("fill", HexColor(state.backgroundColor));
        }
        const QString c = Number(cell), half = Number(cell / 2);
        const QString across = "M0," + half + "H" + c, down = "M" + half + ",0V" + c;
        const QString falling = "M0,0L" + c + "," + c, rising = "M0," + c + "L" + c + ",0";
        const QString paths[] = {across, down, falling, rising, across + down, falling + rising};
        xml_.writeEmptyElement("path");
        xml_.writeAttribute("d", paths[std::clamp<LONG>(brush.lbHatch, 0, 5)]);
        xml_.writeAttribute("stroke", HexColor(brush.lbColor));
        xml_.writeAttribute("stroke-width", Number(kHairline * 2));
        xml_.writeEndElement();
        return id;
    }

    // What is clipped stands in a group with a clip path.
    void UseClip(const GraphicsState& state) {
        if (clip_ == state.clip) return;
        EndFigure();
        EndClip();
        clip_ = state.clip;
        if (!clip_) return;
        const QString id = "clip" + QString::number(++lastId_);
        xml_.writeStartElement("clipPath");
        xml_.writeAttribute("id", id);
        for (const CRect& rect : clip_->Rects()) {
            xml_.writeEmptyElement("rect");
            WriteBox(rect);
        }
        xml_.writeEndElement();
        xml_.writeStartElement("g");
        xml_.writeAttribute("clip-path", "url(#" + id + ")");
    }

    // What one sees through in a figure stands in a group that is mixed with the picture as a whole.
    void UseFigure(BYTE transparency) {
        const BYTE wanted = curves_ > 0 ? transparency : BYTE{0};
        if (figure_ == wanted) return;
        EndFigure();
        figure_ = wanted;
        if (figure_ == 0) return;
        xml_.writeStartElement("g");
        xml_.writeAttribute("opacity", Opacity(figure_));
    }

    void EndFigure() {
        if (figure_ != 0) xml_.writeEndElement();
        figure_ = 0;
    }

    // Within the group of a figure all is opaque.
    void WriteOpacity(const char* name, BYTE transparency) {
        if (transparency != figure_) xml_.writeAttribute(name, Opacity(transparency));
    }

    void EndClip() {
        if (clip_) xml_.writeEndElement();
        clip_.reset();
    }

    void WriteText(const GraphicsState& state, const std::string& text, const CPoint& at, double width) {
        // Spaces of a label are kept, and nothing but spaces draws nothing.
        if (text.find_first_not_of(' ') == std::string::npos) return;
        const BaselineOffset offset = OffsetOf(state, width);
        const bool fromTheRight = IsRightToLeft(text);
        const double em = EmHeight(state);
        const QString x = Number(at.x), y = Number(at.y);
        xml_.writeStartElement("text");
        xml_.writeAttribute("x", Number(at.x + offset.x + (fromTheRight ? width : 0)));
        xml_.writeAttribute("y", Number(at.y + offset.y));
        if (state.font.lfEscapement % 3600 != 0) {
            xml_.writeAttribute(
                "transform", "rotate(" + Number(-state.font.lfEscapement / 10.0) + " " + x + " " + y + ")");
        }
        // What is read from the right begins at its right end.
        if (fromTheRight) {
            xml_.writeAttribute("direction", "rtl");
            xml_.writeAttribute("unicode-bidi", "embed");
        }
        const QString face = QString::fromUtf8(state.font.lfFaceName);
        xml_.writeAttribute("font-family",
                            face + (face == "Arial" ? ", Liberation Sans, sans-serif" : ", sans-serif"));
        xml_.writeAttribute("font-size", Number(em));
        if (state.font.lfWeight >= 600) xml_.writeAttribute("font-weight", "bold");
        if (state.font.lfItalic) xml_.writeAttribute("font-style", "italic");
        if (state.font.lfUnderline || state.font.lfStrikeOut) {
            xml_.writeAttribute("text-decoration", state.font.lfUnderline ? "underline" : "line-through");
        }
        xml_.writeAttribute("fill", HexColor(state.textColor));
        WriteOpacity("fill-opacity", state.textTransparency);
        // Readers part joined letters to reach a length.
        if (!IsComplexText(text)) xml_.writeAttribute("textLength", Number(width));
        xml_.writeAttribute("xml:space", "preserve");
        xml_.writeCharacters(QString::fromStdString(Writable(FaceOf(state.font).Font(), text)));
        xml_.writeEndElement();
    }

    FileDeviceOptions options_;
    SurfaceCaps caps_;
    SafeFile file_;
    FileSink sink_;
    QXmlStreamWriter xml_;
    std::vector<CPoint> mapped_;
    std::shared_ptr<const Region> clip_;
    int lastId_ = 0;
    int curves_ = 0;   // that have begun, one within the other
    BYTE figure_ = 0;  // transparency of the group that is open; 0 when there is none
};

}  // namespace

FileFormat SvgFormat() {
    return {.endings = {"svg"},
            .name = "SVG",
            .transparent = true,
            .unitsPerInch = [](const FileDeviceOptions&) { return kSvgUnitsPerInch; },
            .create =
                [](const FileDeviceOptions& options) {
                    EnsureApplication();
                    return std::make_unique<SvgDevice>(options);
                }};
}

}  // namespace zel::qt

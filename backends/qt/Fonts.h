// Fonts of contexts as Qt fonts, and their metrics.
#pragma once

#include "backends/qt/Shaping.h"

#include <zel/platform/GraphicsDevice.h>

#include <QFont>
#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zel::qt {

// One face in one weight and slant at any size. Metrics are those of the design, scaled, so that a text has
// the same extent on all devices; kerning and hinting are off.
class Face {
  public:
    explicit Face(const LOGFONT& font);

    struct Glyph {
        quint32 index = 0;   // 0: the face does not have the character
        double advance = 0;  // in ems
    };
    const Glyph& GlyphOf(char32_t character);
    // Whether a text is its characters, one after another, and the face has them all. Control characters are
    // not drawn.
    bool IsPlain(std::string_view text);
    // A line that is not plain; good until the next one is asked for.
    const ShapedLine& Shaped(std::string_view text);
    const QFont& Font() const { return font_; }
    double Ascent() const { return ascent_; }    // ems
    double Descent() const { return descent_; }  // ems
    double Leading() const { return leading_; }
    // The face at a size of so many pixels.
    const QRawFont& AtSize(double pixels);

  private:
    QFont font_;
    QRawFont design_;
    double ascent_ = 0;
    double descent_ = 0;
    double leading_ = 0;
    std::vector<Glyph> latin_;  // below U+0250
    std::unordered_map<char32_t, Glyph> glyphs_;
    std::unordered_map<int, QRawFont> sizes_;
    std::unordered_map<std::string, ShapedLine> shaped_;
};

// The face of a font; kept for this thread.
Face& FaceOf(const LOGFONT& font);

// The em height of the context's font in device units.
double EmHeight(const GraphicsState& state);

// Measuring, in logical units.
CSize TextExtent(const GraphicsState& state, std::string_view text);
std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                               std::span<const std::size_t> ends);
TEXTMETRIC TextMetrics(const GraphicsState& state);

// Where the left end of the baseline of a text lies, relative to its reference point, unrotated, in device
// units.
struct BaselineOffset {
    double x;
    double y;
};
BaselineOffset OffsetOf(const GraphicsState& state, double width);
// The width of a text in device units.
double WidthOf(const GraphicsState& state, std::string_view text);

// Draws the spans of one line on a painter whose unit is `unitsPerPixel` device units. Spans that follow one
// another at their natural distances are drawn in one piece.
void DrawSpans(QPainter& painter, const GraphicsState& state, std::span<const TextSpan> spans,
               double unitsPerPixel);

QColor ColorOf(COLORREF color, BYTE transparency = 0);

}  // namespace zel::qt

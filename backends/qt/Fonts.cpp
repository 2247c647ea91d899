#include "backends/qt/Fonts.h"

#include "backends/qt/GlyphLine.h"
#include "platform/graphics/ComplexText.h"
#include "platform/graphics/StandardMetrics.h"
#include "platform/graphics/Utf8.h"

#include <zel/platform/Exception.h>
#include <zel/platform/Warning.h>

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QThreadStorage>

#include <cmath>
#include <fontconfig/fontconfig.h>
#include <map>
#include <memory>
#include <string>
#include <tuple>

namespace zel::qt {
namespace {

constexpr char32_t kDirectGlyphs = 0x250;
constexpr int kSizeSteps = 64;  // sizes of a face are told apart by this part of a pixel
constexpr std::size_t kMostSizes = 64;
constexpr std::size_t kMostLines = 256;

// The family that the system's configuration names in the place of another: one of the same widths, where
// there is one. Qt has an order of its own, in which widths do not count.
QString FamilyFor(const QString& wanted) {
    const std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)> pattern(FcPatternCreate(),
                                                                          &FcPatternDestroy);
    const QByteArray name = wanted.toUtf8();
    FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(name.constData()));
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    const std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)> match(
        FcFontMatch(nullptr, pattern.get(), &result), &FcPatternDestroy);
    FcChar8* family = nullptr;
    if (!match || FcPatternGetString(match.get(), FC_FAMILY, 0, &family) != FcResultMatch) return wanted;
    const QString found = QString::fromUtf8(reinterpret_cast<const char*>(family));
    return QFontDatabase::hasFamily(found) ? found : wanted;
}

bool IsAnyFontInstalled() {
    const FcFontSet* const fonts = FcConfigGetFonts(nullptr, FcSetSystem);
    return fonts && fonts->nfont > 0;
}

QFont MakeFont(const LOGFONT& font) {
    const QString wanted = QString::fromUtf8(font.lfFaceName);
    QFont made(QFontDatabase::hasFamily(wanted) ? wanted : FamilyFor(wanted));
    made.setStyleHint(QFont::SansSerif);
    made.setHintingPreference(QFont::PreferNoHinting);
    made.setStyleStrategy(QFont::PreferAntialias);
    made.setKerning(false);
    if (font.lfWeight > 0) made.setWeight(font.lfWeight >= 600 ? QFont::Bold : QFont::Normal);
    made.setItalic(font.lfItalic != 0);
    made.setPixelSize(kDesignSize);
    return made;
}

// Families that stand for one another without a change of any width.
struct Stand {
    const char* family;
    const char* metricCompatible;
};
constexpr Stand kStands[] = {
    {"arial", "liberation sans"}, {"helvetica", "liberation sans"},        {"arial", "arimo"},
    {"helvetica", "nimbus sans"}, {"times new roman", "liberation serif"}, {"times", "liberation serif"},
    {"times new roman", "tinos"}, {"courier new", "liberation mono"},      {"courier", "liberation mono"},
    {"courier new", "cousine"},
};

void WarnOfSubstitute(const QString& wanted, const QString& found) {
    if (wanted.isEmpty() || wanted.compare(found, Qt::CaseInsensitive) == 0) return;
    for (const Stand& stand : kStands) {
        if (wanted.compare(QLatin1String(stand.family), Qt::CaseInsensitive) == 0 &&
            found.compare(QLatin1String(stand.metricCompatible), Qt::CaseInsensitive) == 0)
            return;
    }
    Warn("The font family \"" + wanted.toStdString() + "\" is not installed; \"" + found.toStdString() +
         "\" stands in for it.");
}

QString ToQString(char32_t character) {
    return QString::fromUcs4(&character, 1);
}

}  // namespace

QColor ColorOf(COLORREF color, BYTE transparency) {
    return {GetRValue(color), GetGValue(color), GetBValue(color), 255 - transparency};
}

Face::Face(const LOGFONT& font)
    : font_(MakeFont(font)), design_(QRawFont::fromFont(font_)), latin_(kDirectGlyphs) {
    // Where there is no font at all Qt draws boxes, with a face that cannot be asked for its name.
    if (!IsAnyFontInstalled())
        AfxThrowResourceException(
            "Cannot draw text: no font is installed, or none that fontconfig finds. The package "
            "\"fonts-liberation2\" has those that are best.");
    WarnOfSubstitute(QString::fromUtf8(font.lfFaceName), design_.familyName());
    ascent_ = design_.ascent() / kDesignSize;
    descent_ = design_.descent() / kDesignSize;
    leading_ = design_.leading() / kDesignSize;
    for (Glyph& glyph : latin_) glyph.advance = -1;  // not looked up yet
}

const Face::Glyph& Face::GlyphOf(char32_t character) {
    Glyph& glyph = character < kDirectGlyphs ? latin_[character]
                                             : glyphs_.try_emplace(character, Glyph{0, -1}).first->second;
    if (glyph.advance >= 0) return glyph;
    const QList<quint32> indexes = design_.glyphIndexesForString(ToQString(character));
    glyph.index = indexes.isEmpty() ? 0 : indexes.first();
    glyph.advance = design_.advancesForGlyphIndexes({glyph.index}).value(0).x() / kDesignSize;
    if (glyph.index == 0 && character < ' ') glyph.advance = 0;
    return glyph;
}

bool Face::IsPlain(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = NextCodePoint(text, at);
        if (c >= ' ' && GlyphOf(c).index == 0) return false;
    }
    return !IsComplexText(text);
}

const ShapedLine& Face::Shaped(std::string_view text) {
    if (shaped_.size() >= kMostLines) shaped_.clear();
    const auto [line, isNew] = shaped_.try_emplace(std::string(text));
    if (isNew) line->second = ShapedLine(font_, text);
    return line->second;
}

const QRawFont& Face::AtSize(double pixels) {
    const int key = static_cast<int>(std::lround(pixels * kSizeSteps));
    const auto found = sizes_.find(key);
    if (found != sizes_.end()) return found->second;
    if (sizes_.size() >= kMostSizes) sizes_.clear();
    QRawFont& font = sizes_[key];
    font = design_;
    font.setPixelSize(static_cast<double>(key) / kSizeSteps);
    return font;
}

namespace {

// The faces that a thread has used.
class FaceCache {
  public:
    FaceCache() { current = this; }
    ~FaceCache() { current = nullptr; }
    FaceCache(const FaceCache&) = delete;
    FaceCache& operator=(const FaceCache&) = delete;

    static thread_local FaceCache* current;  // of this thread, while it lives

    Face& Get(const LOGFONT& font) {
        const bool bold = font.lfWeight >= 600, italic = font.lfItalic != 0;
        // Nearly always the same as before.
        if (last_ && bold == lastBold_ && italic == lastItalic_ && lastName_ == font.lfFaceName)
            return *last_;
        last_ = &faces_.try_emplace(Key(font.lfFaceName, bold, italic), font).first->second;
        lastName_ = font.lfFaceName;
        lastBold_ = bold;
        lastItalic_ = italic;
        return *last_;
    }

  private:
    using Key = std::tuple<std::string, bool, bool>;

    std::map<Key, Face> faces_;
    Face* last_ = nullptr;
    std::string lastName_;
    bool lastBold_ = false;
    bool lastItalic_ = false;
};

thread_local FaceCache* FaceCache::current = nullptr;

}  // namespace

// Qt's storage of a thread, not the language's: the main thread's must go with the application object, after
// which Qt has no fonts.
Face& FaceOf(const LOGFONT& font) {
    static QThreadStorage<FaceCache*> caches;
    if (!FaceCache::current) caches.setLocalData(new FaceCache);
    return FaceCache::current->Get(font);
}

double EmHeight(const GraphicsState& state) {
    const double height = std::fabs(static_cast<double>(state.font.lfHeight)) * state.map.ScaleY();
    if (state.font.lfHeight == 0) return kDefaultEm;
    if (state.font.lfHeight < 0) return height;
    const Face& face = FaceOf(state.font);
    return height / (face.Ascent() + face.Descent());
}

double WidthOf(const GraphicsState& state, std::string_view text) {
    Face& face = FaceOf(state.font);
    if (!face.IsPlain(text)) return face.Shaped(text).Width() * EmHeight(state);
    double ems = 0;
    for (std::size_t at = 0; at < text.size();) ems += face.GlyphOf(NextCodePoint(text, at)).advance;
    return ems * EmHeight(state);
}

namespace {
int LogicalX(const GraphicsState& state, double units) {
    return Truncate(std::round(units / state.map.ScaleX()));
}
int LogicalY(const GraphicsState& state, double units) {
    return Truncate(std::round(units / state.map.ScaleY()));
}
}  // namespace

CSize TextExtent(const GraphicsState& state, std::string_view text) {
    if (text.empty()) return {};
    return {LogicalX(state, WidthOf(state, text)), TextMetrics(state).tmHeight};
}

std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                               std::span<const std::size_t> ends) {
    Face& face = FaceOf(state.font);
    const double em = EmHeight(state);
    std::vector<int> extents;
    extents.reserve(ends.size());
    if (!face.IsPlain(text)) {
        for (const double width : face.Shaped(text).PrefixWidths(ends))
            extents.push_back(LogicalX(state, width * em));
        return extents;
    }
    double ems = 0;
    std::size_t at = 0;
    for (const std::size_t end : ends) {
        while (at < end) ems += face.GlyphOf(NextCodePoint(text, at)).advance;
        extents.push_back(LogicalX(state, ems * em));
    }
    return extents;
}

TEXTMETRIC TextMetrics(const GraphicsState& state) {
    Face& face = FaceOf(state.font);
    const double em = EmHeight(state);
    TEXTMETRIC metrics{};
    metrics.tmAscent = LogicalY(state, face.Ascent() * em);
    metrics.tmDescent = LogicalY(state, face.Descent() * em);
    metrics.tmHeight = Add(metrics.tmAscent, metrics.tmDescent);
    metrics.tmInternalLeading = LogicalY(state, std::max(0.0, (face.Ascent() + face.Descent() - 1) * em));
    metrics.tmExternalLeading = LogicalY(state, face.Leading() * em);
    metrics.tmAveCharWidth = LogicalX(state, face.GlyphOf('x').advance * em);
    metrics.tmMaxCharWidth = LogicalX(state, 2 * em);
    metrics.tmWeight = state.font.lfWeight;
    metrics.tmItalic = state.font.lfItalic;
    metrics.tmUnderlined = state.font.lfUnderline;
    metrics.tmStruckOut = state.font.lfStrikeOut;
    return metrics;
}

BaselineOffset OffsetOf(const GraphicsState& state, double width) {
    Face& face = FaceOf(state.font);
    const double em = EmHeight(state);
    BaselineOffset offset{0, face.Ascent() * em};
    if ((state.textAlign & TA_BASELINE) == TA_BASELINE) {
        offset.y = 0;
    } else if (state.textAlign & TA_BOTTOM) {
        offset.y = -face.Descent() * em;
    }
    if ((state.textAlign & TA_CENTER) == TA_CENTER) {
        offset.x = -width / 2;
    } else if (state.textAlign & TA_RIGHT) {
        offset.x = -width;
    }
    return offset;
}

namespace {

// A run of text on one baseline, in pixels along the rotated text.
class Run {
  public:
    Run(QPainter& painter, const GraphicsState& state, double unitsPerPixel)
        : painter_(painter),
          state_(state),
          face_(FaceOf(state.font)),
          em_(EmHeight(state) / unitsPerPixel),
          unitsPerPixel_(unitsPerPixel),
          line_(face_, em_, std::max(2 / unitsPerPixel, 0.02 * em_)) {}

    // Lying text needs no frame of its own, and no state of the painter saved for it.
    void Draw(std::span<const TextSpan> spans) {
        const QPointF origin = PixelOf(spans.front().at);
        const std::string whole = WholeOf(spans);
        const bool plain = face_.IsPlain(whole);
        if (state_.font.lfEscapement == 0 && plain) {
            for (const TextSpan& span : spans) Add(span.text, PixelOf(span.at));
            Flush();
            return;
        }
        painter_.save();
        painter_.translate(origin);
        const double angle = state_.font.lfEscapement / 10.0;
        painter_.rotate(-angle);
        if (plain) {
            const double cosine = std::cos(angle * M_PI / 180), sine = std::sin(angle * M_PI / 180);
            for (const TextSpan& span : spans) {
                const QPointF away = PixelOf(span.at) - origin;
                // Into the turned frame: x along the text, y across it.
                Add(span.text, {away.x() * cosine - away.y() * sine, away.x() * sine + away.y() * cosine});
            }
            Flush();
        } else {
            AddShaped(whole);
        }
        painter_.restore();
    }

  private:
    QPointF PixelOf(const CPoint& logical) const {
        const CPoint device = state_.map.ToDevice(logical);
        return {device.x / unitsPerPixel_, device.y / unitsPerPixel_};
    }

    void Add(std::string_view text, QPointF at) {
        const double width = WidthOf(state_, text) / unitsPerPixel_;
        at += Offset(width);
        FillCell(at, width);
        line_.Add(text, at);
        Decorate(at, width);
    }

    void AddShaped(std::string_view text) {
        const ShapedLine& line = face_.Shaped(text);
        const double width = line.Width() * em_;
        const QPointF at = Offset(width);
        FillCell(at, width);
        painter_.translate(at);
        line.Draw(painter_, em_, ColorOf(state_.textColor, state_.textTransparency));
        painter_.translate(-at);
        Decorate(at, width);
    }

    QPointF Offset(double width) const {
        const BaselineOffset offset = OffsetOf(state_, width * unitsPerPixel_);
        return {offset.x / unitsPerPixel_, offset.y / unitsPerPixel_};
    }

    void FillCell(const QPointF& baseline, double width) {
        if (state_.backgroundMode != OPAQUE) return;
        const QRectF cell(baseline.x(), baseline.y() - face_.Ascent() * em_, width,
                          (face_.Ascent() + face_.Descent()) * em_);
        painter_.fillRect(cell, ColorOf(state_.backgroundColor));
    }

    void Decorate(const QPointF& baseline, double width) {
        const double thickness = std::max(em_ / 14, 1 / unitsPerPixel_);
        const QColor color = ColorOf(state_.textColor, state_.textTransparency);
        if (state_.font.lfUnderline) {
            painter_.fillRect(QRectF(baseline.x(), baseline.y() + em_ * 0.1, width, thickness), color);
        }
        if (state_.font.lfStrikeOut) {
            painter_.fillRect(QRectF(baseline.x(), baseline.y() - em_ * 0.28, width, thickness), color);
        }
    }

    void Flush() { line_.Draw(painter_, ColorOf(state_.textColor, state_.textTransparency)); }

    QPainter& painter_;
    const GraphicsState& state_;
    Face& face_;
    double em_;  // pixels
    double unitsPerPixel_;
    GlyphLine line_;
};

}  // namespace

void DrawSpans(QPainter& painter, const GraphicsState& state, std::span<const TextSpan> spans,
               double unitsPerPixel) {
    if (!spans.empty()) Run(painter, state, unitsPerPixel).Draw(spans);
}

}  // namespace zel::qt

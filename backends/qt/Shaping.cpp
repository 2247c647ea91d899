#include "backends/qt/Shaping.h"

#include "platform/graphics/Utf8.h"

#include <zel/platform/Warning.h>

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QRawFont>
#include <QTextLayout>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdio>

namespace zel::qt {
namespace {

// Laying out takes time that grows faster than the text. What is longer than any paper is cut at blanks.
constexpr std::size_t kLongest = 2000;  // bytes
constexpr const char* kBox = "\u25A1";

// Scripts that are nothing without the tables of a font that knows them: Qt complains of each font that does
// not, so it is asked for them only where there is one.
struct Script {
    QChar::Script script;
    QFontDatabase::WritingSystem system;
};
constexpr std::array kDemanding = {
    Script{QChar::Script_Devanagari, QFontDatabase::Devanagari},
    Script{QChar::Script_Bengali, QFontDatabase::Bengali},
    Script{QChar::Script_Gurmukhi, QFontDatabase::Gurmukhi},
    Script{QChar::Script_Gujarati, QFontDatabase::Gujarati},
    Script{QChar::Script_Oriya, QFontDatabase::Oriya},
    Script{QChar::Script_Tamil, QFontDatabase::Tamil},
    Script{QChar::Script_Telugu, QFontDatabase::Telugu},
    Script{QChar::Script_Kannada, QFontDatabase::Kannada},
    Script{QChar::Script_Malayalam, QFontDatabase::Malayalam},
    Script{QChar::Script_Sinhala, QFontDatabase::Sinhala},
    Script{QChar::Script_Tibetan, QFontDatabase::Tibetan},
    Script{QChar::Script_Myanmar, QFontDatabase::Myanmar},
    Script{QChar::Script_Khmer, QFontDatabase::Khmer},
    Script{QChar::Script_Syriac, QFontDatabase::Syriac},
    Script{QChar::Script_Thaana, QFontDatabase::Thaana},
};

bool HasScript(char32_t c) {
    const QChar::Script script = QChar::script(c);
    const auto* const found = std::find_if(kDemanding.begin(), kDemanding.end(),
                                           [=](const Script& each) { return each.script == script; });
    return found == kDemanding.end() || !QFontDatabase::families(found->system).isEmpty();
}

// The fonts that may draw a character: as it is wanted, upright, and neither slanted nor bold. Few of the
// families of other scripts come in every style.
class Candidates {
  public:
    explicit Candidates(const QFont& wanted) : fonts_{wanted, wanted, wanted} {
        fonts_[1].setItalic(false);
        fonts_[2].setItalic(false);
        fonts_[2].setBold(false);
    }
    const QFont& operator[](std::size_t i) const { return fonts_[i]; }
    // The first that has the character; -1 when none has. What is not drawn by itself goes with the first.
    int For(char32_t c) const {
        const QChar::Category category = QChar::category(c);
        const bool unseen = c < 0x20 || category == QChar::Other_Format ||
                            category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing ||
                            QChar::isSpace(c);
        if (unseen) return 0;
        if (!HasScript(c)) return -1;
        for (std::size_t i = 0; i < fonts_.size(); ++i)
            if (QFontMetricsF(fonts_[i]).inFontUcs4(c)) return static_cast<int>(i);
        return -1;
    }

  private:
    std::array<QFont, 3> fonts_;
};

void WarnOfMissing(char32_t c) {
    static std::atomic_flag warned;
    if (warned.test_and_set()) return;
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(c));
    Warn(std::string("No installed font has the character ") + name +
         "; a box stands for it, and for others that are missing.");
}

std::string_view FirstPart(std::string_view text) {
    if (text.size() <= kLongest) return text;
    const std::size_t blank = text.rfind(' ', kLongest);
    std::size_t end = blank == std::string_view::npos || blank == 0 ? kLongest : blank + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
    return text.substr(0, end);
}

}  // namespace

ShapedLine::ShapedLine(const QFont& font, std::string_view text) {
    while (!text.empty()) {
        const std::string_view part = FirstPart(text);
        Lay(font, part);
        text.remove_prefix(part.size());
    }
}

void ShapedLine::Lay(const QFont& font, std::string_view text) {
    // The layout counts in code units of UTF-16, and what a box stands for has another length than the box.
    const Candidates fonts(font);
    const std::size_t before = advances_.empty() ? 0 : advances_.back().end;
    QString units;
    QList<QTextLayout::FormatRange> formats;
    int last = 0;
    std::vector<std::pair<std::size_t, qsizetype>> ends;  // of the characters, in the text and in the layout
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = NextCodePoint(text, at);
        const int which = fonts.For(c);
        const auto begin = static_cast<int>(units.size());
        units += c < 0x20 ? QString(" ") : which < 0 ? QString::fromUtf8(kBox) : QString::fromUcs4(&c, 1);
        const int length = static_cast<int>(units.size()) - begin;
        // Letters join within one piece only.
        if (which > 0 && which == last) {
            formats.back().length += length;
        } else if (which > 0) {
            QTextLayout::FormatRange range;
            range.start = begin;
            range.length = length;
            range.format.setFont(fonts[static_cast<std::size_t>(which)]);
            formats.append(range);
        }
        last = which;
        if (which < 0) WarnOfMissing(c);
        ends.emplace_back(before + at, units.size());
    }
    QTextLayout layout(units, font);
    layout.setFormats(formats);
    QTextOption option;
    option.setAlignment(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.setCacheEnabled(true);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    layout.endLayout();
    if (!line.isValid()) return;
    line.setPosition(QPointF(0, 0));

    const double left = line.naturalTextRect().left();
    qsizetype begin = 0;
    for (const auto& [end, unitEnd] : ends) {
        double width = 0;
        for (qsizetype i = begin; i < unitEnd; ++i) {
            int cursor = static_cast<int>(i);
            const double lead = line.cursorToX(&cursor, QTextLine::Leading);
            if (cursor != i) continue;  // within a character as one sees it
            width += std::fabs(line.cursorToX(&cursor, QTextLine::Trailing) - lead);
        }
        advances_.push_back({end, width / kDesignSize});
        begin = unitEnd;
    }
    const QPointF origin(width_ * kDesignSize - left, -line.ascent());
    for (QGlyphRun& run : layout.glyphRuns()) {
        if (!run.rawFont().isValid() || run.rawFont().familyName().isEmpty()) continue;
        QList<QPointF> positions = run.positions();
        for (QPointF& position : positions) position += origin;
        run.setPositions(positions);
        runs_.push_back(run);
    }
    width_ += line.naturalTextWidth() / kDesignSize;
}

std::vector<double> ShapedLine::PrefixWidths(std::span<const std::size_t> ends) const {
    std::vector<double> widths;
    widths.reserve(ends.size());
    double width = 0;
    auto next = advances_.begin();
    for (const std::size_t end : ends) {
        for (; next != advances_.end() && next->end <= end; ++next) width += next->width;
        // The whole is as wide as it is drawn, whatever the roundings of its parts.
        widths.push_back(next == advances_.end() ? width_ : std::min(width, width_));
    }
    return widths;
}

void ShapedLine::Draw(QPainter& painter, double em, const QColor& color) const {
    const double scale = em / kDesignSize;
    painter.setPen(color);
    for (const QGlyphRun& design : runs_) {
        QGlyphRun run = design;
        QRawFont font = design.rawFont();
        font.setPixelSize(em);
        run.setRawFont(font);
        QList<QPointF> positions = design.positions();
        for (QPointF& position : positions) position *= scale;
        run.setPositions(positions);
        painter.drawGlyphRun(QPointF(0, 0), run);
    }
}

std::string Writable(const QFont& font, std::string_view text) {
    const Candidates fonts(font);
    std::string written;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        const char32_t c = NextCodePoint(text, at);
        const bool missing = fonts.For(c) < 0;
        if (missing) WarnOfMissing(c);
        written += missing ? std::string_view(kBox) : text.substr(begin, at - begin);
    }
    return written;
}

}  // namespace zel::qt

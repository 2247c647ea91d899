// Lines of text whose glyphs depend on one another, or that this face has not all characters for.
#pragma once

#include <QFont>
#include <QGlyphRun>
#include <QPainter>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zel::qt {

// The glyphs of a line in the order in which they are seen, with those of other faces where the own has none.
class ShapedLine {
  public:
    ShapedLine() = default;
    // `font` in design size, kDesignSize pixels.
    ShapedLine(const QFont& font, std::string_view text);

    double Width() const { return width_; }  // ems
    // The widths of the beginnings of the text up to these byte offsets, ems: of all characters before,
    // wherever they are seen.
    std::vector<double> PrefixWidths(std::span<const std::size_t> ends) const;
    // With the left end of the baseline at the painter's origin and ems of so many of its units.
    void Draw(QPainter& painter, double em, const QColor& color) const;

  private:
    void Lay(const QFont& font, std::string_view text);

    struct Advance {
        std::size_t end;  // byte offset
        double width;     // ems
    };
    std::vector<Advance> advances_;  // of the characters, in the order of the text
    std::vector<QGlyphRun> runs_;    // in design size
    double width_ = 0;
};

// What can be written of a text: a box stands for each character that no installed font has, and a warning
// says so once.
std::string Writable(const QFont& font, std::string_view text);

inline constexpr int kDesignSize = 2048;  // pixels at which a face is measured

}  // namespace zel::qt

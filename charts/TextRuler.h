// How large texts are, apart from any output.
#pragma once

#include <string>
#include <vector>

class DrawFont;

namespace zel {

// World units: thousandths of an inch. Lengths that no chart has are cut to a kilometre.
inline int UnitsOfInches(double inches) {
    constexpr double kMost = 4e7;
    const double units = inches * 1000;
    return static_cast<int>(units >= -kMost && units <= kMost ? units + (units < 0 ? -0.5 : 0.5)
                            : units > 0                       ? kMost
                                                              : 0);
}
inline int UnitsOfPoints(double points) {
    return UnitsOfInches(points / 72);
}
inline int UnitsOfMillimetres(double mm) {
    return UnitsOfInches(mm / 25.4);
}

// Measures texts in one font, by the design of its letters: the same for every output. World units.
class TextRuler {
  public:
    explicit TextRuler(const DrawFont& font);

    double WidthOf(const std::string& text) const;
    // From line to line.
    int LineHeight() const { return lineHeight_; }
    // The text as it is when it is no wider than `width`, else its beginning with an ellipsis, or nothing
    // where not even that fits.
    std::string Shortened(const std::string& text, double width) const;
    // Broken between words into lines no wider than `width`, at most `most` of them; what does not fit is
    // shortened.
    std::vector<std::string> Wrapped(const std::string& text, double width, std::size_t most) const;

  private:
    struct Face;
    static Face& FaceOf(const DrawFont& font);

    Face& face_;
    double unitsPerEm_;
    int lineHeight_;
};

}  // namespace zel

// Tools by named options: pens, colours, fonts and symbols without long lists of arguments.
#pragma once

#include <zel/DrawSymbolKind.h>
#include <zel/platform/WinTypes.h>

#include <optional>
#include <string>

class Zel2;

namespace zel {

// Colours that people with any colour vision tell apart (M. Okabe and K. Ito, "Color Universal Design", 2008;
// the yellow, too light for lines on white, is left out, a grey and an olive are added).
inline constexpr int kPaletteSize = 8;

// A colour: RGB(r, g, b), "#0072B2", or an entry of the palette.
class Color {
  public:
    Color(COLORREF rgb) : rgb_(rgb & 0xFFFFFF) {}
    // "#rgb" or "#rrggbb". Throws zel::Error for anything else.
    Color(const char* hex);
    Color(const std::string& hex) : Color(hex.c_str()) {}
    // From 0; entries repeat after the last.
    static Color Palette(int entry);

    COLORREF Rgb() const { return rgb_; }
    bool operator==(const Color&) const = default;

  private:
    COLORREF rgb_;
};

enum class Dash { SOLID, DASHED, DOTTED, DASH_DOT, DASH_DOT_DOT };

// Lengths are points (1/72 inch); pens keep widths of tenths of a millimetre. Opacity runs from 0 to 1. A
// printer takes the same colour unless it has one of its own.
struct PenOptions {
    Color color = RGB(0, 0, 0);
    double width = 0.6;
    Dash dash = Dash::SOLID;
    double opacity = 1;
    std::optional<Color> printerColor{};
};

struct FillOptions {
    Color color = RGB(0, 0, 0);
    double opacity = 1;
    std::optional<Color> printerColor{};
};

struct FontOptions {
    std::string face = "Arial";
    double size = 9;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    Color color = RGB(0, 0, 0);
    double opacity = 1;
    std::optional<Color> printerColor{};
};

struct SymbolOptions {
    SymbolKind shape = SYMBOL_CIRCLE;
    double size = 5;
    Color color = RGB(0, 0, 0);
    // Without a colour there is no outline.
    std::optional<Color> outline{};
    double outlineWidth = 0.6;
    double opacity = 1;
    std::string label{};
};

// Each registers a tool with the registry above `object`, or finds the one that has the name already, which
// keeps its looks, and returns its index. Throws zel::Error where no registry is.
int RegisterPen(Zel2& object, const std::string& name, const PenOptions& options);
int RegisterColor(Zel2& object, const std::string& name, const FillOptions& options);
int RegisterFont(Zel2& object, const std::string& name, const FontOptions& options);
int RegisterSymbol(Zel2& object, const std::string& name, const SymbolOptions& options);

}  // namespace zel

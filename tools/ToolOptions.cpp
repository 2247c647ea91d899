#include <zel/DrawColor.h>
#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/DrawSymbol.h>
#include <zel/Error.h>
#include <zel/ToolOptions.h>
#include <zel/Zel2.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace zel {
namespace {

// `length` points in units of which there are so many to an inch; lengths that no tool has are cut.
int InUnits(double points, double unitsPerInch) {
    constexpr double kMost = 10'000;
    return static_cast<int>(std::lround(std::clamp(points, 0.0, kMost) * unitsPerInch / 72));
}

int StyleOf(Dash dash) {
    switch (dash) {
        case Dash::DASHED:
            return DrawPen::DASH;
        case Dash::DOTTED:
            return DrawPen::DOT;
        case Dash::DASH_DOT:
            return DrawPen::DASH_DOT;
        case Dash::DASH_DOT_DOT:
            return DrawPen::DASH_DOT_DOT;
        default:
            return DrawPen::SOLID;
    }
}

// Gives a new tool what its registration does not take. A tool that was there keeps its looks.
int Finished(int index, bool isNew, DrawTool* tool, double opacity, const char* kind,
             const std::string& name) {
    if (index < 0)
        throw Error(std::string("Cannot register the ") + kind + " \"" + name +
                    "\": the object stands in no drawing");
    if (isNew && tool) tool->Opacity(opacity);
    return index;
}

}  // namespace

Color::Color(const char* hex) : rgb_(0) {
    const std::size_t n = hex ? std::strlen(hex) : 0;
    unsigned value = 0;
    const bool fits = (n == 4 || n == 7) && hex[0] == '#';
    if (!fits || std::from_chars(hex + 1, hex + n, value, 16).ptr != hex + n)
        throw Error("Cannot read the colour \"" + std::string(hex ? hex : "") +
                    "\": write it as #rrggbb or #rgb");
    // Each digit of the short form stands for two.
    if (n == 4) value = ((value & 0xF00) << 8 | (value & 0xF0) << 4 | (value & 0xF)) * 0x11;
    rgb_ = RGB(value >> 16 & 0xFF, value >> 8 & 0xFF, value & 0xFF);
}

Color Color::Palette(int entry) {
    static constexpr COLORREF kColors[kPaletteSize] = {
        RGB(0, 114, 178), RGB(213, 94, 0),   RGB(0, 158, 115), RGB(204, 121, 167),
        RGB(230, 159, 0), RGB(86, 180, 233), RGB(80, 80, 80),  RGB(150, 130, 0)};
    return kColors[((entry % kPaletteSize) + kPaletteSize) % kPaletteSize];
}

int RegisterPen(Zel2& object, const std::string& name, const PenOptions& options) {
    const bool isNew = object.GetPenIndex(name.c_str()) < 0;
    const int index =
        object.RegisterPen(name.c_str(), StyleOf(options.dash), InUnits(options.width, 254),
                           options.color.Rgb(), options.printerColor.value_or(options.color).Rgb(), nullptr);
    return Finished(index, isNew, object.Pen(index), options.opacity, "pen", name);
}

int RegisterColor(Zel2& object, const std::string& name, const FillOptions& options) {
    const bool isNew = object.GetColorIndex(name.c_str()) < 0;
    const int index = object.RegisterColor(name.c_str(), options.color.Rgb(),
                                           options.printerColor.value_or(options.color).Rgb());
    return Finished(index, isNew, object.Color(index), options.opacity, "colour", name);
}

int RegisterFont(Zel2& object, const std::string& name, const FontOptions& options) {
    const bool isNew = object.GetFontIndex(name.c_str()) < 0;
    const int index = object.RegisterFont(
        name.c_str(), options.face.c_str(), InUnits(options.size, 720), options.bold, options.italic,
        options.underline, 0, options.color.Rgb(), options.printerColor.value_or(options.color).Rgb());
    return Finished(index, isNew, object.Font(index), options.opacity, "font", name);
}

int RegisterSymbol(Zel2& object, const std::string& name, const SymbolOptions& options) {
    const bool isNew = object.GetSymbolIndex(name.c_str()) < 0;
    const int side = InUnits(options.size, 1000);
    const COLORREF color = options.color.Rgb(), outline = options.outline.value_or(options.color).Rgb();
    const int index =
        object.RegisterSymbol(name.c_str(), CSize(side, side), options.shape, options.label.c_str(),
                              InUnits(options.outlineWidth, 254), outline, outline, color, color,
                              options.outline ? 1 : 0, "Arial", 80, 0, 0, nullptr, nullptr, 0);
    return Finished(index, isNew, object.Symbol(index), options.opacity, "symbol", name);
}

}  // namespace zel

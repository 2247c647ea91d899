#include "charts/Palette.h"

#include <zel/ChartOptions.h>
#include <zel/Error.h>

#include <charconv>
#include <cstring>

namespace zel {

Color::Color(const char* hex) : rgb_(0) {
    const std::size_t n = hex ? std::strlen(hex) : 0;
    unsigned value = 0;
    const bool fits = (n == 4 || n == 7) && hex[0] == '#';
    if (!fits || std::from_chars(hex + 1, hex + n, value, 16).ptr != hex + n)
        throw Error("Cannot read the colour \"" + std::string(hex ? hex : "") +
                    "\": write it as #rrggbb or #rgb");
    if (n == 4) value = ((value & 0xF00) * 0x1100) | ((value & 0xF0) * 0x110) | ((value & 0xF) * 0x11);
    rgb_ = RGB(value >> 16 & 0xFF, value >> 8 & 0xFF, value & 0xFF);
}

Color Color::Palette(int entry) {
    return PaletteColor(entry);
}

COLORREF PaletteColor(int entry) {
    static constexpr COLORREF kColors[kPaletteSize] = {
        RGB(0, 114, 178), RGB(213, 94, 0),   RGB(0, 158, 115), RGB(204, 121, 167),
        RGB(230, 159, 0), RGB(86, 180, 233), RGB(80, 80, 80),  RGB(150, 130, 0)};
    return kColors[((entry % kPaletteSize) + kPaletteSize) % kPaletteSize];
}

SymbolKind PaletteShape(int entry) {
    static constexpr SymbolKind kShapes[] = {SYMBOL_CIRCLE,  SYMBOL_SQUARE,        SYMBOL_TRIANGLE_UP,
                                             SYMBOL_DIAMOND, SYMBOL_TRIANGLE_DOWN, SYMBOL_PENTAGON_UP,
                                             SYMBOL_HEXAGON, SYMBOL_TRIANGLE_RIGHT};
    return kShapes[((entry % kPaletteSize) + kPaletteSize) % kPaletteSize];
}

}  // namespace zel

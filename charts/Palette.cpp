#include "charts/Palette.h"

namespace zel {

COLORREF PaletteColor(int entry) {
    return Color::Palette(entry).Rgb();
}

SymbolKind PaletteShape(int entry) {
    static constexpr SymbolKind kShapes[] = {SYMBOL_CIRCLE,  SYMBOL_SQUARE,        SYMBOL_TRIANGLE_UP,
                                             SYMBOL_DIAMOND, SYMBOL_TRIANGLE_DOWN, SYMBOL_PENTAGON_UP,
                                             SYMBOL_HEXAGON, SYMBOL_TRIANGLE_RIGHT};
    return kShapes[((entry % kPaletteSize) + kPaletteSize) % kPaletteSize];
}

}  // namespace zel

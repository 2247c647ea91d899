// The shapes of plotting symbols, apart from the symbol class so that the object base can name them.
#pragma once

namespace zel {

// Named by what is seen where the y axis of the drawing points up, as it does in a drawing root's own
// mapping.
enum SymbolKind : int {
    SYMBOL_CIRCLE = 1,
    SYMBOL_SQUARE = 2,
    SYMBOL_TRIANGLE_UP = 3,
    SYMBOL_TRIANGLE_LEFT = 4,
    SYMBOL_TALL_TRIANGLE_LEFT = 5,
    SYMBOL_TRIANGLE_RIGHT = 6,
    SYMBOL_TRIANGLE_DOWN = 7,
    SYMBOL_DIAMOND = 8,
    SYMBOL_PENTAGON_UP = 9,
    SYMBOL_PENTAGON_DOWN = 10,
    SYMBOL_HEXAGON = 11,
    SYMBOL_OCTAGON = 12,
    SYMBOL_OCTAGON_BESIDE = 13,
    SYMBOL_TALL_TRIANGLE_RIGHT = 14,
    SYMBOL_CROSS = 15,
    SYMBOL_CUSTOM = 99,
};

}  // namespace zel

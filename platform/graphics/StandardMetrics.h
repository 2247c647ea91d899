// Built-in metrics of Arial-compatible faces, for measuring without a font library.
#pragma once

#include <zel/platform/GdiTypes.h>

#include <cmath>

namespace zel {

inline constexpr int kUnitsPerEm = 2048;
inline constexpr int kAscent = 1854;
inline constexpr int kDescent = 434;
inline constexpr int kLineGap = 67;
inline constexpr double kDefaultEm = 13;  // pixels, for a font of height 0

// The advance of a character in 2048ths of the em.
int StandardAdvance(char32_t character, bool bold);

struct FontSize {
    double em;  // device units
    int Scaled(int designUnits) const { return Truncate(std::round(designUnits * em / kUnitsPerEm)); }
};

// A negative height is that of the em, a positive one that of ascent and descent together. `scale` takes
// logical to device units.
FontSize SizeOfFont(LONG height, double scale);

}  // namespace zel

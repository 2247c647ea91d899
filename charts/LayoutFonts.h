// The fonts that charts and their kin share.
#pragma once

#include <zel/platform/WinTypes.h>

#include <string>

class Zel2;

namespace zel {

inline constexpr COLORREF kInk = RGB(38, 38, 38);

// The font of a name, registered with the registry above `object` when it is not there: `factor` times a base
// size in points. Fonts of another size or face than usual have names that say so, since two objects of one
// drawing may differ.
int RegisterLayoutFont(Zel2& object, const char* name, const std::string& face, double size, double factor,
                       bool bold, COLORREF color = kInk);
// The colour of a palette entry, registered under "Palette 1" and so on.
int RegisterPaletteColor(Zel2& object, int entry);

}  // namespace zel

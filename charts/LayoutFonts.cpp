#include "charts/LayoutFonts.h"

#include "charts/Palette.h"

#include <zel/ChartOptions.h>
#include <zel/Zel2.h>

#include <cmath>

namespace zel {

int RegisterLayoutFont(Zel2& object, const char* name, const std::string& face, double size, double factor,
                       bool bold, COLORREF color) {
    const ChartOptions usual;
    std::string full = name;
    if (size != usual.fontSize || face != usual.fontFace)
        full += " " + face + " " + std::to_string(std::lround(size * 10));
    const int known = object.GetFontIndex(full.c_str());
    if (known >= 0) return known;
    return object.RegisterFont(full.c_str(), face.c_str(), static_cast<int>(std::lround(size * factor * 10)),
                               bold ? 1 : 0, 0, 0, 0, color, color);
}

int RegisterPaletteColor(Zel2& object, int entry) {
    const std::string name = "Palette " + std::to_string(entry % kPaletteSize + 1);
    const int known = object.GetColorIndex(name.c_str());
    const COLORREF color = PaletteColor(entry);
    return known >= 0 ? known : object.RegisterColor(name.c_str(), color, color);
}

}  // namespace zel

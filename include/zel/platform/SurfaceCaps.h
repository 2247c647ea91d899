// Answers to what contexts ask of a surface.
#pragma once

#include <zel/platform/GdiTypes.h>

#include <cmath>

namespace zel {

// The capabilities that every device with a surface has; a device keeps one and answers GraphicsDevice::Caps
// with it.
struct SurfaceCaps {
    int technology = DT_RASDISPLAY;
    double unitsPerInch = 96;  // as reported; another value than the surface's own scales drawings
    CSize units;               // width and height in device units
    double widthInches = 0;
    double heightInches = 0;
    int bitsPerPixel = 32;

    // The capability `index` (LOGPIXELSX, HORZRES, ...); 0 for one that is not known.
    int Answer(int index) const {
        constexpr double kMillimetresPerInch = 25.4;
        const bool page = technology == DT_RASPRINTER;
        switch (index) {
            case TECHNOLOGY:
                return technology;
            case LOGPIXELSX:
            case LOGPIXELSY:
                return static_cast<int>(std::lround(unitsPerInch));
            case HORZRES:
                return units.cx;
            case VERTRES:
                return units.cy;
            case PHYSICALWIDTH:
                return page ? units.cx : 0;
            case PHYSICALHEIGHT:
                return page ? units.cy : 0;
            case HORZSIZE:
                return static_cast<int>(std::lround(widthInches * kMillimetresPerInch));
            case VERTSIZE:
                return static_cast<int>(std::lround(heightInches * kMillimetresPerInch));
            case BITSPIXEL:
                return bitsPerPixel;
            case PLANES:
                return 1;
            case NUMCOLORS:
                return -1;
            case ASPECTX:
            case ASPECTY:
                return 36;
            case ASPECTXY:
                return 51;
            default:
                return 0;
        }
    }
};

}  // namespace zel

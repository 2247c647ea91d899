// What the pens and raster modes of the platform are on outputs of vectors.
#pragma once

#include <zel/platform/GraphicsDevice.h>

#include <span>

namespace zel::qt {

// A line of width 0 on outputs of vectors: half a pixel of a screen, which printers and coarse pictures still
// show.
inline constexpr double kHairlineInches = 0.5 / 96;

// Painted and bare lengths of a dashed pen of the platform in pixels of a screen, in turn; empty for a solid
// one.
std::span<const double> DashLengths(UINT style);

// Ink cannot be combined with what lies under it on paper: of the raster modes, black, white and none are
// what they are, and all others paint.
inline bool PaintsNothing(const GraphicsState& state) {
    return state.rasterMode == R2_NOP;
}
inline COLORREF InkOf(const GraphicsState& state, COLORREF color) {
    return state.rasterMode == R2_BLACK   ? RGB(0, 0, 0)
           : state.rasterMode == R2_WHITE ? RGB(255, 255, 255)
                                          : color;
}

// The pen's line width in device units; `hairline` for the thinnest.
inline double PenWidthOf(const GraphicsState& state, double hairline) {
    const double width = state.pen.lopnWidth.x * state.map.ScaleX();
    return state.pen.lopnWidth.x == 0 ? hairline : width > 1 ? width : 1;
}

// The dashes in device units: pens wider than a pixel of a screen are solid, as they are there.
inline std::span<const double> DashesOf(const GraphicsState& state, double penWidth, double unitsPerPixel) {
    return penWidth <= unitsPerPixel ? DashLengths(state.pen.lopnStyle) : std::span<const double>();
}

}  // namespace zel::qt

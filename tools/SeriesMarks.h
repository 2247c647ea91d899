// A symbol at every point of a series.
#pragma once

#include <zel/SeriesPoints.h>
#include <zel/WorldFrame.h>

#include <span>

class DrawSymbol;
class Zel2;

namespace zel {

// Draws `symbol` at the points that the frame contains, its limits included, with the tools of the drawing of
// `obj`. Plain discs are one figure where the device can (DrawSymbol::PlotOn).
void PlotMarks(Zel2& obj, DrawSymbol& symbol, const WorldFrame& frame,
               std::span<const SeriesStretch> stretches);

}  // namespace zel
